#include "host/values/Decimal.h"

#include <boost/multiprecision/cpp_dec_float.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <stdexcept>

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

/// 10^400, which no magnitude reaches.
const Integer& magnitudeLimit() {
    static const Integer limit = powerOfTen(Decimal::maximumIntegerDigits);
    return limit;
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
    if (abs(result.mantissa_) >= magnitudeLimit() * powerOfTen(result.scale_))
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
    constexpr std::size_t longest = 2'000;
    if (text.empty() || text.size() > longest) return std::nullopt;
    const bool negative = text.front() == u'-';
    if (negative) text.remove_prefix(1);
    std::string digits;
    int places = 0;
    bool point = false;
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        if (text[at] == u'.' && !point) {
            point = true;
        } else if (text[at] >= u'0' && text[at] <= u'9') {
            digits += static_cast<char>(text[at]);
            places += point ? 1 : 0;
        } else {
            break;
        }
    }
    if (digits.empty()) return std::nullopt;
    int exponent = 0;
    if (at < text.size()) {
        if (text[at] != u'e' && text[at] != u'E') return std::nullopt;
        bool down = false;
        ++at;
        const char16_t sign = at < text.size() ? text[at] : u'0';
        down = sign == u'-';
        if (down || sign == u'+') ++at;
        if (at == text.size() || text.size() - at > 5) return std::nullopt;
        for (; at < text.size(); ++at) {
            if (text[at] < u'0' || text[at] > u'9') return std::nullopt;
            exponent = exponent * 10 + (text[at] - u'0');
        }
        if (down) exponent = -exponent;
    }
    digits.erase(0,
                 std::min(digits.find_first_not_of('0'), digits.size() - 1)); // a leading 0 would mean octal
    Integer mantissa(digits);
    if (negative) mantissa = -mantissa;
    int scale = places - exponent;
    if (mantissa == 0) return Decimal();
    if (scale < -maximumIntegerDigits || scale > static_cast<int>(longest) + maximumPrecision) {
        if (scale > 0) return Decimal();
        return std::nullopt;
    }
    if (scale < 0) {
        mantissa *= powerOfTen(-scale);
        scale = 0;
    }
    try {
        const int kept = std::clamp(scale, minimumPrecision, maximumPrecision);
        return of(std::move(mantissa), scale, kept);
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
    return of(mantissa_ * powerOfTen(scale - scale_) + other.mantissa_ * powerOfTen(scale - other.scale_),
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
    const Integer left = mantissa_ * powerOfTen(scale - scale_);
    const Integer right = other.mantissa_ * powerOfTen(scale - other.scale_);
    return left.compare(right) <=> 0;
}

std::int64_t Decimal::toInt64() const {
    const Integer whole = divided(mantissa_, powerOfTen(scale_), true);
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
