#include "LoadedPlugIn.h"
#include "RealisticCalls.h"
#include "WebServices.h"

#include "host/fmwrapper/Bridge.h"

#include <algorithm>
#include <cstdio>
#include <functional>

/// Every host call of every function and message is made to fail in turn, once and from then on, with both
/// errors: nothing escapes, nothing is kept, and the next ordinary call works.

namespace {

using host::Faults;

class FailingHost : public LoadedPlugIn {
protected:
    /// Runs an action with its first, second, … host call failing, until it makes no more; gives the points
    /// tried.
    std::uint64_t failInTurn(const std::string& what, const std::function<void()>& action) {
        constexpr std::uint64_t mostPoints = 20'000;
        std::uint64_t points = 0;
        for (const Faults::Kind kind : {Faults::Kind::badAlloc, Faults::Kind::unknown})
            for (const bool fromThenOn : {false, true})
                for (std::uint64_t nth = 1;; ++nth) {
                    const host::ObjectCounts before = host::objectCounts();
                    host::faults().arm(nth, kind, fromThenOn);
                    action();
                    const bool fired = host::faults().fired();
                    host::faults().disarm();
                    evaluate("Kestrel_SetGlobal ( \"\" ; 1 )"); // globals are kept rightly
                    EXPECT_EQ((host::objectCounts() - before).describe(), "")
                        << what << ", host call " << nth;
                    EXPECT_TRUE(plugIn.misdeeds().empty()) << what << ", host call " << nth;
                    if (!fired || HasFailure() || nth == mostPoints) break;
                    ++points;
                }
        EXPECT_EQ(textOf("Kestrel_Version"), "3.1") << what;
        return points;
    }

