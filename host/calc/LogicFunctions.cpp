#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

using Nodes = std::span<const Node* const>;

bool isTrue(Evaluation& evaluation, const Node& node) { return evaluation.evaluate(node)->asBoolean(); }

/// Case ( test ; result { ; test ; result … } { ; default } ), and so If as well.
DataRef firstTrue(Evaluation& evaluation, Nodes arguments) {
    std::size_t i = 0;
    for (; i + 1 < arguments.size(); i += 2)
        if (isTrue(evaluation, *arguments[i])) return evaluation.evaluate(*arguments[i + 1]);
    return i < arguments.size() ? evaluation.evaluate(*arguments[i]) : emptyResult();
}

/// Choose ( number ; result0 ; result1 … )
DataRef choose(Evaluation& evaluation, Nodes arguments) {
    const std::int64_t index = evaluation.evaluate(*arguments[0])->asNumber().toInt64();
    if (index < 0 || std::cmp_greater_equal(index, arguments.size() - 1)) return emptyResult();
    return evaluation.evaluate(*arguments[static_cast<std::size_t>(index) + 1]);
}

DataRef let(Evaluation& evaluation, Nodes arguments) {
    const Evaluation::Scope scope(evaluation);
    for (const Node* assignment : arguments.first(arguments.size() - 1))
        evaluation.assign(*assignment);
    return evaluation.evaluate(*arguments.back());
}

DataRef isEmpty(std::span<const DataRef> arguments) { return booleanResult(arguments[0]->isEmpty()); }

DataRef getAsBoolean(std::span<const DataRef> arguments) {
    const Data& value = *arguments[0];
    return booleanResult(value.nativeType() == DataType::binary ? !value.isEmpty() : value.asBoolean());
}

/// Whether evaluating gives a value that is one, without an error.
DataRef isValid(Evaluation& evaluation, Nodes arguments) {
    try {
        return booleanResult(evaluation.evaluate(*arguments[0])->isValid());
    } catch (const Exhausted&) {
        throw;
    } catch (const Error&) {
        return booleanResult(false);
    }
}

DataRef isValidExpression(Evaluation& evaluation, std::span<const DataRef> arguments) {
    try {
        return booleanResult(evaluation.parseHere(arguments[0]->asText().units()) != nullptr);
    } catch (const Exhausted&) {
        throw;
    } catch (const Error&) {
        return booleanResult(false);
    }
}

/// A calculation that is wrong is a "?"; what was wrong is for EvaluationError. A second argument names what
/// the result depends on, which matters to fields alone.
DataRef evaluateText(Evaluation& evaluation, std::span<const DataRef> arguments) {
    try {
        const ExpressionRef expression = evaluation.parseHere(arguments[0]->asText().units());
        return evaluation.run(*expression);
    } catch (const Exhausted&) {
        throw;
    } catch (const Error& error) {
        evaluation.setInnerError(error.code);
        return questionMark();
    }
}

DataRef evaluationError(Evaluation& evaluation, Nodes arguments) {
    const int outer = evaluation.innerError();
    evaluation.setInnerError(error::none);
    int code = error::none;
    try {
        evaluation.evaluate(*arguments[0]);
        code = evaluation.innerError();
    } catch (const Exhausted&) {
        throw;
    } catch (const Error& error) {
        code = error.code;
    }
    evaluation.setInnerError(outer);
    return numberResult(code);
}

/// Gives the precision back when it goes.
class Precision {
public:
    Precision(Evaluation& evaluation, int wanted) : evaluation_(evaluation), outer_(evaluation.precision()) {
        evaluation.setPrecision(wanted);
    }
    ~Precision() { evaluation_.setPrecision(outer_); }
    Precision(const Precision&) = delete;
    Precision& operator=(const Precision&) = delete;

private:
    Evaluation& evaluation_;
    int outer_;
};

DataRef setPrecision(Evaluation& evaluation, Nodes arguments) {
    const int digits = std::clamp(evaluation.evaluate(*arguments[1])->asNumber().toInt32(),
                                  Decimal::minimumPrecision, Decimal::maximumPrecision);
    const Precision precision(evaluation, digits);
    DataRef value = evaluation.evaluate(*arguments[0]);
    if (!value->isValid()) return value;
    auto number = value->number();
    if (!number) return value;
    number->setPrecision(digits);
    return numberResult(std::move(*number));
}

constexpr std::array lazyRows{
    LazyRow{u"If", 2, 3, firstTrue},
    LazyRow{u"Case", 2, -1, firstTrue},
    LazyRow{u"Choose", 2, -1, choose},
    LazyRow{u"Let", 2, 2, let},
    LazyRow{u"IsValid", 1, 1, isValid},
    LazyRow{u"EvaluationError", 1, 1, evaluationError},
    LazyRow{u"SetPrecision", 2, 2, setPrecision},
};
constexpr std::array evaluationRows{
    EvaluationRow{u"IsValidExpression", 1, 1, isValidExpression},
    EvaluationRow{u"Evaluate", 1, 2, evaluateText},
};
constexpr std::array eagerRows{
    EagerRow{u"IsEmpty", 1, 1, isEmpty},
    EagerRow{u"GetAsBoolean", 1, 1, getAsBoolean},
};

} // namespace

void addLogicFunctions(FunctionTable& table) {
    addRows(table, lazyRows);
    addRows(table, evaluationRows);
    addRows(table, eagerRows);
}

} // namespace host::calc
