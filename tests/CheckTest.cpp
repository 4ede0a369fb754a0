#include "host/check/Checks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

/// The contract checks: Kestrel passes all of them, and each broken plug-in fails the check for its fault.

namespace {

using host::check::Check;
using host::check::Outcome;
using host::check::Verdict;

Outcome outcomeOf(std::string_view name, const std::filesystem::path& library) {
    const auto all = host::check::checks();
    const auto check =
        std::find_if(all.begin(), all.end(), [&](const Check& row) { return row.name == name; });
    if (check == all.end()) return {.verdict = Verdict::failed, .words = "there is no such check"};
    return host::check::runIsolated(*check, {library});
}

std::filesystem::path broken(const std::string& name) {
    return std::filesystem::path(KESTREL_BROKEN_DIR) / (name + ".so");
}

TEST(Check, kestrelAndTheSoundPlugInPassEveryCheck) {
    for (const std::filesystem::path& library : {std::filesystem::path(KESTREL_PLUGIN_PATH), broken("Sound")})
        for (const Check& check : host::check::checks())
            EXPECT_NE(host::check::runIsolated(check, {library}).verdict, Verdict::failed)
                << library << ' ' << check.name;
}

TEST(Check, eachBrokenPlugInFailsItsCheck) {
    const struct {
        const char* plugIn;
        const char* check;
        const char* says;
    } cases[] = {
        {"NoEntryPoint", "loads", "FMExternCallProc"},
        {"RefusesVersion", "accepts-host", "does not work with this host's version"},
        {"RegistersDuplicate", "registers-cleanly",
         "refused to register 1 \"Sample_Second\": its identifier is taken"},
        {"LeaksText", "gives-back", "Sample_First keeps host objects at each call: 4 Text"},
        {"ThrowsFromHandler", "survives-calls", "Sample_First: an exception left a function's handler"},
        {"CrashesInHandler", "survives-calls", "ended the process: Killed"},
        {"OverrunsName", "name-string", "past the end of the host's buffer"},
        {"NoOptions", "options-string", "never answered"},
    };
    for (const auto& [plugIn, check, says] : cases) {
        const Outcome outcome = outcomeOf(check, broken(plugIn));
        EXPECT_EQ(outcome.verdict, Verdict::failed) << plugIn;
        EXPECT_NE(outcome.words.find(says), std::string::npos) << plugIn << " fails with: " << outcome.words;
    }
}

TEST(Check, aCheckWithoutGroundIsSkipped) {
    const Outcome outcome = outcomeOf("name-string", broken("RefusesVersion"));
    EXPECT_EQ(outcome.verdict, Verdict::skipped);
    EXPECT_EQ(outcome.words, "the plug-in answers init with -1 (it does not work with this host's version)");
}

TEST(Check, aCheckThatHangsIsEnded) {
    constexpr Check hangs{.level = 1,
                          .name = "hangs",
                          .promise = "never",
                          .remedy = {},
                          .needs = {},
                          .run = [](const host::check::Subject&) -> host::check::Finding {
                              for (;;)
                                  ::usleep(1000);
                          }};
    EXPECT_EQ(host::check::runIsolated(hangs, {}, 1).words, "did not end within 1 seconds");
}

} // namespace
