#include "host/sql/Functions.h"
#include "host/sql/SystemTables.h"
#include "host/sql/Translator.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <utility>

/// Expressions that have a value.

namespace host::sql {

namespace {

std::string callOf(std::string_view function, std::initializer_list<std::string_view> arguments) {
    std::string call = storeName(function) + "(";
    for (const std::string_view argument : arguments) {
        if (call.back() != '(') call += ", ";
        call += argument;
    }
    return call + ")";
}

/// Whether a parameter with that letter takes a value of the type.
bool fits(DataType type, char letter) {
    if (type == DataType::invalid) return true;
    switch (letter) {
    case 'n': return type == DataType::number;
    case 's': return type == DataType::text;
    case 'd': return type == DataType::date || type == DataType::timestamp;
    case 't': return type == DataType::time || type == DataType::timestamp;
    default: return false;
    }
}

bool isEmptyText(const Expression& expression) {
    return expression.kind == ExpressionKind::literal && expression.type == DataType::text &&
           expression.name.empty();
}

} // namespace

Translator::Piece Translator::emit(const Expression& expression) {
    const bool allowsAggregate = std::exchange(allowsAggregate_, false);
    const std::size_t before = scope_ == nullptr ? 0 : scope_->bare.size();
    Piece piece = emitKind(expression, allowsAggregate);
    // An expression that GROUP BY names may be built of any columns.
    if (scope_ != nullptr &&
        std::find(scope_->groups.begin(), scope_->groups.end(), piece.sql) != scope_->groups.end())
        scope_->bare.resize(before);
    return piece;
}

Translator::Piece Translator::emitKind(const Expression& expression, bool allowsAggregate) {
    switch (expression.kind) {
    case ExpressionKind::literal: return literal(expression);
    case ExpressionKind::parameter: return parameter(expression);
    case ExpressionKind::column: return column(expression);
    case ExpressionKind::sign: return sign(expression);
    case ExpressionKind::arithmetic: return arithmetic(expression);
    case ExpressionKind::conjunction: return conjunction(expression, allowsAggregate);
    case ExpressionKind::negation:
        return {"(NOT " + condition(*expression.operands[0], allowsAggregate) + ")", DataType::boolean};
    case ExpressionKind::comparison: return comparison(expression, allowsAggregate);
    case ExpressionKind::quantified: return quantified(expression);
    case ExpressionKind::like: return like(expression, allowsAggregate);
    case ExpressionKind::isNull: return isNull(expression, allowsAggregate);
    case ExpressionKind::between: return between(expression, allowsAggregate);
    case ExpressionKind::inList: return inList(expression, allowsAggregate);
    case ExpressionKind::inSelect: return inSelect(expression);
    case ExpressionKind::exists:
    case ExpressionKind::subquery: return subquery(expression);
    case ExpressionKind::call: return call(expression);
    case ExpressionKind::aggregate:
        if (!allowsAggregate) throw Problem{.code = Fql::aggregateInside, .position = expression.position};
        return aggregate(expression);
    case ExpressionKind::choice: return choice(expression);
    case ExpressionKind::cast: return cast(expression);
    case ExpressionKind::interval: break; // stands beside + and - alone
    }
    throw Problem{.code = Fql::syntax, .position = expression.position};
}

Translator::Piece Translator::settled(const Expression& expression) {
    Piece piece = emit(expression);
    if (!piece.isNoisy) return piece;
    return {callOf("_SETTLED", {piece.sql}), piece.type};
}

Translator::Piece Translator::literal(const Expression& expression) {
    if (expression.type == DataType::number) return {toUtf8(expression.name), DataType::number};
    // Empty text is never stored, so nothing compares to it.
    if (expression.name.empty()) return {"NULL", expression.type};
    return {quotedText(expression.name), expression.type};
}

Translator::Piece Translator::parameter(const Expression& expression) {
    const auto place = static_cast<std::size_t>(expression.number);
    if (place > parameters_.size() || !parameters_[place - 1])
        throw Problem{.code = Fql::refused, .position = expression.position};
    const Data& value = *parameters_[place - 1];
    const DataType type = value.nativeType() == DataType::boolean ? DataType::number : value.nativeType();
    const std::string name = "?" + std::to_string(place);
    if (value.isEmpty()) return {name, DataType::invalid};
    // A number of many digits is bound as its text.
    return {type == DataType::number ? "CAST(" + name + " AS NUMERIC)" : name, type};
}

Translator::Piece Translator::sign(const Expression& expression) {
    const Piece value = emit(*expression.operands[0]);
    if (!fits(value.type, 'n'))
        throw Problem{.code = Fql::incompatibleTypes, .position = expression.position};
    return {"(" + expression.word + " " + value.sql + ")", DataType::number, value.isNoisy};
}

Translator::Piece Translator::plusInterval(const Expression& expression, const Piece& left) {
    static constexpr std::array<std::pair<std::string_view, const char*>, 6> units{{{"YEAR", "'Y'"},
                                                                                    {"MONTH", "'M'"},
                                                                                    {"DAY", "'D'"},
                                                                                    {"HOUR", "'h'"},
                                                                                    {"MINUTE", "'m'"},
                                                                                    {"SECOND", "'s'"}}};
    const Expression& interval = *expression.operands[1];
    const Piece count = emit(*interval.operands[0]);
    const auto* const unit = std::find_if(units.begin(), units.end(),
                                          [&](const auto& each) { return each.first == interval.word; });
    const bool isOfDate = unit - units.begin() < 3;
    const bool isDated = left.type == DataType::date || left.type == DataType::timestamp;
    const bool isTimed = left.type == DataType::time || left.type == DataType::timestamp;
    if (!(isOfDate ? isDated : isTimed) || !fits(count.type, 'n'))
        throw Problem{.code = Fql::incompatibleTypes, .position = expression.position};
    const std::string signedCount = expression.word == "-" ? "(- " + count.sql + ")" : count.sql;
    return {callOf("_ADD_INTERVAL", {left.sql, signedCount, unit->second}), left.type};
}

Translator::Piece Translator::arithmetic(const Expression& expression) {
    const auto side = [&](const Expression& operand) {
        return isEmptyText(operand) ? Piece{"''", DataType::text} : emit(operand);
    };
    const Piece left = side(*expression.operands[0]);
    if (expression.operands[1]->kind == ExpressionKind::interval) return plusInterval(expression, left);
    const Piece right = side(*expression.operands[1]);
    const std::string& word = expression.word;
    const auto both = [&](char letter) { return fits(left.type, letter) && fits(right.type, letter); };
    const auto infix = [&](const std::string& sign) {
        return "(" + left.sql + " " + sign + " " + right.sql + ")";
    };
    const bool isUnknown = left.type == DataType::invalid && right.type == DataType::invalid;
    if (both('s') && (word == "||" || (word == "+" && !isUnknown))) return {infix("||"), DataType::text};
    if (both('s') && word == "-" && !isUnknown)
        return {callOf("_JOIN_BEFORE_BLANKS", {left.sql, right.sql}), DataType::text};
    if (both('n') && word == "/") return {callOf("_QUOTIENT", {left.sql, right.sql}), DataType::number, true};
    if (both('n') && word == "^") return {callOf("_POWER", {left.sql, right.sql}), DataType::number, true};
    if (both('n') && word != "||") return {infix(word), DataType::number, true};
    if (left.type == DataType::date && right.type == DataType::date && word == "-")
        return {callOf("_DAYS_BETWEEN", {left.sql, right.sql}), DataType::number};
    if (left.type == DataType::date && fits(right.type, 'n') && (word == "+" || word == "-"))
        return {callOf("_ADD_DAYS", {left.sql, word == "-" ? "(- " + right.sql + ")" : right.sql}),
                DataType::date};
    if (right.type == DataType::date && fits(left.type, 'n') && word == "+")
        return {callOf("_ADD_DAYS", {right.sql, left.sql}), DataType::date};
    throw Problem{.code = Fql::incompatibleTypes, .position = expression.position};
}

Translator::Piece Translator::call(const Expression& expression) {
    const std::string& word = expression.word;
    const auto wrongCount = [&] {
        return Problem{.code = Fql::argumentCount, .position = expression.position, .name = expression.name};
    };
    const std::size_t count = expression.operands.size();
    if (word == "COALESCE" || word == "NULLIF") {
        if (word == "NULLIF" ? count != 2 : count < 2) throw wrongCount();
        return common(expression, word == "NULLIF" ? "nullif" : "coalesce");
    }
    if (word == "STRVAL") {
        if (count != 1) throw wrongCount();
        return strval(expression);
    }
    if (word == "GETAS") {
        if (count != 2) throw wrongCount();
        Piece container = emit(*expression.operands[0]);
        if (container.type == DataType::binary && fits(emit(*expression.operands[1]).type, 's'))
            return container;
        throw Problem{.code = Fql::argumentType, .position = expression.position, .name = expression.name};
    }
    const std::string name = word == "MAX" || word == "MIN" ? "_" + word : word;
    const FunctionRow* const row = functionRow(name);
    if (row == nullptr) throw Problem{.code = Fql::syntax, .position = expression.position};
    const std::size_t optional = std::min(row->parameters.find('?'), row->parameters.size());
    std::string letters(row->parameters);
    std::erase(letters, '?');
    if (count < optional || count > letters.size()) throw wrongCount();
    std::string text = storeName(name) + "(";
    for (std::size_t i = 0; i < count; ++i) {
        const Piece argument = settled(*expression.operands[i]);
        if (!fits(argument.type, letters[i]))
            throw Problem{.code = Fql::argumentType,
                          .position = expression.operands[i]->position,
                          .name = expression.name};
        text += (i == 0 ? "" : ", ") + argument.sql;
    }
    return {text + ")", row->result, row->result == DataType::number};
}

/// COALESCE and NULLIF: arguments of one type.
Translator::Piece Translator::common(const Expression& expression, std::string_view function) {
    std::string text = std::string(function) + "(";
    DataType type = DataType::invalid;
    for (const ExpressionRef& each : expression.operands) {
        const Piece piece = settled(*each);
        if (type == DataType::invalid) type = piece.type;
        if (piece.type == DataType::boolean || (piece.type != type && piece.type != DataType::invalid))
            throw Problem{.code = function == "nullif" ? Fql::comparedTypes : Fql::incompatibleTypes,
                          .position = each->position};
        if (text.back() != '(') text += ", ";
        text += piece.sql;
    }
    return {text + ")", type};
}

Translator::Piece Translator::strval(const Expression& expression) {
    const Piece value = settled(*expression.operands[0]);
    switch (value.type) {
    case DataType::number: return {callOf("_NUMBER_TEXT", {value.sql}), DataType::text};
    case DataType::boolean:
        return {"(CASE " + value.sql + " WHEN 1 THEN 'True' WHEN 0 THEN 'False' END)", DataType::text};
    case DataType::binary:
        throw Problem{.code = Fql::argumentType, .position = expression.position, .name = expression.name};
    default: return {value.sql, DataType::text};
    }
}

Translator::Piece Translator::aggregate(const Expression& expression) {
    const std::string& word = expression.word;
    if (scope_ == nullptr) throw Problem{.code = Fql::aggregateInside, .position = expression.position};
    scope_->hasAggregate = true;
    if (expression.operands.empty() && word == "COUNT") return {"count(*)", DataType::number};
    if (expression.operands.size() != 1)
        throw Problem{.code = Fql::argumentCount, .position = expression.position, .name = expression.name};
    scope_->isInAggregate = true;
    const Piece value = settled(*expression.operands[0]);
    scope_->isInAggregate = false;
    const bool isOfNumbers = word != "COUNT" && word != "MAX" && word != "MIN";
    const bool isRefused = value.type == DataType::boolean || (isOfNumbers && !fits(value.type, 'n')) ||
                           (word != "COUNT" && value.type == DataType::binary);
    if (isRefused)
        throw Problem{.code = Fql::argumentType, .position = expression.position, .name = expression.name};
    const std::string function = word.starts_with("STDEV") ? storeName(word) : word;
    return {function + (expression.isDistinct ? "(DISTINCT " : "(") + value.sql + ")",
            isOfNumbers || word == "COUNT" ? DataType::number : value.type, isOfNumbers};
}

Translator::Piece Translator::choice(const Expression& expression) {
    std::size_t next = 0;
    std::string text = "(CASE";
    DataType compared = DataType::invalid, type = DataType::invalid;
    if (expression.hasValue) {
        const Piece value =
            operand(*expression.operands[next++], false, DataType::invalid, expression.position);
        compared = value.type;
        text += " " + value.sql;
    }
    const auto result = [&](const Expression& each) {
        const Piece piece = settled(each);
        if (type == DataType::invalid) type = piece.type;
        if (piece.type == DataType::boolean || (piece.type != type && piece.type != DataType::invalid))
            throw Problem{.code = Fql::incompatibleTypes, .position = each.position};
        return piece.sql;
    };
    const std::size_t end = expression.operands.size() - (expression.hasElse ? 1 : 0);
    for (; next < end; next += 2) {
        const Expression& when = *expression.operands[next];
        text += " WHEN " +
                (expression.hasValue ? operand(when, false, compared, when.position).sql : condition(when));
        text += " THEN " + result(*expression.operands[next + 1]);
    }
    if (expression.hasElse) text += " ELSE " + result(*expression.operands[end]);
    if (type == DataType::invalid) throw Problem{.code = Fql::onlyNulls, .position = expression.position};
    return {text + " END)", type};
}

Translator::Piece Translator::cast(const Expression& expression) {
    struct Conversion {
        DataType from, to;
        std::string_view function; ///< none where the stored form is the same
    };
    static constexpr std::array conversions{Conversion{DataType::number, DataType::text, "_NUMBER_TEXT"},
                                            Conversion{DataType::date, DataType::text, ""},
                                            Conversion{DataType::time, DataType::text, ""},
                                            Conversion{DataType::timestamp, DataType::text, ""},
                                            Conversion{DataType::text, DataType::number, "NUMVAL"},
                                            Conversion{DataType::text, DataType::date, "DATEVAL"},
                                            Conversion{DataType::text, DataType::time, "TIMEVAL"},
                                            Conversion{DataType::text, DataType::timestamp, "TIMESTAMPVAL"},
                                            Conversion{DataType::date, DataType::timestamp, "_TO_TIMESTAMP"},
                                            Conversion{DataType::timestamp, DataType::date, "_TO_DATE"},
                                            Conversion{DataType::timestamp, DataType::time, "_TO_TIME"}};
    const Piece value = settled(*expression.operands[0]);
    const auto* const conversion =
        std::find_if(conversions.begin(), conversions.end(), [&](const Conversion& each) {
            return each.from == value.type && each.to == expression.type;
        });
    const bool isSame = value.type == expression.type || value.type == DataType::invalid;
    if (!isSame && conversion == conversions.end())
        throw Problem{.code = Fql::badCast, .position = expression.position};
    std::string text =
        isSame || conversion->function.empty() ? value.sql : callOf(conversion->function, {value.sql});
    if (expression.type == DataType::text && expression.number > 0)
        text = callOf("_CUT", {text, std::to_string(expression.number)});
    return {std::move(text), expression.type};
}

} // namespace host::sql
