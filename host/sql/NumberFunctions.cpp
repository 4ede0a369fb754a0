#include "host/sql/FunctionRows.h"
#include "host/sql/Values.h"
#include "host/values/Decimal.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numbers>

namespace host::sql {

namespace {

using Context = sqlite3_context*;
using Arguments = SqlArguments;

template<double (*of)(double)>
void real(Context context, int /*count*/, Arguments arguments) {
    giveNumber(context, of(sqlite3_value_double(arguments[0])));
}

template<double (*of)(double, double)>
void ofTwo(Context context, int /*count*/, Arguments arguments) {
    giveNumber(context, of(sqlite3_value_double(arguments[0]), sqlite3_value_double(arguments[1])));
}

double degrees(double angle) { return angle * 180 / std::numbers::pi; }
double radians(double angle) { return angle * std::numbers::pi / 180; }
double sign(double value) { return value > 0 ? 1 : value < 0 ? -1 : 0; }
double modulo(double value, double divisor) { return std::fmod(value, divisor); }
double quotient(double value, double divisor) { return value / divisor; }
double angleOf(double x, double y) { return std::atan2(y, x); }

void pi(Context context, int /*count*/, Arguments /*arguments*/) {
    sqlite3_result_double(context, std::numbers::pi);
}

void round(Context context, int /*count*/, Arguments arguments) {
    constexpr std::int64_t mostPlaces = 400;
    const auto number = storedDecimal(arguments[0]);
    if (!number) return sqlite3_result_null(context);
    const auto places = std::clamp(countOf(arguments[1]), -mostPlaces, mostPlaces);
    giveNumber(context, number->rounded(static_cast<int>(places)).toDouble());
}

void numberOf(Context context, int /*count*/, Arguments arguments) {
    std::u16string text = fromUtf8(textOf(arguments[0]));
    const std::size_t first = std::min(text.find_first_not_of(u' '), text.size());
    text = text.substr(first, text.find_last_not_of(u' ') + 1 - first);
    if (text.starts_with(u'+')) text.erase(0, 1);
    const auto number = Decimal::parse(text);
    if (!number) return sqlite3_result_error(context, "FQL0021", -1);
    giveValue(context, Data(*number), DataType::number);
}

template<bool isGreater>
void extreme(Context context, int /*count*/, Arguments arguments) {
    const double a = sqlite3_value_double(arguments[0]), b = sqlite3_value_double(arguments[1]);
    sqlite3_result_value(context, arguments[(isGreater ? a >= b : a <= b) ? 0 : 1]);
}

/// Rounds to fifteen digits, which removes the errors that binary fractions leave in sums.
void settled(Context context, int /*count*/, Arguments arguments) {
    if (sqlite3_value_type(arguments[0]) != SQLITE_FLOAT) return sqlite3_result_value(context, arguments[0]);
    std::array<char, 40> digits{};
    std::snprintf(digits.data(), digits.size(), "%.15g", sqlite3_value_double(arguments[0]));
    giveNumber(context, std::strtod(digits.data(), nullptr));
}

constexpr DataType kNumber = DataType::number;

constexpr std::array rows{
    FunctionRow{"ABS", "n", kNumber, guarded<real<std::fabs>>},
    FunctionRow{"ATAN", "n", kNumber, guarded<real<std::atan>>},
    FunctionRow{"ATAN2", "nn", kNumber, guarded<ofTwo<angleOf>>},
    FunctionRow{"CEIL", "n", kNumber, guarded<real<std::ceil>>},
    FunctionRow{"CEILING", "n", kNumber, guarded<real<std::ceil>>},
    FunctionRow{"COS", "n", kNumber, guarded<real<std::cos>>},
    FunctionRow{"DEG", "n", kNumber, guarded<real<degrees>>},
    FunctionRow{"DEGREES", "n", kNumber, guarded<real<degrees>>},
    FunctionRow{"EXP", "n", kNumber, guarded<real<std::exp>>},
    FunctionRow{"FLOOR", "n", kNumber, guarded<real<std::floor>>},
    FunctionRow{"INT", "n", kNumber, guarded<real<std::trunc>>},
    FunctionRow{"LN", "n", kNumber, guarded<real<std::log>>},
    FunctionRow{"LOG", "n", kNumber, guarded<real<std::log10>>},
    FunctionRow{"MOD", "nn", kNumber, guarded<ofTwo<modulo>>},
    FunctionRow{"PI", "", kNumber, guarded<pi>},
    FunctionRow{"RADIANS", "n", kNumber, guarded<real<radians>>},
    FunctionRow{"ROUND", "nn", kNumber, guarded<round>},
    FunctionRow{"SIGN", "n", kNumber, guarded<real<sign>>},
    FunctionRow{"SIN", "n", kNumber, guarded<real<std::sin>>},
    FunctionRow{"SQRT", "n", kNumber, guarded<real<std::sqrt>>},
    FunctionRow{"TAN", "n", kNumber, guarded<real<std::tan>>},
    FunctionRow{"NUMVAL", "s", kNumber, guarded<numberOf>},
    FunctionRow{"_MAX", "nn", kNumber, guarded<extreme<true>>},
    FunctionRow{"_MIN", "nn", kNumber, guarded<extreme<false>>},
    FunctionRow{"_QUOTIENT", "nn", kNumber, guarded<ofTwo<quotient>>},
    FunctionRow{"_POWER", "nn", kNumber, guarded<ofTwo<std::pow>>},
    FunctionRow{"_SETTLED", "n", kNumber, guarded<settled>},
};

/// Mean and squared differences from it, renewed with each value.
struct Deviation {
    std::int64_t count;
    double mean, squares;
};

void addValue(Context context, int /*count*/, Arguments arguments) {
    auto* state = static_cast<Deviation*>(sqlite3_aggregate_context(context, sizeof(Deviation)));
    if (state == nullptr || sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    const double value = sqlite3_value_double(arguments[0]), before = value - state->mean;
    ++state->count;
    state->mean += before / static_cast<double>(state->count);
    state->squares += before * (value - state->mean);
}

/// The deviation of a sample where `missing` is 1, of the population where it is 0.
template<int missing>
void giveDeviation(Context context) {
    const auto* state = static_cast<Deviation*>(sqlite3_aggregate_context(context, 0));
    if (state == nullptr || state->count <= missing) return sqlite3_result_null(context);
    giveNumber(context, std::sqrt(state->squares / static_cast<double>(state->count - missing)));
}

} // namespace

std::span<const FunctionRow> numberFunctions() { return rows; }

int registerDeviations(sqlite3* connection) {
    constexpr int kind = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    const int code = sqlite3_create_function(connection, storeName("STDEV").c_str(), 1, kind, nullptr,
                                             nullptr, addValue, giveDeviation<1>);
    if (code != SQLITE_OK) return code;
    return sqlite3_create_function(connection, storeName("STDEVP").c_str(), 1, kind, nullptr, nullptr,
                                   addValue, giveDeviation<0>);
}

} // namespace host::sql
