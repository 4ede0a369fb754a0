#include "host/sql/Translator.h"

#include <utility>

/// Expressions that are true, false or unknown.

namespace host::sql {

namespace {

std::string notIf(bool isNegated, std::string sql) {
    return isNegated ? "(NOT " + std::move(sql) + ")" : std::move(sql);
}

} // namespace

std::string Translator::condition(const Expression& expression, bool allowsAggregate) {
    allowsAggregate_ = allowsAggregate;
    Piece piece = emit(expression);
    if (piece.type != DataType::boolean)
        throw Problem{.code = Fql::noCondition, .position = expression.position};
    return std::move(piece.sql);
}

Translator::Piece Translator::operand(const Expression& expression, bool allowsAggregate, DataType other,
                                      std::size_t position) {
    allowsAggregate_ = allowsAggregate;
    Piece piece = settled(expression);
    const bool isKnown = other != DataType::invalid && piece.type != DataType::invalid;
    if (piece.type == DataType::boolean || piece.type == DataType::binary || (isKnown && piece.type != other))
        throw Problem{.code = Fql::comparedTypes, .position = position};
    return piece;
}

Translator::Piece Translator::conjunction(const Expression& expression, bool allowsAggregate) {
    // A chain stays without parentheses, because the store's reader allows few of them in each other.
    const auto isSame = [&](const Expression& side) {
        return side.kind == ExpressionKind::conjunction && side.word == expression.word;
    };
    std::string sides[2];
    for (std::size_t i = 0; i < 2; ++i) {
        const Expression& side = *expression.operands[i];
        sides[i] = condition(side, allowsAggregate);
        if (i == 0 && isSame(side)) sides[i] = sides[i].substr(1, sides[i].size() - 2);
    }
    return {"(" + sides[0] + " " + expression.word + " " + sides[1] + ")", DataType::boolean};
}

Translator::Piece Translator::comparison(const Expression& expression, bool allowsAggregate) {
    const Piece left =
        operand(*expression.operands[0], allowsAggregate, DataType::invalid, expression.position);
    const Piece right = operand(*expression.operands[1], allowsAggregate, left.type, expression.position);
    return {"(" + left.sql + " " + expression.word + " " + right.sql + ")", DataType::boolean};
}

/// The store has no ANY and ALL: their answer comes from the extremes of the comparisons, and is unknown
/// where none of them decides and one is unknown.
Translator::Piece Translator::quantified(const Expression& expression) {
    const Piece left = operand(*expression.operands[0], false, DataType::invalid, expression.position);
    std::vector<DataType> types;
    const std::string select = inner(*expression.select, types);
    if (types.size() != 1)
        throw Problem{.code = Fql::subqueryColumns, .position = expression.select->position};
    if (left.type != DataType::invalid && types[0] != DataType::invalid && left.type != types[0])
        throw Problem{.code = Fql::comparedTypes, .position = expression.position};
    const std::string name = "t" + std::to_string(tables_++);
    const std::string compared = "SELECT (" + left.sql + " " + expression.word + " " + name +
                                 ".v) AS c FROM (SELECT NULL AS v WHERE 0 UNION ALL SELECT * FROM " + select +
                                 ") AS " + name;
    const std::string decided = expression.isNegated ? "WHEN min(c) = 0 THEN 0" : "WHEN max(c) = 1 THEN 1";
    return {"(SELECT CASE " + decided + " WHEN count(*) > count(c) THEN NULL ELSE " +
                (expression.isNegated ? "1" : "0") + " END FROM (" + compared + "))",
            DataType::boolean};
}

Translator::Piece Translator::like(const Expression& expression, bool allowsAggregate) {
    std::string call = "kestrel__like(";
    for (std::size_t i = 0; i < expression.operands.size(); ++i)
        call += (i == 0 ? "" : ", ") +
                operand(*expression.operands[i], allowsAggregate, DataType::text, expression.position).sql;
    return {notIf(expression.isNegated, call + ")"), DataType::boolean};
}

Translator::Piece Translator::isNull(const Expression& expression, bool allowsAggregate) {
    allowsAggregate_ = allowsAggregate;
    const Piece value = emit(*expression.operands[0]);
    if (value.type == DataType::boolean)
        throw Problem{.code = Fql::incompatibleTypes, .position = expression.position};
    return {"(" + value.sql + (expression.isNegated ? " IS NOT NULL)" : " IS NULL)"), DataType::boolean};
}

Translator::Piece Translator::between(const Expression& expression, bool allowsAggregate) {
    const Piece value =
        operand(*expression.operands[0], allowsAggregate, DataType::invalid, expression.position);
    const Piece low = operand(*expression.operands[1], allowsAggregate, value.type, expression.position);
    const Piece high = operand(*expression.operands[2], allowsAggregate, value.type, expression.position);
    return {notIf(expression.isNegated, "(" + value.sql + " BETWEEN " + low.sql + " AND " + high.sql + ")"),
            DataType::boolean};
}

Translator::Piece Translator::inList(const Expression& expression, bool allowsAggregate) {
    const Piece value =
        operand(*expression.operands[0], allowsAggregate, DataType::invalid, expression.position);
    std::string list;
    for (std::size_t i = 1; i < expression.operands.size(); ++i)
        list += (i == 1 ? "" : ", ") +
                operand(*expression.operands[i], allowsAggregate, value.type, expression.position).sql;
    return {notIf(expression.isNegated, "(" + value.sql + " IN (" + list + "))"), DataType::boolean};
}

Translator::Piece Translator::inSelect(const Expression& expression) {
    const Piece value = operand(*expression.operands[0], false, DataType::invalid, expression.position);
    std::vector<DataType> types;
    const std::string select = inner(*expression.select, types);
    if (types.size() != 1)
        throw Problem{.code = Fql::subqueryColumns, .position = expression.select->position};
    if (value.type != DataType::invalid && types[0] != DataType::invalid && value.type != types[0])
        throw Problem{.code = Fql::comparedTypes, .position = expression.position};
    return {notIf(expression.isNegated, "(" + value.sql + " IN " + select + ")"), DataType::boolean};
}

Translator::Piece Translator::subquery(const Expression& expression) {
    std::vector<DataType> types;
    std::string select = inner(*expression.select, types);
    if (expression.kind == ExpressionKind::exists) return {"(EXISTS " + select + ")", DataType::boolean};
    if (types.size() != 1)
        throw Problem{.code = Fql::subqueryColumns, .position = expression.select->position};
    return {std::move(select), types[0]};
}

} // namespace host::sql
