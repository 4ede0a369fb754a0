#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace host::calc {

namespace {

int placesOf(const DataRef& value) {
    return static_cast<int>(std::clamp<std::int64_t>(
        value->asNumber().toInt64(), -Decimal::maximumIntegerDigits, Decimal::maximumPrecision));
}

DataRef optionalResult(const std::optional<Decimal>& number) {
    return number ? numberResult(*number) : questionMark();
}

DataRef absolute(Arguments arguments) {
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

/// The remainder takes the divisor's sign.
DataRef modulo(Arguments arguments) {
    const Decimal& number = arguments[0]->asNumber();
    const Decimal& divisor = arguments[1]->asNumber();
    const auto quotient = number.dividedBy(divisor);
    if (!quotient) return questionMark();
    return numberResult(number.minus(divisor.times(quotient->floor())));
}

/// At least 0, below 1.
DataRef random(Arguments) {
    static std::mt19937_64 generator(std::random_device{}());
    constexpr std::int64_t steps = 10'000'000'000'000'000;
    const Decimal picked(std::uniform_int_distribution<std::int64_t>(0, steps - 1)(generator));
    return optionalResult(picked.dividedBy(Decimal(steps)));
}

std::vector<Decimal> numbersOf(Arguments arguments) {
    std::vector<Decimal> numbers;
    for (const DataRef& value : arguments)
        if (auto number = value->number()) numbers.push_back(std::move(*number));
    return numbers;
}

Decimal total(const std::vector<Decimal>& numbers) {
    Decimal sum;
    for (const Decimal& number : numbers)
        sum = sum.plus(number);
    return sum;
}

DataRef maximum(Arguments arguments) {
    const auto numbers = numbersOf(arguments);
    return numbers.empty() ? textResult({}) : numberResult(*std::max_element(numbers.begin(), numbers.end()));
}
DataRef minimum(Arguments arguments) {
    const auto numbers = numbersOf(arguments);
    return numbers.empty() ? textResult({}) : numberResult(*std::min_element(numbers.begin(), numbers.end()));
}
DataRef sum(Arguments arguments) { return numberResult(total(numbersOf(arguments))); }
DataRef average(Arguments arguments) {
    const auto numbers = numbersOf(arguments);
    return optionalResult(total(numbers).dividedBy(Decimal(static_cast<std::int64_t>(numbers.size()))));
}
DataRef count(Arguments arguments) {
    return numberResult(std::count_if(arguments.begin(), arguments.end(),
                                      [](const DataRef& value) { return !value->isEmpty(); }));
}

constexpr std::array rows{
    EagerRow{u"Abs", 1, 1, absolute},      EagerRow{u"Ceiling", 1, 1, ceiling},
    EagerRow{u"Floor", 1, 1, floor},       EagerRow{u"Int", 1, 1, integer},
    EagerRow{u"Mod", 2, 2, modulo},        EagerRow{u"Round", 2, 2, round},
    EagerRow{u"Truncate", 2, 2, truncate}, EagerRow{u"Sqrt", 1, 1, squareRoot},
    EagerRow{u"Random", 0, 0, random},     EagerRow{u"Max", 1, -1, maximum},
    EagerRow{u"Min", 1, -1, minimum},      EagerRow{u"Sum", 1, -1, sum},
    EagerRow{u"Average", 1, -1, average},  EagerRow{u"Count", 1, -1, count},
};

} // namespace

void addNumberFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
