#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace host::calc {

namespace {

using Nodes = std::span<const Node* const>;

/// Case ( test ; result { ; test ; result … } { ; default } ), and so If as well.
DataRef firstTrue(Evaluation& evaluation, Nodes arguments) {
    std::size_t i = 0;
    for (; i + 1 < arguments.size(); i += 2)
        if (evaluation.isTrue(*arguments[i])) return evaluation.result(*arguments[i + 1]);
    return i < arguments.size() ? evaluation.result(*arguments[i]) : emptyResult();
}

/// Choose ( number ; result0 ; result1 … )
DataRef choose(Evaluation& evaluation, Nodes arguments) {
    const std::int64_t index = evaluation.evaluate(*arguments[0])->asNumber().toInt64();
    if (index < 0 || std::cmp_greater_equal(index, arguments.size() - 1)) return emptyResult();
    return evaluation.result(*arguments[static_cast<std::size_t>(index) + 1]);
}

DataRef let(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::Scope scope(evaluation);
    for (const Node* assignment : arguments.first(arguments.size() - 1))
        evaluation.assign(*assignment);
    return evaluation.result(*arguments.back());
}

/// While ( init ; condition ; logic ; result ): assignments, a calculation, assignments, a calculation. A
/// name that only the logic sets ends with each turn.
DataRef whileLoop(Evaluation& evaluation, Nodes arguments) {
    const auto isAssignment = [](const Node* node) { return node->kind == Node::Kind::assignment; };
    const auto condition = std::find_if_not(arguments.begin(), arguments.end(), isAssignment);
    const Evaluation::Scope scope(evaluation);
    for (auto init = arguments.begin(); init != condition; ++init)
        evaluation.assign(**init);
    for (std::int64_t turn = 0; evaluation.isTrue(**condition); ++turn) {
        if (turn >= evaluation.settings().recursionLimit) return questionMark();
        const Evaluation::Scope ofTurn(evaluation);
        for (auto logic = condition + 1; logic != arguments.end() - 1; ++logic)
            evaluation.assign(**logic);
    }
    return evaluation.evaluate(*arguments.back());
}

DataRef getAsBoolean(std::span<const DataRef> arguments) { return booleanResult(arguments[0]->asBoolean()); }

/// Evaluates, and gives the code of the failure; 0 when there was none. A recursion without end gives "?".
template<typename Work>
int tried(Evaluation& evaluation, DataRef& value, const Work& work) {
    try {
        value = work();
        if (evaluation.takeUnending()) value = questionMark();
        return error::none;
    } catch (const Exhausted&) {
        throw;
    } catch (const Error& error) {
        evaluation.forgetFailedCall();
        value = questionMark();
        return error.code;
    }
}

/// The same for a part of the calculation; a failure that it went on after counts too.
int triedPart(Evaluation& evaluation, DataRef& value, const Node& node) {
    const int outer = evaluation.innerError();
    evaluation.setInnerError(error::none);
    const int code = tried(evaluation, value, [&] { return evaluation.evaluate(node); });
    const int inner = evaluation.innerError();
    evaluation.setInnerError(outer);
    return code == error::none ? inner : code;
}

/// Whether evaluating gives a value that is one, without an error.
DataRef isValid(Evaluation& evaluation, Nodes arguments) {
    DataRef value;
    triedPart(evaluation, value, *arguments[0]);
    return booleanResult(value->isValid());
}

/// A value whose evaluation fails is empty.
DataRef isEmpty(Evaluation& evaluation, Nodes arguments) {
    DataRef value;
    const int code = triedPart(evaluation, value, *arguments[0]);
    return booleanResult(code != error::none || value->isEmpty());
}

DataRef isValidExpression(Evaluation& evaluation, std::span<const DataRef> arguments) {
    DataRef value;
    const int code = tried(evaluation, value, [&] {
        std::ignore = evaluation.parseHere(arguments[0]->asText().units());
        return emptyResult();
    });
    return booleanResult(code == error::none);
}

/// A calculation that is wrong is a "?"; EvaluationError gives its code. A second argument names the fields
/// that the result depends on, which matters to stored calculations alone.
DataRef evaluateText(Evaluation& evaluation, std::span<const DataRef> arguments) {
    DataRef value;
    const int code = tried(evaluation, value, [&] {
        const ExpressionRef expression = evaluation.parseHere(arguments[0]->asText().units());
        try {
            return evaluation.run(*expression);
        } catch (const Error&) {
            evaluation.forgetFailedCall(); // a part of the inner expression, which ends here
            throw;
        }
    });
    return code == error::none ? value : evaluation.failed(code);
}

DataRef evaluationError(Evaluation& evaluation, Nodes arguments) {
    DataRef value;
    return numberResult(triedPart(evaluation, value, *arguments[0]));
}

/// SetRecursion ( calculation ; limit )
DataRef setRecursion(Evaluation& evaluation, Nodes arguments) {
    Evaluation::Settings settings = evaluation.settings();
    settings.recursionLimit = evaluation.evaluate(*arguments[1])->asNumber().toInt64();
    settings.recursion = 0;
    const Evaluation::Change change(evaluation, settings);
    DataRef value = evaluation.evaluate(*arguments[0]);
    return evaluation.takeUnending() ? questionMark() : value;
}

DataRef setPrecision(Evaluation& evaluation, Nodes arguments) {
    Evaluation::Settings settings = evaluation.settings();
    settings.precision = std::clamp(evaluation.evaluate(*arguments[1])->asNumber().toInt32(),
                                    Decimal::minimumPrecision, Decimal::maximumPrecision);
    const Evaluation::Change change(evaluation, settings);
    DataRef value = evaluation.evaluate(*arguments[0]);
    if (!value->isValid()) return value;
    auto number = value->number();
    if (!number) return value;
    number->setPrecision(settings.precision);
    return numberResult(std::move(*number));
}

constexpr std::array lazyRows{
    LazyRow{u"If", firstTrue},
    LazyRow{u"Case", firstTrue},
    LazyRow{u"Choose", choose},
    LazyRow{u"Let", let, Form::assignment},
    LazyRow{u"While", whileLoop, Form::loop},
    LazyRow{u"IsEmpty", isEmpty},
    LazyRow{u"IsValid", isValid},
    LazyRow{u"EvaluationError", evaluationError},
    LazyRow{u"SetPrecision", setPrecision},
    LazyRow{u"SetRecursion", setRecursion},
};
constexpr std::array evaluationRows{
    EvaluationRow{u"IsValidExpression", isValidExpression},
    EvaluationRow{u"Evaluate", evaluateText, Form::triggers},
};
constexpr std::array eagerRows{
    EagerRow{u"GetAsBoolean", getAsBoolean},
};

} // namespace

void addLogicFunctions(FunctionTable& table) {
    addRows(table, lazyRows);
    addRows(table, evaluationRows);
    addRows(table, eagerRows);
}

} // namespace host::calc
