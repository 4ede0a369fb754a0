#include "host/app/Session.h"

#include "FMWrapper/FMXExtern.h"
#include "host/app/DescriptionReader.h"
#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/calc/Stack.h"
#include "host/dispatch/MainQueue.h"
#include "host/fmwrapper/Bridge.h"
#include "host/scripts/Steps.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

Session* currentSession = nullptr;

/// Identifiers are never used twice in a process, so an object that outlives its session is not mistaken for
/// a part of the next one.
std::uint64_t nextId() {
    static std::uint64_t last = 0;
    return ++last;
}

constexpr std::u16string_view fileExtension = u".fmp12";

} // namespace

Session::Session()
    : id_(nextId()), functions_(std::make_shared<calc::FunctionTable>()),
      topLevel_(std::make_shared<calc::Variables>()), lastError_(std::make_shared<calc::LastError>()) {
    calc::enlargeStack();
    if (currentSession != nullptr) throw std::logic_error("a process has one session at a time");
    currentSession = this;
    setCurrent(this);
}

Session::~Session() {
    // The listeners may no longer exist.
    onScriptCall = onScriptStart = nullptr;
    onScriptEnd = nullptr;
    onScriptError = nullptr;
    onFileClosed = nullptr;
    end();
    setCurrent(nullptr);
    currentSession = nullptr;
}

void Session::end() {
    while (!files_.empty())
        close(files_.back()->id());
    machine_.clear();
    if (!std::exchange(hasEnded_, true))
        for (PlugIn* plugIn : plugInsThatWant(&PlugInOptions::closing))
            plugIn->sessionShutdown();
    mainQueue().clear();
}

Session* Session::current() { return currentSession; }

std::int16_t Session::registerFunction(RegisteredFunction function) {
    PlugIn* plugIn = callingPlugIn();
    return plugIn == nullptr ? std::int16_t{calc::error::unspecific}
                             : plugIn->registerFunction(std::move(function));
}

std::int16_t Session::unregisterFunction(const QuadChar& creator, std::int16_t id) {
    const auto withdraws = [&](PlugIn* plugIn) { return plugIn->unregisterFunction(creator, id); };
    const bool isWithdrawn = std::any_of(plugIns_.begin(), plugIns_.end(), withdraws);
    return static_cast<std::int16_t>(isWithdrawn ? calc::error::none : calc::error::unspecific);
}

std::int16_t Session::registerStep(RegisteredStep step) {
    PlugIn* plugIn = callingPlugIn();
    return plugIn == nullptr ? std::int16_t{calc::error::unspecific} : plugIn->registerStep(std::move(step));
}

std::int16_t Session::unregisterStep(const QuadChar& creator, std::int16_t id) {
    const auto withdraws = [&](PlugIn* plugIn) { return plugIn->unregisterStep(creator, id); };
    const bool isWithdrawn = std::any_of(plugIns_.begin(), plugIns_.end(), withdraws);
    return static_cast<std::int16_t>(isWithdrawn ? calc::error::none : calc::error::unspecific);
}

/// A plug-in may also register from its own timer, while no message runs.
PlugIn* Session::callingPlugIn() const {
    if (auto* plugIn = static_cast<PlugIn*>(WorkOwner::running())) return plugIn;
    return plugIns_.size() == 1 ? plugIns_.front() : nullptr;
}

std::shared_ptr<const RegisteredStep> Session::registeredStep(std::u16string_view name) const {
    const std::u16string wanted = calc::foldName(name);
    for (const PlugIn* plugIn : plugIns_)
        for (const auto& step : plugIn->steps())
            if (calc::foldName(step->name) == wanted) return step;
    return nullptr;
}

StepOutcome Session::runStep(const RegisteredStep& step, const std::vector<StepArgument>& arguments,
                             const calc::Environment& environment) {
    const auto owns = [&step](const PlugIn* plugIn) {
        return std::ranges::any_of(plugIn->steps(), [&](const auto& row) { return row.get() == &step; });
    };
    const auto owner = std::ranges::find_if(plugIns_, owns);
    auto result = std::make_shared<Data>();
    StepOutcome outcome{.error = 0, .message = {}, .result = result};
    try {
        if (owner == plugIns_.end()) throw calc::Error{calc::error::unspecific, "the step is withdrawn"};
        const auto kept = registeredStep(step.name); // the handler may withdraw its own step
        const DataVect values = stepValues(step, arguments);
        outcome.error = (*owner)->call(step, bridge::out<fmx::ExprEnv>(environment),
                                       bridge::out<fmx::DataVect>(values), bridge::out<fmx::Data>(*result));
        const bool isOwnError =
            outcome.error >= calc::error::plugInFirst && outcome.error <= calc::error::plugInLast;
        if (isOwnError) outcome.message = result->asText().utf8();
    } catch (const calc::Error& error) {
        outcome.error = error.code;
        outcome.message = error.message;
    }
    environment.lastError->code = outcome.error;
    if (outcome.error != calc::error::none) environment.lastError->detail = fromUtf8(outcome.message);
    return outcome;
}

void Session::requireSteps() const {
    for (const auto& file : files_)
        for (const Script& script : file->solution().scripts)
            for (const scripts::Step& step : script.steps)
                if (step.row->isOfPlugIn && !registeredStep(step.name))
                    failAt(script.source, step.line, "there is no step \"" + toUtf8(step.name) + "\"");
}

