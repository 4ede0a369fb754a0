#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

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

constexpr std::array rows{
    LazyRow{u"Extend", extend},
    LazyRow{u"GetRepetition", getRepetition},
    LazyRow{u"Last", last},
};

} // namespace

void addRepeatingFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
