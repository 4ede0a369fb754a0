#include "FMWrapper/FMXExtern.h"
#include "host/app/File.h"
#include "host/app/Session.h"
#include "host/calc/Evaluation.h"
#include "host/scripts/Reader.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Scripts of steps: how they are read, what start-script calls do to those that run, and how they end. The
/// steps themselves have examples in examples/steps.tsv.

namespace {

using namespace host;
using testing::ElementsAre;

/// The line and the problem of a text that is no script.
std::string complaint(std::u16string_view text) {
    try {
        scripts::readSteps(text);
    } catch (const scripts::ReadError& problem) {
        return std::to_string(problem.line) + ": " + problem.what();
    }
    return {};
}

TEST(ScriptReader, RefusesWhatItCannotRun) {
    struct Case {
        const char16_t* text;
        const char* problem;
    };
    constexpr Case cases[] = {
        {u"\n# If [\nBeep ]", "3: there is no step \"Beep ]\""},
        {u"Loop\r\nEnd If\r\n", "2: End If has no If before it"},
        {u"If [ 1 ]\nLoop\nEnd If", "3: End If has no If before it"},
        {u"Loop\rIf [ 1 ]", "2: If has no end"},
        {u"Else", "1: Else has no If before it"},
        {u"If [ 1 ]\nElse\nElse If [ 2 ]\nEnd If", "3: Else If stands after Else"},
        {u"If [ 1 ]\nExit Loop If [ 1 ]\nEnd If", "2: Exit Loop If stands in no Loop"},
        {u"If\nEnd If", "1: If needs an option: condition"},
        {u"Loop\nExit Script [\n Text Result: \"]\n", "2: the options have no end: ] is missing"},
        {u"Set Variable [ 5 ; Value: 1 ]", "1: Set Variable does not take \"5\" here"},
        {u"Set Variable [ $x ;\n Values: 1 ]", "2: Set Variable has no option \"Values\""},
        {u"Perform Script [ Specified: By hand ; 1 ]", "1: the option \"Specified\" cannot be \"By hand\""},
        {u"Set Error Capture [ Perhaps ]", "1: Set Error Capture does not take \"Perhaps\" here"},
        {u"Halt Script [ ] now", "1: \"now\" stands after the step"},
        {u"// Halt Script [\nLoop", "1: the options have no end: ] is missing"},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(complaint(text), problem);
}

TEST(ScriptReader, SplitsOptionsOutsideOfTextsCommentsAndBrackets) {
    const auto steps =
        scripts::readSteps(u"\uFEFFset variable [ $a[ 1 ; 2 ] ; Value: \"];\" & [ 1 ; 2 ] // ] ;\n ] # end\n"
                           u"// Beep [ ; \n ]\n//a remark ]\n"
                           u"Perform Script [ Parameter: ${a;b} /* ; ] */ ; “It's [” from file: \"F\" ]");
    ASSERT_EQ(steps.size(), 2U);
    ASSERT_EQ(steps[0].options.size(), 2U);
    EXPECT_EQ(steps[0].options[0].text, u"$a[ 1 ; 2 ]");
    EXPECT_EQ(steps[0].options[1].text, u"\"];\" & [ 1 ; 2 ] // ] ;");
    EXPECT_EQ(steps[1].line, 6U);
    ASSERT_EQ(steps[1].options.size(), 2U);
    EXPECT_EQ(steps[1].options[0].text, u"${a;b} /* ; ] */");
    EXPECT_EQ(steps[1].options[1].text, u"“It's [” from file: \"F\"");
}

/// A session whose scripts write a log, and call others as a plug-in does.
class ScriptSteps : public testing::Test {
protected:
    Session session;
    std::vector<std::string> events;

    ScriptSteps() {
        Solution solution;
        const auto add = [&](const char16_t* name, std::u16string_view steps) {
            solution.scripts.push_back(
                {.name = name, .calculations = {}, .steps = scripts::readSteps(steps)});
        };
        add(u"New", u"Set Variable [ $$log ; Value: $$log & \"n\" ]");
        add(u"Inner", u"Set Variable [ $$log ; Value: $$log & \"i\" ]\n"
                      u"Set Variable [ $x ; Value: Start ( \"New\" ; Get ( ScriptParameter ) ) ]\n"
                      u"Set Variable [ $$log ; Value: $$log & \"I\" ]");
        add(u"Outer", u"Set Variable [ $$log ; Value: $$log & \"o\" ]\n"
                      u"Perform Script [ \"Inner\" ; Parameter: Get ( ScriptParameter ) ]\n"
                      u"Set Variable [ $$log ; Value: $$log & \"O\" ]\n"
                      u"Exit Script [ Text Result: \"done\" ]");
        add(u"Nap", u"Set Variable [ $$log ; Value: $$log & \"z\" ]\n"
                    u"Pause/Resume Script [ Duration (seconds): 60 ]\n"
                    u"Exit Script [ Text Result: \"awake\" & Get ( LastError ) ]");
        add(u"Forever", u"Loop\nEnd Loop");
        session.open(std::move(solution));
        session.functions()->add({.name = u"Start",
                                  .minimum = 2,
                                  .maximum = 2,
                                  .eager = [this](calc::Evaluation&, auto arguments) {
                                      session.startScript(
                                          u"Untitled", arguments[0]->asText().units(), nullptr,
                                          static_cast<unsigned char>(arguments[1]->asNumber().toInt64()));
                                      return arguments[0];
                                  }});
        session.onScriptEnd = [this](const ScriptCall& call, const calc::Result& result) {
            events.push_back(toUtf8(call.scriptName) + ":" + result.value->asText().utf8());
        };
        session.onScriptError = [this](const ScriptError& failure) {
            events.push_back("error " + std::to_string(failure.result.error) + " in line " +
                             std::to_string(failure.place));
        };
    }
    ~ScriptSteps() override { host::clock().reset(); }

    std::string textOf(std::u16string_view calculation) {
        return session.evaluate(calculation).value->asText().utf8();
    }
    std::size_t start(std::u16string_view name, std::u16string_view parameter = {},
                      unsigned char control = 0) {
        EXPECT_EQ(session.startScript(u"Untitled", name,
                                      std::make_shared<const Data>(Text(std::u16string(parameter))), control),
                  0);
        return session.turn().scripts;
    }
};

TEST_F(ScriptSteps, ACallEndsOrSuspendsWhatRunsAsItsControlSays) {
    struct Case {
        const char16_t* control;
        const char* log;
        std::vector<std::string> ends;
    };
    const Case cases[] = {
        {u"0", "oin", {"Inner:", "Outer:", "New:"}},
        {u"1", "oinO", {"Inner:", "New:", "Outer:done"}},
        {u"2", "oinIO", {"New:", "Inner:", "Outer:done"}},
        {u"3", "oin", {"New:"}},
    };
    for (const auto& [control, log, ends] : cases) {
        session.evaluate(u"Let ( $$log = \"\" ; \"\" )");
        events.clear();
        EXPECT_EQ(start(u"Outer", control), 2U);
        EXPECT_EQ(textOf(u"$$log"), log);
        EXPECT_EQ(events, ends);
    }
    // The last one is suspended until a call resumes it.
    EXPECT_EQ(session.turn().scripts, 0U);
    events.clear();
    EXPECT_EQ(start(u"New", u"", kFMXT_Resume), 1U);
    EXPECT_THAT(events, ElementsAre("New:", "Inner:", "Outer:done"));
    EXPECT_EQ(textOf(u"Get ( ScriptResult ) & Get ( ScriptName )"), "done");
}

TEST_F(ScriptSteps, CallsThatWereMadeBeforeAScriptBeganWaitForItsEnd) {
    session.startScript(u"Untitled", u"Outer", std::make_shared<const Data>(Text(u"2")));
    session.startScript(u"Untitled", u"New", nullptr, kFMXT_Halt);
    EXPECT_EQ(session.turn().scripts, 3U);
    EXPECT_THAT(events, ElementsAre("New:", "Inner:", "Outer:done", "New:"));
}

TEST_F(ScriptSteps, APauseEndsWithItsTime) {
    host::clock().hold();
    EXPECT_EQ(start(u"Nap"), 1U);
    EXPECT_EQ(session.untilScriptGoesOn(), std::chrono::seconds(60));
    host::clock().advance(std::chrono::seconds(59));
    session.turn();
    EXPECT_THAT(events, ElementsAre());
    EXPECT_EQ(start(u"New", u"", kFMXT_Resume), 1U);
    EXPECT_THAT(events, ElementsAre("New:"));
    host::clock().advance(std::chrono::seconds(1));
    session.turn();
    EXPECT_THAT(events, ElementsAre("New:", "Nap:awake0"));
    EXPECT_FALSE(session.untilScriptGoesOn());

    start(u"Nap");
    start(u"New", u"", kFMXT_Halt);
    EXPECT_FALSE(session.untilScriptGoesOn());
    // A script that must end passes over a pause that has no end.
    EXPECT_EQ(session.runScript(u"Untitled", u"Nap", nullptr).value->asText().utf8(), "awake3");
}

TEST_F(ScriptSteps, ScriptsThatRunToTheirEndGiveTheirResult) {
    const auto run = [this](std::u16string_view name, const char16_t* parameter) {
        const calc::Result result =
            session.runScript(u"Untitled", name, std::make_shared<const Data>(Text(parameter)));
        return std::to_string(result.error) + result.value->asText().utf8();
    };
    EXPECT_EQ(run(u"Outer", u"2"), "0done");
    EXPECT_EQ(run(u"Outer", u"0"), "0"); // halted; the new script waits for the next turn or script
    EXPECT_EQ(session.runWaitingScripts() + session.turn().scripts, 0U);
    EXPECT_EQ(run(u"Outer", u"3"), "0");
    EXPECT_EQ(run(u"None", u""), "104");
    EXPECT_EQ(session.runScript(u"None", u"New", nullptr).error, 100);
    session.onScriptStart = [&](const ScriptCall& call) {
        if (call.scriptName == u"Outer") EXPECT_EQ(session.runScript(u"Untitled", u"New", nullptr).error, 3);
    };
    EXPECT_EQ(run(u"Outer", u"1"), "0done");
    session.onScriptStart = nullptr;
}

TEST_F(ScriptSteps, NoScriptRunsForEver) {
    start(u"Forever");
    EXPECT_THAT(events, ElementsAre("error 1200 in line 1", "Forever:"));
    events.clear();
    calc::stopCalculations();
    start(u"Outer", u"2");
    calc::resumeCalculations();
    EXPECT_THAT(events, ElementsAre("error 1200 in line 1", "Outer:"));
    EXPECT_EQ(textOf(u"$$log"), "");
}

TEST_F(ScriptSteps, AFileThatClosesEndsItsScripts) {
    host::clock().hold();
    start(u"Nap");
    session.close(session.front()->id());
    host::clock().advance(std::chrono::seconds(60));
    session.turn();
    EXPECT_THAT(events, ElementsAre());
    EXPECT_FALSE(session.untilScriptGoesOn());
}

} // namespace
