#include "host/values/Decimal.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

using Integer = Decimal::Integer;
/// Its exponents reach far past a double's, as a Decimal's magnitudes do.
using Float =
    boost::multiprecision::number<boost::multiprecision::cpp_dec_float<100>, boost::multiprecision::et_off>;

Integer powerOfTen(int exponent) {
    return boost::multiprecision::pow(Integer(10), static_cast<unsigned>(exponent));
}

/// Quotient of integers, rounded half away from zero, or cut towards zero.
Integer divided(const Integer& number, const Integer& divisor, bool cut) {
    Integer quotient, remainder;
    boost::multiprecision::divide_qr(number, divisor, quotient, remainder);
    if (!cut && 2 * abs(remainder) >= abs(divisor)) quotient += number.sign() * divisor.sign();
    return quotient;
}

Integer timesPowerOfTen(const Integer& number, int exponent) {
    return exponent == 0 ? number : Integer(number * powerOfTen(exponent));
}

/// So few bits that no comparison with 10^400 is needed.
bool isFarBelowLimit(const Integer& number) {
    constexpr std::size_t few = 1'280;
    return number.backend().size() * Integer::backend_type::limb_bits <= few;
}

/// 10^400, which no magnitude reaches.
const Integer& magnitudeLimit() {
    static const Integer limit = powerOfTen(Decimal::maximumIntegerDigits);
    return limit;
}

constexpr std::size_t longestText = 2'000;

/// Takes one of some signs off the beginning; 0 where none stands.
char16_t take(std::u16string_view& text, std::u16string_view signs) {
    if (text.empty() || signs.find(text.front()) == std::u16string_view::npos) return 0;
    const char16_t sign = text.front();
    text.remove_prefix(1);
    return sign;
}

std::string takeDigits(std::u16string_view& text) {
    const std::size_t size = std::min(text.find_first_not_of(u"0123456789"), text.size());
    const std::u16string_view digits = text.substr(0, size);
    text.remove_prefix(size);
    return {digits.begin(), digits.end()};
}

/// Takes an exponent, which is 0 where there is none; nothing where it is not well formed.
std::optional<int> takeExponent(std::u16string_view& text) {
    constexpr std::size_t mostDigits = 5;
    if (take(text, u"eE") == 0) return 0;
    const bool isNegative = take(text, u"+-") == u'-';
    const std::string digits = takeDigits(text);
    if (digits.empty() || digits.size() > mostDigits) return std::nullopt;
    const int exponent = std::stoi(digits);
    return isNegative ? -exponent : exponent;
}

} // namespace

Decimal Decimal::of(Integer mantissa, int scale, int precision) {
    Decimal result;
    result.mantissa_ = std::move(mantissa);
    result.scale_ = scale;
    result.precision_ = precision;
    if (scale > maximumPrecision) {
        result.mantissa_ = divided(result.mantissa_, powerOfTen(scale - maximumPrecision), false);
        result.scale_ = maximumPrecision;
    }
    if (!isFarBelowLimit(result.mantissa_) &&
        abs(result.mantissa_) >= magnitudeLimit() * powerOfTen(result.scale_))
        throw std::overflow_error("a number would reach 10^400");
    return result;
}

Decimal::Decimal(std::int64_t value, int precision) : mantissa_(value) { setPrecision(precision); }

Decimal Decimal::fromDouble(double value, int precision) {
    if (!std::isfinite(value)) throw std::range_error("not a finite number");
    std::array<char, 64> printed{};
    std::snprintf(printed.data(), printed.size(), "%.16e", value);
    const std::string_view text(printed.data());
    auto number = parse(std::u16string(text.begin(), text.end()));
    if (!number) throw std::range_error("a number out of range");
    number->setPrecision(precision);
    return *number;
}

std::optional<Decimal> Decimal::parse(std::u16string_view text) {
    if (text.size() > longestText) return std::nullopt;
    const bool isNegative = take(text, u"-") != 0;
    std::string digits = takeDigits(text);
    int places = 0;
    if (take(text, u".") != 0) {
        const std::string fraction = takeDigits(text);
        places = static_cast<int>(fraction.size());
        digits += fraction;
    }
    const auto exponent = takeExponent(text);
    if (digits.empty() || !exponent || !text.empty()) return std::nullopt;
    // A leading 0 would mean octal.
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
    Integer mantissa(digits);
    return scaled(isNegative ? Integer(-mantissa) : std::move(mantissa), places - *exponent);
}

