#include "host/scripts/TransactionSteps.h"

#include "host/data/Position.h"
#include "host/scripts/Steps.h"

namespace host::scripts {

namespace {

constexpr std::u16string_view kWhen = u"Condition", kErrorCode = u"Error Code",
                              kErrorMessage = u"Error Message";

void openTransaction(StepRun& run) {
    run.frame().opensTransaction = run.frame().opensTransaction || !run.position().hasTransaction();
    check(run.position().openTransaction());
}

void commitTransaction(StepRun& run) { check(run.position().commitTransaction()); }

/// Goes on after the step that would have ended the transaction, where the script has it.
void leaveTransaction(StepRun& run) {
    const std::vector<Step>& steps = run.frame().script->steps;
    std::size_t inner = 0;
    for (std::size_t at = run.frame().at; at < steps.size(); ++at) {
        if (steps[at].row->run == openTransaction) ++inner;
        if (steps[at].row->run == commitTransaction && inner-- == 0) return run.jumpTo(at + 1);
    }
}

void revertTransaction(StepRun& run) {
    constexpr std::int64_t leastCode = 5'000, mostCode = 5'499;
    if (run.has(kWhen) && !run.isTrue(kWhen)) return;
    const std::int64_t code = run.value(kErrorCode)->asNumber().toInt64();
    const DataRef message = run.value(kErrorMessage);
    check(run.position().revertTransaction());
    leaveTransaction(run);
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
    if (run.step().row->run != commitTransaction) leaveTransaction(run);
}

std::span<const StepRow> transactionSteps() { return kSteps; }

} // namespace host::scripts
