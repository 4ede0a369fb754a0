#include "host/sql/Functions.h"
#include "host/sql/Parser.h"
#include "host/sql/Problems.h"
#include "host/sql/Values.h"

#include <algorithm>
#include <utility>

namespace host::sql {

namespace {

constexpr int kDeepest = 200; ///< levels of an expression; each needs a piece of the stack

ExpressionRef make(ExpressionKind kind, std::size_t position) {
    auto made = std::make_unique<Expression>();
    made->kind = kind;
    made->position = position;
    return made;
}

void adopt(Expression& parent, ExpressionRef child) {
    parent.depth = std::max(parent.depth, child->depth + 1);
    if (parent.depth > kDeepest) throw Problem{.code = Fql::refused, .position = parent.position};
    parent.operands.push_back(std::move(child));
}

template<typename... Children>
ExpressionRef make(ExpressionKind kind, std::size_t position, std::string word, Children... children) {
    ExpressionRef made = make(kind, position);
    made->word = std::move(word);
    (adopt(*made, std::move(children)), ...);
    return made;
}

ExpressionRef literal(std::size_t position, DataType type, std::u16string text) {
    ExpressionRef made = make(ExpressionKind::literal, position);
    made->type = type;
    made->name = std::move(text);
    return made;
}

ExpressionRef negated(ExpressionRef expression, bool isNegated) {
    expression->isNegated = isNegated;
    return expression;
}

/// Counts the nesting of parentheses, calls and queries.
class Level {
public:
    Level(int& depth, std::size_t position) : depth_(depth) {
        if (++depth_ > kDeepest) {
            --depth_;
            throw Problem{.code = Fql::refused, .position = position};
        }
    }
    ~Level() { --depth_; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    int& depth_;
};

} // namespace

ExpressionRef Parser::condition() {
    const Level level(depth_, token().position);
    return conjunction("OR");
}

ExpressionRef Parser::conjunction(std::string_view word) {
    const auto operand = [&] { return word == "OR" ? conjunction("AND") : negation(); };
    ExpressionRef left = operand();
    while (isNext(word)) {
        const std::size_t position = token().position;
        take(word);
        left = make(ExpressionKind::conjunction, position, std::string(word), std::move(left), operand());
    }
    return left;
}

ExpressionRef Parser::negation() {
    const std::size_t position = token().position;
    if (!take("NOT")) return predicate();
    const Level level(depth_, position);
    return make(ExpressionKind::negation, position, "NOT", negation());
}

ExpressionRef Parser::predicate() {
    ExpressionRef value = sum();
    const std::size_t position = token().position;
    if (take("IS")) {
        const bool isNegated = take("NOT");
        expect("NULL");
        return negated(make(ExpressionKind::isNull, position, "IS NULL", std::move(value)), isNegated);
    }
    const bool isNegated = take("NOT");
    if (take("LIKE")) return negated(likeTail(std::move(value)), isNegated);
    if (take("IN")) return negated(inTail(std::move(value)), isNegated);
    if (take("BETWEEN")) {
        ExpressionRef low = sum();
        expect("AND");
        return negated(
            make(ExpressionKind::between, position, "BETWEEN", std::move(value), std::move(low), sum()),
            isNegated);
    }
    if (isNegated) fail();
    return comparisonTail(std::move(value));
}

ExpressionRef Parser::likeTail(ExpressionRef value) {
    const std::size_t position = token().position;
    ExpressionRef like = make(ExpressionKind::like, position, "LIKE", std::move(value), sum());
    if (take("ESCAPE")) adopt(*like, sum());
    return like;
}

ExpressionRef Parser::inTail(ExpressionRef value) {
    const std::size_t position = token().position;
    if (isNext("(") && isNext("SELECT", 1)) {
        ExpressionRef in = make(ExpressionKind::inSelect, position, "IN", std::move(value));
        in->select = subselect();
        return in;
    }
    ExpressionRef in = make(ExpressionKind::inList, position, "IN", std::move(value));
    expect("(");
    do
        adopt(*in, sum());
    while (take(","));
    expect(")");
    return in;
}

ExpressionRef Parser::comparisonTail(ExpressionRef value) {
    static constexpr std::string_view signs[] = {"=", "<>", "<", "<=", ">", ">="};
    const std::size_t position = token().position;
    const auto* sign = std::find_if(std::begin(signs), std::end(signs), [&](auto s) { return take(s); });
    if (sign == std::end(signs)) return value;
    const bool isAll = isNext("ALL");
    if (isAll || isNext("ANY") || isNext("SOME")) {
        ++place_;
        ExpressionRef made = make(ExpressionKind::quantified, position, std::string(*sign), std::move(value));
        made->select = subselect();
        return negated(std::move(made), isAll);
    }
    return make(ExpressionKind::comparison, position, std::string(*sign), std::move(value), sum());
}

ExpressionRef Parser::sum() {
    ExpressionRef left = product();
    while (isNext("+") || isNext("-") || isNext("||")) {
        const Token& sign = token();
        ++place_;
        const bool isInterval = sign.word != "||" && isNext("INTERVAL");
        left = make(ExpressionKind::arithmetic, sign.position, sign.word, std::move(left),
                    isInterval ? interval() : product());
    }
    return left;
}

ExpressionRef Parser::product() {
    ExpressionRef left = power();
    while (isNext("*") || isNext("/")) {
        const Token& sign = token();
        ++place_;
        left = make(ExpressionKind::arithmetic, sign.position, sign.word, std::move(left), power());
    }
    return left;
}

ExpressionRef Parser::power() {
    ExpressionRef left = sign();
    while (isNext("^") || isNext("**")) {
        const std::size_t position = token().position;
        ++place_;
        left = make(ExpressionKind::arithmetic, position, "^", std::move(left), sign());
    }
    return left;
}

ExpressionRef Parser::sign() {
    const Token& sign = token();
    if (!isNext("+") && !isNext("-")) return primary();
    const Level level(depth_, sign.position);
    ++place_;
    return make(ExpressionKind::sign, sign.position, sign.word, this->sign());
}

ExpressionRef Parser::primary() {
    const Token& first = token();
    switch (first.kind) {
    case TokenKind::text: ++place_; return literal(first.position, DataType::text, first.text);
    case TokenKind::number: ++place_; return literal(first.position, DataType::number, first.text);
    case TokenKind::quotedName: return column();
    case TokenKind::word: return wordPrimary();
    default: break;
    }
    if (isNext("?")) return parameter();
    if (isNext("(")) return parenthesized();
    fail();
}

ExpressionRef Parser::parenthesized() {
    const std::size_t position = token().position;
    if (isNext("SELECT", 1)) {
        ExpressionRef made = make(ExpressionKind::subquery, position);
        made->select = subselect();
        return made;
    }
    expect("(");
    ExpressionRef inner = condition();
    expect(")");
    return inner;
}

ExpressionRef Parser::wordPrimary() {
    const Token& first = token();
    if (take("NULL")) return literal(first.position, DataType::invalid, {});
    if (take("CASE")) return choice();
    if (isNext("CAST")) return cast();
    if (take("EXISTS")) {
        ExpressionRef made = make(ExpressionKind::exists, first.position);
        made->select = subselect();
        return made;
    }
    static constexpr std::pair<std::string_view, DataType> moments[] = {
        {"DATE", DataType::date}, {"TIME", DataType::time}, {"TIMESTAMP", DataType::timestamp}};
    for (const auto& [word, type] : moments)
        if (first.word == word && token(1).kind == TokenKind::text) return moment(type);
    if (isNext("(", 1) || isMoment(first.word)) return call();
    return column();
}

ExpressionRef Parser::choice() {
    const Level level(depth_, token().position);
    ExpressionRef made = make(ExpressionKind::choice, token().position);
    made->hasValue = !isNext("WHEN");
    if (made->hasValue) adopt(*made, sum());
    expect("WHEN");
    do {
        adopt(*made, made->hasValue ? sum() : condition());
        expect("THEN");
        adopt(*made, sum());
    } while (take("WHEN"));
    made->hasElse = take("ELSE");
    if (made->hasElse) adopt(*made, sum());
    expect("END");
    return made;
}

ExpressionRef Parser::cast() {
    const Level level(depth_, token().position);
    ExpressionRef made = make(ExpressionKind::cast, token().position);
    expect("CAST");
    expect("(");
    adopt(*made, condition());
    expect("AS");
    made->number = 0;
    const std::size_t place = place_;
    try {
        made->type = type(made->number);
    } catch (const Problem&) {
        throw Problem{.code = Fql::badCast, .position = tokens_[place].position};
    }
    expect(")");
    return made;
}

ExpressionRef Parser::interval() {
    static constexpr std::string_view units[] = {"YEAR", "MONTH", "DAY", "HOUR", "MINUTE", "SECOND"};
    const std::size_t position = token().position;
    expect("INTERVAL");
    ExpressionRef count = sign();
    const auto* unit = std::find_if(std::begin(units), std::end(units), [&](auto u) { return take(u); });
    if (unit == std::end(units)) fail();
    return make(ExpressionKind::interval, position, std::string(*unit), std::move(count));
}

ExpressionRef Parser::moment(DataType type) {
    const std::size_t position = token().position;
    ++place_;
    const std::u16string given = text();
    const auto value = readSqlText(given, type);
    constexpr std::size_t dateLength = 10; // YYYY-MM-DD
    if (!value || (type == DataType::date && given.size() != dateLength))
        throw Problem{.code = Fql::badMoment, .position = position, .name = given};
    const std::string canonical = sqlText(*value, type);
    return literal(position, type, {canonical.begin(), canonical.end()});
}

ExpressionRef Parser::call() {
    const Level level(depth_, token().position);
    const Token& first = token();
    ++place_;
    ExpressionRef made = make(ExpressionKind::call, first.position);
    made->word = first.word;
    made->name = first.text;
    const bool hasList = take("(");
    if (hasList && isAggregate(made->word)) {
        made->isDistinct = take("DISTINCT");
        made->kind = ExpressionKind::aggregate;
        if (made->word == "COUNT" && !made->isDistinct && take("*")) {
            expect(")");
            return made;
        }
    }
    if (hasList && !take(")")) {
        do
            adopt(*made, condition());
        while (take(","));
        expect(")");
    }
    // MAX and MIN of two numbers are no aggregates.
    if (made->kind == ExpressionKind::aggregate && made->operands.size() == 2 && !made->isDistinct)
        made->kind = ExpressionKind::call;
    if (made->kind == ExpressionKind::call && !isFunction(made->word))
        throw Problem{.code = isAggregate(made->word) ? Fql::argumentCount : Fql::syntax,
                      .position = first.position,
                      .name = first.text};
    return made;
}

ExpressionRef Parser::column() {
    ExpressionRef made = make(ExpressionKind::column, token().position);
    const auto part = [&] {
        // The record's ID and its count of modifications are names of their own.
        if (isNext("ROWID")) return tokens_[place_++].text;
        return name();
    };
    made->name = part();
    if (take(".")) {
        made->qualifier = std::move(made->name);
        made->name = part();
    }
    made->number = repetition();
    return made;
}

int Parser::repetition() {
    constexpr double most = 32'000;
    if (!take("[")) return 1;
    const Token& given = token();
    const bool isNumber = given.kind == TokenKind::number && isNext("]", 1);
    const double place = isNumber ? std::stod(std::string(given.text.begin(), given.text.end())) : 0;
    if (place < 1 || place > most || place != static_cast<int>(place))
        throw Problem{.code = Fql::badRepetition, .position = given.position};
    place_ += 2;
    return static_cast<int>(place);
}

ExpressionRef Parser::parameter() {
    ExpressionRef made = make(ExpressionKind::parameter, token().position);
    expect("?");
    made->number = ++parameters_;
    return made;
}

void Parser::list(std::vector<ExpressionRef>& expressions) {
    do
        expressions.push_back(condition());
    while (takeNext(expressions.size()));
}

std::unique_ptr<Select> Parser::subselect() {
    const Level level(depth_, token().position);
    expect("(");
    auto inner = select(true);
    expect(")");
    return inner;
}

} // namespace host::sql