    void call(const host::RegisteredFunction& function, const host::DataVect& arguments) {
        result(function, arguments);
    }
    std::string result(const host::RegisteredFunction& function, const host::DataVect& arguments) {
        const host::calc::Environment environment = session.environment(session.front());
        host::Data result;
        plugIn.call(function, host::bridge::out<fmx::ExprEnv>(environment),
                    host::bridge::out<fmx::DataVect>(arguments), host::bridge::out<fmx::Data>(result));
        return result.asText().utf8();
    }
};

host::DataVect argumentsFor(const host::RegisteredFunction& function, const host::Data& value) {
    constexpr std::int16_t usual = 2;
    const std::int16_t most = function.maximum < 0 ? std::max(function.minimum, usual) : function.maximum;
    return host::DataVect(static_cast<std::size_t>(most), std::make_shared<const host::Data>(value));
}

TEST_F(FailingHost, isBorneByEveryFunction) {
    std::uint64_t points = 0;
    for (const host::RegisteredFunction& function : plugIn.functions())
        for (const host::Data& value :
             {host::Data(host::Text(u"long")), host::Data(host::Decimal(7)), host::Data(host::Text())})
            points += failInTurn(host::toUtf8(function.name),
                                 [&] { call(function, argumentsFor(function, value)); });
    std::printf("%llu failing host calls borne by %zu functions\n", static_cast<unsigned long long>(points),
                plugIn.functions().size());
    EXPECT_GT(points, 1000U);
}

TEST_F(FailingHost, isBorneByCallsAsTheyAreReallyMade) {
    session.close(file);
    session.open(host::Solution::load(KESTREL_SOURCE_DIR "/examples/contacts"));
    std::uint64_t points = 0;
    for (const char* const calculation : realisticCalls) {
        const auto callAndServe = [&] {
            evaluate(calculation);
            session.turn();
        };
        callAndServe(); // variables that the first call makes stay, globals go
        evaluate("Kestrel_SetGlobal ( \"\" ; 1 )");
        points += failInTurn(calculation, callAndServe);
    }
    std::printf("%llu failing host calls borne by %zu calculations\n",
                static_cast<unsigned long long>(points), realisticCalls.size());
    EXPECT_GT(points, 1000U);
}

TEST_F(FailingHost, isBorneByLookups) {
    WebServices services(Behaviour{Behaviour::Kind::answers, "\r\n\r\n203.0.113.7"});
    for (const char* const calculation :
         {"Kestrel_GetClientPublicIPAddress", "Kestrel_GetIPforName ( \"localhost\" )",
          "Kestrel_GetNameForIP ( \"127.0.0.1\" )", "Kestrel_GetNameForIP ( \"::1\" )"})
        EXPECT_GT(failInTurn(calculation, [&] { evaluate(calculation); }), 0U) << calculation;
}

TEST_F(FailingHost, isReportedByEveryConversionToHtml) {
    evaluate("Let ( $$note = TextStyleAdd ( \"a¶&\" ; Bold ) & TextColor ( \" b\" ; 255 ) ; 1 )");
    const host::Text styled = evaluate("$$note").value->asText();
    for (const host::Text& text : {styled, host::Text(u"$$note")}) {
        const host::DataVect arguments{std::make_shared<const host::Data>(text),
                                       std::make_shared<const host::Data>(host::Text(u"all")),
                                       std::make_shared<const host::Data>(host::Text(u"color=red\rall")),
                                       std::make_shared<const host::Data>(host::Text(u"all"))};
        const auto function = std::find_if(plugIn.functions().begin(), plugIn.functions().end(),
                                           [](const auto& row) { return row.name == u"Kestrel_GetAsHTML"; });
        ASSERT_NE(function, plugIn.functions().end());
        EXPECT_GT(failInTurn(text.utf8(), [&] { call(*function, arguments); }), 200U);

        const std::string html = result(*function, arguments);
        for (std::uint64_t nth = 1;; ++nth) {
            host::faults().arm(nth, Faults::Kind::unknown, false);
            const std::string answer = result(*function, arguments);
            const bool fired = host::faults().fired();
            host::faults().disarm();
            EXPECT_EQ(answer, fired ? "2400" : html) << nth;
            if (!fired) break;
            EXPECT_EQ(lastError(), "2400 std::exception") << nth;
        }
    }
}

TEST_F(FailingHost, isReportedAsAnErrorOfTheHostWhenEvenReportingFails) {
    const host::RegisteredFunction& function = plugIn.functions().front();
    const host::calc::Environment environment = session.environment(session.front());
    const host::DataVect arguments = argumentsFor(function, host::Data(host::Text(u"long")));
    host::Data result;
    host::faults().arm(1, Faults::Kind::unknown, true);
    EXPECT_NE(plugIn.call(function, host::bridge::out<fmx::ExprEnv>(environment),
                          host::bridge::out<fmx::DataVect>(arguments), host::bridge::out<fmx::Data>(result)),
              0);
}

TEST_F(FailingHost, isReportedInTheLastErrorWhenItFailsOnce) {
    const host::RegisteredFunction& function = plugIn.functions().front();
    host::faults().arm(1, Faults::Kind::badAlloc, false);
    call(function, argumentsFor(function, host::Data(host::Text(u"long"))));
    EXPECT_EQ(lastError(), "2400 std::bad_alloc");
    host::faults().arm(1, Faults::Kind::unknown, false);
    call(function, argumentsFor(function, host::Data(host::Text(u"long"))));
    EXPECT_EQ(lastError(), "2400 std::exception");
}

TEST_F(FailingHost, isBorneByEveryMessage) {
    const auto points = failInTurn("strings", [&] {
        for (const int request : {kFMXT_NameStr, kFMXT_AppConfigStr, kFMXT_OptionsStr})
            plugIn.readString(request);
    });
    EXPECT_GT(points, 0U);
    failInTurn("idle", [&] { plugIn.idle(kFMXT_UserIdle); });
    failInTurn("preferences", [&] { plugIn.preferences(); });
}

TEST_F(FailingHost, isBorneByShutdownAndTheNextStart) {
    const auto points = failInTurn("shutdown and init", [&] {
        plugIn.shutdown();
        host::faults().disarm();
        EXPECT_EQ(plugIn.init(), 60);
        EXPECT_EQ(plugIn.functions().size(), 25U);
    });
    EXPECT_GT(points, 100U);
}

TEST(FailingHostAtStart, leavesNothingRegistered) {
    int refusals = 0;
    for (const Faults::Kind kind : {Faults::Kind::badAlloc, Faults::Kind::unknown})
        for (std::uint64_t nth = 1;; nth += 7) {
            host::Session session;
            session.open(host::Solution{});
            const host::ObjectCounts before = host::objectCounts();
            bool fired = false;
            {
                host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
                host::faults().arm(nth, kind, false);
                const std::int64_t answer = plugIn.init();
                fired = host::faults().fired();
                host::faults().disarm();
                // All or nothing. Withdrawing what an earlier start of the same image left may fail unheard.
                EXPECT_TRUE(answer == 60 || (fired && answer == -2)) << nth << ": " << answer;
                EXPECT_EQ(plugIn.functions().size(), answer == 60 ? 25U : 0U) << nth;
                refusals += answer == -2 ? 1 : 0;
                EXPECT_TRUE(plugIn.misdeeds().empty());
            }
            EXPECT_EQ((host::objectCounts() - before).describe(), "") << nth;
            if (!fired) break;
        }
    EXPECT_GT(refusals, 20);
}

} // namespace
