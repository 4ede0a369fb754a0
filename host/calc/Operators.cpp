#include "host/calc/Operators.h"

#include "host/calc/BuiltIns.h"

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

/// The type of a sum or difference in which dates and times take part; `number` where it is a plain number.
struct DateRule {
    DataType left;
    Operator op;
    DataType right; ///< number: whatever is no date or time
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
    DateRule{DataType::timestamp, Operator::subtract, DataType::timestamp, DataType::time},
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

/// Nothing when plain arithmetic is meant.
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
    default: return optionalResult(a.power(b));
    }
}

template<typename Value>
int order(const Value& left, const Value& right) {
    return left < right ? -1 : static_cast<int>(right < left);
}

/// Negative, zero or positive. Dates and times compare by value, numbers with whatever has a number in it,
/// all else as text without regard to case.
int compare(const Data& left, const Data& right) {
    const DataType a = left.nativeType(), b = right.nativeType();
    if (isDateTime(a) || isDateTime(b)) {
        // A date beside a timestamp is its midnight; a text is read as what the other side is.
        const bool isMixed = isDateTime(a) && isDateTime(b) && a != b;
        const DataType wanted = isMixed ? DataType::timestamp : isDateTime(a) ? a : b;
        const bool isTimeAlone = isMixed && (a == DataType::time || b == DataType::time);
        if (!isNumeric(a) && !isNumeric(b) && !isTimeAlone) {
            const auto x = left.dateTime(wanted), y = right.dateTime(wanted);
            if (x && y) return order(x->microsSinceEpoch(), y->microsSinceEpoch());
        }
    }
    const bool isNumber = isNumeric(a) || isNumeric(b) || (isDateTime(a) && isDateTime(b));
    if (isNumber && left.isValid() && right.isValid()) {
        const auto x = left.number(), y = right.number();
        if (x && y) return order(*x, *y);
    }
    if (a == DataType::binary && b == DataType::binary && left.asBinary() == right.asBinary()) return 0;
    return compareIgnoringCase(left.asText().units(), right.asText().units());
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
