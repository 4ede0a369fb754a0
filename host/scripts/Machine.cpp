#include "host/scripts/Machine.h"

#include "FMWrapper/FMXExtern.h"
#include "host/data/Position.h"
#include "host/scripts/StepRun.h"
#include "host/scripts/Steps.h"
#include "host/scripts/TransactionSteps.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace host::scripts {

namespace {

calc::Result resultOf(DataRef value) {
    return {.error = calc::error::none, .value = std::move(value), .problem = {}};
}

DataRef emptyValue() {
    static const DataRef empty = std::make_shared<const Data>();
    return empty;
}

calc::Result failureOf(int code, std::string message = {}) {
    calc::Result result{.error = code, .value = emptyValue(), .problem = {}};
    result.problem.message = std::move(message);
    return result;
}

} // namespace

/// Marks that a script runs. An exception ends all of them.
class Machine::Running {
public:
    explicit Running(Machine& machine) : machine_(machine), exceptions_(std::uncaught_exceptions()) {
        machine.isRunning_ = true;
    }
    ~Running() {
        machine_.isRunning_ = false;
        if (std::uncaught_exceptions() > exceptions_) machine_.runs_.clear();
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    Machine& machine_;
    int exceptions_;
};

std::size_t Machine::runWaiting(std::size_t most) {
    if (isRunning_) return 0;
    const Running running(*this);
    std::size_t count = 0;
    while (true) {
        std::deque<ScriptCall>* calls = count < most ? nextCalls() : nullptr;
        if (calls != nullptr)
            count += begin(*calls) ? 1U : 0U;
        else if (canGoOn())
            goOn();
        else
            return count;
    }
}

calc::Result Machine::runToEnd(ScriptCall call) {
    if (isRunning_) return failureOf(calc::error::unavailable);
    if (call.error != calc::error::none) return failureOf(call.error);
    const std::shared_ptr<StageFile> file = stage_.fileNamed(call.fileName);
    const Script& script = *file->script(call.scriptName);
    const Running running(*this);
    pushRun();
    const std::uint64_t run = currentRun();
    push(file, script, std::move(call), Frame::Origin::start);
    while (has(run)) {
        std::deque<ScriptCall>* calls = nextCalls();
        if (calls != nullptr && calls->front().during != 0)
            begin(*calls);
        else if (canGoOn())
            goOn();
        else if (runs_.back().isSuspended)
            break;
        else
            restWhilePaused();
    }
    return resultOf(endedRun_ == run ? outside_->result : emptyValue());
}

void Machine::add(ScriptCall call) { (call.during == 0 ? waiting_ : duringRuns_).push_back(std::move(call)); }

void Machine::clear() {
    waiting_.clear();
    duringRuns_.clear();
    runs_.clear();
}

std::size_t Machine::depth() const {
    return isRunning_ && !runs_.empty() ? runs_.back().frames.back().call.depth : 0;
}

std::optional<Clock::Micros> Machine::pausedUntil() const {
    if (runs_.empty() || runs_.back().isSuspended) return std::nullopt;
    return runs_.back().frames.back().pausedUntil;
}

bool Machine::canGoOn() const {
    if (runs_.empty() || runs_.back().isSuspended) return false;
    const std::optional<Clock::Micros> end = pausedUntil();
    return !end || clock().now() >= *end || calc::areCalculationsStopped();
}

bool Machine::has(std::uint64_t run) const {
    return std::any_of(runs_.begin(), runs_.end(), [run](const Run& each) { return each.id == run; });
}

/// The calls of which the first may begin now; null for none. One that was made during the current run acts
/// on it between two steps; a list of calculations is not interrupted.
std::deque<ScriptCall>* Machine::nextCalls() {
    const bool goesOn = canGoOn();
    const bool isInterrupted = !duringRuns_.empty() && duringRuns_.front().during == currentRun() &&
                               !(goesOn && runs_.back().frames.back().script->steps.empty());
    if (isInterrupted) return &duringRuns_;
    if (goesOn) return nullptr;
    if (!waiting_.empty()) return &waiting_;
    return duringRuns_.empty() ? nullptr : &duringRuns_;
}

bool Machine::begin(std::deque<ScriptCall>& calls) {
    ScriptCall call = std::move(calls.front());
    calls.pop_front();
    const std::shared_ptr<StageFile> file = stage_.fileNamed(call.fileName);
    const Script* script = file && file->id() == call.fileId ? file->script(call.scriptName) : nullptr;
    if (script == nullptr) return false;
    makeRoom(call);
    push(file, *script, std::move(call), Frame::Origin::start);
    return true;
}

/// Ends or suspends what runs as the call's control says, and makes a new run unless the current one goes on
/// after the new script.
void Machine::makeRoom(const ScriptCall& call) {
    if (runs_.empty() || currentRun() != call.during) return pushRun();
    Run& current = runs_.back();
    if (call.control == kFMXT_Exit || call.control == kFMXT_Resume) {
        current.isSuspended = false;
        if (call.control == kFMXT_Exit) popFrame(resultOf(emptyValue()));
        return;
    }
    if (call.control == kFMXT_Pause)
        current.isSuspended = true;
    else
        haltAll();
    pushRun();
}

void Machine::pushRun() {
    Run& run = runs_.emplace_back();
    run.id = ++lastRun_;
    run.lastError = std::make_shared<calc::LastError>();
}

void Machine::push(const std::shared_ptr<StageFile>& file, const Script& script, ScriptCall call,
                   Frame::Origin origin) {
    Run& run = runs_.back();
    auto state = std::make_shared<calc::ScriptFrame>();
    state->name = script.name;
    state->parameter = call.parameter;
    state->result = emptyValue();
    if (origin == Frame::Origin::subScript) {
        state->capturesErrors = top().state->capturesErrors;
        state->allowsAbort = top().state->allowsAbort;
    }
    calc::Environment scope = stage_.scopeIn(file);
    scope.script = state;
    scope.lastError = run.lastError;
    run.frames.push_back({.file = file,
                          .script = &script,
                          .call = std::move(call),
                          .state = std::move(state),
                          .scope = std::move(scope),
                          .origin = origin,
                          .last = resultOf(emptyValue()),
                          .originalLayout = file->position().layout()});
    if (stage_.onScriptStart) stage_.onScriptStart(top().call);
}

void Machine::perform(const std::shared_ptr<StageFile>& file, const Script& script, DataRef parameter) {
    if (runs_.back().frames.size() >= kMostFrames)
        throw calc::Error{calc::error::unavailable, "too many scripts call each other"};
    push(file, script,
         {.fileId = file->id(),
          .fileName = file->name(),
          .scriptName = script.name,
          .parameter = std::move(parameter),
          .depth = top().call.depth},
         Frame::Origin::subScript);
}

/// The script ends; what called it goes on.
void Machine::popFrame(const calc::Result& result) {
    Run& run = runs_.back();
    const Frame ended = std::move(run.frames.back());
    run.frames.pop_back();
    if (ended.file->isOpen()) ended.file->position().leaveTransactions(ended.openTransactions);
    if (stage_.onScriptEnd) stage_.onScriptEnd(ended.call, result);
    if (run.frames.empty() || ended.origin != Frame::Origin::subScript) return;
    top().state->result = result.value;
    top().state->errorLocation = ended.state->errorLocation;
}

void Machine::endScript(const calc::Result& result) {
    popFrame(result);
    if (runs_.back().frames.empty()) endRun(result.value);
}

void Machine::endRun(DataRef result) {
    outside_->result = std::move(result);
    endedRun_ = runs_.back().id;
    stage_.setLastError(*runs_.back().lastError);
    runs_.pop_back();
}

void Machine::halt() {
    while (!runs_.back().frames.empty())
        popFrame(resultOf(emptyValue()));
    endRun(emptyValue());
}

void Machine::haltAll() {
    while (!runs_.empty())
        halt();
}

void Machine::goOn() {
    Frame& frame = top();
    frame.pausedUntil.reset();
    if (frame.file->isOpen()) leaveEndedTransaction(frame);
    const Script& script = *frame.script;
    const bool isList = script.steps.empty();
    if (frame.at >= (isList ? script.calculations.size() : script.steps.size()))
        return endScript(calc::Result(frame.last)); // a copy, because endScript destroys the frame
    if (runs_.back().steps > 0) stage_.idle(kFMXT_ScriptRunning);
    // Nothing of a file is used once it has closed, not even to report the end of its scripts.
    if (!frame.file->isOpen()) return runs_.pop_back();
    ++runs_.back().steps;
    const std::size_t at = frame.at++;
    if (isList) return runCalculation(frame, at);
    if (runs_.back().steps > kMostSteps || calc::areCalculationsStopped()) return stop(script.steps[at]);
    runStep(script.steps[at]);
}

/// Ends a run that would go on for too long, or that the user has stopped.
void Machine::stop(const Step& step) {
    fail(step, step.line, {}, failureOf(calc::error::unspecific, "the script does too many steps"));
    halt();
}

void Machine::runCalculation(Frame& frame, std::size_t at) {
    const std::u16string& source = frame.script->calculations[at];
    frame.last = evaluate(source);
    frame.last.setLastError(*runs_.back().lastError);
    if (frame.last.error != calc::error::none && stage_.onScriptError)
        stage_.onScriptError({.call = frame.call,
                              .place = at + 1,
                              .step = {},
                              .source = source,
                              .result = frame.last,
                              .isCaptured = false});
}

void Machine::runStep(const Step& step) {
    // The step may end the script, and its run.
    const std::shared_ptr<calc::LastError> lastError = runs_.back().lastError;
    const std::shared_ptr<calc::ScriptFrame> state = top().state;
    try {
        StepRun run(*this, step);
        step.row->run(run);
        if (step.row->keepsError) return;
        lastError->code = calc::error::none;
        state->errorLocation.clear();
    } catch (const CalculationFailure& failure) {
        fail(step, failure.line, failure.source, failure.result);
    } catch (const calc::Error& error) {
        fail(step, step.line, {}, failureOf(error.code, error.message));
        StepRun run(*this, step);
        revertAfterError(run, error.code);
    }
}

void Machine::fail(const Step& step, std::size_t line, std::u16string_view source,
                   const calc::Result& result) {
    Frame& frame = top();
    result.setLastError(*runs_.back().lastError);
    frame.state->errorLocation =
        frame.script->name + u"\r" + step.name + u"\r" + fromUtf8(std::to_string(step.line));
    if (stage_.onScriptError)
        stage_.onScriptError({.call = frame.call,
                              .place = line,
                              .step = step.name,
                              .source = source,
                              .result = result,
                              .isCaptured = frame.state->capturesErrors});
}

calc::Result Machine::evaluate(const std::u16string& source) {
    // A name may mean another field on another layout.
    Run& run = runs_.back();
    const std::uint64_t names = top().file->fields().names(nullptr);
    if (std::exchange(run.names, names) != names) run.parsed.clear();
    calc::ExpressionRef& parsed = run.parsed[&source];
    if (!parsed) {
        calc::Parsed outcome = calc::parse(source, stage_.functions(), top().file.get());
        if (!outcome.expression) {
            calc::Result result = failureOf(outcome.error);
            result.problem = std::move(outcome.problem);
            return result;
        }
        parsed = std::move(outcome.expression);
    }
    return calc::evaluate(*parsed, top().scope);
}

calc::Result Machine::evaluateOnce(std::u16string_view source) {
    return calc::evaluate(source, top().scope, stage_.functions());
}

/// Turns the loop once, then sleeps. A pause does not end while the clock is held.
void Machine::restWhilePaused() {
    constexpr Clock::Micros longest = std::chrono::milliseconds(20);
    stage_.turnLoop();
    const std::optional<Clock::Micros> end = pausedUntil();
    if (!end) return;
    if (clock().isHeld()) {
        top().pausedUntil.reset();
        runs_.back().lastError->code = calc::error::unavailable;
        return;
    }
    std::this_thread::sleep_for(std::clamp(*end - clock().now(), Clock::Micros::zero(), longest));
}

} // namespace host::scripts