/// A mantissa divided by a power of ten of any size.
std::optional<Decimal> Decimal::scaled(Integer mantissa, int scale) {
    if (mantissa == 0 || scale > static_cast<int>(longestText) + maximumPrecision) return Decimal();
    if (scale < -maximumIntegerDigits) return std::nullopt;
    if (scale < 0) mantissa *= powerOfTen(-std::exchange(scale, 0));
    try {
        return of(std::move(mantissa), scale, std::clamp(scale, minimumPrecision, maximumPrecision));
    } catch (const std::overflow_error&) {
        return std::nullopt;
    }
}

void Decimal::setPrecision(int precision) {
    const int kept = std::clamp(precision, minimumPrecision, maximumPrecision);
    // Rounding up may carry a number over the limit.
    *this = scale_ > kept ? of(divided(mantissa_, powerOfTen(scale_ - kept), false), kept, kept)
                          : of(std::move(mantissa_), scale_, kept);
}

Decimal Decimal::plus(const Decimal& other) const {
    const int scale = std::max(scale_, other.scale_);
    return of(timesPowerOfTen(mantissa_, scale - scale_) +
                  timesPowerOfTen(other.mantissa_, scale - other.scale_),
              scale, std::max(precision_, other.precision_));
}

Decimal Decimal::minus(const Decimal& other) const { return plus(other.negated()); }

Decimal Decimal::times(const Decimal& other) const {
    const int precision = std::max(precision_, other.precision_);
    Integer product = mantissa_ * other.mantissa_;
    int scale = scale_ + other.scale_;
    if (scale > precision) {
        product = divided(product, powerOfTen(scale - precision), false);
        scale = precision;
    }
    return of(std::move(product), scale, precision);
}

std::optional<Decimal> Decimal::dividedBy(const Decimal& other) const {
    if (other.isZero()) return std::nullopt;
    const int precision = std::max(precision_, other.precision_);
    // (m1 / 10^s1) / (m2 / 10^s2), with `precision` places kept.
    const int shift = precision - scale_ + other.scale_;
    const Integer number = shift >= 0 ? Integer(mantissa_ * powerOfTen(shift)) : mantissa_;
    const Integer divisor = shift >= 0 ? other.mantissa_ : Integer(other.mantissa_ * powerOfTen(-shift));
    return of(divided(number, divisor, false), precision, precision);
}

Decimal Decimal::negated() const {
    Decimal result(*this);
    result.mantissa_ = -result.mantissa_;
    return result;
}

std::optional<Decimal> Decimal::power(const Decimal& exponent) const {
    const int precision = std::max(precision_, exponent.precision_);
    if (exponent.isZero()) return Decimal(1, precision);
    if (isZero()) return exponent.sign() > 0 ? std::optional(Decimal(0, precision)) : std::nullopt;
    if (exponent.truncated(0) == exponent) return wholePower(exponent).withPrecision(precision);
    if (sign() < 0) return std::nullopt;
    return fractionalPower(exponent).withPrecision(precision);
}

/// Every step keeps all places that there are: rounding to fewer would grow with the exponent, and a small
/// base would vanish before its reciprocal is taken.
Decimal Decimal::wholePower(const Decimal& exponent) const {
    Decimal square = withPrecision(maximumPrecision), result(1, maximumPrecision);
    if (exponent.sign() < 0) square = result.dividedBy(square).value_or(Decimal());
    // Squaring stops by itself: a magnitude that passes 10^400 throws, one that vanishes stays zero, and 1
    // and -1 never grow.
    for (Integer left = abs(exponent.truncated(0).mantissa_); left > 0; left /= 2) {
        if (bit_test(left, 0)) result = result.times(square);
        if (left > 1) square = square.times(square);
    }
    return result;
}

