#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <optional>

/// Functions of values with repetitions, which fields and variables have.

namespace host::calc {

namespace {

using Nodes = std::span<const Node* const>;

/// The name of the variable that an argument stands for, and where its value is kept. An expression in its
/// place is an error.
struct Named {
    Named(Evaluation& evaluation, const Node& node)
        : variables(node.ofFile ? evaluation.file().fileVariables() : *evaluation.environment().locals),
          name(node.name) {
        if (node.kind != Node::Kind::variable) throw Error{error::fieldExpected};
    }
    const Variables& variables;
    std::u16string_view name;
};

/// Extend ( field ), Extend ( variable ): its value, which stands for every repetition of a calculation that
/// has several.
DataRef extend(Evaluation& evaluation, Nodes arguments) {
    if (const auto field = evaluation.fieldIn(*arguments[0]))
        return evaluation.valueOf({.place = field->place});
    const Named named(evaluation, *arguments[0]);
    return named.variables.value(named.name);
}

DataRef getRepetition(Evaluation& evaluation, Nodes arguments) {
    const int repetition = evaluation.evaluate(*arguments[1])->asNumber().toInt32();
    if (const auto field = evaluation.fieldIn(*arguments[0]))
        return evaluation.valueOf({.place = field->place, .repetition = repetition, .isOneRepetition = true});
    const Named named(evaluation, *arguments[0]);
    return named.variables.value(named.name, repetition);
}

/// The last repetition, or related value, that is not empty.
DataRef last(Evaluation& evaluation, Nodes arguments) {
    if (const auto field = evaluation.fieldIn(*arguments[0])) {
        const DataVect values = evaluation.valuesOf(*field);
        const auto found = std::find_if(values.rbegin(), values.rend(),
                                        [](const DataRef& value) { return !value->isEmpty(); });
        return found == values.rend() ? emptyResult() : *found;
    }
    const Named named(evaluation, *arguments[0]);
    return named.variables.lastValue(named.name);
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
    const Named named(evaluation, *arguments[0]);
    const DataRef rate = evaluation.evaluate(*arguments[1]);
    return presentValue(named.variables.values(named.name), *rate);
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
