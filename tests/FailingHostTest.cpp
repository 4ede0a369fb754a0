#include "LoadedPlugIn.h"
#include "RealisticCalls.h"
#include "WebServices.h"

#include "host/dispatch/MainQueue.h"
#include "host/values/Clock.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <gmock/gmock.h>

/// Every host call of every function and message is made to fail in turn, once and from then on, with both
/// errors. No exception may leave the plug-in, no object may leak, and the next ordinary call must work.

namespace {

using host::Faults;
using Point = host::FaultPoint;

struct Row {
    std::string what;
    std::function<void()> action; ///< runs while host calls fail
    bool callsHost = true;        ///< false for a row that makes no host call
    /// The problem after the action, when the host works again; empty when there is none.
    std::function<std::string(const Point&)> trouble = [](const Point&) { return std::string(); };
    std::function<void()> prepare = [] {}; ///< runs before, while the host works
};

constexpr const char* ordinaryCall = R"(Kestrel_SetGlobal ( "k" ; "v" ) & Kestrel_GetGlobal ( "k" ) &
    Kestrel_Version & Kestrel_SetGlobal ( "" ; 1 ))"; // the last part empties the store

class FailingHost : public LoadedPlugIn {
protected:
    FailingHost() {
        host::clock().hold();
        session.close(file);
        file = session.open(host::Solution::load(KESTREL_SOURCE_DIR "/examples/contacts"));
    }
    ~FailingHost() override { host::clock().reset(); }

    /// The problem after a failure at a point; empty when the plug-in handled it.
    std::string troubleAt(const Row& row, Point& point) {
        const host::ObjectCounts before = host::objectCounts();
        const std::size_t escaped = plugIn.violations().size();
        row.prepare();
        point.during(row.action);
        std::string trouble = row.trouble(point);
        if (const std::string next = textOf(ordinaryCall); next != "vv3.1")
            trouble += "; the next call gives " + next;
        if (const auto kept = (host::objectCounts() - before).describe(); !kept.empty())
            trouble += "; kept are " + kept;
        return plugIn.violations().size() == escaped ? trouble : trouble + "; an exception escapes";
    }

    /// Tries a row at each of its host calls. Counts the points tried and the points that the plug-in did not
    /// handle.
    void tryRow(const Row& row, std::uint64_t& points, std::uint64_t& notHandled) {
        const std::uint64_t tried = host::forEachFault([&](Point& point) {
            const std::string trouble = troubleAt(row, point);
            notHandled += trouble.empty() ? 0 : 1;
            EXPECT_EQ(trouble, "") << row.what << ", host call " << point.nth << ", error "
                                   << static_cast<int>(point.mode.kind)
                                   << (point.mode.fromThenOn ? " from then on" : "");
        });
        EXPECT_EQ(tried > 0, row.callsHost) << row.what;
        points += tried;
    }

    /// Calls of each function with as many values of one type as it takes.
    std::vector<Row> functions() {
        std::vector<Row> rows;
        for (const host::RegisteredFunction& function : plugIn.functions())
            for (const host::Data& value :
                 {host::Data(host::Text(u"long")), host::Data(host::Decimal(7)), host::Data(host::Text())}) {
                const int most = function.maximum < 0 ? std::max<int>(function.minimum, 2) : function.maximum;
                const host::DataVect arguments(static_cast<std::size_t>(most),
                                               std::make_shared<const host::Data>(value));
                const auto call = [this, function, arguments] {
                    host::Data ignored;
                    loaded.call(function, arguments, ignored);
                };
                rows.push_back({host::toUtf8(function.name), call, function.name != u"Kestrel_DoBashCmd"});
            }
        return rows;
    }

