#include "host/check/Checks.h"

#include "host/app/File.h"
#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Encoding.h"

#include <array>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace host::check {

namespace {

using std::filesystem::path;

/// A session with an empty file, and the plug-in loaded into it, before init.
struct Loaded : LoadedPlugIn {
    explicit Loaded(const path& library) : LoadedPlugIn(library, {}, Start::later) {}

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
    explicit Running(const path& library) : Loaded(library) {
        if (const std::int64_t answer = plugIn().init(); !plugIn().isEnabled())
            throw NoGround("init was answered with " + std::to_string(answer));
    }
};

/// The same with a function at least.
struct WithFunctions : Running {
    explicit WithFunctions(const path& library) : Running(library) {
        if (plugIn().functions().empty()) throw NoGround("no function is registered");
    }
};

Finding loads(const path& library) {
    Loaded loaded(library);
    return {};
}

Finding acceptsHost(const path& library) {
    Loaded loaded(library);
    const std::int64_t answer = loaded.plugIn().init();
    if (answer == kBadExtnVersion) return "init refuses the host's version (answer -1)";
    if (answer == kDoNotEnable) return "init asks not to be enabled (answer -2)";
    if (answer < kMinExtnVersion || answer > kMaxExtnVersion)
        return "init answers " + std::to_string(answer) + ", which is no version from " +
               std::to_string(int{kMinExtnVersion}) + " to " + std::to_string(int{kMaxExtnVersion});
    return loaded.violation();
}

Finding bearsIdleBeforeInit(const path& library) {
    Loaded loaded(library);
    for (const unsigned char level : {0, 1, 2, 3, 4})
        loaded.plugIn().idle(level);
    return loaded.violation();
}

Finding ignoresUnknownMessages(const path& library) {
    Running running(library);
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

Finding readsString(const path& library, int request, const std::string& what, PlugIn::StringAnswer& answer) {
    Running running(library);
    answer = running.plugIn().readString(request);
    if (answer.overrun) return "the " + what + " string is written past the end of the host's buffer";
    if (!answer.answered) return "the " + what + " string is never answered";
    if (answer.text.empty()) return "the " + what + " string is empty";
    return running.violation();
}

Finding answersName(const path& library) {
    PlugIn::StringAnswer answer;
    return readsString(library, kFMXT_NameStr, "name", answer);
}

Finding answersDescription(const path& library) {
    PlugIn::StringAnswer answer;
    return readsString(library, kFMXT_AppConfigStr, "description", answer);
}

Finding answersOptions(const path& library) {
    PlugIn::StringAnswer answer;
    Finding finding = readsString(library, kFMXT_OptionsStr, "options", answer);
    if (!finding.empty()) return finding;
    if (answer.text.size() != 11) return "the options string has not 11 characters";
    if (answer.text[4] != u'1') return "the options string's fifth character is not 1";
    for (const char16_t flag : answer.text.substr(5))
        if (flag != u'Y' && flag != u'n') return "the options string has a flag that is neither Y nor n";
    return {};
}

Finding registersCleanly(const path& library) {
    Running running(library);
    if (!running.plugIn().refusedRegistrations().empty())
        return "the registration of function " +
               std::to_string(running.plugIn().refusedRegistrations().front()) +
               " was refused (taken, or its name, prototype or counts make no sense)";
    return running.violation();
}

Finding registersItsCreator(const path& library) {
    WithFunctions running(library);
    const std::u16string options = running.plugIn().readString(kFMXT_OptionsStr).text;
    for (const RegisteredFunction& function : running.plugIn().functions())
        for (std::size_t i = 0; i < function.creator.bytes.size(); ++i)
            if (i >= options.size() || options[i] != function.creator.bytes[i])
                return "function " + std::to_string(function.id) +
                       " is registered under another creator than the options string names";
    return {};
}

Finding loadsAgain(const path& library) {
    Finding finding;
    for (int round = 0; round < 3 && finding.empty(); ++round) {
        Running running(library);
        running.plugIn().idle(0);
        running.plugIn().preferences();
        running.plugIn().shutdown();
        running.plugIn().idle(0);
        finding = running.violation();
    }
    return finding;
}

/// Arguments a function is called with: the fewest it takes, all of one kind.
std::vector<DataVect> argumentLists(const RegisteredFunction& function) {
    std::vector<DataVect> lists;
    for (const Data& value : {Data(Text(u"a")), Data(Text(u"")), Data(Decimal(-1)), Data(Binary{})})
        lists.emplace_back(static_cast<std::size_t>(function.minimum), std::make_shared<const Data>(value));
    return lists;
}

void callOnce(Running& running, const RegisteredFunction& function, const DataVect& arguments) {
    const calc::Environment environment = running.session().environment(running.session().front());
    Data result;
    running.plugIn().call(function, bridge::out<fmx::ExprEnv>(environment),
                          bridge::out<fmx::DataVect>(arguments), bridge::out<fmx::Data>(result));
}

Finding bearsCalls(const path& library) {
    WithFunctions running(library);
    for (const RegisteredFunction& function : running.plugIn().functions())
        for (const DataVect& arguments : argumentLists(function)) {
            callOnce(running, function, arguments);
            if (const Finding finding = running.violation(); !finding.empty())
                return toUtf8(function.name) + ": " + finding;
        }
    return {};
}

Finding givesBack(const path& library) {
    constexpr int rounds = 4;
    WithFunctions running(library);
    for (const RegisteredFunction& function : running.plugIn().functions())
        for (const DataVect& arguments : argumentLists(function)) {
            callOnce(running, function,
                     arguments); // what a plug-in keeps for good, it makes at its first call
            const ObjectCounts before = objectCounts();
            for (int round = 0; round < rounds; ++round)
                callOnce(running, function, arguments);
            const ObjectCounts kept = objectCounts() - before;
            if (kept.total() >= rounds)
                return toUtf8(function.name) + " keeps host objects at each call: " + kept.describe() +
                       " after " + std::to_string(rounds) + " calls";
        }
    return {};
}

/// Calls a function with each of its host calls failing in turn.
Finding callsUnderFaults(Running& running, const RegisteredFunction& function, const DataVect& arguments,
                         Faults::Kind kind, bool fromThenOn) {
    constexpr std::uint64_t mostPoints = 2'000;
    for (std::uint64_t nth = 1; nth <= mostPoints; ++nth) {
        const ObjectCounts before = objectCounts();
        faults().arm(nth, kind, fromThenOn);
        callOnce(running, function, arguments);
        const bool fired = faults().fired();
        faults().disarm();
        Finding finding = running.violation();
        if (const ObjectCounts kept = objectCounts() - before; finding.empty() && kept.total() > 0)
            finding = "it keeps " + kept.describe();
        if (!finding.empty())
            return toUtf8(function.name) + ", when host call " + std::to_string(nth) + " fails: " + finding;
        if (!fired) return {};
    }
    return {};
}

Finding bearsAFailingHost(const path& library) {
    WithFunctions running(library);
    for (const RegisteredFunction& function : running.plugIn().functions())
        for (const Faults::Kind kind : {Faults::Kind::badAlloc, Faults::Kind::unknown})
            for (const bool fromThenOn : {false, true})
                if (Finding finding = callsUnderFaults(running, function, argumentLists(function).front(),
                                                       kind, fromThenOn);
                    !finding.empty())
                    return finding;
    return {};
}

constexpr std::array table{
    Check{1, "loads", "the library loads and has the entry point FMExternCallProc", loads},
    Check{2, "accepts-host", "init accepts a current host", acceptsHost},
    Check{2, "idle-before-init", "idle messages before init are borne", bearsIdleBeforeInit},
    Check{2, "unknown-messages", "messages that do not exist get no answer", ignoresUnknownMessages},
    Check{2, "name-string", "the name is answered within the buffer", answersName},
    Check{2, "description-string", "the description is answered within the buffer", answersDescription},
    Check{2, "options-string", "the options are answered, 11 characters in the host's layout",
          answersOptions},
    Check{3, "registers-cleanly", "every registration is one the host can accept", registersCleanly},
    Check{3, "one-creator", "functions are registered under the options string's creator",
          registersItsCreator},
    Check{3, "loads-again", "load, use, shutdown and unload work three times over", loadsAgain},
    Check{4, "bears-calls", "no exception leaves a function, whatever its arguments", bearsCalls},
    Check{4, "gives-back", "a call gives back every host object", givesBack},
    Check{5, "failing-host", "each host call of each function may fail: nothing escapes, nothing is kept",
          bearsAFailingHost},
};

} // namespace

std::span<const Check> checks() { return table; }

} // namespace host::check
