#include "host/calc/Parser.h"

#include "host/calc/BuiltIns.h"
#include "host/calc/Catalogue.h"
#include "host/calc/ReservedWords.h"

#include <algorithm>
#include <array>
#include <span>

namespace host::calc {

namespace {

/// The operators of each binding, from the weakest. The last binding is stronger than a minus before it.
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

Parser::Parser(std::u16string_view source, std::shared_ptr<const FunctionTable> functions, FileContext* file,
               const RecordScope* scope, const std::vector<std::u16string_view>& bound)
    : file_(file), scope_(scope), expression_(std::make_shared<Expression>(source)),
      lexer_(expression_->source) {
    expression_->functions = std::move(functions);
    for (const std::u16string_view name : bound)
        bind(std::u16string(name));
}

ExpressionRef Parser::parse() {
    advance();
    if (at(Token::Kind::end)) return expression_;
    expression_->root = expression();
    if (at(Token::Kind::rightParenthesis)) fail(error::unbalancedParenthesis);
    if (!at(Token::Kind::end)) failForOperator();
    return expression_;
}

void Parser::advance() {
    try {
        token_ = lexer_.next();
    } catch (const Error&) {
        stop_.position = lexer_.position();
        stop_.length = 1;
        throw;
    }
    stop_.position = token_.position;
    stop_.length = token_.length;
}

bool Parser::take(Token::Kind kind) {
    if (!at(kind)) return false;
    advance();
    return true;
}

/// Takes the bracket that closes what was opened at a position.
void Parser::close(Token::Kind kind, std::uint32_t opening) {
    if (take(kind)) return;
    if (!at(Token::Kind::end)) failForOperator();
    stop_.opening = opening;
    fail(kind == Token::Kind::rightParenthesis ? error::unbalancedParenthesis : error::unexpectedEnd);
}

void Parser::fail(int code) const { throw Error{code}; }

/// An operator is missing; for a parenthesis in its place there is a code of its own.
void Parser::failForOperator() const {
    if (!at(Token::Kind::leftParenthesis)) fail(error::operatorExpected);
    throw Error{error::functionNotFound, "an operator is missing before `(`"};
}

Node& Parser::add(Node::Kind kind, const Token& token) {
    Node& node = expression_->add(kind);
    node.position = token.position;
    node.length = token.length;
    return node;
}

const Node* Parser::expression() {
    const Level level(*this);
    return chain(0);
}

const Node* Parser::chain(std::size_t binding) {
    const Node* first = operand(binding);
    if (!holds(bindings[binding], token_)) return first;
    Node& node = add(Node::Kind::chain, token_);
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
    return binding + 1 == powerBinding ? sign() : chain(binding + 1);
}

/// A plus before an operand changes nothing.
const Node* Parser::sign() {
    const bool isMinus = atOperator(Operator::subtract);
    if (!isMinus && !atOperator(Operator::add)) return chain(powerBinding);
    const Level level(*this);
    const Token token = token_;
    advance();
    if (!isMinus) return sign();
    Node& node = add(Node::Kind::negate, token);
    node.children.push_back(sign());
    return &node;
}

/// An operand of the strongest operators. A minus inside of such ("2 ^ -1") reaches no further than that
/// operand.
const Node* Parser::prefixed() {
    const bool isMinus = atOperator(Operator::subtract);
    if (!isMinus && !at(Token::Kind::logicalNot)) return primary();
    const Level level(*this);
    Node& node = add(isMinus ? Node::Kind::negate : Node::Kind::logicalNot, token_);
    advance();
    node.children.push_back(prefixed());
    return &node;
}

const Node* Parser::primary() {
    switch (token_.kind) {
    case Token::Kind::number:
    case Token::Kind::text: return literal();
    case Token::Kind::variable: return variable();
    case Token::Kind::leftParenthesis: return parenthesis();
    case Token::Kind::name: return name();
    case Token::Kind::leftBracket: fail(error::listNotAllowed);
    case Token::Kind::rightParenthesis:
        if (level_ == 1) fail(error::unbalancedParenthesis);
        [[fallthrough]];
    default: fail(error::operandExpected);
    }
}

const Node* Parser::literal() {
    Node& node = add(Node::Kind::literal, token_);
    if (at(Token::Kind::text)) {
        node.value = textResult(std::move(token_.text));
    } else {
        const auto number = Decimal::parse(token_.text);
        if (!number) fail(error::unreadableNumber);
        node.value = numberResult(*number);
    }
    advance();
    return &node;
}

const Node* Parser::variable() {
    Node& node = add(Node::Kind::variable, token_);
    node.name = foldName(token_.text);
    node.ofFile = token_.ofFile;
    advance();
    const std::uint32_t opening = token_.position;
    if (!take(Token::Kind::leftBracket)) return &node;
    node.children.push_back(expression());
    close(Token::Kind::rightBracket, opening);
    return &node;
}

const Node* Parser::parenthesis() {
    const std::uint32_t opening = token_.position;
    advance();
    const Node* inner = expression();
    close(Token::Kind::rightParenthesis, opening);
    return inner;
}

const Node* Parser::name() {
    const Token name = std::move(token_);
    advance();
    const bool isCall = at(Token::Kind::leftParenthesis);
    if (name.isQualified && !isCall) return field(name);
    if (name.isQualified) failOnName(name, isCall);
    const std::u16string folded = foldName(name.text);
    if (!isCall && slotOf(folded) != kNoSlot) return binding(name);
    if (name.isQuoted && !isCall) return field(name);
    if (name.isQuoted) failOnName(name, isCall);
    const auto function = functionNamed(folded);
    if (isCall && function) return call(function, name);
    if (isCall) failOnName(name, isCall);
    if (function && function->minimum == 0) {
        Node& node = add(Node::Kind::call, name);
        node.function = function;
        return &node;
    }
    if (const auto value = reservedWord(folded)) {
        Node& node = add(Node::Kind::literal, name);
        node.value = numberResult(*value);
        return &node;
    }
    if (function) checkCount(function, 0, name);
    return field(name);
}

const Node* Parser::field(const Token& name) {
    if (file_ == nullptr) failOnName(name, false);
    FieldContext& fields = file_->fields();
    const FieldContext::Found found = fields.find(scope_, name.table, name.text);
    if (found.error != error::none) failOnName(name, false);
    expression_->fields.push_back(found.place);
    Node& node = add(Node::Kind::field, name);
    node.occurrence = name.table;
    node.name = foldName(name.text);
    node.place = found.place;
    node.names = fields.names(scope_);
    const std::uint32_t opening = token_.position;
    if (!take(Token::Kind::leftBracket)) return &node;
    node.children.push_back(expression());
    close(Token::Kind::rightBracket, opening);
    return &node;
}

const Node* Parser::binding(const Token& name) {
    Node& node = add(Node::Kind::binding, name);
    node.slot = slotOf(foldName(name.text));
    return &node;
}

std::shared_ptr<const Function> Parser::functionNamed(std::u16string_view folded) const {
    if (auto function = expression_->functions->find(folded)) return function;
    if (file_ == nullptr) return nullptr;
    const auto row = file_->customFunctions().find(folded);
    return row == file_->customFunctions().end() ? nullptr : row->second;
}

/// Reports a name that nothing has. When its first words are a known name, an operator is missing after them.
void Parser::failOnName(const Token& name, bool isCall) {
    const int code = isCall ? error::functionNotFound : error::missingField;
    if (name.isQuoted || name.isQualified) fail(code, name);
    if (const CatalogueRow* row = findInCatalogue(name.text); row != nullptr && (isCall || row->minimum == 0))
        fail(error::notSupported, name);
    for (std::size_t blank = name.text.find(u' '); blank != std::u16string::npos;
         blank = name.text.find(u' ', blank + 1)) {
        const std::u16string first = foldName(std::u16string_view(name.text).substr(0, blank));
        if (slotOf(first) == kNoSlot && !functionNamed(first) && !reservedWord(first)) continue;
        const auto skipped = static_cast<std::uint32_t>(name.text.find_first_not_of(u' ', blank));
        Token rest = name;
        rest.position += skipped;
        rest.length -= skipped;
        fail(error::operatorExpected, rest);
    }
    fail(code, name);
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

/// The innermost binding of a folded name.
std::uint32_t Parser::slotOf(const std::u16string& name) const {
    const auto slots = slots_.find(name);
    return slots == slots_.end() ? kNoSlot : slots->second.back();
}

} // namespace host::calc
