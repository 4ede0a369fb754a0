#include "host/cli/Runner.h"

#include "host/app/File.h"
#include "host/cli/Explanation.h"
#include "host/cli/Output.h"
#include "host/data/Position.h"
#include "host/dispatch/MainQueue.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

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

const std::filesystem::path& SessionOptions::library() const {
    if (plugIn.empty()) throw std::runtime_error("no plug-in is named: --plugin FILE, or KESTREL_PLUGIN");
    return plugIn;
}

void addPlugInOption(CLI::App& command, SessionOptions& options) {
    if (const char* plugIn = std::getenv("KESTREL_PLUGIN")) options.plugIn = plugIn;
    command.add_option("--plugin", options.plugIn, "the plug-in's library")->type_name("FILE");
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
    loaded_ =
        std::make_unique<LoadedPlugIn>(options.library(), loadSolutions(options), LoadedPlugIn::Start::later);
    watchScripts();
    goTo(session(), options.layout, options.record);
    loaded_->start();
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

bool Runner::print(const calc::Result& result, const Calculation& calculation) {
    if (result.error == calc::error::none) {
        const std::string type(typeWord(result.value->nativeType())), text = utf8(result.value);
        if (json_)
            writeJson({{"type", type}, {"text", text}, {"error", 0}});
        else
            writeLine((showsTypes_ ? "[" + type + "] " : "") + shown(text));
        return true;
    }
    const Explanation explanation = explain(result, fromUtf8(calculation.text), session().functions());
    if (json_) {
        nlohmann::ordered_json object{{"type", ""}, {"text", ""}};
        addTo(object, explanation);
        writeJson(object);
    }
    if (calc::areCalculationsStopped()) reportRaw("\n"); // behind the terminal's ^C
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
