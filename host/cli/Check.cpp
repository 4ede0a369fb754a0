#include "host/cli/Commands.h"

#include "host/check/Checks.h"
#include "host/cli/JUnit.h"
#include "host/cli/Output.h"
#include "host/cli/Runner.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace host::cli {

namespace {

using check::Judgement;
using check::Verdict;

struct CheckOptions {
    SessionOptions session; ///< the plug-ins alone
    int level = check::kHighestLevel;
    bool json = false, callsNothing = false;
    std::string junit; ///< the report's file; empty: none is written
};

constexpr const char* kWarning = "check calls every function with made-up arguments; a function that deletes "
                                 "files or sends mail will do so. --no-calls calls none.";

/// The words for each verdict, for programs and for people, who must see a failure at a glance.
constexpr std::array kVerdicts{"pass", "fail", "skip"}, kShownVerdicts{"pass", "FAIL", "skip"};

void printJson(const std::string& plugIn, const Judgement& judgement) {
    const auto& [check, outcome] = judgement;
    nlohmann::ordered_json object{
        {"plugIn", plugIn},          {"check", check->name},
        {"level", check->level},     {"verdict", kVerdicts.at(static_cast<std::size_t>(outcome.verdict))},
        {"promise", check->promise}, {"words", outcome.words}};
    if (outcome.verdict == Verdict::failed) object["remedy"] = check->remedy;
    writeJson(object);
}

void printText(const Judgement& judgement) {
    const auto& [check, outcome] = judgement;
    char head[64];
    std::snprintf(head, sizeof head, "%-4s  %d  %-18s  ",
                  kShownVerdicts.at(static_cast<std::size_t>(outcome.verdict)), check->level,
                  std::string(check->name).c_str());
    writeLine(head + (outcome.words.empty() ? std::string(check->promise) : outcome.words));
    if (outcome.verdict == Verdict::failed) writeLine("         To do: " + std::string(check->remedy));
}

std::size_t countOf(const std::vector<Judgement>& judged, Verdict verdict) {
    return static_cast<std::size_t>(std::ranges::count_if(
        judged, [verdict](const Judgement& judgement) { return judgement.outcome.verdict == verdict; }));
}

void printCounts(const std::string& plugIn, const std::vector<Judgement>& judged, bool json) {
    const auto passed = countOf(judged, Verdict::passed), failed = countOf(judged, Verdict::failed),
               skipped = countOf(judged, Verdict::skipped);
    if (json)
        return writeJson({{"plugIn", plugIn}, {"passed", passed}, {"failed", failed}, {"skipped", skipped}});
    writeLine(std::to_string(passed) + " checks passed, " + std::to_string(failed) + " failed" +
              (skipped > 0 ? ", " + std::to_string(skipped) + " skipped" : ""));
}

void addTests(const std::string& plugIn, const std::vector<Judgement>& judged, std::vector<TestCase>& tests) {
    for (const auto& [check, outcome] : judged) {
        TestCase& test = tests.emplace_back();
        test.suite = plugIn;
        test.name = check->name;
        if (outcome.verdict == Verdict::failed)
            test.failure = outcome.words + "\nTo do: " + std::string(check->remedy);
        if (outcome.verdict == Verdict::skipped) test.skipped = outcome.words;
    }
}

/// Checks a plug-in; gives the exit status.
int runChecks(const std::filesystem::path& library, const CheckOptions& options,
              std::vector<TestCase>& tests) {
    if (!std::filesystem::exists(library))
        throw std::runtime_error("there is no plug-in at \"" + library.string() + "\"");
    const int level =
        options.callsNothing ? std::min(options.level, check::kFirstLevelWithCalls - 1) : options.level;
    const std::string plugIn = library.filename().string();
    if (level >= check::kFirstLevelWithCalls) report(kWarning);
    const auto judged = check::runChecks({.library = library, .announcement = options.session.announcement},
                                         level, [&](const Judgement& judgement) {
                                             if (options.json)
                                                 printJson(plugIn, judgement);
                                             else
                                                 printText(judgement);
                                         });
    printCounts(plugIn, judged, options.json);
    addTests(plugIn, judged, tests);
    if (judged.front().outcome.verdict != Verdict::passed) return kWrongUsage;
    return countOf(judged, Verdict::failed) == 0 ? kSucceeded : kFailed;
}

int runAll(const CheckOptions& options) {
    int status = kSucceeded;
    std::vector<TestCase> tests;
    const auto libraries = options.session.libraries();
    for (const std::filesystem::path& library : libraries) {
        if (libraries.size() > 1 && !options.json) writeLine(library.string());
        status = std::max(status, runChecks(library, options, tests));
    }
    if (!options.junit.empty()) writeFile(options.junit, junitReport(tests));
    return status;
}

} // namespace

Command addCheck(CLI::App& application) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& command = *application.add_subcommand(
        "check", "Runs the host's contract checks against plug-ins, each check in a process of its own.");
    command.footer(std::string("Beware: ") + kWarning);
    addPlugInOption(command, options->session);
    command.add_option("library", options->session.plugIns, "a plug-in's library, several allowed")
        ->type_name("FILE...");
    command
        .add_option("--level", options->level,
                    "the highest level that is checked: 1 loading, 2 messages, 3 registration, 4 calls, "
                    "5 a failing host")
        ->type_name("N")
        ->check(CLI::Range(1, check::kHighestLevel, ""));
    command.add_flag("--no-calls", options->callsNothing,
                     "call no function and no script step: stop after level 3");
    command.add_flag("--json", options->json, "one JSON object a line");
    command.add_option("--junit", options->junit, "the file for a report in JUnit's XML")->type_name("FILE");
    return {.options = &command, .run = [options] { return runAll(*options); }, .takeArguments = {}};
}

} // namespace host::cli
