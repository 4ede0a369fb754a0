#include "FunctionCalls.h"

#include "host/dispatch/MainQueue.h"
#include "host/values/Clock.h"

#include <dlfcn.h>
#include <filesystem>
#include <memory>

/// Scripts from the start-script call to their end, in the host's loop with its clock held.

namespace {

using namespace std::chrono_literals;

class Scripts : public LoadedPlugIn {
protected:
    std::uint64_t desk = session.open([] {
        host::Solution solution = solutionNamed(u"Desk");
        solution.scripts = {
            {u"First", {u"Let ( $$log = $$log & \"1\" ; 1 )"}},
            {u"Second", {u"Let ( $$log = $$log & \"2\" ; 1 )"}},
            {u"Keep", {u"Let ( $$kept = Get ( ScriptParameter ) ; 1 )"}},
            {u"Outer",
             {u"Let ( $$log = $$log & \"(\" ; 1 )", u"Kestrel_DoFileMakerScript ( \"Inner\" )",
              u"Kestrel_DoFileMakerScript ( \"First\" ; \"\" ; 0 )", u"Let ( $$log = $$log & \")\" ; 1 )"}},
            {u"Inner", {u"Let ( $$log = $$log & \"i\" ; 1 )"}},
            {u"Again", {u"Kestrel_DoFileMakerScript ( \"Again\" )"}},
        };
        return solution;
    }());
    std::vector<std::string> calls;

    void SetUp() override {
        session.close(file); // Desk becomes the first file
        host::clock().hold();
        session.onScriptCall = [this](const host::ScriptCall& call) {
            calls.push_back(host::toUtf8(call.scriptName) + " " + std::to_string(call.error));
        };
    }
    void TearDown() override {
        host::clock().advance(24h * 400); // empties the plug-in's own queue for the next test
        while (session.turn().scriptCalls > 0) {
        }
        host::clock().reset();
        LoadedPlugIn::TearDown();
    }

