#include "FunctionCalls.h"

#include "bridge/Unicode.h"
#include "bridge/cFMUtils.h"
#include "host/dispatch/MainQueue.h"
#include "host/values/Clock.h"
#include "platform/Delay.h"
#include "scripts/Scripts.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>

/// Scripts started by calculations, from the call to the queue in which they wait.

namespace {

host::Solution solutionWithScripts() {
    host::Solution solution = solutionNamed(u"Desk");
    for (const char16_t* const name : {u"Print Report", u"Straße", u"Say \"hi\""})
        solution.scripts.push_back({name, {}});
    return solution;
}

class DoFileMakerScript : public FunctionCalls {
protected:
    std::vector<std::string> started;

    void SetUp() override {
        FunctionCalls::SetUp();
        session.close(file);
        session.open(solutionWithScripts());
        session.onScriptCall = [this](const host::ScriptCall& call) {
            started.push_back(host::toUtf8(call.fileName) + "/" + host::toUtf8(call.scriptName) + "/" +
                              call.parameter->asText().utf8() + " " + std::to_string(call.error));
        };
    }
    void TearDown() override {
        host::clock().reset();
        session.runWaitingScripts();
        FunctionCalls::TearDown();
    }
};

TEST_F(DoFileMakerScript, startsScriptsAtOnceAndRefusesUnknownNames) {
    const struct {
        const char *arguments, *result, *lastError;
    } cases[] = {
        {"\"print report\"", "0", "0 "},
        {"\"STRASSE\" ; 12", "0", "0 "},
        {"\"Print Report\" ; \"größer 𝄞\"", "0", "0 "},
        {"\"Print\"", "-50", "-50 Invalid script name"},
        {"\"Report\"", "-50", "-50 Invalid script name"},
        {"\"Print Report \"", "-50", "-50 Invalid script name"},
        {"\"Print\" ; \"x\"", "-50", "-50 Invalid script name"},
        {"\"Print\" ; \"x\" ; 1", "-50", "-50 Invalid script name"},
        {"1 ; 2 ; 3 ; 4", "-50", "-50 Too many parameters"},
    };
    for (const auto& [arguments, result, expectedError] : cases) {
        EXPECT_EQ(textOf("Kestrel_DoFileMakerScript ( " + std::string(arguments) + " )"), result)
            << arguments;
        EXPECT_EQ(lastError(), expectedError) << arguments;
    }
    EXPECT_EQ(started, (std::vector<std::string>{"Desk/print report/ 0", "Desk/STRASSE/12 0",
                                                 "Desk/Print Report/größer 𝄞 0"}));
}

/// Each host call of the scheduling call and of the starting idle message fails in turn.
TEST_F(DoFileMakerScript, startsOnceOrLogsTheFailure) {
    host::clock().hold();
    const auto schedule = [this] {
        textOf("Kestrel_DoFileMakerScript ( \"Print Report\" ; \"x\" ; 1 )");
        host::clock().advance(std::chrono::seconds(1));
    };
    for (const bool isFailingWhenScheduled : {true, false})
        host::forEachFault([&](host::FaultPoint& point) {
            const host::ObjectCounts before = host::objectCounts();
            started.clear();
            if (!isFailingWhenScheduled) schedule();
            testing::internal::CaptureStderr();
            host::mainQueue().drain();
            point.during([&] { isFailingWhenScheduled ? schedule() : plugIn.idle(kFMXT_UserIdle); });
            host::mainQueue().drain();
            for (int i = 0; i < 3; ++i)
                plugIn.idle(kFMXT_UserIdle);
            const bool isLogged = testing::internal::GetCapturedStderr().find(
                                      "Script call ended with error: 2400") != std::string::npos;
            EXPECT_LE(started.size(), 1U) << point.nth;
            if (!isFailingWhenScheduled) EXPECT_NE(started.size() == 1, isLogged) << point.nth;
            if (!point.fired) EXPECT_EQ(started, (std::vector<std::string>{"Desk/Print Report/x 0"}));
            session.runWaitingScripts();
            started.clear();
            EXPECT_EQ((host::objectCounts() - before).describe(), "") << point.nth;
        });
}

TEST_F(DoFileMakerScript, findsNamesInOtherFilesOnRequest) {
    session.open([] {
        host::Solution other = solutionNamed(u"He said \"no\" \\");
        other.scripts.push_back({u"Elsewhere", {}});
        return other;
    }());
    const host::calc::Environment place = session.environment(session.front());
    const auto& env = host::bridge::out<fmx::ExprEnv>(place);
    const auto text = [](const char* utf8) { return cFMUtils::getUTF16data(utf8); };
    const struct {
        const char *script, *file;
        bool isInCallingFile, isInNamedFile;
    } cases[] = {{"print report", "Desk", true, true},
                 {"Say \"hi\"", "", true, true},
                 {"Elsewhere", "He said \"no\" \\", false, true},
                 {"Print Report", "He said \"no\" \\", true, false},
                 {"Print Report", "\" ) & \"Print Report", true, false},
                 {"Print Report", "No such file", true, false}};
    for (const auto& [script, fileName, isInCallingFile, isInNamedFile] : cases) {
        EXPECT_EQ(IsScriptNameValidInFile(*text(script), *text(fileName), env), isInCallingFile) << fileName;
        EXPECT_EQ(cFMUtils::IsScriptNameValidInFile(*text(script), *text(fileName), env), isInNamedFile)
            << fileName;
    }
}

TEST_F(DoFileMakerScript, idlesWithoutAHostCallWhenNothingWaits) {
    EXPECT_EQ(hostCallsDuring([&] { plugIn.idle(kFMXT_UserIdle); }), 0U);
}

TEST(Delay, isWholeNanosecondsOrNever) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double mostSeconds = 9'223'372'036.0;
    const struct {
        double seconds;
        std::optional<std::int64_t> nanoseconds;
    } cases[] = {
        {0, 0},
        {-5, 0},
        {-infinity, 0},
        {1.5, 1'500'000'000},
        {1e-9, 1},
        {1.9e-9, 1},
        {mostSeconds, 9'223'372'036'000'000'000},
        {mostSeconds + 1, std::nullopt},
        {infinity, std::nullopt},
        {std::numeric_limits<double>::quiet_NaN(), std::nullopt},
    };
    for (const auto& [seconds, nanoseconds] : cases)
        EXPECT_EQ(platform::delayInNanoseconds(seconds), nanoseconds) << seconds;
}

TEST(Units, areWellFormed) {
    const Units good{0, 'a', 0xE9, 0xD834, 0xDD1E, 0xFFFF};
    EXPECT_EQ(wellFormed({}), Units{});
    EXPECT_EQ(wellFormed(good), good);
    EXPECT_EQ(wellFormed({0xD834, 0xD834, 0xDD1E, 'a', 0xDD1E, 0xD834}),
              (Units{0xFFFD, 0xD834, 0xDD1E, 'a', 0xFFFD, 0xFFFD}));
}

using Timestamp = LoadedPlugIn;

TEST_F(Timestamp, hasFractionsOfSeconds) {
    EXPECT_EQ(textOf("Kestrel_ValueType ( Kestrel_GetTimestamp )"), "Timestamp");
    bool hasFraction = false;
    for (int i = 0; i < 20 && !hasFraction; ++i)
        hasFraction = textOf("Let ( t = GetAsNumber ( Kestrel_GetTimestamp ) ; t ≠ Int ( t ) )") == "1";
    EXPECT_TRUE(hasFraction);
}

} // namespace
