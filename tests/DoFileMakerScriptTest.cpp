#include "FunctionCalls.h"

#include "Scripts.h"
#include "cFMUtils.h"
#include "host/app/Clock.h"
#include "host/dispatch/MainQueue.h"
#include "platform/Delay.h"
#include "platform/Units.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>

/// Scripts started by calculations, up to the queue in which they wait.

namespace {

host::Solution solutionWithScripts() {
    host::Solution solution = solutionNamed(u"Desk");
    for (const char16_t* const name : {u"Print Report", u"Straße", u"Say \"hi\""})
        solution.scripts.push_back({name, {}});
    return solution;
}

class DoFileMakerScript : public testing::Test {
protected:
    host::Session session;
    std::uint64_t file = session.open(solutionWithScripts());
    host::PlugIn plugIn{session, KESTREL_PLUGIN_PATH};
    std::vector<std::string> started;

    void SetUp() override {
        ASSERT_EQ(plugIn.init(), 60);
        session.onScriptCall = [this](const host::ScriptCall& call) {
            started.push_back(host::toUtf8(call.fileName) + "/" + host::toUtf8(call.scriptName) + "/" +
                              call.parameter->asText().utf8() + " " + std::to_string(call.error));
        };
    }
    void TearDown() override {
        host::faults().disarm();
        host::clock().reset();
        EXPECT_TRUE(plugIn.misdeeds().empty());
    }

