#include "host/cli/Commands.h"

#include "host/app/File.h"
#include "host/cli/Examples.h"
#include "host/cli/JUnit.h"
#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>

namespace host::cli {

namespace {

struct ExpectOptions {
    SessionOptions session;
    std::vector<std::string> files;
    std::string junit; ///< the report's file; empty: none is written
};

/// One line, in which returns and tabs are written as in a table.
std::string onOneLine(const std::string& text) {
    std::string line;
    for (const char letter : text) {
        if (letter == '\r' || letter == '\n')
            line += "\\r";
        else if (letter == '\t')
            line += "\\t";
        else
            line += letter;
    }
    return line;
}

constexpr std::string_view kScript = "script:", kSql = "filesql";

std::string textOf(const calc::Result& result) {
    return result.error == calc::error::none ? result.value->asText().utf8()
                                             : "ERROR " + std::to_string(result.error);
}

/// `name@Layout/n`: goes to a layout and a record.
void goToPlace(Session& session, const std::string& context) {
    const std::size_t at = context.find('@');
    if (at == std::string::npos) return;
    const std::size_t slash = std::min(context.rfind('/'), context.size());
    const bool hasNumber = slash > at && slash < context.size();
    const auto number = hasNumber ? Decimal::parse(fromUtf8(context.substr(slash + 1))) : std::nullopt;
    if (hasNumber && !number) throw std::runtime_error("\"" + context + "\" names no record");
    goTo(session, context.substr(at + 1, hasNumber ? slash - at - 1 : std::string::npos),
         number ? std::optional(number->toInt64()) : std::nullopt);
}

/// The rows of the last statement of a text that holds one a line.
std::string rowsOf(Session& session, std::u16string_view statements) {
    calc::SqlAnswer answer;
    for (std::size_t start = 0; start < statements.size();) {
        const std::size_t end = std::min(statements.find(u'\r', start), statements.size());
        answer = session.front()->executeSql(statements.substr(start, end - start), {}, {});
        start = end + 1;
    }
    if (answer.error != calc::error::none) return "ERROR " + std::to_string(answer.error);
    std::string rows;
    for (std::size_t row = 0; row < answer.rows.size(); ++row)
        for (std::size_t column = 0; column < answer.rows[row].size(); ++column)
            rows += (column > 0 ? "," : row > 0 ? "\r" : "") + answer.rows[row][column]->asText().utf8();
    return rows;
}

/// Evaluates examples, each in the session it belongs to.
class Evaluator {
public:
    explicit Evaluator(const SessionOptions& options)
        : plugIns_(options.libraries()), announcement_(options.announcement),
          solutions_(loadSolutions(options)), layout_(options.layout), record_(options.record) {
        prepareMachine(options);
    }

    std::string resultOf(const Example& example) {
        if (example.beginsSession || !loaded_) {
            loaded_.reset(); // there is one session at a time
            loaded_.emplace(plugIns_, solutions_, LoadedPlugIn::Start::now, announcement_);
            goTo(loaded_->session(), layout_, record_);
        }
        Session& session = loaded_->session();
        goToPlace(session, example.context);
        const calc::Result result = session.evaluate(fromUtf8(example.calculation));
        const bool isScript = example.context.starts_with(kScript);
        if (result.error != calc::error::none || (!isScript && example.context != kSql))
            return textOf(result);
        if (!isScript) return rowsOf(session, result.value->asText().units());
        const std::string script = example.context.substr(kScript.size());
        return textOf(session.runScript(session.front()->name(), fromUtf8(script), result.value));
    }

private:
    std::vector<std::filesystem::path> plugIns_;
    Announcement announcement_;
    std::vector<Solution> solutions_;
    std::string layout_;
    std::optional<std::int64_t> record_;
    std::optional<LoadedPlugIn> loaded_;
};

/// The difference between an example's result and what it says; empty when there is none.
std::string differenceOf(const Example& example, Evaluator& evaluator) {
    if (!example.fault.empty()) return example.fault;
    std::string result;
    try {
        result = evaluator.resultOf(example);
    } catch (const std::runtime_error& problem) {
        return example.context + ": " + problem.what();
    }
    const bool holds = example.tellsLineFeeds ? result == example.expected
                                              : withLineFeeds(result) == withLineFeeds(example.expected);
    if (holds) return {};
    return "expected: " + onOneLine(example.expected) + "\n  result:   " + onOneLine(result);
}

std::vector<TestCase> runFile(const std::string& file, Evaluator& evaluator) {
    std::vector<TestCase> tests;
    for (const Example& example : readExamples(file)) {
        const std::string difference = differenceOf(example, evaluator);
        const std::string calculation = onOneLine(example.calculation);
        const std::string name = std::to_string(example.line).append(": ").append(calculation);
        if (!difference.empty())
            writeLine(std::string(file).append(":").append(name).append("\n  ").append(difference));
        tests.push_back({.suite = file, .name = std::string("line ").append(name), .failure = difference});
    }
    if (tests.empty()) {
        const std::string none = "no example";
        writeLine(file + ": " + none);
        tests.push_back({.suite = file, .name = file, .failure = none});
    }
    return tests;
}

int runExamples(const ExpectOptions& options) {
    Evaluator evaluator(options.session);
    std::vector<TestCase> tests;
    for (const std::string& file : options.files) {
        const std::vector<TestCase> ofFile = runFile(file, evaluator);
        tests.insert(tests.end(), ofFile.begin(), ofFile.end());
    }
    if (!options.junit.empty()) writeFile(options.junit, junitReport(tests));
    const auto failed =
        std::count_if(tests.begin(), tests.end(), [](const TestCase& test) { return !test.failure.empty(); });
    writeLine(std::to_string(std::ssize(tests) - failed) + " passed, " + std::to_string(failed) + " failed");
    return failed == 0 ? kSucceeded : kFailed;
}

} // namespace

Command addExpect(CLI::App& application) {
    const auto options = std::make_shared<ExpectOptions>();
    CLI::App& command = *application.add_subcommand(
        "expect", "Runs the examples in Markdown and TSV files and prints those whose results differ.");
    addSessionOptions(command, options->session);
    command.add_option("--junit", options->junit, "the file for a report in JUnit's XML")->type_name("FILE");
    command
        .add_option("file", options->files,
                    "a Markdown file with ```kestrel blocks, or a TSV file: context, calculation, result")
        ->type_name("FILE...")
        ->required();
    return {.options = &command, .run = [options] { return runExamples(*options); }, .takeArguments = {}};
}

} // namespace host::cli
