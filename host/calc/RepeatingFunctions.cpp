#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <optional>

/// Functions of values with repetitions, which fields and variables have.

namespace host::calc {

namespace {

using Nodes = std::span<const Node* const>;

/// The variables of which an argument names one; null for an argument that stands for a field.
const Variables* variablesOf(const Evaluation& evaluation, const Node& node) {
    if (node.kind != Node::Kind::variable) return nullptr;
    return node.ofFile ? &evaluation.file().fileVariables() : evaluation.environment().locals.get();
}

/// Extend ( field ), Extend ( variable ): its value, which stands for every repetition of a calculation that
/// has several.
DataRef extend(Evaluation& evaluation, Nodes arguments) {
    const Node& node = *arguments[0];
    if (const Variables* variables = variablesOf(evaluation, node)) return variables->value(node.name);
    Evaluation::FieldReference field = evaluation.requiredField(node);
    if (!field.isOneRepetition) field.repetition = 1;
    return evaluation.valueOf(field);
}

DataRef getRepetition(Evaluation& evaluation, Nodes arguments) {
    const Node& node = *arguments[0];
    const int repetition = evaluation.evaluate(*arguments[1])->asNumber().toInt32();
    if (const Variables* variables = variablesOf(evaluation, node))
        return variables->value(node.name, repetition);
    return evaluation.valueOf(
        {.place = evaluation.requiredField(node).place, .repetition = repetition, .isOneRepetition = true});
}

/// The last repetition, or related value, that is not empty.
DataRef last(Evaluation& evaluation, Nodes arguments) {
    const Node& node = *arguments[0];
    if (const Variables* variables = variablesOf(evaluation, node)) return variables->lastValue(node.name);
    const DataVect values = evaluation.valuesOf(evaluation.requiredField(node));
    const auto found =
        std::find_if(values.rbegin(), values.rend(), [](const DataRef& value) { return !value->isEmpty(); });
    return found == values.rend() ? emptyResult() : *found;
}

/// Payments at the ends of periods, at one rate of interest, as they are worth before the first period.
DataRef presentValue(const DataVect& payments, const Data& rate) {
    constexpr int places = 60; // more than the result keeps, since every period rounds
    Work::charge(payments.size());
    Decimal growth = rate.asNumber().plus(Decimal(1));
    int precision = growth.precision();
    growth.setPrecision(places);
    std::optional<Decimal> value = Decimal();
    for (auto payment = payments.rbegin(); value && payment != payments.rend(); ++payment) {
        if (!(*payment)->isValid()) return questionMark();
        precision = std::max(precision, (*payment)->asNumber().precision());
        value = value->plus((*payment)->asNumber()).dividedBy(growth);
    }
    if (!value || !rate.isValid()) return questionMark();
    value->setPrecision(precision);
    return numberResult(std::move(*value));
}

/// NPV ( payments ; interestRate ): the repetitions are the payments.
DataRef netPresentValue(Evaluation& evaluation, Nodes arguments) {
    const Node& node = *arguments[0];
    const DataRef rate = evaluation.evaluate(*arguments[1]);
    if (const Variables* variables = variablesOf(evaluation, node))
        return presentValue(variables->values(node.name), *rate);
    return presentValue(evaluation.valuesOf(evaluation.requiredField(node)), *rate);
}

constexpr std::array rows{
    LazyRow{u"Extend", extend, Form::field},
    LazyRow{u"GetRepetition", getRepetition, Form::field},
    LazyRow{u"Last", last, Form::field},
    LazyRow{u"NPV", netPresentValue, Form::field},
};

} // namespace

void addRepeatingFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
