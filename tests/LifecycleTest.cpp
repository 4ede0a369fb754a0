#include "FunctionCalls.h"

#include "host/dispatch/MainQueue.h"
#include "host/values/Clock.h"

#include <bitset>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <unistd.h>

/// Loading, starting, stopping and unloading of the plug-in, in every order that a host may choose.

namespace {

host::Solution solutionWithScript() {
    host::Solution solution = solutionNamed(u"Desk");
    solution.scripts = {{u"Greet", {u"Kestrel_SetGlobal ( \"greeting\" ; Get ( ScriptParameter ) )"}}};
    return solution;
}

std::filesystem::path otherPlugIn() { return std::filesystem::path(KESTREL_BROKEN_DIR) / "Sound.so"; }

std::string textOf(host::Session& session, std::u16string_view calculation) {
    const host::calc::Result result = session.evaluate(calculation);
    return result.error == 0 ? result.value->asText().utf8() : "error " + std::to_string(result.error);
}

/// Stores values, and leaves one script waiting in the session, one in the plug-in's own queue and one on the
/// main queue.
void use(host::Session& session) {
    EXPECT_EQ(textOf(session,
                     u"Length ( Kestrel_SetGlobal ( \"number\" ; 10 ^ 100 ) ) & "
                     u"Kestrel_SetGlobal ( \"red\" ; TextColor ( \"red\" ; RGB ( 9 ; 0 ; 0 ) ) ) & "
                     u"Kestrel_DoFileMakerScript ( \"Greet\" ; \"Ada\" ) & "
                     u"Kestrel_DoFileMakerScript ( \"Greet\" ; \"Ada\" ; 0 ) & "
                     u"Kestrel_SetGlobal ( \"closing\" ; TextStyleAdd ( \"v\" ; Bold ) ; \"dieonclose\" )"),
              "101red00v");
    EXPECT_EQ(host::mainQueue().drain(), 1U);
    EXPECT_EQ(textOf(session, u"Kestrel_DoFileMakerScript ( \"Greet\" ; \"Ada\" ; 3600 )"), "0");
    EXPECT_EQ(host::mainQueue().pending(), 1U);
}

class Lifecycle : public testing::Test {
protected:
    void SetUp() override { host::clock().hold(); }
    void TearDown() override {
        host::clock().reset();
        EXPECT_EQ((host::objectCounts() - before).describe(), "");
    }
    host::ObjectCounts before = host::objectCounts();
};

constexpr int manyTimes = 1'000;

TEST_F(Lifecycle, AThousandLoadsKeepOnlyTheStoredValues) {
    std::int64_t stored = 0;
    for (int i = 0; i < manyTimes; ++i) {
        host::Session session;
        session.open(solutionWithScript());
        host::PlugIn other(session, otherPlugIn());
        other.init();
        host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
        ASSERT_EQ(plugIn.init(), 60);
        ASSERT_EQ(plugIn.functions().size(), 25U);
        use(session);
        const host::Session::Turn turn = session.turn();
        ASSERT_EQ(turn.scriptCalls, 1U) << "the one in the plug-in's queue";
        ASSERT_EQ(turn.scripts, 2U);
        ASSERT_EQ(textOf(session, u"Kestrel_GetGlobal ( \"greeting\" ) & Sample_First"), "Ada1");
        if (i == 0) stored = (host::objectCounts() - before).total();
        ASSERT_EQ((host::objectCounts() - before).total(), stored) << "load " << i;
        ASSERT_TRUE(plugIn.violations().empty());
        if (i % 2 == 0) session.end();
        if (i + 1 == manyTimes) textOf(session, u"Kestrel_SetGlobal ( \"\" ; 1 )");
    }
    EXPECT_EQ(host::mainQueue().pending(), 0U);
}

TEST_F(Lifecycle, ScriptsFromBeforeAShutdownStartAfterTheNextInit) {
    host::Session session;
    session.open(solutionWithScript());
    host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    for (int i = 0; i < manyTimes; ++i) {
        ASSERT_EQ(plugIn.init(), 60);
        ASSERT_EQ(textOf(session, u"Kestrel_DoFileMakerScript ( \"Greet\" ; \"Ada\" ; 1 )"), "0");
        plugIn.shutdown();
        ASSERT_EQ(session.functions()->find(u"Kestrel_Version"), nullptr);
    }
    int started = 0;
    session.onScriptCall = [&](const host::ScriptCall&) { ++started; };
    host::clock().advance(std::chrono::seconds(1));
    host::mainQueue().drain();
    plugIn.idle(kFMXT_UserIdle);
    EXPECT_EQ(started, 0) << "before the next init";
    ASSERT_EQ(plugIn.init(), 60);
    while (session.turn().scriptCalls > 0) {
    }
    EXPECT_EQ(started, manyTimes);
    EXPECT_EQ(textOf(session, u"Kestrel_SetGlobal ( \"\" ; 1 )"), "");
    EXPECT_TRUE(plugIn.violations().empty());
}

/// The steps of ending a process.
enum Step : std::uint8_t {
    otherIsLoadedFirst,
    otherIsUnloadedFirst,
    oursGetsShutdown,
    oursIsUnloaded,
    sessionEnds,
    sessionGoes,
    stepCount
};
using Steps = std::bitset<stepCount>;

/// The objects that exist at the exit. They are reachable, so the leak checker reports other objects only.
struct Remains {
    std::unique_ptr<host::Session> session;
    std::unique_ptr<host::PlugIn> ours, other;
};

[[noreturn]] void endProcess(Steps steps) {
    constexpr unsigned secondsThatAreAHang = 60;
    ::alarm(secondsThatAreAHang);
    static auto& left = *new Remains;
    left.session = std::make_unique<host::Session>();
    left.session->open(solutionWithScript());
    const auto loadOther = [&] {
        left.other = std::make_unique<host::PlugIn>(*left.session, otherPlugIn());
        left.other->init();
    };
    if (steps[otherIsLoadedFirst]) loadOther();
    left.ours = std::make_unique<host::PlugIn>(*left.session, KESTREL_PLUGIN_PATH);
    left.ours->init();
    if (!steps[otherIsLoadedFirst]) loadOther();
    use(*left.session);

    if (steps[sessionEnds]) left.session->end();
    if (steps[otherIsUnloadedFirst]) left.other.reset();
    if (steps[oursGetsShutdown]) left.ours->shutdown();
    if (steps[oursIsUnloaded]) left.ours.reset();
    if (steps[sessionGoes] && !left.ours) {
        left.other.reset();
        left.session.reset();
    }
    const bool isSound = !testing::Test::HasFailure() && (!left.ours || left.ours->violations().empty());
    std::exit(isSound ? 0 : 1);
}

using LifecycleDeathTest = Lifecycle;

TEST_F(LifecycleDeathTest, TheProcessEndsAfterAnyOrderOfSteps) {
    for (unsigned long order = 0; order < 1UL << stepCount; ++order)
        EXPECT_EXIT(endProcess(Steps(order)), testing::ExitedWithCode(0), "") << Steps(order);
}

} // namespace