std::uint64_t Session::open(Solution solution) {
    if (find(solution.name)) throw std::runtime_error("a file named " + toUtf8(solution.name) + " is open");
    files_.push_back(std::make_shared<File>(*this, nextId(), std::move(solution)));
    useFrontFormats();
    return files_.back()->id();
}

bool Session::close(std::uint64_t fileId) {
    const auto found = std::find_if(files_.begin(), files_.end(),
                                    [fileId](const auto& file) { return file->id() == fileId; });
    if (found == files_.end()) return false;
    for (PlugIn* plugIn : plugInsThatWant(&PlugInOptions::closing))
        plugIn->fileShutdown(fileId);
    (*found)->markClosed();
    files_.erase(found);
    useFrontFormats();
    if (onFileClosed) onFileClosed(fileId);
    return true;
}

/// Values that are shown outside of a calculation are written as the first file writes them.
void Session::useFrontFormats() const {
    if (!files_.empty())
        setFormats(files_.front()->formats());
    else
        resetFormats();
}

std::vector<std::shared_ptr<File>> Session::files() const { return files_; }

std::shared_ptr<File> Session::front() const { return files_.empty() ? nullptr : files_.front(); }

std::shared_ptr<File> Session::find(std::u16string_view name) const {
    std::u16string wanted = calc::foldName(name);
    if (wanted.ends_with(fileExtension)) wanted.resize(wanted.size() - fileExtension.size());
    for (const auto& file : files_)
        if (calc::foldName(file->name()) == wanted) return file;
    return nullptr;
}

std::shared_ptr<scripts::StageFile> Session::fileNamed(std::u16string_view name) const { return find(name); }

calc::Environment Session::environment(const std::shared_ptr<File>& file) const { return scopeIn(file); }

calc::Environment Session::scopeIn(const std::shared_ptr<scripts::StageFile>& file) const {
    return {.sessionId = id_,
            .fileId = file ? file->id() : 0,
            .file = file,
            .locals = std::make_shared<calc::Variables>(),
            .script = machine_.outside(),
            .lastError = lastError_};
}

calc::Environment Session::topLevel() const {
    calc::Environment environment = this->environment(front());
    environment.locals = topLevel_;
    return environment;
}

calc::Result Session::evaluate(std::u16string_view source) {
    calc::Result result = calc::evaluate(source, topLevel(), functions_);
    result.setLastError(*lastError_);
    return result;
}

ScriptCall Session::callOf(std::u16string_view fileName, std::u16string_view scriptName,
                           DataRef parameter) const {
    ScriptCall call{.fileId = 0,
                    .fileName = std::u16string(fileName),
                    .scriptName = std::u16string(scriptName),
                    .parameter = parameter ? std::move(parameter) : std::make_shared<const Data>(),
                    .depth = machine_.depth() + 1,
                    .during = machine_.currentRun()};
    const std::shared_ptr<File> file = find(fileName);
    if (!file)
        call.error = calc::error::missingFile;
    else if (file->script(scriptName) == nullptr)
        call.error = calc::error::missingScript;
    if (file) call.fileId = file->id();
    return call;
}

int Session::startScript(std::u16string_view fileName, std::u16string_view scriptName, DataRef parameter,
                         unsigned char control) {
    ScriptCall call = callOf(fileName, scriptName, std::move(parameter));
    call.control = control;
    if (call.error == calc::error::none &&
        (call.depth > kMostScriptDepth || machine_.waiting() >= kMostWaitingScripts))
        call.error = calc::error::unavailable;
    if (call.error == calc::error::none) machine_.add(call);
    ++scriptCalls_;
    if (onScriptCall) onScriptCall(call);
    return call.error;
}

std::size_t Session::runWaitingScripts() { return machine_.runWaiting(kMostScriptsPerRun); }

calc::Result Session::runScript(std::u16string_view fileName, std::u16string_view scriptName,
                                DataRef parameter) {
    return machine_.runToEnd(callOf(fileName, scriptName, std::move(parameter)));
}

std::optional<Clock::Micros> Session::untilScriptGoesOn() const {
    const std::optional<Clock::Micros> end = machine_.pausedUntil();
    if (!end) return std::nullopt;
    return std::max(*end - clock().now(), Clock::Micros::zero());
}

std::vector<PlugIn*> Session::plugInsThatWant(bool PlugInOptions::* message) const {
    std::vector<PlugIn*> wanting;
    std::copy_if(plugIns_.begin(), plugIns_.end(), std::back_inserter(wanting),
                 [&](const PlugIn* plugIn) { return plugIn->isEnabled() && plugIn->options().*message; });
    return wanting;
}

void Session::idle(unsigned char level) {
    for (PlugIn* plugIn : plugInsThatWant(&PlugInOptions::idle))
        plugIn->idle(level);
}

std::size_t Session::preferences() {
    const std::vector<PlugIn*> wanting = plugInsThatWant(&PlugInOptions::preferences);
    for (PlugIn* plugIn : wanting)
        plugIn->preferences();
    return wanting.size();
}

Session::Turn Session::turn() {
    Turn turn;
    const std::size_t callsBefore = scriptCalls_;
    turn.blocks = mainQueue().drain();
    idle(machine_.pausedUntil() ? kFMXT_ScriptPaused : kFMXT_UserIdle);
    turn.scripts = runWaitingScripts();
    turn.scriptCalls = scriptCalls_ - callsBefore;
    return turn;
}

} // namespace host
