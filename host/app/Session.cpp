#include "host/app/Session.h"

#include "FMWrapper/FMXExtern.h"
#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/calc/Stack.h"
#include "host/dispatch/MainQueue.h"
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
      topLevel_(std::make_shared<calc::Variables>()), lastError_(std::make_shared<int>(0)) {
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
        for (PlugIn* plugIn : enabledPlugIns())
            plugIn->sessionShutdown();
    mainQueue().clear();
}

Session* Session::current() { return currentSession; }

std::int16_t Session::registerFunction(RegisteredFunction function) {
    if (auto* plugIn = static_cast<PlugIn*>(WorkOwner::running()))
        return plugIn->registerFunction(std::move(function));
    // A plug-in may also register from its own timer, while no message runs.
    if (plugIns_.size() != 1) return calc::error::unspecific;
    return plugIns_.front()->registerFunction(std::move(function));
}

std::int16_t Session::unregisterFunction(const QuadChar& creator, std::int16_t id) {
    const auto withdraws = [&](PlugIn* plugIn) { return plugIn->unregisterFunction(creator, id); };
    const bool isWithdrawn = std::any_of(plugIns_.begin(), plugIns_.end(), withdraws);
    return static_cast<std::int16_t>(isWithdrawn ? calc::error::none : calc::error::unspecific);
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
    for (PlugIn* plugIn : enabledPlugIns())
        plugIn->fileShutdown(fileId);
    (*found)->markClosed();
    files_.erase(found);
    useFrontFormats();
    if (onFileClosed) onFileClosed(fileId);
    return true;
}

/// Values that are shown outside of a calculation are written as the front file writes them.
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

calc::Environment Session::environment(const std::shared_ptr<File>& file) const {
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
    *lastError_ = result.error;
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

std::vector<PlugIn*> Session::enabledPlugIns() const {
    std::vector<PlugIn*> enabled;
    std::copy_if(plugIns_.begin(), plugIns_.end(), std::back_inserter(enabled),
                 [](const PlugIn* plugIn) { return plugIn->isEnabled(); });
    return enabled;
}

void Session::idle(unsigned char level) {
    for (PlugIn* plugIn : enabledPlugIns())
        plugIn->idle(level);
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
