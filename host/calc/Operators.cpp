#include "host/calc/Operators.h"

#include "host/calc/BuiltIns.h"
#include "host/calc/RealFunctions.h"
#include "host/values/Formats.h"

#include <array>
#include <optional>
#include <stdexcept>

namespace host::calc {

namespace {

bool isDateTime(DataType type) {
    return type == DataType::date || type == DataType::time || type == DataType::timestamp;
}
bool isNumeric(DataType type) { return type == DataType::number || type == DataType::boolean; }

Decimal numberOf(const Data& value, int precision) {
    Decimal number = value.asNumber();
    if (number.precision() < precision) number.setPrecision(precision);
    return number;
}

DataRef optionalResult(std::optional<Decimal> number) {
    return number ? numberResult(std::move(*number)) : questionMark();
}

/// A count of microseconds as the given type; days for a date.
DataRef dateTimeResult(std::int64_t micros, DataType type) {
    constexpr std::int64_t longestSpan = (DateTime::lastDay + 1) * DateTime::microsPerDay;
    if (type == DataType::time) {
        if (micros > longestSpan || micros < -longestSpan) return questionMark();
        return std::make_shared<const Data>(DateTime{.days = 0, .micros = micros}, type);
    }
    const DateTime value = DateTime::fromMicrosSinceEpoch(micros);
    return value.hasValidDate() ? std::make_shared<const Data>(value, type) : questionMark();
}

/// The type of a sum or difference in which dates and times take part. All others, such as the difference of
/// two dates, are plain numbers.
struct DateRule {
    DataType left;
    Operator op;
    DataType right; ///< number: every value that is no date or time
    DataType result;
};
constexpr std::array dateRules{
    DateRule{DataType::date, Operator::add, DataType::number, DataType::date},
    DateRule{DataType::date, Operator::subtract, DataType::number, DataType::date},
    DateRule{DataType::date, Operator::add, DataType::time, DataType::timestamp},
    DateRule{DataType::date, Operator::subtract, DataType::time, DataType::timestamp},
    DateRule{DataType::date, Operator::subtract, DataType::timestamp, DataType::time},
    DateRule{DataType::time, Operator::add, DataType::number, DataType::time},
    DateRule{DataType::time, Operator::subtract, DataType::number, DataType::time},
    DateRule{DataType::time, Operator::add, DataType::time, DataType::time},
    DateRule{DataType::time, Operator::subtract, DataType::time, DataType::time},
    DateRule{DataType::time, Operator::add, DataType::date, DataType::timestamp},
    DateRule{DataType::time, Operator::add, DataType::timestamp, DataType::timestamp},
    DateRule{DataType::timestamp, Operator::add, DataType::number, DataType::timestamp},
    DateRule{DataType::timestamp, Operator::subtract, DataType::number, DataType::timestamp},
    DateRule{DataType::timestamp, Operator::add, DataType::time, DataType::timestamp},
    DateRule{DataType::timestamp, Operator::subtract, DataType::time, DataType::timestamp},
    DateRule{DataType::timestamp, Operator::subtract, DataType::date, DataType::time},
    DateRule{DataType::number, Operator::add, DataType::date, DataType::date},
    DateRule{DataType::number, Operator::add, DataType::time, DataType::time},
    DateRule{DataType::number, Operator::add, DataType::timestamp, DataType::timestamp},
};

/// Microseconds; of a number, its days beside a date and its seconds otherwise. Nothing for a number that no
/// date can reach.
std::optional<std::int64_t> microsOf(const Data& value, bool isDays) {
    if (const DataType type = value.nativeType(); isDateTime(type)) {
        const auto read = value.dateTime(type);
        return read ? std::optional(read->microsSinceEpoch()) : std::nullopt;
    }
    const Decimal number = isDays ? value.asNumber().truncated(0) : value.asNumber();
    const Decimal micros = number.times(Decimal(isDays ? DateTime::microsPerDay : DateTime::microsPerSecond));
    const Decimal farthest(2 * (DateTime::lastDay + 1) * DateTime::microsPerDay);
    if (micros > farthest || micros.negated() > farthest) return std::nullopt;
    return micros.rounded(0).toInt64();
}

/// The result for dates and times; nothing when plain arithmetic is meant.
std::optional<DataRef> dateArithmetic(Operator op, const Data& left, const Data& right) {
    const auto kind = [](const Data& value) {
        return isDateTime(value.nativeType()) ? value.nativeType() : DataType::number;
    };
    for (const DateRule& rule : dateRules) {
        if (rule.op != op || rule.left != kind(left) || rule.right != kind(right)) continue;
        const bool isDays = rule.left == DataType::date || rule.right == DataType::date;
        const auto a = microsOf(left, isDays), b = microsOf(right, isDays);
        if (!a || !b) return questionMark();
        return dateTimeResult(op == Operator::add ? *a + *b : *a - *b, rule.result);
    }
    return std::nullopt;
}

DataRef arithmetic(Operator op, const Data& left, const Data& right, int precision) {
    if (!left.isValid() || !right.isValid()) return questionMark();
    if (isDateTime(left.nativeType()) || isDateTime(right.nativeType()))
        if (auto result = dateArithmetic(op, left, right)) return *result;
    const Decimal a = numberOf(left, precision), b = numberOf(right, precision);
    switch (op) {
    case Operator::add: return numberResult(a.plus(b));
    case Operator::subtract: return numberResult(a.minus(b));
    case Operator::multiply: return numberResult(a.times(b));
    case Operator::divide: return optionalResult(a.dividedBy(b));
    default: return optionalResult(powerOf(a, b));
    }
}

template<typename Value>
int order(const Value& left, const Value& right) {
    return left < right ? -1 : static_cast<int>(right < left);
}

/// The type that two values are compared as. A date beside a timestamp is its midnight, a date or time beside
/// a number is its number, and a text beside either of them is read as the same type. Numbers beside texts
/// are compared as texts.
DataType comparedAs(DataType left, DataType right) {
    if (isDateTime(left) && isDateTime(right)) {
        if (left == right) return left;
        const bool isTimeAlone = left == DataType::time || right == DataType::time;
        return isTimeAlone ? DataType::number : DataType::timestamp;
    }
    const DataType dated = isDateTime(left) ? left : right, other = isDateTime(left) ? right : left;
    if (isDateTime(dated)) return isNumeric(other) ? DataType::number : dated;
    if (isNumeric(left) && isNumeric(right)) return DataType::number;
    return left == right ? left : DataType::text;
}

/// Negative, zero or positive. Values that cannot be read as the common type are compared as texts.
int compare(const Data& left, const Data& right) {
    switch (const DataType type = comparedAs(left.nativeType(), right.nativeType())) {
    case DataType::number:
        if (!left.isEmpty() && !right.isEmpty()) return order(left.asNumber(), right.asNumber());
        break;
    case DataType::date:
    case DataType::time:
    case DataType::timestamp: {
        const auto a = left.dateTime(type), b = right.dateTime(type);
        if (a && b) return order(a->microsSinceEpoch(), b->microsSinceEpoch());
        break;
    }
    case DataType::binary: return left.asBinary().streams() == right.asBinary().streams() ? 0 : 1;
    default: break;
    }
    return formats().compare(left.asText().units(), right.asText().units());
}

bool comparison(Operator op, int order) {
    switch (op) {
    case Operator::equal: return order == 0;
    case Operator::notEqual: return order != 0;
    case Operator::less: return order < 0;
    case Operator::lessOrEqual: return order <= 0;
    case Operator::greater: return order > 0;
    default: return order >= 0;
    }
}

DataRef joined(const Data& left, const Data& right) {
    Text text = left.asText();
    text.append(right.asText());
    checkTextSize(text.size());
    return textResult(std::move(text));
}

} // namespace

DataRef applyOperator(Operator op, const Data& left, const Data& right, int precision) {
    switch (op) {
    case Operator::power:
    case Operator::multiply:
    case Operator::divide:
    case Operator::add:
    case Operator::subtract: try { return arithmetic(op, left, right, precision);
        } catch (const std::overflow_error&) {
            return questionMark();
        }
    case Operator::join: return joined(left, right);
    case Operator::logicalAnd: return booleanResult(left.asBoolean() && right.asBoolean());
    case Operator::logicalOr: return booleanResult(left.asBoolean() || right.asBoolean());
    case Operator::logicalXor: return booleanResult(left.asBoolean() != right.asBoolean());
    default: return booleanResult(comparison(op, compare(left, right)));
    }
}

DataRef negated(const Data& value, int precision) {
    if (!value.isValid()) return questionMark();
    if (value.nativeType() == DataType::time)
        return dateTimeResult(-value.asTime().microsSinceEpoch(), DataType::time);
    return numberResult(numberOf(value, precision).negated());
}

} // namespace host::calc
