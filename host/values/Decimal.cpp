#include "host/values/Decimal.h"

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace host {

namespace {

/// Expression templates are off, because static analysis cannot follow their temporaries.
using Integer =
    boost::multiprecision::number<boost::multiprecision::cpp_int_backend<>, boost::multiprecision::et_off>;

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

/// Whether the bits are so few that no comparison with 10^400 is needed.
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

bool fitsSmall(const Integer& number) {
    using Limits = std::numeric_limits<std::int64_t>;
    return number.backend().size() == 1 && number <= Limits::max() && number >= Limits::min();
}

/// The product; nothing where 64 bits do not hold it.
std::optional<std::int64_t> smallTimesPowerOfTen(std::int64_t number, int exponent) {
    while (exponent-- > 0)
        if (__builtin_mul_overflow(number, 10, &number)) return std::nullopt;
    return number;
}

} // namespace

/// A mantissa of any size.
struct Decimal::Large {
    Integer value;
};

Decimal Decimal::ofSmall(std::int64_t mantissa, int scale, int precision) {
    Decimal result;
    result.small_ = mantissa;
    result.scale_ = scale;
    result.precision_ = precision;
    return result;
}

Decimal Decimal::of(Large mantissa, int scale, int precision) {
    Integer& value = mantissa.value;
    if (scale > maximumPrecision) {
        value = divided(value, powerOfTen(scale - maximumPrecision), false);
        scale = maximumPrecision;
    }
    if (fitsSmall(value)) return ofSmall(static_cast<std::int64_t>(value), scale, precision);
    if (!isFarBelowLimit(value) && abs(value) >= magnitudeLimit() * powerOfTen(scale))
        throw std::overflow_error("a number would reach 10^400");
    Decimal result = ofSmall(0, scale, precision);
    result.large_ = std::make_shared<const Large>(std::move(mantissa));
    return result;
}

Decimal::Large Decimal::mantissa() const { return large_ == nullptr ? Large{small_} : *large_; }

/// The mantissa at a scale that is not below the number's own; nothing where 64 bits do not hold it.
std::optional<std::int64_t> Decimal::smallAt(int scale) const {
    if (large_ != nullptr) return std::nullopt;
    return smallTimesPowerOfTen(small_, scale - scale_);
}

Decimal::Large Decimal::largeAt(int scale) const {
    Large result = mantissa();
    if (scale != scale_) result.value *= powerOfTen(scale - scale_);
    return result;
}

int Decimal::sign() const {
    if (large_ != nullptr) return large_->value.sign();
    return static_cast<int>(small_ > 0) - static_cast<int>(small_ < 0);
}

Decimal::Decimal(std::int64_t value, int precision)
    : small_(value), precision_(std::clamp(precision, minimumPrecision, maximumPrecision)) {}

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
    const int scale = places - *exponent;
    std::int64_t small = 0;
    const auto end = digits.data() + digits.size();
    if (scale >= 0 && scale <= maximumPrecision &&
        std::from_chars(digits.data(), end, small).ec == std::errc()) {
        if (small == 0) return Decimal();
        return ofSmall(isNegative ? -small : small, scale, std::max(scale, minimumPrecision));
    }
    Integer mantissa(digits);
    return scaled({isNegative ? Integer(-mantissa) : std::move(mantissa)}, scale);
}

/// A mantissa divided by a power of ten of any size.
std::optional<Decimal> Decimal::scaled(Large mantissa, int scale) {
    if (mantissa.value == 0 || scale > static_cast<int>(longestText) + maximumPrecision) return Decimal();
    if (scale < -maximumIntegerDigits) return std::nullopt;
    if (scale < 0) mantissa.value *= powerOfTen(-std::exchange(scale, 0));
    try {
        return of(std::move(mantissa), scale, std::clamp(scale, minimumPrecision, maximumPrecision));
    } catch (const std::overflow_error&) {
        return std::nullopt;
    }
}

void Decimal::setPrecision(int precision) {
    const int kept = std::clamp(precision, minimumPrecision, maximumPrecision);
    if (scale_ <= kept)
        precision_ = kept;
    else // Rounding up may carry a number over the limit.
        *this = of({divided(mantissa().value, powerOfTen(scale_ - kept), false)}, kept, kept);
}

Decimal Decimal::plus(const Decimal& other) const {
    const int scale = std::max(scale_, other.scale_), precision = std::max(precision_, other.precision_);
    const auto left = smallAt(scale), right = other.smallAt(scale);
    std::int64_t sum = 0;
    if (left && right && !__builtin_add_overflow(*left, *right, &sum)) return ofSmall(sum, scale, precision);
    return of({largeAt(scale).value + other.largeAt(scale).value}, scale, precision);
}

