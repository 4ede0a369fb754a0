#include "host/check/Checks.h"

#include "host/app/File.h"
#include "host/app/Imports.h"
#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/ForEachFault.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/fmwrapper/Versions.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace host::check {

namespace {

/// A session with an empty file, and the plug-in loaded into it, before init.
struct Loaded : LoadedPlugIn {
    explicit Loaded(const Subject& subject)
        : LoadedPlugIn(subject.library, {}, Start::later, subject.announcement) {}

    /// Sends init; gives the answer.
    std::int64_t init(const Subject& subject) {
        return plugIn().init(subject.announcement.version, subject.announcement.application);
    }

    [[nodiscard]] Finding violation() {
        for (const PlugIn::Violation violation : plugIn().violations())
            return violation == PlugIn::Violation::threwFromMessage
                       ? "an exception left the entry point"
                       : "an exception left a function's handler";
        return {};
    }
};

/// The same after init; without ground when the plug-in refuses it.
struct Running : Loaded {
    explicit Running(const Subject& subject) : Loaded(subject) {
        init(subject);
        if (!plugIn().isEnabled()) throw NoGround(plugIn().refusal());
    }
};

/// A function or a script step that can be called.
struct Callable {
    std::string name;
    std::size_t fewest; ///< parameters that it takes at least
    std::function<fmx::errcode(const fmx::ExprEnv&, const fmx::DataVect&, fmx::Data&)> call;
};

/// The same with a function or a step at least.
struct WithCalls : Running {
    explicit WithCalls(const Subject& subject) : Running(subject) {
        PlugIn& loaded = plugIn();
        for (const RegisteredFunction& function : loaded.functions())
            calls.push_back({toUtf8(function.name), static_cast<std::size_t>(function.minimum),
                             [&loaded, function](const fmx::ExprEnv& place, const fmx::DataVect& arguments,
                                                 fmx::Data& result) {
                                 return loaded.call(function, place, arguments, result);
                             }});
        for (const auto& step : loaded.steps())
            calls.push_back({toUtf8(step->name), stepValues(*step, {}).size(),
                             [&loaded, step](const fmx::ExprEnv& place, const fmx::DataVect& arguments,
                                             fmx::Data& result) {
                                 return loaded.call(*step, place, arguments, result);
                             }});
        if (calls.empty()) throw NoGround("no function and no script step is registered");
    }

    void callOnce(const Callable& callable, const DataVect& arguments) {
        const calc::Environment environment = session().environment(session().front());
        Data result;
        callable.call(bridge::out<fmx::ExprEnv>(environment), bridge::out<fmx::DataVect>(arguments),
                      bridge::out<fmx::Data>(result));
    }

