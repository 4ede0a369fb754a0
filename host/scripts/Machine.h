#pragma once

#include "host/calc/Engine.h"
#include "host/scripts/Stage.h"
#include "host/values/Clock.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

namespace scripts {

/// A script that runs, or waits for one that it called.
struct Frame {
    /// A start-script call or the host begins a script; a script begins a sub-script, and gets its result.
    enum class Origin : std::uint8_t { start, subScript };
    std::shared_ptr<StageFile> file;
    const Script* script; ///< of the file
    ScriptCall call;
    std::shared_ptr<calc::ScriptFrame> state;
    calc::Environment scope;
    Origin origin;
    calc::Result last; ///< its result if it ends now: that of a list's last calculation, else empty
    std::optional<std::size_t> originalLayout;     ///< that of the file when the script began
    std::size_t at = 0;                            ///< the next step, or the next calculation
    std::size_t openTransactions = 0;              ///< that it opened; they end with it
    bool triesBranch = false;                      ///< all branches before the next step were false
    std::optional<Clock::Micros> pausedUntil = {}; ///< on the host's clock
};

/// A script and the scripts that it called, innermost last.
struct Run {
    std::uint64_t id;
    std::deque<Frame> frames;
    std::shared_ptr<calc::LastError> lastError;
    std::size_t steps = 0;
    bool isSuspended = false; ///< until another script resumes it
    std::unordered_map<const std::u16string*, calc::ExpressionRef> parsed; ///< by the text's address
    std::uint64_t names = 0; ///< FieldContext::names of the time when they were parsed
};

/// Runs scripts, step by step and never inside a calculation.
class Machine {
public:
    static constexpr std::size_t kMostSteps = 1'000'000, kMostFrames = 1'000;

    explicit Machine(Stage& stage) : stage_(stage) {}

    /// Lets a call wait for its turn.
    void add(ScriptCall call);
    [[nodiscard]] std::size_t waiting() const { return waiting_.size() + duringRuns_.size(); }
    /// Runs what can run without waiting for time to pass. Gives the number of scripts that began, at most
    /// `most`. A call from within a script does nothing.
    std::size_t runWaiting(std::size_t most);
    /// Runs a script to its end, unless the call has an error. Gives its result, or the error 3 when a script
    /// runs already. While it pauses, the session's loop turns.
    calc::Result runToEnd(ScriptCall call);
    void clear();

    [[nodiscard]] bool isRunning() const { return isRunning_; }
    /// The current run, which may be paused; 0 when there is none.
    [[nodiscard]] std::uint64_t currentRun() const { return runs_.empty() ? 0 : runs_.back().id; }
    [[nodiscard]] std::size_t depth() const;
    /// When the script that pauses goes on, on the host's clock; nothing when none pauses.
    [[nodiscard]] std::optional<Clock::Micros> pausedUntil() const;
    /// The result of the script that ended last.
    [[nodiscard]] const std::shared_ptr<calc::ScriptFrame>& outside() const { return outside_; }

    // Steps call these functions.
    /// Calls a script of the file from the one that runs; throws calc::Error when there are too many.
    void perform(const std::shared_ptr<StageFile>& file, const Script& script, DataRef parameter);
    /// Ends the script that runs, and gives its result to the script that called it.
    void endScript(const calc::Result& result);
    /// Ends the script that runs and all that called it.
    void halt();
    /// Evaluates for the script that runs. The text is parsed once and must stay where it is.
    calc::Result evaluate(const std::u16string& source);
    calc::Result evaluateOnce(std::u16string_view source);
    /// Sets the last error, and reports that a step failed; `line` is that of the part that did.
    void fail(const Step& step, std::size_t line, std::u16string_view source, const calc::Result& result);
    [[nodiscard]] Frame& top() { return runs_.back().frames.back(); }
    [[nodiscard]] Stage& stage() { return stage_; }

private:
    class Running;

    [[nodiscard]] bool canGoOn() const;
    std::deque<ScriptCall>* nextCalls();
    [[nodiscard]] bool has(std::uint64_t run) const;
    bool begin(std::deque<ScriptCall>& calls);
    void makeRoom(const ScriptCall& call);
    void pushRun();
    void push(const std::shared_ptr<StageFile>& file, const Script& script, ScriptCall call,
              Frame::Origin origin);
    void popFrame(const calc::Result& result);
    void endRun(DataRef result);
    void haltAll();
    void goOn();
    void runStep(const Step& step);
    void runCalculation(Frame& frame, std::size_t at);
    void stop(const Step& step);
    void restWhilePaused();

    Stage& stage_;
    std::deque<ScriptCall> waiting_;    ///< calls that were made while no script ran or paused
    std::deque<ScriptCall> duringRuns_; ///< those that were made since
    std::vector<Run> runs_;             ///< the last one is current, those before it are suspended
    bool isRunning_ = false;
    std::uint64_t lastRun_ = 0, endedRun_ = 0;
    std::shared_ptr<calc::ScriptFrame> outside_ = std::make_shared<calc::ScriptFrame>();
};

} // namespace scripts

} // namespace host
