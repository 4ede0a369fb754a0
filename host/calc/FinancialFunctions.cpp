#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/RealFunctions.h"

#include <algorithm>
#include <array>

/// Payments at the end of each period, at the same rate of interest throughout. Results have the sign of the
/// amounts and are not rounded to any unit of money.

namespace host::calc {

namespace {

/// An amount, the rate of one period and the number of periods, as the functions take them.
struct Terms {
    Decimal amount, rate, periods;
    int precision; ///< places that the result keeps
};

/// The numbers keep all places that there are: the differences below lose many where the rate is small.
Terms termsOf(Arguments arguments) {
    constexpr std::size_t steps = 100; // powers of so many places take a while
    Work::charge(steps);
    Terms terms{.amount = arguments[0]->asNumber(),
                .rate = arguments[1]->asNumber(),
                .periods = arguments[2]->asNumber(),
                .precision = Decimal::minimumPrecision};
    for (Decimal* number : {&terms.amount, &terms.rate, &terms.periods}) {
        terms.precision = std::max(terms.precision, number->precision());
        number->setPrecision(Decimal::maximumPrecision);
    }
    return terms;
}

DataRef result(std::optional<Decimal> number, int precision) {
    if (number) number->setPrecision(precision);
    return optionalResult(number);
}

/// The value at the end of all periods, or at their start, of payments of 1: ((1+r)^n - 1) / r.
std::optional<Decimal> valueOfOnes(const Terms& terms, bool isAtStart) {
    if (terms.rate.isZero()) return terms.periods;
    const Decimal one(1);
    const auto growth = powerOf(one.plus(terms.rate), isAtStart ? terms.periods.negated() : terms.periods);
    if (!growth) return std::nullopt;
    const Decimal gain = isAtStart ? one.minus(*growth) : growth->minus(one);
    return gain.dividedBy(terms.rate);
}

/// PV ( payment ; interestRate ; periods ), FV ( payment ; interestRate ; periods )
template<bool isAtStart>
DataRef valueOfPayments(Arguments arguments) {
    const Terms terms = termsOf(arguments);
    const auto ones = valueOfOnes(terms, isAtStart);
    return ones ? result(terms.amount.times(*ones), terms.precision) : questionMark();
}

/// PMT ( principal ; interestRate ; term )
DataRef payment(Arguments arguments) {
    const Terms terms = termsOf(arguments);
    const auto ones = valueOfOnes(terms, true);
    return ones ? result(terms.amount.dividedBy(*ones), terms.precision) : questionMark();
}

constexpr std::array rows{
    EagerRow{u"PMT", ofValid<payment>},
    EagerRow{u"PV", ofValid<valueOfPayments<true>>},
    EagerRow{u"FV", ofValid<valueOfPayments<false>>},
};

} // namespace

void addFinancialFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