    std::vector<Callable> calls;
};

Finding loads(const Subject& subject) {
    Loaded loaded(subject);
    return {};
}

Finding acceptsHost(const Subject& subject) {
    Loaded loaded(subject);
    loaded.init(subject);
    if (!loaded.plugIn().options().problem.empty()) throw NoGround(loaded.plugIn().refusal());
    if (!loaded.plugIn().isEnabled()) return loaded.plugIn().refusal();
    return loaded.violation();
}

/// The functions of the interface that the plug-in needs, and those that it has called by now, must be in the
/// announced version.
Finding callsWhatIsThere(const Subject& subject) {
    Loaded loaded(subject);
    loaded.init(subject);
    std::set<std::string> beyond;
    for (const NewerFunction* row : callsBeyondVersion())
        beyond.emplace(row->name);
    for (const std::string& name : importsOf(subject.library, "FM_")) {
        const NewerFunction* row = newerFunction(name);
        if (row != nullptr && row->since > subject.announcement.version) beyond.insert(name);
    }
    if (beyond.empty()) return {};
    Finding finding = "version " + std::to_string(subject.announcement.version) + " of the host lacks";
    for (const std::string& name : beyond)
        finding += " " + name + " (since " + std::to_string(newerFunction(name)->since) + ")";
    return finding;
}

Finding survivesIdleBeforeInit(const Subject& subject) {
    Loaded loaded(subject);
    if (!readPlugInOptions(loaded.plugIn().readString(kFMXT_OptionsStr).text).idle)
        throw NoGround("the plug-in asks for no idle messages");
    for (const unsigned char level : {0, 1, 2, 3, 4})
        loaded.plugIn().idle(level);
    return loaded.violation();
}

Finding ignoresUnknownMessages(const Subject& subject) {
    Running running(subject);
    for (const unsigned char message : {2, 3, 6, 10, 77, 255}) {
        FMX_ExternCallStruct block{};
        block.extnVersion = PlugIn::currentHostVersion;
        block.whichCall = message;
        block.result = 12345;
        running.plugIn().send(block);
        if (block.result != 12345)
            return "message " + std::to_string(int{message}) + " is unknown and got an answer";
    }
    return running.violation();
}

/// Reads a string. Only the help address may be left out.
Finding readsString(const Subject& subject, int request, const std::string& what) {
    Running running(subject);
    const PlugIn::StringAnswer answer = running.plugIn().readString(request);
    const bool isOptional = request == kFMXT_HelpURLStr;
    if (answer.overrun) return "the " + what + " string is written past the end of the host's buffer";
    if (!answer.answered && !isOptional) return "the " + what + " string is never answered";
    if (answer.text.empty() && !isOptional) return "the " + what + " string is empty";
    return running.violation();
}

Finding answersName(const Subject& subject) { return readsString(subject, kFMXT_NameStr, "name"); }

Finding answersDescription(const Subject& subject) {
    return readsString(subject, kFMXT_AppConfigStr, "description");
}

Finding answersHelp(const Subject& subject) { return readsString(subject, kFMXT_HelpURLStr, "help address"); }

Finding answersOptions(const Subject& subject) {
    Loaded loaded(subject);
    const PlugIn::StringAnswer answer = loaded.plugIn().readString(kFMXT_OptionsStr);
    if (answer.overrun) return "the options string is written past the end of the host's buffer";
    if (!answer.answered) return "the options string is never answered";
    const Finding problem = readPlugInOptions(answer.text).problem;
    return problem.empty() ? loaded.violation() : problem;
}

Finding registersCleanly(const Subject& subject) {
    Running running(subject);
    const std::vector<std::string> refused = refusedRegistrations(running.plugIn());
    return refused.empty() ? running.violation() : refused.front();
}

Finding registersItsCreator(const Subject& subject) {
    WithCalls running(subject);
    const std::u16string options = running.plugIn().readString(kFMXT_OptionsStr).text;
    const auto check = [&options](const auto& row, const std::string& what) -> Finding {
        const auto& bytes = row.creator.bytes;
        if (std::equal(bytes.begin(), bytes.end(), options.begin(), options.begin() + bytes.size()))
            return {};
        return what + std::to_string(row.id) +
               " is registered under another identifier than the options string names";
    };
    Finding finding;
    for (const RegisteredFunction& function : running.plugIn().functions())
        if (finding.empty()) finding = check(function, "function ");
    for (const auto& step : running.plugIn().steps())
        if (finding.empty()) finding = check(*step, "script step ");
    return finding;
}

Finding loadsAgain(const Subject& subject) {
    Finding finding;
    for (int round = 0; round < 3 && finding.empty(); ++round) {
        Running running(subject);
        const PlugInOptions& wants = running.plugIn().options();
        if (wants.idle) running.plugIn().idle(kFMXT_UserIdle);
        if (wants.preferences) running.plugIn().preferences();
        running.plugIn().shutdown();
        finding = running.violation();
    }
    return finding;
}

/// Arguments for a call: the fewest it takes, all of one kind.
std::vector<DataVect> argumentLists(const Callable& callable) {
    std::vector<DataVect> lists;
    for (const Data& value : {Data(Text(u"a")), Data(Text(u"")), Data(Decimal(-1)), Data(Binary{})})
        lists.emplace_back(callable.fewest, std::make_shared<const Data>(value));
    return lists;
}

Finding survivesCalls(const Subject& subject) {
    WithCalls running(subject);
    for (const Callable& callable : running.calls)
        for (const DataVect& arguments : argumentLists(callable)) {
            running.callOnce(callable, arguments);
            if (const Finding finding = running.violation(); !finding.empty())
                return callable.name + ": " + finding;
        }
    return {};
}

Finding givesBack(const Subject& subject) {
    constexpr int rounds = 4;
    WithCalls running(subject);
    for (const Callable& callable : running.calls)
        for (const DataVect& arguments : argumentLists(callable)) {
            running.callOnce(callable,
                             arguments); // what a plug-in keeps for good, it makes at its first call
            const ObjectCounts before = objectCounts();
            for (int round = 0; round < rounds; ++round)
                running.callOnce(callable, arguments);
            const ObjectCounts kept = objectCounts() - before;
            if (kept.total() >= rounds)
                return callable.name + " keeps host objects at each call: " + kept.describe() + " after " +
                       std::to_string(rounds) + " calls";
        }
    return {};
}

Finding survivesAFailingHost(const Subject& subject) {
    constexpr std::uint64_t mostPoints = 2'000;
    WithCalls running(subject);
    Finding finding;
    for (const Callable& callable : running.calls) {
        const DataVect arguments = argumentLists(callable).front();
        forEachFault([&](FaultPoint& point) {
            point.fired = false;
            if (point.nth > mostPoints || !finding.empty()) return;
            const ObjectCounts before = objectCounts();
            point.during([&] { running.callOnce(callable, arguments); });
            finding = running.violation();
            if (const ObjectCounts kept = objectCounts() - before; finding.empty() && kept.total() > 0)
                finding = "it keeps " + kept.describe();
            if (!finding.empty())
                finding.insert(0,
                               callable.name + ", when host call " + std::to_string(point.nth) + " fails: ");
        });
    }
    return finding;
}

constexpr std::string_view kWithinBuffer =
    "Answer message 7 with a zero-terminated text of at most parm3 units, its zero included.";
constexpr std::array table{
    Check{1, "loads", "the library loads and has the entry point FMExternCallProc",
          "Link all that the library needs, and export FMExternCallProc with C linkage.", "", loads},
    Check{1, "known-calls", "every function of the host that it calls is in the announced version",
          "Look newer functions up at run time when init announces a version that has them, or refuse the "
          "version.",
          "", callsWhatIsThere},
    Check{2, "options-string", "the options are answered, 11 characters in the host's layout",
          "Answer string 131 with the identifier, 1, and a Y or n for each of the six options.", "",
          answersOptions},
    Check{2, "accepts-host", "init accepts a current host",
          "Answer init with the version of the interface that the plug-in implements.", "", acceptsHost},
    Check{2, "idle-before-init", "idle messages before init do no harm",
          "Do nothing in idle messages until init has come.", "", survivesIdleBeforeInit},
    Check{2, "unknown-messages", "messages that do not exist get no answer",
          "Leave the call block unchanged for a message that the plug-in does not know.", "",
          ignoresUnknownMessages},
    Check{2, "name-string", "the name is answered within the buffer", kWithinBuffer, "", answersName},
    Check{2, "description-string", "the description is answered within the buffer", kWithinBuffer, "",
          answersDescription},
    Check{2, "help-string", "the help address stays within the buffer", kWithinBuffer, "", answersHelp},
    Check{
        3, "registers-cleanly", "every registration is one the host can accept",
        "Give each function and step an identifier and a name of its own, and look at what the call answers.",
        "", registersCleanly},
    Check{3, "one-creator", "functions and steps are registered under the options string's identifier",
          "Register under the four characters with which the options string begins.", "",
          registersItsCreator},
    Check{3, "loads-again", "load, use, shutdown and unload work three times over",
          "Withdraw at shutdown what init has registered, and free what it has made.", "", loadsAgain},
    Check{4, "survives-calls", "no exception leaves a function or step, with any arguments",
          "Catch every exception in the handler, and test arguments before they are used.", "",
          survivesCalls},
    Check{4, "gives-back", "a call gives back every host object",
          "Keep host objects in their owner classes, which give them back.", "survives-calls", givesBack},
    Check{5, "failing-host", "each host call of each function may fail: nothing escapes, nothing is kept",
          "Expect std::bad_alloc and std::exception from every call of the host, and own objects before the "
          "next "
          "call.",
          "gives-back", survivesAFailingHost},
};

} // namespace

std::span<const Check> checks() { return table; }

} // namespace host::check
