#include "host/cli/Runner.h"

#include "host/app/File.h"
#include "host/cli/Explanation.h"
#include "host/cli/Output.h"
#include "host/data/Position.h"
#include "host/dispatch/MainQueue.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <nlohmann/json.hpp>
#include <thread>
#include <utility>

namespace host::cli {

namespace {

void chooseNativeEncoding(const std::string& name) {
    constexpr std::array<std::pair<std::string_view, Encoding>, 5> names{
        {{"macintosh", Encoding::asciiMac},
         {"utf-8", Encoding::utf8},
         {"iso-8859-1", Encoding::iso8859_1},
         {"windows-1252", Encoding::asciiWindows},
         {"shift-jis", Encoding::shiftJisMac}}};
    if (name.empty()) return;
    for (const auto& [known, encoding] : names)
        if (known == name) return setNativeEncoding(encoding);
    throw std::runtime_error("no native encoding is called " + name);
}

/// The application that init announces; throws std::runtime_error for an unknown name.
FMX_UChar applicationNamed(const std::string& name) {
    constexpr std::array<std::string_view, 8> names{"developer", "pro",    "runtime", "server",
                                                    "web",       "mobile", "xdbc",    "sase"};
    const auto* found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) throw std::runtime_error("no application is called " + name);
    return static_cast<FMX_UChar>(found - names.begin());
}

std::string utf8(const DataRef& value) { return value ? value->asText().utf8() : std::string(); }

/// The beginning of every object that is about a script.
nlohmann::ordered_json scriptObject(const ScriptCall& call) {
    return {{"script", toUtf8(call.scriptName)}, {"file", toUtf8(call.fileName)}};
}

/// `script "Greet" of "Contacts"`
std::string scriptInWords(const ScriptCall& call) {
    return "script \"" + toUtf8(call.scriptName) + "\" of \"" + toUtf8(call.fileName) + "\"";
}

void writeScriptCall(const ScriptCall& call) {
    nlohmann::ordered_json object = scriptObject(call);
    object["parameter"] = utf8(call.parameter);
    object["error"] = call.error;
    writeJson(object);
}

} // namespace

std::vector<std::filesystem::path> SessionOptions::libraries() const {
    const char* const usual = std::getenv("KESTREL_PLUGIN");
    std::vector<std::filesystem::path> libraries = plugIns;
    if (libraries.empty()) libraries.emplace_back(usual == nullptr ? "" : usual);
    if (libraries.front().empty())
        throw std::runtime_error("no plug-in is named: --plugin FILE, or KESTREL_PLUGIN");
    return libraries;
}

void addPlugInOption(CLI::App& command, SessionOptions& options) {
    command.add_option("--plugin", options.plugIns, "a plug-in's library; repeat it for more plug-ins")
        ->type_name("FILE")
        ->allow_extra_args(false);
    command
        .add_option("--host-version", options.announcement.version,
                    "the version of the interface that the host announces")
        ->type_name("N")
        ->check(CLI::Range(int{kMinExtnVersion}, int{kMaxExtnVersion}, ""))
        ->group("Testing");
    command
        .add_option_function<std::string>(
            "--application",
            [&options](const std::string& name) {
                options.announcement.application = applicationNamed(name);
            },
            "the application that the host announces: developer, pro, runtime, server, web, mobile, xdbc or "
            "sase")
        ->type_name("NAME")
        ->group("Testing");
}

void addSessionOptions(CLI::App& command, SessionOptions& options) {
    addPlugInOption(command, options);
    command.add_option("--solution", options.solutions, "a solution's folder; the first one calculates")
        ->type_name("DIR")
        ->allow_extra_args(false);
    command.add_option("--layout", options.layout, "the layout to calculate at; the first one when absent")
        ->type_name("NAME");
    command.add_option("--record", options.record, "the number of the record to calculate with, from 1")
        ->type_name("N");
    command.add_option("--clock", options.clockSeconds, "hold the clock at SECONDS since 1970")
        ->type_name("SECONDS")
        ->group("Testing");
    command
        .add_option("--native", options.nativeEncoding,
                    "the native encoding: macintosh, utf-8, iso-8859-1, windows-1252 or shift-jis")
        ->type_name("NAME")
        ->group("Testing");
}