Decimal Decimal::minus(const Decimal& other) const { return plus(other.negated()); }

Decimal Decimal::times(const Decimal& other) const {
    const int precision = std::max(precision_, other.precision_), scale = scale_ + other.scale_;
    const bool areSmall = large_ == nullptr && other.large_ == nullptr;
    std::int64_t small = 0;
    if (areSmall && scale <= precision && !__builtin_mul_overflow(small_, other.small_, &small))
        return ofSmall(small, scale, precision);
    Integer product = mantissa().value * other.mantissa().value;
    if (scale <= precision) return of({std::move(product)}, scale, precision);
    return of({divided(product, powerOfTen(scale - precision), false)}, precision, precision);
}

std::optional<Decimal> Decimal::dividedBy(const Decimal& other) const {
    if (other.isZero()) return std::nullopt;
    const int precision = std::max(precision_, other.precision_);
    // (m1 / 10^s1) / (m2 / 10^s2), with `precision` places kept.
    const int shift = precision - scale_ + other.scale_;
    Integer number = mantissa().value, divisor = other.mantissa().value;
    (shift >= 0 ? number : divisor) *= powerOfTen(std::abs(shift));
    return of({divided(number, divisor, false)}, precision, precision);
}

Decimal Decimal::negated() const {
    const bool isSmall = large_ == nullptr && small_ > std::numeric_limits<std::int64_t>::min();
    return isSmall ? ofSmall(-small_, scale_, precision_) : of({-mantissa().value}, scale_, precision_);
}

/// Every step keeps all places that there are: rounding to fewer would grow with the exponent, and a small
/// base would vanish before its reciprocal is taken.
std::optional<Decimal> Decimal::power(const Decimal& exponent) const {
    const int precision = std::max(precision_, exponent.precision_);
    Decimal square = withPrecision(maximumPrecision), result(1, maximumPrecision);
    if (exponent.sign() < 0) {
        const auto reciprocal = result.dividedBy(square);
        if (!reciprocal) return std::nullopt;
        square = *reciprocal;
    }
    // Squaring stops by itself: a magnitude that passes 10^400 throws, one that vanishes stays zero, and 1
    // and -1 never grow.
    for (Integer left = abs(exponent.truncated(0).mantissa().value); left > 0; left /= 2) {
        if (square.isZero()) return Decimal(0, precision);
        if (bit_test(left, 0)) result = result.times(square);
        if (left > 1) square = square.times(square);
    }
    return result.withPrecision(precision);
}

std::optional<Decimal> Decimal::squareRoot() const {
    if (sign() < 0) return std::nullopt;
    // One digit more than is kept, so that the last one can be rounded.
    const int places = precision_ + 1;
    const Integer square = largeAt(2 * places).value;
    return of({sqrt(square)}, places, maximumPrecision).rounded(precision_).withPrecision(precision_);
}

Decimal Decimal::withPrecision(int precision) const {
    Decimal result(*this);
    result.setPrecision(precision);
    return result;
}

Decimal Decimal::toPlaces(int places, bool cut) const {
    if (places >= scale_) return *this;
    const int dropped = scale_ - std::max(places, -maximumIntegerDigits - 1);
    Integer kept = divided(mantissa().value, powerOfTen(dropped), cut);
    if (places >= 0) return of({std::move(kept)}, places, precision_);
    return of({kept * powerOfTen(dropped - scale_)}, 0, precision_);
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
    const auto left = smallAt(scale), right = other.smallAt(scale);
    if (left && right) return *left <=> *right;
    return largeAt(scale).value.compare(other.largeAt(scale).value) <=> 0;
}

std::int64_t Decimal::toInt64() const {
    if (scale_ > 0) return truncated(0).toInt64();
    using Limits = std::numeric_limits<std::int64_t>;
    if (large_ != nullptr) return sign() < 0 ? Limits::min() : Limits::max();
    return small_;
}

std::int32_t Decimal::toInt32() const {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(toInt64(), Limits::min(), Limits::max()));
}

/// The mantissa with its sign.
std::string Decimal::digits() const {
    return large_ == nullptr ? std::to_string(small_) : large_->value.str();
}

double Decimal::toDouble() const {
    return std::strtod((digits() + "e-" + std::to_string(scale_)).c_str(), nullptr);
}

std::u16string Decimal::text() const {
    std::string text = digits();
    if (scale_ > 0) {
        const std::size_t first = text.front() == '-' ? 1 : 0;
        const auto places = static_cast<std::size_t>(scale_);
        if (text.size() - first < places) text.insert(first, places - (text.size() - first), '0');
        text.insert(text.size() - places, 1, '.');
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.pop_back();
        if (text.size() == first) text = "0";
    }
    return {text.begin(), text.end()};
}

} // namespace host
