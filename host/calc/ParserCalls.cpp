#include "host/calc/BuiltIns.h"
#include "host/calc/Parser.h"

#include <algorithm>
#include <array>
#include <utility>

/// Calls of functions, and the forms that their parameters may have.

namespace host::calc {

namespace {

/// Whether a node calculates its value, so that it is no field and no variable. Three functions may stand for
/// a field.
bool calculates(const Node& node) {
    constexpr std::array kinds{Node::Kind::literal, Node::Kind::chain, Node::Kind::call, Node::Kind::negate,
                               Node::Kind::logicalNot};
    constexpr std::array<std::u16string_view, 3> references{u"GetField", u"Evaluate", u"Self"};
    if (std::ranges::any_of(references, [&](auto function) { return isCallOf(node, function); }))
        return false;
    return std::ranges::find(kinds, node.kind) != kinds.end();
}

} // namespace

const Node* Parser::call(const std::shared_ptr<const Function>& function, const Token& name) {
    const std::uint32_t opening = token_.position;
    const std::size_t outer = bound_.size();
    Node& node = add(Node::Kind::call, name);
    node.function = function;
    advance();
    std::size_t given = 0;
    if (function->form == Form::assignment) {
        given = let(node);
    } else if (function->form == Form::loop) {
        given = loop(node);
    } else {
        arguments(node);
        given = node.children.size();
    }
    close(Token::Kind::rightParenthesis, opening);
    checkCount(function, given, name);
    if (function->form == Form::field && calculates(*node.children[0]))
        fail(error::fieldExpected, *node.children[0]);
    unbindTo(outer);
    return &node;
}

void Parser::checkCount(const std::shared_ptr<const Function>& function, std::size_t given,
                        const Token& name) {
    const bool isTooFew = std::cmp_less(given, function->minimum);
    const bool isTooMany = function->maximum >= 0 && std::cmp_greater(given, function->maximum);
    if (!isTooFew && !isTooMany) return;
    stop_.function = function;
    fail(isTooFew ? error::tooFewParameters : error::tooManyParameters, name);
}

void Parser::arguments(Node& call) {
    if (at(Token::Kind::rightParenthesis)) return;
    if (call.function->listSize > 0) return withLists(call);
    do {
        const Form form = call.function->form;
        if (form == Form::word && call.children.empty()) {
            word(call);
        } else if (form == Form::triggers && !call.children.empty() && at(Token::Kind::leftBracket)) {
            triggers(call);
        } else {
            call.children.push_back(expression());
        }
    } while (take(Token::Kind::semicolon));
}

/// The arguments before those that may stand in brackets, then either lists or one argument each.
void Parser::withLists(Node& call) {
    const auto before = static_cast<std::size_t>(call.function->minimum - call.function->listSize);
    bool hasLists = false;
    do {
        if (call.children.size() == before && at(Token::Kind::leftBracket)) hasLists = true;
        if (hasLists)
            list(call);
        else
            call.children.push_back(expression());
        if (!hasLists && std::cmp_greater(call.children.size(), call.function->minimum))
            fail(error::tooManyParameters, call);
    } while (take(Token::Kind::semicolon));
}

/// Arguments in brackets, `[ a ; b ]`.
void Parser::list(Node& call) {
    const std::uint32_t opening = token_.position;
    if (!take(Token::Kind::leftBracket)) fail(error::tooFewParameters);
    call.children.push_back(expression());
    for (int given = 1; given < call.function->listSize; ++given) {
        if (at(Token::Kind::rightBracket)) fail(error::tooFewParameters);
        if (!take(Token::Kind::semicolon)) close(Token::Kind::rightBracket, opening);
        call.children.push_back(expression());
    }
    if (at(Token::Kind::semicolon)) fail(error::tooManyParameters);
    close(Token::Kind::rightBracket, opening);
}

/// A list of what a result depends on; it stands for one empty argument.
void Parser::triggers(Node& call) {
    const std::uint32_t opening = token_.position;
    Node& node = add(Node::Kind::literal, token_);
    node.value = emptyResult();
    do {
        advance();
        expression();
    } while (at(Token::Kind::semicolon));
    close(Token::Kind::rightBracket, opening);
    call.children.push_back(&node);
}

void Parser::word(Node& call) {
    if (at(Token::Kind::end) || at(Token::Kind::semicolon)) fail(error::operandExpected);
    if (!at(Token::Kind::name) || token_.isQualified) fail(error::invalidGetParameter);
    Node& node = add(Node::Kind::word, token_);
    node.name = foldName(token_.text);
    if (file_ != nullptr && !call.function->knowsWord(*file_, node.name)) fail(error::invalidGetParameter);
    advance();
    call.children.push_back(&node);
}

/// Let ( name = value ; body ) and Let ( [ name = value ; … ] ; body ). A name that is bound again hides its
/// earlier value from then on. Gives the number of parameters, as every form does.
std::size_t Parser::let(Node& call) {
    std::size_t given = assignments(call);
    for (; take(Token::Kind::semicolon); ++given)
        call.children.push_back(expression());
    return given;
}

/// While ( [ name = value ; … ] ; condition ; [ name = value ; … ] ; result ). The second list gives new
/// values to the names of the first; a name that only the second has ends with each turn.
std::size_t Parser::loop(Node& call) {
    const auto first = static_cast<std::uint32_t>(bound_.size());
    std::size_t given = assignments(call);
    if (take(Token::Kind::semicolon)) {
        call.children.push_back(expression());
        ++given;
    }
    const std::size_t turn = bound_.size();
    if (take(Token::Kind::semicolon)) given += assignments(call, first);
    unbindTo(turn);
    for (; take(Token::Kind::semicolon); ++given)
        call.children.push_back(expression());
    return given;
}

/// One parameter: an assignment, or any number of them in brackets. Gives how many parameters there were.
std::size_t Parser::assignments(Node& call, std::uint32_t firstOfLoop) {
    if (at(Token::Kind::rightParenthesis)) return 0;
    const std::uint32_t opening = token_.position;
    if (!take(Token::Kind::leftBracket)) {
        call.children.push_back(assignment(firstOfLoop));
        return 1;
    }
    while (!at(Token::Kind::rightBracket)) {
        call.children.push_back(assignment(firstOfLoop));
        if (!take(Token::Kind::semicolon)) break;
    }
    close(Token::Kind::rightBracket, opening);
    return 1;
}

const Node* Parser::assignment(std::uint32_t firstOfLoop) {
    const bool isVariable = at(Token::Kind::variable);
    if (!isVariable && (!at(Token::Kind::name) || token_.isQualified))
        fail(at(Token::Kind::end) ? error::unexpectedEnd : error::nameMissing);
    Node& node = add(Node::Kind::assignment, token_);
    node.isVariable = isVariable;
    node.ofFile = token_.ofFile;
    node.name = foldName(token_.text);
    advance();
    const Node* repetition = nullptr;
    const std::uint32_t opening = token_.position;
    if (isVariable && take(Token::Kind::leftBracket)) {
        repetition = expression();
        close(Token::Kind::rightBracket, opening);
    }
    if (!atOperator(Operator::equal))
        fail(at(Token::Kind::end) ? error::unexpectedEnd : error::operatorExpected);
    advance();
    node.children.push_back(expression());
    if (repetition != nullptr) node.children.push_back(repetition);
    if (isVariable) return &node;
    node.slot = slotOf(node.name);
    node.rebinds = firstOfLoop != kNoSlot && node.slot != kNoSlot && node.slot >= firstOfLoop;
    if (!node.rebinds) bind(node.name);
    return &node;
}

} // namespace host::calc
