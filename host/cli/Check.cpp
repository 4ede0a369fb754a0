#include "host/cli/Commands.h"

#include "host/check/Checks.h"
#include "host/cli/Output.h"
#include "host/cli/Runner.h"

#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace host::cli {

namespace {

struct CheckOptions {
    SessionOptions session; ///< the plug-in alone
    int level = check::kHighestLevel;
    bool json = false;
};

constexpr int kFirstLevelWithCalls = 4;
constexpr const char* kWarning = "check calls every function with made-up arguments; a function that deletes "
                                 "files or sends mail will do so. --level 3 calls none.";

/// By verdict, for programs and for people, who must see a failure at a glance.
constexpr std::array kVerdicts{"pass", "fail", "skip"}, kShownVerdicts{"pass", "FAIL", "skip"};

void print(const check::Check& check, const check::Outcome& outcome, bool json) {
    const auto verdict = static_cast<std::size_t>(outcome.verdict);
    const std::string name(check.name), promise(check.promise);
    if (json)
        return writeJson({{"check", name},
                          {"level", check.level},
                          {"verdict", kVerdicts.at(verdict)},
                          {"promise", promise},
                          {"words", outcome.words}});
    char head[64];
    std::snprintf(head, sizeof head, "%-4s  %d  %-18s  ", kShownVerdicts.at(verdict), check.level,
                  name.c_str());
    writeLine(head + (outcome.words.empty() ? promise : outcome.words));
}

int runChecks(const CheckOptions& options) {
    const std::filesystem::path& library = options.session.library();
    if (!std::filesystem::exists(library))
        throw std::runtime_error("there is no plug-in at \"" + library.string() + "\"");
    std::array<int, kVerdicts.size()> counts{};
    for (const check::Check& check : check::checks()) {
        if (check.level > options.level) break;
        const check::Outcome outcome = check::runIsolated(check, library);
        const bool isFirst = &check == &check::checks().front();
        if (isFirst && outcome.verdict == check::Verdict::failed) throw std::runtime_error(outcome.words);
        if (isFirst && options.level >= kFirstLevelWithCalls) report(kWarning);
        ++counts.at(static_cast<std::size_t>(outcome.verdict));
        print(check, outcome, options.json);
    }
    const auto [passed, failed, skipped] = counts;
    if (options.json)
        writeJson({{"passed", passed}, {"failed", failed}, {"skipped", skipped}});
    else
        writeLine(std::to_string(passed) + " checks passed, " + std::to_string(failed) + " failed" +
                  (skipped > 0 ? ", " + std::to_string(skipped) + " skipped" : ""));
    return failed == 0 ? kSucceeded : kFailed;
}

} // namespace

Command addCheck(CLI::App& application) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& command = *application.add_subcommand(
        "check", "Runs the host's contract checks against a plug-in, each in a process of its own.");
    command.footer(std::string("Beware: ") + kWarning);
    addPlugInOption(command, options->session);
    command.add_option("library", options->session.plugIn, "the plug-in's library")->type_name("FILE");
    command
        .add_option("--level", options->level,
                    "the highest level that is checked: 1 loading, 2 messages, 3 registration, 4 calls, "
                    "5 a failing host")
        ->type_name("N")
        ->check(CLI::Range(1, check::kHighestLevel, ""));
    command.add_flag("--json", options->json, "one JSON object a line");
    return {.options = &command, .run = [options] { return runChecks(*options); }, .takeArguments = {}};
}

} // namespace host::cli
