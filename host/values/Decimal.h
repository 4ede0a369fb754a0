#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// An exact decimal number: an integer of any size divided by a power of ten. Precision is the number of
/// digits kept after the point by operations that cannot be exact, from 16 to 400. Magnitudes stay below
/// 10^400: an operation that would pass it throws std::overflow_error.
class Decimal {
public:
    static constexpr int minimumPrecision = 16, maximumPrecision = 400, maximumIntegerDigits = 400;

    Decimal() = default;
    Decimal(std::int64_t value, int precision = minimumPrecision); // NOLINT(google-explicit-constructor)
    /// Seventeen significant digits of a finite value; not-a-number and infinities throw std::range_error.
    static Decimal fromDouble(double value, int precision = minimumPrecision);
    /// An optional minus, digits, at most one point, an optional exponent ("1e5", "-.5"), nothing else;
    /// digits after the 400th place are rounded. Nothing for any other text, one longer than 2,000 units or
    /// a magnitude out of range. The precision grows to the places read.
    static std::optional<Decimal> parse(std::u16string_view text);

    /// Clamped to 16…400. A smaller precision rounds the value half away from zero.
    void setPrecision(int precision);
    [[nodiscard]] int precision() const { return precision_; }

    /// The larger precision of the two sides; quotients are rounded half away from zero.
    [[nodiscard]] Decimal plus(const Decimal& other) const;
    [[nodiscard]] Decimal minus(const Decimal& other) const;
    [[nodiscard]] Decimal times(const Decimal& other) const;
    /// The quotient; nothing when the divisor is zero.
    [[nodiscard]] std::optional<Decimal> dividedBy(const Decimal& other) const;
    [[nodiscard]] Decimal negated() const;
    /// A power with a whole exponent of any size, exact but for the rounding of places past the 400th.
    /// The result is nothing for 0 to a negative power; an exponent's fraction is cut.
    [[nodiscard]] std::optional<Decimal> power(const Decimal& exponent) const;
    [[nodiscard]] std::optional<Decimal> squareRoot() const;
    /// Rounded half away from zero, or cut, to `places` after the point (negative: before it).
    [[nodiscard]] Decimal rounded(int places) const;
    [[nodiscard]] Decimal truncated(int places) const;
    [[nodiscard]] Decimal floor() const;
    [[nodiscard]] Decimal ceiling() const;

    [[nodiscard]] bool isZero() const { return small_ == 0 && large_ == nullptr; }
    [[nodiscard]] int sign() const; ///< -1, 0 or 1
    std::strong_ordering operator<=>(const Decimal& other) const;
    bool operator==(const Decimal& other) const { return (*this <=> other) == 0; }

    /// Truncated towards zero and held at the type's limits.
    [[nodiscard]] std::int64_t toInt64() const;
    [[nodiscard]] std::int32_t toInt32() const;
    [[nodiscard]] double toDouble() const;
    /// The shortest decimal form as calculations print it: no zero before the point ("-.5"), no trailing
    /// zeros, "0".
    [[nodiscard]] std::u16string text() const;

private:
    struct Large;

    static Decimal ofSmall(std::int64_t mantissa, int scale, int precision);
    static Decimal of(Large mantissa, int scale, int precision);
    static std::optional<Decimal> scaled(Large mantissa, int scale);
    [[nodiscard]] Large mantissa() const;
    [[nodiscard]] std::optional<std::int64_t> smallAt(int scale) const;
    [[nodiscard]] Large largeAt(int scale) const;
    [[nodiscard]] std::string digits() const;
    [[nodiscard]] Decimal withPrecision(int precision) const;
    [[nodiscard]] Decimal toPlaces(int places, bool cut) const;

    /// The mantissa is the value times 10^scale_. One that 64 bits hold is never large.
    std::int64_t small_ = 0;
    std::shared_ptr<const Large> large_; ///< null where small_ is the mantissa
    int scale_ = 0;                      ///< 0…400
    int precision_ = minimumPrecision;
};

} // namespace host
