#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>

namespace host::calc {

namespace {

int placesOf(const DataRef& value) {
    return static_cast<int>(std::clamp<std::int64_t>(
        value->asNumber().toInt64(), -Decimal::maximumIntegerDigits, Decimal::maximumPrecision));
}

/// The magnitude; a time stays a time.
DataRef absolute(Arguments arguments) {
    if (arguments[0]->nativeType() == DataType::time) {
        const std::int64_t micros = std::abs(arguments[0]->asTime().micros);
        return std::make_shared<const Data>(DateTime{.days = 0, .micros = micros}, DataType::time);
    }
    const Decimal& number = arguments[0]->asNumber();
    return numberResult(number.sign() < 0 ? number.negated() : number);
}
DataRef ceiling(Arguments arguments) { return numberResult(arguments[0]->asNumber().ceiling()); }
DataRef floor(Arguments arguments) { return numberResult(arguments[0]->asNumber().floor()); }
DataRef integer(Arguments arguments) { return numberResult(arguments[0]->asNumber().truncated(0)); }
DataRef round(Arguments arguments) {
    return numberResult(arguments[0]->asNumber().rounded(placesOf(arguments[1])));
}
DataRef truncate(Arguments arguments) {
    return numberResult(arguments[0]->asNumber().truncated(placesOf(arguments[1])));
}
DataRef squareRoot(Arguments arguments) { return optionalResult(arguments[0]->asNumber().squareRoot()); }
DataRef sign(Arguments arguments) { return numberResult(arguments[0]->asNumber().sign()); }

/// A quotient rounded down, and the rest, which has the divisor's sign.
struct Division {
    Decimal quotient, rest;
};
std::optional<Division> divided(Arguments arguments) {
    const Decimal& number = arguments[0]->asNumber();
    const Decimal& divisor = arguments[1]->asNumber();
    const auto quotient = number.dividedBy(divisor);
    if (!quotient) return std::nullopt;
    Division result{.quotient = quotient->floor(), .rest = {}};
    result.rest = number.minus(divisor.times(result.quotient));
    // The quotient's last place may have been rounded up to the next integer.
    if (result.rest.sign() * divisor.sign() < 0) {
        result.quotient = result.quotient.minus(1);
        result.rest = result.rest.plus(divisor);
    }
    return result;
}
DataRef quotient(Arguments arguments) {
    const auto division = divided(arguments);
    return division ? numberResult(division->quotient) : questionMark();
}
DataRef modulo(Arguments arguments) {
    const auto division = divided(arguments);
    return division ? numberResult(division->rest) : questionMark();
}

/// Factorial ( number {; numberOfFactors } )
DataRef factorial(Arguments arguments) {
    Decimal factor = arguments[0]->asNumber().truncated(0);
    Decimal left = arguments.size() > 1 ? arguments[1]->asNumber().truncated(0) : factor;
    if (factor.sign() < 0 || left.sign() < 0) return questionMark();
    // Some 210 factors above 1 suffice to pass 10^400, which throws.
    Decimal product(1);
    for (; left.sign() > 0 && factor > Decimal(1); left = left.minus(1), factor = factor.minus(1)) {
        Work::charge();
        product = product.times(factor);
    }
    return numberResult(product);
}

/// Combination ( setSize ; numberOfChoices )
DataRef combination(Arguments arguments) {
    const Decimal& size = arguments[0]->asNumber();
    const Decimal& choices = arguments[1]->asNumber();
    if (size != size.truncated(0) || choices != choices.truncated(0) || choices.sign() < 0 || choices > size)
        return questionMark();
    // Each step at least doubles the product until it passes 10^400, which throws.
    const Decimal others = size.minus(choices), steps = std::min(choices, others);
    Decimal product(1), factor = size.minus(steps);
    for (Decimal step(1); step <= steps; step = step.plus(1)) {
        Work::charge();
        factor = factor.plus(1);
        product = product.times(factor).dividedBy(step).value_or(Decimal());
    }
    return numberResult(product);
}

/// A number from 0 to below 1.
DataRef random(Arguments) {
    static std::mt19937_64 generator(std::random_device{}());
    constexpr std::int64_t steps = 10'000'000'000'000'000;
    const Decimal picked(std::uniform_int_distribution<std::int64_t>(0, steps - 1)(generator));
    return optionalResult(picked.dividedBy(Decimal(steps)));
}

constexpr std::array rows{
    EagerRow{u"Abs", ofValid<absolute>},
    EagerRow{u"Ceiling", ofValid<ceiling>},
    EagerRow{u"Combination", ofValid<combination>},
    EagerRow{u"Div", ofValid<quotient>},
    EagerRow{u"Factorial", ofValid<factorial>},
    EagerRow{u"Floor", ofValid<floor>},
    EagerRow{u"Int", ofValid<integer>},
    EagerRow{u"Mod", ofValid<modulo>},
    EagerRow{u"Random", random},
    EagerRow{u"Round", ofValid<round>},
    EagerRow{u"Sign", ofValid<sign>},
    EagerRow{u"Sqrt", ofValid<squareRoot>},
    EagerRow{u"Truncate", ofValid<truncate>},
};

} // namespace

void addNumberFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