    void start(const std::string& arguments) {
        ASSERT_EQ(textOf("Kestrel_DoFileMakerScript ( " + arguments + " )"), "0") << lastError();
    }
    /// The start-script calls of one turn of the loop, each as "name error".
    std::vector<std::string> turn() {
        calls.clear();
        session.turn();
        return calls;
    }
    using Calls = std::vector<std::string>;
};

TEST_F(Scripts, DelayedScriptsRunLastFirstOneForEachIdleMessage) {
    start("\"First\" ; \"\" ; 1");
    start("\"Second\" ; \"\" ; 2");
    host::clock().advance(999ms);
    EXPECT_EQ(turn(), Calls{});
    host::clock().advance(1001ms);
    EXPECT_EQ(host::mainQueue().drain(), 2U);
    for (const unsigned char level :
         {kFMXT_UserNotIdle, kFMXT_ScriptPaused, kFMXT_ScriptRunning, kFMXT_Unsafe})
        plugIn.idle(level);
    EXPECT_EQ(turn(), Calls{"Second 0"});
    EXPECT_EQ(turn(), Calls{"First 0"});
    EXPECT_EQ(turn(), Calls{});
    EXPECT_EQ(textOf("$$log"), "21");
}

TEST_F(Scripts, DelaysAreExactToTheSecondAndAtMostADay) {
    const std::string ahead = "\"First\" ; \"\" ; Get ( CurrentTimestamp ) + ";
    host::clock().set(1'700'000'000s);
    start(ahead + "86400");
    EXPECT_EQ(textOf("Kestrel_DoFileMakerScript ( " + ahead + "86401 )"), "error -1001");
    EXPECT_EQ(textOf("$$Kestrel_LastErrorMessage"), "Wrong timestamp");
    start(ahead + "-1"); // never due in practice
    EXPECT_EQ(host::mainQueue().pending(), 1U);
    host::clock().advance(24h - 1us);
    EXPECT_EQ(turn(), Calls{});
    host::clock().advance(1us);
    EXPECT_EQ(turn(), Calls{"First 0"});
    EXPECT_EQ(textOf("GetAsNumber ( Kestrel_GetTimestamp - Get ( CurrentTimestamp ) )"), "0");
    host::clock().set(host::Clock::Micros::max());
    EXPECT_EQ(turn(), Calls{});
}

TEST_F(Scripts, AFileThatHasClosedDropsItsScripts) {
    const auto open = [this] {
        host::Solution other = solutionNamed(u"Other");
        other.scripts = {{u"Mine", {u"Let ( $$log = $$log & \"m\" ; 1 )"}}};
        return session.open(other);
    };
    const auto evaluateIn = [this](std::uint64_t id, const char16_t* calculation) {
        for (const auto& each : session.files())
            if (each->id() == id)
                return host::calc::evaluate(calculation, session.environment(each), session.functions())
                    .value->asText()
                    .utf8();
        return std::string("closed");
    };
    std::uint64_t other = open();
    EXPECT_EQ(textOf("DatabaseNames"), "Desk\rOther");
    ASSERT_EQ(evaluateIn(other, u"Kestrel_DoFileMakerScript ( \"Mine\" ; \"\" ; 1 )"), "0");
    EXPECT_TRUE(session.close(other));
    EXPECT_EQ(textOf("DatabaseNames"), "Desk");
    host::clock().advance(1s);
    EXPECT_EQ(turn(), Calls{"Mine 100"});
    EXPECT_EQ(turn(), Calls{});

    // The file closes before the accepted script runs. A new file of the same name does not get the script.
    other = open();
    ASSERT_EQ(evaluateIn(other, u"Kestrel_DoFileMakerScript ( \"Mine\" )"), "0");
    session.close(other);
    other = open();
    EXPECT_EQ(session.turn().scripts, 0U);
    EXPECT_EQ(evaluateIn(other, u"$$log"), "");
}

TEST_F(Scripts, NamesAreCheckedAndParametersAreComplete) {
    EXPECT_EQ(textOf("Kestrel_DoFileMakerScript ( \"Fir\" ; \"\" ; 1 )"), "-50");
    EXPECT_EQ(host::mainQueue().pending(), 0U);
    std::string parameter = "größer 𝄞 ";
    while (parameter.size() < 1'000'000)
        parameter += parameter;
    ASSERT_EQ(textOf("Let ( $$long = \"" + parameter + "\" ; 1 )"), "1");
    for (const char* const delay : {"", " ; 1"}) {
        for (const char* const text : {"$$long & \"¶\\\"\"", "\"\"", "12.50"}) {
            start(std::string("\"keep\" ; ") + text + delay);
            host::clock().advance(1s);
            EXPECT_EQ(turn().size(), *delay == '\0' ? 0U : 1U);
            EXPECT_EQ(textOf(std::string("Exact ( $$kept ; GetAsText ( ") + text + " ) )"), "1") << delay;
        }
    }
    // The platform's strings cannot hold half a character, so the replacement character takes its place.
    start("\"keep\" ; \"a\" & Char ( 55357 ) & \"b\" ; 1");
    host::clock().advance(1s);
    EXPECT_EQ(turn().size(), 1U);
    EXPECT_EQ(textOf("$$kept"), "a\uFFFDb");
}

TEST_F(Scripts, RunOneAfterAnotherNeverInsideEachOther) {
    start("\"Outer\"");
    EXPECT_EQ(textOf("$$log"), "");
    session.turn();
    EXPECT_EQ(textOf("$$log"), "()i");
    session.turn();
    EXPECT_EQ(textOf("$$log"), "()i1");

    start("\"Again\"");
    EXPECT_EQ(session.turn().scripts, host::Session::kMostScriptDepth);
    session.turn();
    start("\"Again\"");
    session.close(desk);
    EXPECT_EQ(session.turn().scripts, 0U);
}

TEST_F(Scripts, PlugInsGetEveryMessage) {
    const auto library = std::filesystem::path(KESTREL_BROKEN_DIR) / "RecordsMessages.so";
    const std::unique_ptr<void, int (*)(void*)> kept(::dlopen(library.c_str(), RTLD_NOW), ::dlclose);
    ASSERT_NE(kept, nullptr);
    const auto messages = reinterpret_cast<const char* (*)()>(::dlsym(kept.get(), "recordedMessages"));
    ASSERT_NE(messages, nullptr);
    {
        host::PlugIn recorder(session, library);
        session.turn(); // sends no message to a plug-in that is not enabled
        recorder.init();
        start("\"Outer\"");
        session.turn();
        session.idle(kFMXT_ScriptPaused);
        session.end();
        session.end();
    }
    EXPECT_EQ(std::string(messages()),
              "init idle 0 idle 3 idle 3 idle 3 idle 2 file " + std::to_string(desk) + " session shutdown ");
}

} // namespace