void prepareMachine(const SessionOptions& options) {
    chooseNativeEncoding(options.nativeEncoding);
    if (!options.clockSeconds) return;
    clock().hold();
    clock().set(std::chrono::seconds(*options.clockSeconds));
}

std::vector<Solution> loadSolutions(const SessionOptions& options) {
    std::vector<Solution> solutions;
    std::transform(options.solutions.begin(), options.solutions.end(), std::back_inserter(solutions),
                   Solution::load);
    return solutions;
}

void goTo(Session& session, const std::string& layout, std::optional<std::int64_t> record) {
    const std::shared_ptr<File> file = session.front();
    if (!file) return;
    if (!layout.empty() && file->position().goToLayout(fromUtf8(layout)) != calc::error::none)
        throw std::runtime_error("no layout is called " + layout);
    if (record && file->position().goToRecord(*record) != calc::error::none)
        throw std::runtime_error("there is no record " + std::to_string(*record) + "; the found set has " +
                                 std::to_string(file->position().found().size()));
}

Runner::Runner(const SessionOptions& options) : json_(options.json), isTraced_(options.trace) {
    prepareMachine(options);
    loaded_ = std::make_unique<LoadedPlugIn>(options.libraries(), loadSolutions(options),
                                             LoadedPlugIn::Start::later, options.announcement);
    watchScripts();
    goTo(session(), options.layout, options.record);
    loaded_->start();
    for (const auto& plugIn : loaded_->plugIns())
        for (const std::string& refused : refusedRegistrations(*plugIn))
            report(plugIn->path().string() + ": " + refused);
}

void Runner::watchScripts() {
    if (json_) session().onScriptCall = writeScriptCall;
    session().onScriptError = [this](const ScriptError& failure) { reportScriptError(failure); };
    session().onScriptStart = [this](const ScriptCall& call) {
        if (!isTraced_) return;
        if (!json_)
            return report(scriptInWords(call) + " starts, parameter \"" + utf8(call.parameter) + "\"");
        nlohmann::ordered_json object = scriptObject(call);
        object["event"] = "start";
        object["parameter"] = utf8(call.parameter);
        writeJson(object);
    };
    session().onScriptEnd = [this](const ScriptCall& call, const calc::Result& result) {
        if (!isTraced_) return;
        const std::string text = result.error == calc::error::none ? utf8(result.value) : std::string();
        if (!json_) return report(scriptInWords(call) + " ends, result \"" + text + "\"");
        nlohmann::ordered_json object = scriptObject(call);
        object["event"] = "end";
        object["result"] = text;
        writeJson(object);
    };
}

void Runner::reportScriptError(const ScriptError& failure) {
    if (!failure.isCaptured) ++scriptErrors_;
    if (failure.isCaptured && !isTraced_) return;
    const Explanation explanation = explain(failure.result, failure.source, session().functions());
    const bool isStep = !failure.step.empty();
    const std::string step = toUtf8(failure.step), place = std::to_string(failure.place);
    if (json_) {
        nlohmann::ordered_json object = scriptObject(failure.call);
        object["event"] = "error";
        object[isStep ? "scriptLine" : "calculation"] = failure.place;
        if (isStep) object["step"] = step;
        addTo(object, explanation);
        writeJson(object);
    }
    const std::string where = isStep ? ", line " + place + ", " + step : ", calculation " + place;
    reportRaw("kestrel: " + textOf(explanation, scriptInWords(failure.call) + where + ": "));
}

bool Runner::evaluateAndPrint(const Calculation& calculation) {
    return print(session().evaluate(fromUtf8(calculation.text)), calculation);
}

void Runner::printValue(const Data& value, const calc::ExternalError& external) {
    const std::string type(typeWord(value.nativeType())), text = value.asText().utf8();
    if (json_) {
        nlohmann::ordered_json object{{"type", type}, {"text", text}, {"error", 0}};
        if (external.code != 0) object["plugInError"] = external.code;
        if (!external.detail.empty()) object["detail"] = toUtf8(external.detail);
        writeJson(object);
    } else {
        writeLine((showsTypes_ ? "[" + type + "] " : "") + shown(text));
    }
    if (external.code == 0) return;
    report(toUtf8(external.function) + " answers error " + std::to_string(external.code) +
           (external.detail.empty() ? "" : ": " + toUtf8(external.detail)));
}

