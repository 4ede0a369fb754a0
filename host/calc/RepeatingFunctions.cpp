#include "host/calc/BuiltIns.h"

#include <array>

/// Functions of values with repetitions, which variables have.

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

/// Extend ( variable ): its value, which stands for every repetition of a calculation that has several.
DataRef extend(Evaluation& evaluation, Nodes arguments) {
    const Named named(evaluation, *arguments[0]);
    return named.variables.value(named.name);
}

DataRef getRepetition(Evaluation& evaluation, Nodes arguments) {
    const Named named(evaluation, *arguments[0]);
    return named.variables.value(named.name, evaluation.evaluate(*arguments[1])->asNumber().toInt32());
}

/// The last repetition that is not empty.
DataRef last(Evaluation& evaluation, Nodes arguments) {
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
