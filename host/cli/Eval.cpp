#include "host/cli/Commands.h"

#include "host/cli/Input.h"
#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <chrono>
#include <memory>
#include <variant>

namespace host::cli {

namespace {

struct EvalOptions {
    SessionOptions session;
    std::optional<double> serveSeconds; ///< how long delayed scripts are served; unset: until none is left
    double idleAfterSeconds = 0;        ///< how long the user stays busy after the last calculation
    /// The work in its order. Before each further stage, the scripts that are started are done.
    using Item = std::variant<Runner::Calculation, Runner::Step>;
    std::vector<std::vector<Item>> stages{1};

    /// Means of testing: a host call that fails, and a report of the objects that are left.
    std::uint64_t failAt = 0; ///< 0: none
    int failWith = 2;
    bool failFromThenOn = false, reportsObjects = false;
};

/// `--word` or `--word=…`; `-1`, `-$x` and `--x ( 2 )` are calculations.
bool looksLikeOption(const std::string& argument) {
    if (argument == "-h" || argument == "-f") return true;
    if (!argument.starts_with("--") || argument.size() == 2) return false;
    const std::string name = argument.substr(2, argument.find('=') - 2);
    return std::all_of(name.begin(), name.end(),
                       [](unsigned char letter) { return std::islower(letter) != 0 || letter == '-'; });
}

/// Adds a calculation: a parameter of the step that is being read, if there is one.
void add(std::vector<EvalOptions::Item>& stage, const std::string& text) {
    auto* step = stage.empty() ? nullptr : std::get_if<Runner::Step>(&stage.back());
    if (step != nullptr)
        step->parameters.push_back(text);
    else
        stage.emplace_back(Runner::Calculation{.text = text, .file = {}});
}

/// Takes calculations, steps and files, whose order counts, out of the arguments after the command's name;
/// the other options stay.
void takeCalculations(const CLI::App& command, EvalOptions& options, std::vector<std::string>& arguments) {
    std::vector<std::string> left{arguments.front()};
    bool onlyCalculations = false;
    const auto valueOf = [&](std::size_t& i) -> const std::string& {
        if (++i == arguments.size()) throw std::runtime_error(arguments[i - 1] + " needs a value");
        return arguments[i];
    };
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (onlyCalculations || (!looksLikeOption(argument) && argument != "--")) {
            add(options.stages.back(), argument);
        } else if (argument == "--") {
            onlyCalculations = true;
        } else if (argument == "-f" || argument == "--file") {
            const std::string& file = valueOf(i);
            options.stages.back().emplace_back(Runner::Calculation{.text = contentOf(file), .file = file});
        } else if (argument == "--step") {
            options.stages.back().emplace_back(Runner::Step{.name = valueOf(i), .parameters = {}});
        } else if (argument == "--then") {
            add(options.stages.emplace_back(), valueOf(i));
        } else {
            left.push_back(argument);
            const CLI::Option* option = command.get_option_no_throw(argument);
            if (option != nullptr && option->get_items_expected_max() > 0) left.push_back(valueOf(i));
        }
    }
    arguments = left;
}

bool perform(Runner& runner, const EvalOptions::Item& item) {
    if (const auto* step = std::get_if<Runner::Step>(&item)) return runner.runAndPrint(*step);
    return runner.evaluateAndPrint(std::get<Runner::Calculation>(item));
}

/// True when every calculation has evaluated, those of scripts too.
bool evaluateAll(const EvalOptions& options) {
    Runner runner(options.session);
    bool allGood = true;
    if (options.failAt > 0)
        faults().arm(options.failAt, static_cast<Faults::Kind>(options.failWith), options.failFromThenOn);
    for (const auto& stage : options.stages) {
        for (const EvalOptions::Item& item : stage)
            allGood = perform(runner, item) && allGood;
        constexpr double aDay = 86'400;
        using Seconds = std::chrono::duration<double>;
        runner.serve(Seconds(options.serveSeconds.value_or(aDay)), Seconds(options.idleAfterSeconds));
    }
    faults().disarm();
    return allGood && runner.scriptErrors() == 0;
}

int evaluate(const EvalOptions& options) {
    if (options.stages.front().empty())
        throw std::runtime_error("eval needs a calculation, -f FILE or --step NAME");
    const bool isGood = evaluateAll(options);
    if (options.reportsObjects) {
        const std::string left = objectCounts().describe();
        report("host objects left: " + (left.empty() ? "none" : left));
    }
    return isGood ? kSucceeded : kFailed;
}

void addTestingOptions(CLI::App& command, EvalOptions& options) {
    const std::string testing = "Testing";
    command
        .add_option("--idle-after", options.idleAfterSeconds,
                    "keep the user busy for so long after the last calculation")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 86'400.0, ""))
        ->group(testing);
    command.add_option("--fail-host-call", options.failAt, "make the N-th host call fail")
        ->type_name("N")
        ->group(testing);
    command
        .add_option("--fail-with", options.failWith, "the error of that call: 1 out of memory, 2 any other")
        ->type_name("N")
        ->check(CLI::Range(1, 2, ""))
        ->group(testing);
    command.add_flag("--fail-from-then-on", options.failFromThenOn, "all later calls fail too")
        ->group(testing);
    command.add_flag("--objects", options.reportsObjects, "report the host objects that are left")
        ->group(testing);
}

} // namespace

Command addEval(CLI::App& application) {
    const auto options = std::make_shared<EvalOptions>();
    CLI::App& command = *application.add_subcommand(
        "eval", "Evaluates calculations in order in one session and prints each result. Then serves the "
                "scripts that were started.");
    addSessionOptions(command, options->session);
    command.add_flag("--json", options->session.json, "one JSON object a line");
    command.add_flag("--trace", options->session.trace, "report scripts that start and end");
    // These four are read by takeCalculations; here they are described.
    static std::string described;
    command.add_option("calculation", described, "a calculation, several allowed")->type_name("CALC...");
    command.add_option("-f,--file", described, "a file that holds one calculation; - is standard input")
        ->type_name("FILE");
    command
        .add_option(
            "--then", described,
            "a calculation for when the scripts that were started so far are done; so are those after it")
        ->type_name("CALC...");
    command
        .add_option(
            "--step", described,
            "a plug-in's script step; the calculations after it are its parameters, in their order or "
            "each as LABEL: CALC")
        ->type_name("NAME");
    command.add_option("--for", options->serveSeconds, "serve delayed scripts for so many seconds at most")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, 1e9, ""));
    addTestingOptions(command, *options);
    return {.options = &command,
            .run = [options] { return evaluate(*options); },
            .takeArguments =
                [options, &command](std::vector<std::string>& arguments) {
                    takeCalculations(command, *options, arguments);
                }};
}

} // namespace host::cli