Decimal Decimal::fractionalPower(const Decimal& exponent) const {
    const auto wide = [](const Decimal& number) {
        return Float(number.mantissa_.str() + "e-" + std::to_string(number.scale_));
    };
    const Float logarithm = wide(exponent) * log(wide(*this));
    const Float limit = maximumIntegerDigits * log(Float(10));
    if (logarithm >= limit) throw std::overflow_error("a power would reach 10^400");
    if (logarithm < -limit - 1) return {};
    // The last ten digits are rounding errors: logarithm and exponential lose as many as 921, the largest
    // logarithm, has, and some.
    constexpr int goodDigits = 90;
    const std::string digits = Float(exp(logarithm)).str(goodDigits - 1, std::ios_base::scientific);
    const auto result = parse(std::u16string(digits.begin(), digits.end()));
    if (!result) throw std::overflow_error("a power would reach 10^400");
    return *result;
}

std::optional<Decimal> Decimal::squareRoot() const {
    if (sign() < 0) return std::nullopt;
    // One digit more than is kept, so that the last one can be rounded.
    const int places = precision_ + 1;
    const Integer scaled = mantissa_ * powerOfTen(2 * places - scale_);
    return of(Integer(sqrt(scaled)), places, maximumPrecision).rounded(precision_).withPrecision(precision_);
}

Decimal Decimal::withPrecision(int precision) const {
    Decimal result(*this);
    result.setPrecision(precision);
    return result;
}

Decimal Decimal::toPlaces(int places, bool cut) const {
    if (places >= scale_) return *this;
    const int dropped = scale_ - std::max(places, -maximumIntegerDigits - 1);
    Integer kept = divided(mantissa_, powerOfTen(dropped), cut);
    if (places >= 0) return of(std::move(kept), places, precision_);
    return of(kept * powerOfTen(dropped - scale_), 0, precision_);
}

Decimal Decimal::rounded(int places) const { return toPlaces(places, false); }
Decimal Decimal::truncated(int places) const { return toPlaces(places, true); }

Decimal Decimal::floor() const {
    const Decimal whole = truncated(0);
    return whole > *this ? whole.minus(Decimal(1)) : whole;
}

Decimal Decimal::ceiling() const {
    const Decimal whole = truncated(0);
    return whole < *this ? whole.plus(Decimal(1)) : whole;
}

std::strong_ordering Decimal::operator<=>(const Decimal& other) const {
    const int scale = std::max(scale_, other.scale_);
    const Integer left = timesPowerOfTen(mantissa_, scale - scale_);
    return left.compare(timesPowerOfTen(other.mantissa_, scale - other.scale_)) <=> 0;
}

std::int64_t Decimal::toInt64() const {
    const Integer whole = scale_ == 0 ? mantissa_ : divided(mantissa_, powerOfTen(scale_), true);
    using Limits = std::numeric_limits<std::int64_t>;
    if (whole > Limits::max()) return Limits::max();
    if (whole < Limits::min()) return Limits::min();
    return static_cast<std::int64_t>(whole);
}

std::int32_t Decimal::toInt32() const {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(toInt64(), Limits::min(), Limits::max()));
}

double Decimal::toDouble() const {
    const std::string digits = mantissa_.str() + "e-" + std::to_string(scale_);
    return std::strtod(digits.c_str(), nullptr);
}

std::u16string Decimal::text() const {
    if (scale_ == 0 && mantissa_.backend().size() == 1) {
        // A whole number of one limb, which most numbers are, needs no large arithmetic.
        std::array<char, 24> few{};
        const auto end = std::to_chars(few.begin(), few.end(), *mantissa_.backend().limbs()).ptr;
        std::u16string text(sign() < 0 ? u"-" : u"");
        return text.append(few.begin(), end);
    }
    std::string digits = Integer(abs(mantissa_)).str();
    const auto places = static_cast<std::size_t>(scale_);
    if (digits.size() < places) digits.insert(0, places - digits.size(), '0');
    std::string whole = digits.substr(0, digits.size() - places);
    std::string fraction = digits.substr(digits.size() - places);
    fraction.erase(fraction.find_last_not_of('0') + 1);
    if (whole == "0" && !fraction.empty()) whole.clear();
    if (whole.empty() && fraction.empty()) whole = "0";
    const std::string text = (sign() < 0 ? "-" : "") + whole + (fraction.empty() ? "" : "." + fraction);
    return {text.begin(), text.end()};
}

} // namespace host
