#include "host/calc/BuiltIns.h"

#include <array>

/// Functions that take fields.

namespace host::calc {

namespace {

using Nodes = std::span<const Node* const>;

/// A name that no field has is a "?".
DataRef getField(Evaluation& evaluation, std::span<const DataRef> arguments) {
    const std::u16string_view name = arguments[0]->asText().units();
    try {
        return evaluation.valueOf(evaluation.fieldNamed(name));
    } catch (const Error& error) {
        return evaluation.failed(error.code);
    }
}

/// A repetition other than the first is named too.
DataRef getFieldName(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::FieldReference field = evaluation.requiredField(*arguments[0]);
    std::u16string name = evaluation.fields().nameOf(field.place);
    if (field.isOneRepetition && field.repetition != 1)
        name += u"[" + Decimal(field.repetition).text() + u"]";
    return textResult(std::move(name));
}

DataRef getBaseTableName(Evaluation& evaluation, Nodes arguments) {
    return textResult(evaluation.fields().tableNameOf(evaluation.requiredField(*arguments[0]).place));
}

/// In a calculation that repeats, a field without repetitions stands for each of them.
int repetitionOf(Evaluation& evaluation, const Evaluation::FieldReference& field) {
    const bool repeats = field.isOneRepetition || evaluation.fields().repetitions(field.place) > 1;
    return repeats ? field.repetition : 1;
}

/// GetNthRecord ( field ; number )
DataRef getNthRecord(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::FieldReference field = evaluation.requiredField(*arguments[0]);
    const std::int64_t number = evaluation.evaluate(*arguments[1])->asNumber().toInt64();
    const DataRef value = evaluation.fields().nthValue(evaluation.scope(), field.place,
                                                       repetitionOf(evaluation, field), number);
    return value ? evaluation.noted(value) : evaluation.failed(error::missingRecord);
}

/// Lookup ( field { ; calculation } )
DataRef lookup(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::FieldReference field = evaluation.requiredField(*arguments[0]);
    const int repetition = repetitionOf(evaluation, field);
    if (const DataRef value = evaluation.fields().lookup(evaluation.scope(), field.place, repetition))
        return evaluation.noted(value);
    return arguments.size() > 1 ? evaluation.evaluate(*arguments[1])
                                : evaluation.failed(error::missingRecord);
}

/// LookupNext ( field ; Lower ), LookupNext ( field ; Higher ): the second is a number, 0 or another.
DataRef lookupNext(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::FieldReference field = evaluation.requiredField(*arguments[0]);
    const bool isHigher = evaluation.evaluate(*arguments[1])->asBoolean();
    const DataRef value = evaluation.fields().lookupNext(evaluation.scope(), field.place,
                                                         repetitionOf(evaluation, field), isHigher);
    return value ? evaluation.noted(value) : evaluation.failed(error::missingRecord);
}

DataRef getSummary(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::FieldReference summary = evaluation.requiredField(*arguments[0]),
                                     breakField = evaluation.requiredField(*arguments[1]);
    return evaluation.noted(evaluation.fields().summary(evaluation.scope(), summary.place, breakField.place));
}

DataRef self(Evaluation& evaluation, Nodes) {
    const FieldContext::Scope scope = evaluation.scope();
    if (scope == nullptr || !scope->self) throw Error{error::notSupported};
    return evaluation.noted(evaluation.fields().value(scope, *scope->self, scope->repetition));
}

template<std::size_t place>
DataRef design(Evaluation& evaluation, std::span<const DataRef> arguments);

constexpr std::array designFunctions{
    u"DatabaseNames",      u"TableNames",        u"TableIDs",         u"BaseTableNames",    u"BaseTableIDs",
    u"BaseTableComment",   u"FieldNames",        u"FieldIDs",         u"FieldType",         u"FieldComment",
    u"FieldAnnotation",    u"FieldDisplayNames", u"FieldRepetitions", u"FieldStyle",        u"FieldBounds",
    u"GetNextSerialValue", u"LayoutNames",       u"LayoutIDs",        u"LayoutObjectNames", u"RelationInfo",
    u"ScriptNames",        u"ScriptIDs",         u"ValueListNames",   u"ValueListIDs",      u"ValueListItems",
    u"WindowNames",
};

template<std::size_t place>
DataRef design(Evaluation& evaluation, std::span<const DataRef> arguments) {
    const auto answer = evaluation.file().design(designFunctions[place], arguments);
    if (!answer) evaluation.setInnerError(error::missingFile);
    return textResult(answer.value_or(u""));
}

template<std::size_t... places>
void addDesignFunctions(FunctionTable& table, std::index_sequence<places...>) {
    (addRow(table, EvaluationRow{designFunctions[places], design<places>}), ...);
}

constexpr std::array lazyRows{
    LazyRow{u"GetBaseTableName", getBaseTableName, Form::field},
    LazyRow{u"GetFieldName", getFieldName, Form::field},
    LazyRow{u"GetNthRecord", getNthRecord, Form::field},
    LazyRow{u"Lookup", lookup, Form::field},
    LazyRow{u"LookupNext", lookupNext, Form::field},
    LazyRow{u"GetSummary", getSummary, Form::field},
    LazyRow{u"Self", self},
};
constexpr std::array evaluationRows{
    EvaluationRow{u"GetField", getField},
};

} // namespace

void addFieldFunctions(FunctionTable& table) {
    addRows(table, lazyRows);
    addRows(table, evaluationRows);
    addDesignFunctions(table, std::make_index_sequence<designFunctions.size()>());
}

} // namespace host::calc
