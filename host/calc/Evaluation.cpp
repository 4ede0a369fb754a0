#include "host/calc/Evaluation.h"

#include "host/calc/BuiltIns.h"
#include "host/calc/Operators.h"
#include "host/calc/Parser.h"

#include <atomic>
#include <stdexcept>
#include <utility>

namespace host::calc {

namespace {

/// What the evaluations of this thread occupy together.
struct Occupied {
    int evaluations = 0, levels = 0;
    std::size_t steps = 0; ///< of the innermost calculation
    bool isExhausted = false;
};
thread_local Occupied occupied;

std::atomic<bool> gIsStopped = false;                  ///< by stopCalculations
static_assert(std::atomic<bool>::is_always_lock_free); // for signal handlers

[[noreturn]] void exhaust() {
    occupied.isExhausted = true;
    throw Exhausted();
}

void chargeFor(const Data& value) {
    if (value.nativeType() == DataType::text) Work::chargeText(value.asText().size());
}

} // namespace

void stopCalculations() { gIsStopped.store(true, std::memory_order_relaxed); }
void resumeCalculations() { gIsStopped.store(false, std::memory_order_relaxed); }
bool areCalculationsStopped() { return gIsStopped.load(std::memory_order_relaxed); }

Nesting::Nesting(int levels) : levels_(levels) {
    if (occupied.evaluations >= kMostEvaluations || occupied.levels + levels > kMostLevels) exhaust();
    ++occupied.evaluations;
    occupied.levels += levels;
}

Nesting::~Nesting() {
    --occupied.evaluations;
    occupied.levels -= levels_;
    if (occupied.evaluations == 0) occupied.isExhausted = false;
}

Work::Work() : outer_(std::exchange(occupied.steps, 0)) {}

Work::~Work() { occupied.steps = outer_; }

void Work::charge(std::size_t steps) {
    occupied.steps += steps;
    if (occupied.isExhausted || occupied.steps > kMostSteps || areCalculationsStopped()) exhaust();
}

DataRef Evaluation::run(const Expression& expression) {
    const Nesting nesting(expression.levels);
    return expression.root == nullptr ? emptyResult() : evaluate(*expression.root);
}

ExpressionRef Evaluation::parseHere(std::u16string_view source) const {
    Work::charge(source.size() + bindings_.size());
    std::vector<std::u16string_view> names;
    names.reserve(bindings_.size());
    for (const Binding& binding : bindings_)
        names.push_back(binding.name);
    return Parser(source, functions_, names).parse();
}

DataRef Evaluation::evaluate(const Node& node) {
    Work::charge();
    switch (node.kind) {
    case Node::Kind::literal: return precise(node.value);
    case Node::Kind::binding: return precise(bindings_.at(node.slot).value);
    case Node::Kind::variable: return precise(variable(node));
    case Node::Kind::chain: return chain(node);
    case Node::Kind::negate: return negated(*evaluate(*node.children[0]), precision_);
    case Node::Kind::logicalNot: return booleanResult(!evaluate(*node.children[0])->asBoolean());
    case Node::Kind::call: return call(node);
    case Node::Kind::assignment:
    case Node::Kind::words: break;
    }
    throw Error{error::unspecific};
}

/// Numbers join a calculation with the precision that it asks for.
DataRef Evaluation::precise(DataRef value) const {
    if (precision_ == Decimal::minimumPrecision || value->nativeType() != DataType::number) return value;
    auto number = value->number();
    if (!number || number->precision() >= precision_) return value;
    number->setPrecision(precision_);
    return numberResult(std::move(*number));
}

Variables& Evaluation::variables(const Node& node) const {
    return node.ofFile ? environment_.file->fileVariables() : *environment_.locals;
}

DataRef Evaluation::variable(const Node& node) {
    const int repetition = node.children.empty() ? 1 : evaluate(*node.children[0])->asNumber().toInt32();
    return variables(node).value(node.name, repetition);
}

void Evaluation::assign(const Node& assignment) {
    if (assignment.kind != Node::Kind::assignment) throw Error{error::unspecific};
    DataRef value = evaluate(*assignment.children[0]);
    if (!assignment.isVariable) {
        bindings_.push_back({.name = assignment.name, .value = std::move(value)});
        return;
    }
    const int repetition =
        assignment.children.size() < 2 ? 1 : evaluate(*assignment.children[1])->asNumber().toInt32();
    if (!variables(assignment).set(assignment.name, repetition, std::move(value)))
        throw Error{error::outOfRange};
}

DataRef Evaluation::chain(const Node& node) {
    if (node.operators[0] == Operator::join) return joined(node);
    DataRef result = evaluate(*node.children[0]);
    for (std::size_t i = 0; i < node.operators.size(); ++i) {
        const Operator op = node.operators[i];
        const Node& next = *node.children[i + 1];
        // The second side of `and` and `or` is not looked at when the first decides.
        const bool isDecided = (op == Operator::logicalAnd && !result->asBoolean()) ||
                               (op == Operator::logicalOr && result->asBoolean());
        result = isDecided ? booleanResult(op == Operator::logicalOr)
                           : applyOperator(op, *result, *evaluate(next), precision_);
    }
    return result;
}

/// All parts go into one growing text.
DataRef Evaluation::joined(const Node& node) {
    Text text = evaluate(*node.children[0])->asText();
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        text.append(evaluate(*node.children[i])->asText());
        checkTextSize(text.size());
    }
    Work::chargeText(text.size());
    return textResult(std::move(text));
}

DataRef Evaluation::call(const Node& node) {
    const Function& function = *node.function;
    if (function.withdrawn) throw Error{error::functionNotFound};
    DataRef result;
    try {
        if (function.lazy) {
            result = function.lazy(*this, node.children);
        } else {
            DataVect arguments;
            arguments.reserve(node.children.size());
            for (const Node* child : node.children) {
                arguments.push_back(evaluate(*child));
                chargeFor(*arguments.back());
            }
            // An argument may have withdrawn the function it is meant for.
            if (function.withdrawn) throw Error{error::functionNotFound};
            result = function.eager(*this, arguments);
        }
    } catch (const std::overflow_error&) {
        return questionMark();
    }
    if (!result) return emptyResult();
    if (result->nativeType() == DataType::text) checkTextSize(result->asText().size());
    chargeFor(*result);
    return result;
}

} // namespace host::calc
