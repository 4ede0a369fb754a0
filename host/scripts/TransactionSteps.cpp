#include "host/scripts/TransactionSteps.h"

#include "host/data/Position.h"
#include "host/scripts/Steps.h"

#include <utility>

namespace host::scripts {

namespace {

constexpr std::u16string_view kWhen = u"Condition", kErrorCode = u"Error Code",
                              kErrorMessage = u"Error Message";

void openTransaction(StepRun& run) {
    check(run.position().openTransaction());
    ++run.frame().openTransactions;
}

/// A script commits what it has opened itself.
void commitTransaction(StepRun& run) {
    std::size_t& open = run.frame().openTransactions;
    if (open == 0) throw calc::Error{calc::error::unavailable};
    const int error = run.position().commitTransaction();
    if (!run.position().hasTransaction())
        open = 0;
    else if (error == calc::error::none)
        --open;
    check(error);
}

/// Goes on after the step that would have ended the outermost transaction of the script, where it has one.
void leaveTransaction(Frame& frame) {
    if (frame.openTransactions == 0) return;
    const std::vector<Step>& steps = frame.script->steps;
    std::size_t inner = std::exchange(frame.openTransactions, 0) - 1;
    for (std::size_t at = frame.at; at < steps.size(); ++at) {
        if (steps[at].row->run == openTransaction) ++inner;
        if (steps[at].row->run != commitTransaction || inner-- > 0) continue;
        frame.at = at + 1;
        return;
    }
}

void revertTransaction(StepRun& run) {
    constexpr std::int64_t leastCode = 5'000, mostCode = 5'499;
    if (run.has(kWhen) && !run.isTrue(kWhen)) return;
    const std::int64_t code = run.value(kErrorCode)->asNumber().toInt64();
    const DataRef message = run.value(kErrorMessage);
    check(run.position().revertTransaction());
    leaveTransaction(run.frame());
    if (!run.has(kErrorCode)) return;
    if (code < leastCode || code > mostCode) throw calc::Error{calc::error::unavailable};
    run.frame().scope.lastError->detail = message->asText().units();
    throw calc::Error{static_cast<int>(code), message->asText().utf8()};
}

void setRevertOnError(StepRun& run) { check(run.position().setRevertsOnError(run.says(u"state", u"on"))); }

constexpr std::array kSteps{
    StepRow{.name = u"Open Transaction", .run = openTransaction},
    StepRow{.name = u"Commit Transaction", .run = commitTransaction},
    StepRow{.name = u"Revert Transaction",
            .run = revertTransaction,
            .options = {OptionRow{.name = kWhen, .isLabelled = true},
                        OptionRow{.name = kErrorCode, .isLabelled = true},
                        OptionRow{.name = kErrorMessage, .isLabelled = true}}},
    StepRow{
        .name = u"Set Revert Transaction on Error",
        .run = setRevertOnError,
        .options = {OptionRow{.name = u"state", .takes = Takes::words, .isNeeded = true, .words = kOnOff}}},
};

/// Codes of access, of records that others hold, and of validation.
bool spoilsTransaction(int code) { return (code >= 200 && code < 400) || (code >= 500 && code < 600); }

} // namespace

void revertAfterError(StepRun& run, int code) {
    Position& position = run.position();
    if (!spoilsTransaction(code) || !position.hasTransaction() || !position.revertsOnError()) return;
    position.revertTransaction();
    if (run.step().row->run == commitTransaction)
        run.frame().openTransactions = 0;
    else
        leaveTransaction(run.frame());
}

void leaveEndedTransaction(Frame& frame) {
    if (frame.openTransactions > 0 && !frame.file->position().hasTransaction()) leaveTransaction(frame);
}

std::span<const StepRow> transactionSteps() { return kSteps; }

} // namespace host::scripts
