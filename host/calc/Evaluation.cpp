#include "host/calc/Evaluation.h"

#include "host/calc/BuiltIns.h"
#include "host/calc/CustomFunction.h"
#include "host/calc/Operators.h"
#include "host/calc/Parser.h"
#include "host/calc/Stack.h"

#include <atomic>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace host::calc {

namespace {

/// The evaluations of this thread together.
struct Occupied {
    int evaluations = 0, levels = 0;
    std::size_t parts = 0; ///< of steps, in the innermost calculation
    bool isExhausted = false;
};
thread_local Occupied occupied;

std::atomic<bool> gIsStopped = false;                  ///< by stopCalculations
static_assert(std::atomic<bool>::is_always_lock_free); // for signal handlers

[[noreturn]] void exhaust() {
    occupied.isExhausted = true;
    throw Exhausted();
}

/// Sets another value as long as it lives.
class Restored {
public:
    Restored(bool& place, bool value) : place_(place), outer_(std::exchange(place, value)) {}
    ~Restored() { place_ = outer_; }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

private:
    bool& place_;
    bool outer_;
};

/// Comparing texts ends where the shorter one does. Other operators read all of a text, and numbers of more
/// digits take longer.
void chargeFor(Operator op, const Data& left, const Data& right, int precision) {
    const bool areTexts = left.nativeType() == DataType::text && right.nativeType() == DataType::text;
    if (areTexts && op >= Operator::equal && op <= Operator::greaterOrEqual) {
        Work::chargeText(std::size_t{2} * std::min(left.asText().size(), right.asText().size()));
    } else {
        Work::chargeFor(left);
        Work::chargeFor(right);
    }
    if (precision == Decimal::minimumPrecision) return;
    Work::charge(static_cast<std::size_t>(op == Operator::power ? 2 * precision : precision / 16));
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

Work::Work() : outer_(std::exchange(occupied.parts, 0)) {}

Work::~Work() { occupied.parts = outer_; }

bool Work::isRunning() { return occupied.evaluations > 0; }

void Work::chargeFor(const Data& value) {
    if (value.nativeType() == DataType::text) chargeText(value.asText().size());
}

void Work::chargeParts(std::size_t parts) {
    occupied.parts += parts;
    if (occupied.isExhausted || occupied.parts > kMostSteps * kPartsOfStep || areCalculationsStopped())
        exhaust();
}

/// The names of a custom function while it runs: those of its caller are out of sight.
class Evaluation::Frame {
public:
    explicit Frame(Evaluation& evaluation)
        : evaluation_(evaluation), names_(evaluation),
          outerFirst_(std::exchange(evaluation.firstOfFrame_, evaluation.bindings_.size())),
          outerRecursion_(evaluation.settings_.recursion) {}
    ~Frame() {
        evaluation_.firstOfFrame_ = outerFirst_;
        evaluation_.settings_.recursion = outerRecursion_;
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

private:
    Evaluation& evaluation_;
    Scope names_;
    std::size_t outerFirst_;
    std::int64_t outerRecursion_;
};

DataRef Evaluation::run(const Expression& expression) {
    const Nesting nesting(expression.levels);
    return expression.root == nullptr ? emptyResult() : evaluate(*expression.root);
}

ExpressionRef Evaluation::parseHere(std::u16string_view source) const {
    std::vector<std::u16string_view> names;
    names.reserve(bindings_.size() - firstOfFrame_);
    for (std::size_t i = firstOfFrame_; i < bindings_.size(); ++i)
        names.push_back(bindings_[i].name);
    Work::charge(source.size() + names.size());
    return Parser(source, functions_, environment_.file.get(), environment_.record.get(), names).parse();
}

DataRef Evaluation::failed(int code) {
    setInnerError(code);
    return questionMark();
}

DataRef Evaluation::failed(ExternalError error) {
    if (environment_.lastError) *environment_.lastError = {.code = error.code, .detail = error.detail};
    externalError_ = std::move(error);
    return failed(externalError_.code);
}

DataRef Evaluation::evaluate(const Node& node, bool isTail) {
    const bool isWhole = node.kind == Node::Kind::field || node.kind == Node::Kind::call;
    Work::chargeParts(isWhole ? Work::kPartsOfStep : 1);
    if (isUnending_) return questionMark();
    switch (node.kind) {
    case Node::Kind::literal: return precise(node.value);
    case Node::Kind::binding: return precise(bindingOf(node).value);
    case Node::Kind::variable: return precise(variable(node));
    case Node::Kind::field: return precise(valueOf(referenceTo(node)));
    case Node::Kind::chain: return chain(node);
    case Node::Kind::negate: return negated(*evaluate(*node.children[0]), precision());
    case Node::Kind::logicalNot: return booleanResult(!isTrue(*node.children[0]));
    case Node::Kind::call: return call(node, isTail);
    case Node::Kind::assignment:
    case Node::Kind::word: break;
    }
    throw Error{error::unspecific};
}

/// Numbers join a calculation with the precision that it asks for.
DataRef Evaluation::precise(DataRef value) const {
    if (precision() == Decimal::minimumPrecision || value->nativeType() != DataType::number) return value;
    auto number = value->number();
    if (!number || number->precision() >= precision()) return value;
    number->setPrecision(precision());
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
    if (assignment.rebinds) {
        bindingOf(assignment).value = std::move(value);
        return;
    }
    if (!assignment.isVariable) {
        bindings_.push_back({.name = assignment.name, .value = std::move(value)});
        return;
    }
    const int repetition =
        assignment.children.size() < 2 ? 1 : evaluate(*assignment.children[1])->asNumber().toInt32();
    if (isUnending_) return;
    if (!variables(assignment).set(assignment.name, repetition, std::move(value)))
        throw Error{error::outOfRange, "a variable has no such repetition"};
}

bool Evaluation::isTrue(const Node& node) {
    const DataRef value = evaluate(node);
    Work::chargeFor(*value);
    return value->asBoolean();
}

DataRef Evaluation::chain(const Node& node) {
    if (node.operators[0] == Operator::join) return joined(node);
    DataRef result = evaluate(*node.children[0]);
    for (std::size_t i = 0; i < node.operators.size(); ++i) {
        const Operator op = node.operators[i];
        const Node& next = *node.children[i + 1];
        // The right side of `and` and `or` is not evaluated when the left side decides.
        const bool isDecided = (op == Operator::logicalAnd && !result->asBoolean()) ||
                               (op == Operator::logicalOr && result->asBoolean());
        if (isDecided) {
            Work::chargeFor(*result);
            result = booleanResult(op == Operator::logicalOr);
            continue;
        }
        const DataRef right = evaluate(next);
        chargeFor(op, *result, *right, precision());
        result = applyOperator(op, *result, *right, precision());
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
    if (isUnending_) return questionMark();
    Work::chargeCopy(text.size());
    Work::charge(text.runs().size() / 256);
    return textResult(std::move(text));
}

DataVect Evaluation::evaluated(const Node& call) {
    DataVect arguments;
    arguments.reserve(call.children.size());
    for (const Node* child : call.children) {
        arguments.push_back(evaluate(*child));
        Work::chargeFor(*arguments.back());
    }
    return arguments;
}

DataRef Evaluation::call(const Node& node, bool isTail) {
    try {
        if (!node.function->custom) return callBuiltIn(node, isTail);
        if (!isTail) return callCustom(node);
        waitingArguments_ = evaluated(node);
        waiting_ = node.function.get();
        return nullptr;
    } catch (const std::overflow_error&) {
        return questionMark();
    } catch (const Error&) {
        if (failedCall_ == nullptr) failedCall_ = &node;
        throw;
    }
}

DataRef Evaluation::callBuiltIn(const Node& node, bool isTail) {
    const Function& function = *node.function;
    if (function.withdrawn) throw Error{error::functionNotFound};
    DataRef result;
    if (function.lazy) {
        const Restored tail(isTail_, isTail);
        result = function.lazy(*this, node.children);
        if (waiting_ != nullptr) return nullptr;
    } else {
        const DataVect arguments = evaluated(node);
        if (isUnending_) return questionMark();
        // An argument may have withdrawn the function it is meant for.
        if (function.withdrawn) throw Error{error::functionNotFound};
        result = function.eager(*this, arguments);
        if (result) Work::chargeFor(*result);
    }
    if (!result) return emptyResult();
    if (result->nativeType() == DataType::text) checkTextSize(result->asText().size());
    return result;
}

/// A failure inside a custom function has the place of its call, since the reader sees the caller's text.
DataRef Evaluation::callCustom(const Node& node) {
    try {
        return runCustom(*node.function, evaluated(node));
    } catch (const Error&) {
        failedCall_ = &node;
        throw;
    }
}

/// Runs a custom function, and those that it hands its result over to.
DataRef Evaluation::runCustom(const Function& function, DataVect arguments) {
    const Frame frame(*this);
    for (const Function* running = &function;;) {
        if (++settings_.recursion > settings_.recursionLimit || !hasStack()) isUnending_ = true;
        if (isUnending_) return questionMark();
        const ExpressionRef body = running->custom->expression(functions_, *environment_.file);
        bindings_.resize(firstOfFrame_);
        for (std::size_t i = 0; i < arguments.size(); ++i)
            bindings_.push_back({running->custom->parameters()[i], std::move(arguments[i])});
        DataRef result = body->root == nullptr ? emptyResult() : evaluate(*body->root, true);
        running = std::exchange(waiting_, nullptr);
        if (running == nullptr) return result;
        arguments = std::move(waitingArguments_);
    }
}

} // namespace host::calc
