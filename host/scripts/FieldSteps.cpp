#include "host/calc/Environment.h"
#include "host/data/Position.h"
#include "host/scripts/StepRun.h"
#include "host/scripts/Steps.h"
#include "host/scripts/Targets.h"

#include <optional>
#include <utility>

namespace host::scripts {

namespace {

/// Without a field the step would write the one that the user is in.
void setField(StepRun& run) {
    const Option* option = run.option(u"field");
    if (option == nullptr) throw calc::Error{calc::error::missingField};
    const DataRef value = run.value(u"value");
    run.set(targetOf(option->text), option->line, value);
}

void setFieldByName(StepRun& run) {
    const DataRef name = run.value(u"name"), value = run.value(u"value");
    check(run.position().setField(name->asText().units(), value));
}

/// Puts a value into a field or a variable: in place of its content, or after it.
void insert(StepRun& run, DataRef value) {
    const Option* option = run.option(u"Target");
    if (option == nullptr) throw calc::Error{calc::error::missingField};
    const Target target = targetOf(option->text);
    std::optional<calc::FieldPlace> field;
    if (target.kind == Target::Kind::field) field = run.field(target);
    if (field && run.position().occurrence() != field->occurrence)
        throw calc::Error{calc::error::missingField};
    if (!run.has(u"Select")) {
        Text joined = run.value(u"Target")->asText();
        joined.append(value->asText());
        value = std::make_shared<const Data>(std::move(joined));
    }
    run.set(target, option->line, std::move(value));
}

void insertCalculatedResult(StepRun& run) { insert(run, run.value(u"value")); }

void insertText(StepRun& run) {
    insert(run, std::make_shared<const Data>(Text(run.quotedName(u"text").name)));
}

void replaceFieldContents(StepRun& run) {
    Position& position = run.position();
    const calc::FieldPlace place = run.field(targetOf(run.option(u"field")->text));
    const auto before = static_cast<std::int64_t>(position.recordNumber());
    try {
        check(position.replaceFieldContents(place, [&run] { return run.value(u"value"); }));
    } catch (const CalculationFailure&) {
        position.goToRecord(before);
        throw;
    }
}

constexpr OptionRow kField{.name = u"field", .takes = Takes::field, .isNeeded = true};
constexpr OptionRow kSelect{.name = u"Select", .takes = Takes::words, .words = u"select"};
/// The target is found by its label, or by its place.
constexpr OptionRow kLabelledTarget{.name = u"Target", .takes = Takes::target, .isLabelled = true};
constexpr OptionRow kTarget{.name = u"Target", .takes = Takes::target};

constexpr std::array kSteps{
    StepRow{.name = u"Set Field",
            .run = setField,
            .options = {OptionRow{.name = u"field", .takes = Takes::field}, OptionRow{.name = u"value"}}},
    StepRow{.name = u"Set Field By Name",
            .run = setFieldByName,
            .options = {OptionRow{.name = u"name", .isNeeded = true}, OptionRow{.name = u"value"}}},
    StepRow{.name = u"Insert Calculated Result",
            .run = insertCalculatedResult,
            .options = {kSelect, kLabelledTarget, kTarget, OptionRow{.name = u"value"}}},
    StepRow{.name = u"Insert Text",
            .run = insertText,
            .options = {kSelect, kLabelledTarget, kTarget, OptionRow{.name = u"text", .takes = Takes::name}}},
    StepRow{.name = u"Replace Field Contents",
            .run = replaceFieldContents,
            .options = {kWithDialog, kField, OptionRow{.name = u"value", .isNeeded = true}}},
};

} // namespace

std::span<const StepRow> fieldSteps() { return kSteps; }

} // namespace host::scripts
