#include "host/calc/Parser.h"

#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <span>

namespace host::calc {

namespace {

/// The operators of each binding, from the weakest. Those of the last bind tighter than a minus before them.
constexpr std::array loosest{Operator::logicalOr, Operator::logicalXor};
constexpr std::array conjunction{Operator::logicalAnd};
constexpr std::array comparisons{Operator::equal,       Operator::notEqual, Operator::less,
                                 Operator::lessOrEqual, Operator::greater,  Operator::greaterOrEqual};
constexpr std::array joining{Operator::join};
constexpr std::array sums{Operator::add, Operator::subtract};
constexpr std::array products{Operator::multiply, Operator::divide};
constexpr std::array powers{Operator::power};
constexpr std::array<std::span<const Operator>, 7> bindings{loosest, conjunction, comparisons, joining,
                                                            sums,    products,    powers};
constexpr std::size_t powerBinding = bindings.size() - 1;

bool holds(std::span<const Operator> operators, const Token& token) {
    return token.kind == Token::Kind::op &&
           std::find(operators.begin(), operators.end(), token.op) != operators.end();
}

constexpr std::u16string_view letName = u"let";

} // namespace

/// One level of nesting while it lives.
class Parser::Level {
public:
    explicit Level(Parser& parser) : parser_(parser) {
        if (parser.level_ >= kMostLevels) parser.fail(error::unspecific);
        ++parser.level_;
        parser.expression_->levels = std::max(parser.expression_->levels, parser.level_);
    }
    ~Level() { --parser_.level_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    Parser& parser_;
};

Parser::Parser(std::u16string_view source, std::shared_ptr<const FunctionTable> functions,
               const std::vector<std::u16string_view>& bound)
    : lexer_(source), expression_(std::make_shared<Expression>()) {
    expression_->functions = std::move(functions);
    for (const std::u16string_view name : bound)
        bind(std::u16string(name));
}

ExpressionRef Parser::parse() {
    advance();
    if (at(Token::Kind::end)) return expression_;
    expression_->root = expression();
    if (at(Token::Kind::rightParenthesis)) fail(error::unbalancedParenthesis);
    if (!at(Token::Kind::end)) fail(error::operatorExpected);
    return expression_;
}

void Parser::advance() {
    try {
        token_ = lexer_.next();
    } catch (const Error&) {
        position_ = lexer_.position();
        throw;
    }
    position_ = token_.position;
}

bool Parser::take(Token::Kind kind) {
    if (!at(kind)) return false;
    advance();
    return true;
}

void Parser::fail(int code) const { throw Error{code}; }

void Parser::fail(int code, std::uint32_t position) {
    position_ = position;
    fail(code);
}

const Node* Parser::expression() {
    const Level level(*this);
    return chain(0);
}

const Node* Parser::chain(std::size_t binding) {
    const Node* first = operand(binding);
    if (!holds(bindings[binding], token_)) return first;
    Node& node = expression_->add(Node::Kind::chain);
    node.children.push_back(first);
    while (holds(bindings[binding], token_)) {
        node.operators.push_back(token_.op);
        advance();
        node.children.push_back(operand(binding));
    }
    return &node;
}

const Node* Parser::operand(std::size_t binding) {
    if (binding == powerBinding) return prefixed();
    return binding + 1 == powerBinding ? minus() : chain(binding + 1);
}

const Node* Parser::minus() {
    if (!at(Token::Kind::op) || token_.op != Operator::subtract) return chain(powerBinding);
    const Level level(*this);
    advance();
    Node& node = expression_->add(Node::Kind::negate);
    node.children.push_back(minus());
    return &node;
}

/// An operand of the tightest operators. A minus inside of such ("2 ^ -1") reaches no further than that
/// operand.
const Node* Parser::prefixed() {
    const bool isMinus = at(Token::Kind::op) && token_.op == Operator::subtract;
    if (!isMinus && !at(Token::Kind::logicalNot)) return primary();
    const Level level(*this);
    advance();
    Node& node = expression_->add(isMinus ? Node::Kind::negate : Node::Kind::logicalNot);
    node.children.push_back(prefixed());
    return &node;
}

const Node* Parser::primary() {
    switch (token_.kind) {
    case Token::Kind::number:
    case Token::Kind::text: return literal();
    case Token::Kind::variable: return variable();
    case Token::Kind::leftParenthesis: return parenthesis();
    case Token::Kind::name: return nameOrCall();
    case Token::Kind::leftBracket: fail(error::listNotAllowed);
    case Token::Kind::rightParenthesis:
        if (level_ == 1) fail(error::unbalancedParenthesis);
        [[fallthrough]];
    default: fail(error::operandExpected);
    }
}

const Node* Parser::literal() {
    Node& node = expression_->add(Node::Kind::literal);
    if (at(Token::Kind::text)) {
        node.value = textResult(std::move(token_.text));
    } else {
        const auto number = [this]() -> std::optional<Decimal> {
            try {
                return Decimal::parse(token_.text);
            } catch (const std::overflow_error&) {
                return std::nullopt;
            }
        }();
        node.value = number ? numberResult(*number) : questionMark();
    }
    advance();
    return &node;
}

const Node* Parser::variable() {
    Node& node = expression_->add(Node::Kind::variable);
    node.name = foldName(token_.text);
    node.ofFile = token_.ofFile;
    advance();
    if (!take(Token::Kind::leftBracket)) return &node;
    node.children.push_back(expression());
    if (!take(Token::Kind::rightBracket)) fail(error::unbalancedParenthesis);
    return &node;
}

const Node* Parser::parenthesis() {
    advance();
    const Node* inner = expression();
    if (!take(Token::Kind::rightParenthesis))
        fail(at(Token::Kind::end) ? error::unbalancedParenthesis : error::operatorExpected);
    return inner;
}

const Node* Parser::nameOrCall() {
    const std::uint32_t start = position_;
    const std::u16string name = foldName(token_.text);
    advance();
    const bool isCall = at(Token::Kind::leftParenthesis);
    if (const auto slots = slots_.find(name); !isCall && slots != slots_.end()) {
        Node& node = expression_->add(Node::Kind::binding);
        node.slot = slots->second.back();
        return &node;
    }
    const auto function = expression_->functions->find(name);
    if (!function) fail(isCall ? error::functionNotFound : error::missingField, start);
    if (isCall) {
        advance();
        return name == letName ? let(function, start) : call(function, start);
    }
    if (function->minimum > 0) fail(error::tooFewParameters, start);
    Node& node = expression_->add(Node::Kind::call);
    node.function = function;
    return &node;
}

const Node* Parser::call(const std::shared_ptr<const Function>& function, std::uint32_t start) {
    Node& node = expression_->add(Node::Kind::call);
    node.function = function;
    if (!at(Token::Kind::rightParenthesis)) {
        do {
            if (function->listSize > 0 && take(Token::Kind::leftBracket)) {
                bracketList(node);
                continue;
            }
            const bool wantsWords = std::cmp_equal(node.children.size(), function->wordArgument);
            node.children.push_back(wantsWords ? words() : expression());
        } while (take(Token::Kind::semicolon));
    }
    closeCall(node, node.children.size(), start);
    return &node;
}

/// The rest of arguments that stand together in brackets, [ a ; b ].
void Parser::bracketList(Node& call) {
    call.children.push_back(expression());
    for (int given = 1; given < call.function->listSize; ++given) {
        if (!take(Token::Kind::semicolon)) fail(error::tooFewParameters);
        call.children.push_back(expression());
    }
    if (!take(Token::Kind::rightBracket)) fail(error::operatorExpected);
}

/// The end of a call, and whether it has the arguments it should.
void Parser::closeCall(Node& node, std::size_t given, std::uint32_t start) {
    if (at(Token::Kind::end)) fail(error::unbalancedParenthesis);
    if (!at(Token::Kind::rightParenthesis)) fail(error::operatorExpected);
    const bool isTooFew = std::cmp_less(given, node.function->minimum);
    const bool isTooMany = node.function->maximum >= 0 && std::cmp_greater(given, node.function->maximum);
    if (isTooFew || isTooMany) fail(isTooFew ? error::tooFewParameters : error::tooManyParameters, start);
    advance();
}

/// Let ( name = value ; body ) and Let ( [ name = value ; … ] ; body ). A name that is bound again hides its
/// earlier value from then on.
const Node* Parser::let(const std::shared_ptr<const Function>& function, std::uint32_t start) {
    const std::size_t outer = bound_.size();
    Node& node = expression_->add(Node::Kind::call);
    node.function = function;
    std::size_t given = 0;
    if (take(Token::Kind::leftBracket)) {
        while (!take(Token::Kind::rightBracket)) {
            node.children.push_back(assignment());
            if (take(Token::Kind::semicolon) || at(Token::Kind::rightBracket)) continue;
            fail(at(Token::Kind::end) ? error::unexpectedEnd : error::operatorExpected);
        }
        ++given;
    } else if (!at(Token::Kind::rightParenthesis)) {
        node.children.push_back(assignment());
        ++given;
    }
    for (; take(Token::Kind::semicolon); ++given)
        node.children.push_back(expression());
    closeCall(node, given, start);
    unbindTo(outer);
    return &node;
}

const Node* Parser::assignment() {
    const bool isVariable = at(Token::Kind::variable);
    if (!isVariable && !at(Token::Kind::name))
        fail(at(Token::Kind::end) ? error::unexpectedEnd : error::nameMissing);
    Node& node = expression_->add(Node::Kind::assignment);
    node.isVariable = isVariable;
    node.ofFile = token_.ofFile;
    node.name = foldName(token_.text);
    advance();
    const Node* repetition = nullptr;
    if (isVariable && take(Token::Kind::leftBracket)) {
        repetition = expression();
        if (!take(Token::Kind::rightBracket)) fail(error::unbalancedParenthesis);
    }
    if (!at(Token::Kind::op) || token_.op != Operator::equal)
        fail(at(Token::Kind::end) ? error::unexpectedEnd : error::operatorExpected);
    advance();
    node.children.push_back(expression());
    if (repetition != nullptr) node.children.push_back(repetition);
    if (!isVariable) bind(node.name);
    return &node;
}

const Node* Parser::words() {
    Node& node = expression_->add(Node::Kind::words);
    for (;;) {
        if (!at(Token::Kind::name)) fail(error::operandExpected);
        node.words.push_back(foldName(token_.text));
        advance();
        if (!at(Token::Kind::op) || token_.op != Operator::add) return &node;
        advance();
    }
}

void Parser::bind(const std::u16string& name) {
    slots_[name].push_back(static_cast<std::uint32_t>(bound_.size()));
    bound_.push_back(name);
}

void Parser::unbindTo(std::size_t size) {
    while (bound_.size() > size) {
        const auto slots = slots_.find(bound_.back());
        slots->second.pop_back();
        if (slots->second.empty()) slots_.erase(slots);
        bound_.pop_back();
    }
}

} // namespace host::calc