bool Runner::runAndPrint(const Step& step) {
    const auto found = session().registeredStep(fromUtf8(step.name));
    if (!found) throw std::runtime_error("no plug-in has a script step \"" + step.name + "\"");
    std::vector<StepArgument> arguments;
    for (const std::string& text : step.parameters) {
        const std::u16string argument = fromUtf8(text);
        const auto [parameter, calculation] = splitLabel(*found, argument);
        const calc::Result result = session().evaluate(calculation);
        if (result.error != calc::error::none)
            return print(result, {.text = toUtf8(calculation), .file = step.name});
        arguments.push_back(
            {.label = parameter == nullptr ? std::u16string() : parameter->label, .value = result.value});
    }
    const StepOutcome outcome = session().runStep(*found, arguments, session().topLevel());
    if (outcome.error == calc::error::none) {
        printValue(*outcome.result, {});
        return true;
    }
    if (json_)
        writeJson({{"type", ""}, {"text", ""}, {"error", outcome.error}, {"message", outcome.message}});
    const std::string message =
        outcome.message.empty() ? std::string(calc::errorMessage(outcome.error)) : outcome.message;
    report("step \"" + step.name + "\": error " + std::to_string(outcome.error) + ": " + message);
    return false;
}

bool Runner::print(const calc::Result& result, const Calculation& calculation) {
    if (result.error == calc::error::none) {
        printValue(*result.value, result.external);
        return true;
    }
    const Explanation explanation = explain(result, fromUtf8(calculation.text), session().functions());
    if (json_) {
        nlohmann::ordered_json object{{"type", ""}, {"text", ""}};
        addTo(object, explanation);
        writeJson(object);
    }
    if (calc::areCalculationsStopped()) reportRaw("\n"); // after the terminal's ^C
    std::string where = calculation.file;
    if (!where.empty() && explanation.place) where += ", line " + std::to_string(explanation.place->line);
    reportRaw("kestrel: " + textOf(explanation, where.empty() ? where : where + ": "));
    return false;
}

bool Runner::turn() {
    // A plug-in that queues work of its own in a block serves it in idle messages, perhaps one thing each; it
    // cannot be asked. So there is an idle message for every block, and another after each that did
    // something.
    const Session::Turn turn = session().turn();
    idleMessagesOwed_ += turn.blocks;
    if (idleMessagesOwed_ > 0) --idleMessagesOwed_;
    isBusy_ = turn.blocks + turn.scriptCalls + turn.scripts + idleMessagesOwed_ > 0;
    return isBusy_;
}

void Runner::turnTraced() {
    const bool before = std::exchange(isTraced_, true);
    turn();
    isTraced_ = before;
}

std::chrono::milliseconds Runner::rest() const {
    using std::chrono::milliseconds;
    constexpr milliseconds shortest{1}, longest{250};
    if (isBusy_) return milliseconds::zero();
    std::optional<Clock::Micros> next = mainQueue().untilNext();
    if (const auto script = loaded_->session().untilScriptGoesOn())
        next = std::min(next.value_or(*script), *script);
    // A clock that is held brings no delay to its end.
    if (!next || clock().isHeld()) return longest;
    return std::clamp(std::chrono::ceil<milliseconds>(*next), shortest, longest);
}

void Runner::serve(std::chrono::duration<double> most, std::chrono::duration<double> idleAfter) {
    using RealClock = std::chrono::steady_clock;
    const auto began = RealClock::now();
    const auto restBefore = [this, began](std::chrono::duration<double> end) {
        const std::chrono::duration<double> left = end - (RealClock::now() - began);
        if (left.count() > 0)
            std::this_thread::sleep_for(std::min<std::chrono::duration<double>>(rest(), left));
        return left.count() > 0;
    };
    while (restBefore(idleAfter))
        idleMessagesOwed_ += mainQueue().drain();
    while (true) {
        const bool isBusy = turn();
        const bool waits = mainQueue().pending() > 0 || session().untilScriptGoesOn();
        const bool isWaiting = waits && !clock().isHeld();
        if ((!isBusy && !isWaiting) || !restBefore(most)) return;
    }
}

} // namespace host::cli
