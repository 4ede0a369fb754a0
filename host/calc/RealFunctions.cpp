#include "host/calc/RealFunctions.h"

#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <boost/math/constants/constants.hpp>
#include <boost/multiprecision/cpp_bin_float.hpp>
#include <limits>

/// Exponentials, logarithms and trigonometry: functions whose results are real numbers, computed with more
/// digits than they keep.

namespace host::calc {

namespace {

template<unsigned digits>
using Float = boost::multiprecision::number<boost::multiprecision::cpp_bin_float<digits>,
                                            boost::multiprecision::et_off>;
using Usual = Float<100>;
/// The digits of the longest numbers, 400 on both sides of the point, and some to spare.
using Wide = Float<850>;

/// The work of one function, in steps. A loop may call a usual one in each of its 50,000 turns.
constexpr std::size_t usualSteps = 50, wideSteps = 20'000;

template<typename Real>
Real realOf(const Decimal& number) {
    return Real(toUtf8(number.text()));
}

/// std::nullopt for NaN, infinity and numbers from 10^400 on.
template<typename Real>
std::optional<Decimal> decimalOf(const Real& real, int precision) {
    if (!isfinite(real)) return std::nullopt;
    const std::string text = real.str(std::numeric_limits<Real>::digits10, std::ios_base::scientific);
    auto number = Decimal::parse(fromUtf8(text));
    if (number) number->setPrecision(precision);
    return number;
}

/// Evaluates `function` with so many digits that `precision` places of its result are right.
template<typename Function>
std::optional<Decimal> evaluated(const Decimal& argument, int precision, bool isWide,
                                 const Function& function) {
    Work::charge(isWide ? wideSteps : usualSteps);
    if (!isWide) return decimalOf(function(realOf<Usual>(argument)), precision);
    return decimalOf(function(realOf<Wide>(argument)), precision);
}

constexpr int usualPlaces = 60;
/// Exponents of e: 10^400 is below its power, and a power that the usual digits suffice for.
constexpr int largestExponent = 922, largestUsualExponent = 60;

DataRef exponential(Arguments arguments) {
    const Decimal& exponent = arguments[0]->asNumber();
    if (exponent > Decimal(largestExponent)) return questionMark();
    if (exponent < Decimal(-largestExponent)) return numberResult(0);
    const bool isWide = exponent.precision() > usualPlaces || exponent > Decimal(largestUsualExponent);
    return optionalResult(
        evaluated(exponent, exponent.precision(), isWide, [](const auto& x) { return exp(x); }));
}

/// A logarithm keeps the precision of its argument; 0 and numbers below have none.
template<auto function>
DataRef logarithm(Arguments arguments) {
    const Decimal& number = arguments[0]->asNumber();
    if (number.sign() <= 0) return questionMark();
    return optionalResult(evaluated(number, number.precision(), number.precision() > usualPlaces, function));
}
constexpr auto naturalLogarithm = [](const auto& x) { return log(x); };
constexpr auto decimalLogarithm = [](const auto& x) { return log10(x); };
constexpr auto binaryLogarithm = []<typename Real>(const Real& x) {
    return Real(log(x) / boost::math::constants::ln_two<Real>());
};

/// Trigonometric functions always give 16 places. Angles of many digits need all of these to be reduced.
template<auto function>
DataRef trigonometric(Arguments arguments) {
    static const Decimal largestUsual = Decimal(10).power(Decimal(40)).value_or(Decimal());
    const Decimal& angle = arguments[0]->asNumber();
    const bool isWide = angle > largestUsual || angle < largestUsual.negated();
    return optionalResult(evaluated(angle, Decimal::minimumPrecision, isWide, function));
}

/// The inverse of a function that reaches from -1 to 1.
template<auto function>
DataRef inverse(Arguments arguments) {
    const Decimal& number = arguments[0]->asNumber();
    if (number > Decimal(1) || number < Decimal(-1)) return questionMark();
    return trigonometric<function>(arguments);
}

constexpr auto sine = [](const auto& x) { return sin(x); };
constexpr auto cosine = [](const auto& x) { return cos(x); };
constexpr auto tangent = [](const auto& x) { return tan(x); };
constexpr auto arcSine = [](const auto& x) { return asin(x); };
constexpr auto arcCosine = [](const auto& x) { return acos(x); };
constexpr auto arcTangent = [](const auto& x) { return atan(x); };

DataRef pi(Arguments) {
    static const DataRef value =
        optionalResult(decimalOf(boost::math::constants::pi<Usual>(), Decimal::minimumPrecision));
    return value;
}

/// Angles of half a turn. Conversions use the same Pi as calculations do, so that Degrees ( Pi ) is 180
/// without a fraction.
Decimal halfTurnDegrees() { return 180; }
const Decimal& halfTurnRadians() { return pi({})->asNumber(); }

DataRef scaled(Decimal angle, const Decimal& factor, const Decimal& divisor) {
    angle.setPrecision(Decimal::minimumPrecision);
    return optionalResult(angle.times(factor).dividedBy(divisor));
}
DataRef radiansToDegrees(Arguments arguments) {
    return scaled(arguments[0]->asNumber(), halfTurnDegrees(), halfTurnRadians());
}
DataRef degreesToRadians(Arguments arguments) {
    return scaled(arguments[0]->asNumber(), halfTurnRadians(), halfTurnDegrees());
}

constexpr std::array rows{
    EagerRow{u"Exp", ofValid<exponential>},
    EagerRow{u"Ln", ofValid<logarithm<naturalLogarithm>>},
    EagerRow{u"Log", ofValid<logarithm<decimalLogarithm>>},
    EagerRow{u"Lg", ofValid<logarithm<binaryLogarithm>>},
    EagerRow{u"Pi", pi},
    EagerRow{u"Sin", ofValid<trigonometric<sine>>},
    EagerRow{u"Cos", ofValid<trigonometric<cosine>>},
    EagerRow{u"Tan", ofValid<trigonometric<tangent>>},
    EagerRow{u"Asin", ofValid<inverse<arcSine>>},
    EagerRow{u"Acos", ofValid<inverse<arcCosine>>},
    EagerRow{u"Atan", ofValid<trigonometric<arcTangent>>},
    EagerRow{u"Degrees", ofValid<radiansToDegrees>},
    EagerRow{u"Radians", ofValid<degreesToRadians>},
};

/// A power of a number above 0, by its logarithm.
std::optional<Decimal> realPower(const Decimal& base, const Decimal& exponent) {
    const auto scaledLogarithm = [&]<typename Real>(const Real& factor) {
        return Real(factor * log(realOf<Real>(base)));
    };
    const Usual logarithm = scaledLogarithm(realOf<Usual>(exponent));
    const int precision = std::max(base.precision(), exponent.precision());
    if (logarithm > largestExponent) return std::nullopt;
    if (logarithm < -largestExponent) return Decimal(0, precision);
    // An exponent so large belongs to a base so near to 1 that its logarithm has lost digits.
    static const Decimal largestUsual = Decimal(10).power(20).value_or(Decimal());
    const bool isWide = precision > usualPlaces || logarithm > largestUsualExponent ||
                        exponent > largestUsual || exponent < largestUsual.negated();
    return evaluated(exponent, precision, isWide,
                     [&](const auto& factor) { return exp(scaledLogarithm(factor)); });
}

} // namespace

std::optional<Decimal> powerOf(const Decimal& base, const Decimal& exponent) {
    if (exponent.truncated(0) == exponent) {
        constexpr std::int64_t fewSquarings = 1'000, longSteps = 1'000;
        const bool isLong = base.precision() > usualPlaces || exponent > Decimal(fewSquarings) ||
                            exponent < Decimal(-fewSquarings);
        if (isLong) Work::charge(longSteps);
        return base.power(exponent);
    }
    if (base.sign() > 0) return realPower(base, exponent);
    return base.isZero() && exponent.sign() > 0 ? std::optional(Decimal()) : std::nullopt;
}

void addRealFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