    std::string outcomeOf(const std::string& calculation) {
        const host::calc::Result result = session.evaluate(host::fromUtf8(calculation));
        return result.error == 0 ? result.value->asText().utf8() : "error " + std::to_string(result.error);
    }
    std::string lastError() { return outcomeOf("$$Kestrel_LastError & \" \" & $$Kestrel_LastErrorMessage"); }
};

TEST_F(DoFileMakerScript, startsAtOnce) {
    EXPECT_EQ(outcomeOf("Kestrel_DoFileMakerScript ( \"print report\" )"), "0");
    EXPECT_EQ(outcomeOf("Kestrel_DoFileMakerScript ( \"STRASSE\" ; 12 )"), "0");
    EXPECT_EQ(outcomeOf("Kestrel_DoFileMakerScript ( \"Print Report\" ; \"größer 𝄞\" )"), "0");
    EXPECT_EQ(started, (std::vector<std::string>{"Desk/print report/ 0", "Desk/STRASSE/12 0",
                                                 "Desk/Print Report/größer 𝄞 0"}));
    EXPECT_EQ(lastError(), "0 ");
}

TEST_F(DoFileMakerScript, refusesWhatIsNoScript) {
    const struct {
        const char *arguments, *message;
    } cases[] = {
        {"\"Print\"", "-50 Invalid script name"},
        {"\"Report\"", "-50 Invalid script name"},
        {"\"Print Report \"", "-50 Invalid script name"},
        {"\"Print\" ; \"x\"", "-50 Invalid script name"},
        {"\"Print\" ; \"x\" ; 1", "-50 Invalid script name"},
        {"1 ; 2 ; 3 ; 4", "-50 Too many parameters"},
    };
    for (const auto& [arguments, message] : cases) {
        EXPECT_EQ(outcomeOf(std::string("Kestrel_DoFileMakerScript ( ") + arguments + " )"), "-50");
        EXPECT_EQ(lastError(), message) << arguments;
    }
    EXPECT_TRUE(started.empty());
}

/// Each host call fails in turn: of the call that schedules, and of the idle message that starts.
TEST_F(DoFileMakerScript, startsOnceOrIsDroppedWithALineInTheLog) {
    host::clock().hold();
    const auto schedule = [this] {
        outcomeOf("Kestrel_DoFileMakerScript ( \"Print Report\" ; \"x\" ; 1 )");
        host::clock().advance(std::chrono::seconds(1));
    };
    for (const bool isFailingWhenScheduled : {true, false})
        for (const bool fromThenOn : {false, true}) {
            bool fired = true;
            for (std::uint64_t nth = 1; fired; ++nth) {
                const host::ObjectCounts before = host::objectCounts();
                started.clear();
                if (!isFailingWhenScheduled) schedule();
                testing::internal::CaptureStderr();
                host::mainQueue().drain();
                host::faults().arm(nth, host::Faults::Kind::unknown, fromThenOn);
                isFailingWhenScheduled ? schedule() : plugIn.idle(kFMXT_UserIdle);
                fired = host::faults().fired();
                host::faults().disarm();
                host::mainQueue().drain();
                for (int i = 0; i < 3; ++i)
                    plugIn.idle(kFMXT_UserIdle);
                const bool isLogged = testing::internal::GetCapturedStderr().find(
                                          "Script call ended with error: 2400") != std::string::npos;
                EXPECT_LE(started.size(), 1U) << nth;
                if (!isFailingWhenScheduled) EXPECT_NE(started.size() == 1, isLogged) << nth;
                if (!fired) EXPECT_EQ(started, (std::vector<std::string>{"Desk/Print Report/x 0"}));
                session.runWaitingScripts();
                started.clear();
                EXPECT_EQ((host::objectCounts() - before).describe(), "") << nth;
            }
        }
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
    host::faults().disarm();
    plugIn.idle(kFMXT_UserIdle);
    EXPECT_EQ(host::faults().calls(), 0U);
}

TEST(Delay, isWholeNanosecondsOrNever) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double mostSeconds = 9'223'372'036.0;
    const struct {
        double seconds;
        std::optional<std::int64_t> nanoseconds;
    } cases[] = {
        {0, 0},
        {-0.0, 0},
        {-5, 0},
        {-infinity, 0},
        {-1e300, 0},
        {1.5, 1'500'000'000},
        {1e-9, 1},
        {1.9e-9, 1},
        {86'400, 86'400'000'000'000},
        {mostSeconds, 9'223'372'036'000'000'000},
        {mostSeconds + 1, std::nullopt},
        {6.4e10, std::nullopt},
        {1e308, std::nullopt},
        {infinity, std::nullopt},
        {std::numeric_limits<double>::quiet_NaN(), std::nullopt},
    };
    for (const auto& [seconds, nanoseconds] : cases)
        EXPECT_EQ(platform::delayInNanoseconds(seconds), nanoseconds) << seconds;
}

TEST(Units, areWellFormed) {
    using platform::Units;
    const struct {
        Units text, wellFormed;
    } cases[] = {{{}, {}},
                 {{0, 'a', 0xE9, 0xFFFF}, {0, 'a', 0xE9, 0xFFFF}},
                 {{0xD834, 0xDD1E}, {0xD834, 0xDD1E}},
                 {{0xD834}, {0xFFFD}},
                 {{0xDD1E, 0xD834}, {0xFFFD, 0xFFFD}},
                 {{0xD834, 0xD834, 0xDD1E, 'a'}, {0xFFFD, 0xD834, 0xDD1E, 'a'}}};
    for (const auto& [text, wellFormed] : cases)
        EXPECT_EQ(platform::wellFormed(text), wellFormed);
}

using Timestamp = LoadedPlugIn;

TEST_F(Timestamp, isLocalTimeInTheZoneOfTheMoment) {
    const char* const former = std::getenv("TZ");
    const std::string kept = former == nullptr ? "" : former;
    // The second rule always has summer time.
    for (const char* const zone : {"Asia/Kolkata", "XST5XDT,0/0,J365/25", "America/St_Johns", "Pacific/Apia",
                                   "Europe/Berlin", "UTC0", "XST3:30"}) {
        ::setenv("TZ", zone, 1);
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        ::tzset();
        ASSERT_NE(::localtime_r(&now, &local), nullptr);
        const double expected = static_cast<double>(now + local.tm_gmtoff) + 62'135'596'800.0;
        EXPECT_LT(std::abs(std::stod(textOf("GetAsNumber ( Kestrel_GetTimestamp )")) - expected), 2) << zone;
        EXPECT_EQ(textOf("Let ( d = Kestrel_GetTimestamp ( 1 ) - Get ( CurrentTimestamp ) ; Abs ( d ) ≤ 2 )"),
                  "1")
            << zone;
    }
    former == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", kept.c_str(), 1);
}

TEST_F(Timestamp, isAMomentWithFractions) {
    EXPECT_EQ(textOf("Kestrel_ValueType ( Kestrel_GetTimestamp )"), "Timestamp");
    bool hasFraction = false;
    for (int i = 0; i < 20 && !hasFraction; ++i)
        hasFraction = textOf("Let ( t = GetAsNumber ( Kestrel_GetTimestamp ) ; t ≠ Int ( t ) )") == "1";
    EXPECT_TRUE(hasFraction);
}

} // namespace
