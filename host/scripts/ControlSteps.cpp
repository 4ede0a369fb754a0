#include "host/scripts/StepRun.h"
#include "host/scripts/Steps.h"
#include "host/scripts/Targets.h"

#include <algorithm>
#include <utility>

namespace host::scripts {

namespace {

constexpr OptionRow kCondition{.name = u"condition", .isNeeded = true};

/// Goes to the branch after this one, which is then tried.
void tryBranch(StepRun& run) {
    if (run.isTrue(kCondition.name)) return;
    run.frame().triesBranch = true;
    run.jumpTo(run.step().nextBranch);
}

/// Whether the branches before this one were false. Otherwise the step ends the one that was taken.
bool isTried(StepRun& run) {
    if (std::exchange(run.frame().triesBranch, false)) return true;
    run.jumpTo(run.frame().script->steps[run.step().opener].end);
    return false;
}

void elseIf(StepRun& run) {
    if (isTried(run)) tryBranch(run);
}

void otherwise(StepRun& run) { isTried(run); }

void endIf(StepRun& run) { run.frame().triesBranch = false; }

void nothing(StepRun& /*run*/) {}

void exitLoopIf(StepRun& run) {
    if (run.isTrue(kCondition.name)) run.leaveLoop();
}

void endLoop(StepRun& run) { run.jumpTo(run.step().opener); }

void setVariable(StepRun& run) {
    const Option& option = *run.option(u"variable");
    const DataRef value = run.value(u"Value");
    run.setVariable(targetOf(option.text), option.line, value);
}

void performScript(StepRun& run) {
    const DataRef parameter = run.value(u"Parameter");
    std::shared_ptr<StageFile> file = run.frame().file;
    std::u16string name;
    if (run.says(u"Specified", u"by name") || !run.has(u"script")) {
        // A text alone has the form of a name.
        name = run.value(run.has(u"script") ? u"script" : u"name")->asText().units();
    } else {
        QuotedName quoted = run.quotedName(u"script");
        name = std::move(quoted.name);
        if (!quoted.file.empty()) file = run.machine().stage().fileNamed(quoted.file);
    }
    if (!file) throw calc::Error{calc::error::missingFile};
    const Script* script = file->script(name);
    if (script == nullptr) throw calc::Error{calc::error::missingScript};
    run.machine().perform(file, *script, parameter);
}

void exitScript(StepRun& run) {
    run.machine().endScript({.error = calc::error::none, .value = run.value(u"Text Result"), .problem = {}});
}

void haltScript(StepRun& run) { run.machine().halt(); }

void setErrorCapture(StepRun& run) { run.frame().state->capturesErrors = run.says(u"state", u"on"); }

void allowUserAbort(StepRun& run) { run.frame().state->allowsAbort = run.says(u"state", u"on"); }

/// Without a duration the script would wait for a user.
void pauseScript(StepRun& run) {
    constexpr double most = 1e9;
    if (!run.has(u"Duration (seconds)")) throw calc::Error{calc::error::unavailable};
    const double seconds = std::clamp(run.value(u"Duration (seconds)")->asNumber().toDouble(), 0.0, most);
    run.frame().pausedUntil =
        clock().now() + std::chrono::duration_cast<Clock::Micros>(std::chrono::duration<double>(seconds));
}

constexpr std::array kSteps{
    StepRow{.name = u"If",
            .run = tryBranch,
            .options = {kCondition},
            .block = Block::opensIf,
            .keepsError = true},
    StepRow{.name = u"Else If",
            .run = elseIf,
            .options = {kCondition},
            .block = Block::elseIf,
            .keepsError = true},
    StepRow{.name = u"Else", .run = otherwise, .block = Block::otherwise, .keepsError = true},
    StepRow{.name = u"End If", .run = endIf, .block = Block::closesIf, .keepsError = true},
    StepRow{.name = u"Loop", .run = nothing, .block = Block::opensLoop, .keepsError = true},
    StepRow{.name = u"Exit Loop If",
            .run = exitLoopIf,
            .options = {kCondition},
            .block = Block::leavesLoop,
            .keepsError = true},
    StepRow{.name = u"End Loop", .run = endLoop, .block = Block::closesLoop, .keepsError = true},
    StepRow{.name = u"Set Variable",
            .run = setVariable,
            .options = {OptionRow{.name = u"variable", .takes = Takes::variable, .isNeeded = true},
                        OptionRow{.name = u"Value", .isLabelled = true}}},
    StepRow{.name = u"Perform Script",
            .run = performScript,
            .options = {OptionRow{.name = u"Specified",
                                  .takes = Takes::words,
                                  .isLabelled = true,
                                  .words = u"from list|by name"},
                        OptionRow{.name = u"script", .takes = Takes::name}, OptionRow{.name = u"name"},
                        OptionRow{.name = u"Parameter", .isLabelled = true}}},
    StepRow{.name = u"Exit Script",
            .run = exitScript,
            .options = {OptionRow{.name = u"Text Result", .isLabelled = true}},
            .keepsError = true},
    StepRow{.name = u"Halt Script", .run = haltScript, .keepsError = true},
    StepRow{
        .name = u"Set Error Capture",
        .run = setErrorCapture,
        .options = {OptionRow{.name = u"state", .takes = Takes::words, .isNeeded = true, .words = kOnOff}}},
    StepRow{
        .name = u"Allow User Abort",
        .run = allowUserAbort,
        .options = {OptionRow{.name = u"state", .takes = Takes::words, .isNeeded = true, .words = kOnOff}}},
    StepRow{.name = u"Pause/Resume Script",
            .run = pauseScript,
            .options = {OptionRow{.name = u"Duration (seconds)", .isLabelled = true}}},
};

} // namespace

std::span<const StepRow> controlSteps() { return kSteps; }

} // namespace host::scripts