    /// Calls like those of solutions. A conversion to HTML must be correct or report its failure; when the
    /// report fails as well, the host gets the error. The version never changes the last error.
    std::vector<Row> calculations() {
        std::vector<Row> rows;
        for (const auto& [calculation, expected] : realisticCalls) {
            const auto call = [this, calculation] {
                result = textOf(calculation);
                if (const auto wait = host::mainQueue().untilNext()) host::clock().advance(*wait);
                session.turn();
            };
            const bool reports = std::string_view(calculation).find("AsHTML") != std::string_view::npos;
            const bool records = !std::string_view(calculation).starts_with("Kestrel_Version");
            const auto trouble = [this, expected, reports, records](const Point& point) {
                const std::string error =
                    point.mode.kind == Faults::Kind::badAlloc ? "bad_alloc" : "exception";
                const bool isRight = !point.fired ? result == expected
                                     : !records   ? lastError() == "7 kept"
                                     : !reports   ? true
                                     : point.mode.fromThenOn
                                         ? result == "error 2400"
                                         : result + lastError() == "24002400 std::" + error;
                return isRight ? "" : "; it gives " + result + ", last error " + lastError();
            };
            const auto prepare = [this] {
                evaluate(R"(Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = "kept" ] ; "" ))");
            };
            rows.push_back({calculation, call, true, trouble, prepare});
        }
        return rows;
    }

    /// The start and the shutdown. A start registers all functions or none. The next start after a refused
    /// one, and after any shutdown, succeeds.
    std::vector<Row> starts() {
        const auto trouble = [this](const Point& point) {
            const bool isRefused = point.fired && answer == -2 && plugIn.functions().empty();
            if (isRefused || !plugIn.isEnabled()) answer = plugIn.init();
            const bool isWhole = answer == 60 && plugIn.functions().size() == 25;
            return isWhole ? "" : "; the start gives " + std::to_string(answer);
        };
        return {{"init", [this] { answer = plugIn.init(); }, true, trouble, [this] { plugIn.shutdown(); }},
                {"shutdown", [this] { plugIn.shutdown(); }, true, trouble}};
    }

    /// The other messages, while a script waits. The first level of idle starts the script, or drops it when
    /// the host fails. After every other message it still waits.
    std::vector<Row> messages() {
        std::vector<Row> rows{{"name", [this] { plugIn.readString(kFMXT_NameStr); }},
                              {"description", [this] { plugIn.readString(kFMXT_AppConfigStr); }},
                              {"options", [this] { plugIn.readString(kFMXT_OptionsStr); }, false},
                              {"no such text", [this] { plugIn.readString(kFMXT_HelpURLStr); }, false},
                              {"preferences", [this] { plugIn.preferences(); }, false},
                              {"file shutdown", [this] { plugIn.fileShutdown(file); }, false},
                              {"session shutdown", [this] { plugIn.sessionShutdown(); }, false}};
        for (unsigned char level = kFMXT_UserIdle; level <= kFMXT_Unsafe; ++level)
            rows.push_back({"idle", [this, level] { plugIn.idle(level); }, level == kFMXT_UserIdle});
        for (Row& row : rows) {
            row.prepare = [this] {
                evaluate(R"(Kestrel_DoFileMakerScript ( "Greet" ; "Ada" ; 0 ))");
                host::mainQueue().drain();
            };
            row.trouble = [this, mayLose = row.what == "idle"](const Point& point) {
                const std::size_t run = session.runWaitingScripts() + session.turn().scripts;
                const bool isRight = run == 1 || (mayLose && point.fired && run == 0);
                return isRight ? "" : "; " + std::to_string(run) + " scripts run";
            };
        }
        return rows;
    }

    std::string result;      ///< result of the last calculation
    std::int64_t answer = 0; ///< answer to the last init message
};

TEST_F(FailingHost, isHandledAtEveryPoint) {
    const WebServices services(Behaviour{Behaviour::Kind::answers, realisticAnswer});
    std::uint64_t points = 0, notHandled = 0;
    for (const auto& [name, rows] :
         {std::pair("functions with any values", functions()),
          std::pair("calculations as solutions write them", calculations()),
          std::pair("init and shutdown", starts()), std::pair("the other messages", messages())}) {
        const std::uint64_t before = points;
        for (const Row& row : rows)
            tryRow(row, points, notHandled);
        std::printf("%6ju points  %3zu rows  %s\n", std::uintmax_t{points - before}, rows.size(), name);
    }
    std::printf("%6ju points at which the host failed, %ju not handled\n", std::uintmax_t{points},
                std::uintmax_t{notHandled});
    for (const host::RegisteredFunction& function : plugIn.functions())
        EXPECT_THAT(realisticCalls, testing::Contains(testing::Field(
                                        &RealisticCall::calculation,
                                        testing::ContainsRegex(host::toUtf8(function.name) + "\\b"))));
}

} // namespace
