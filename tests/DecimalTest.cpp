#include "host/values/Decimal.h"
#include "host/values/Encoding.h"

#include <boost/multiprecision/cpp_dec_float.hpp>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <tuple>

/// Decimals compared with numbers of a thousand digits, and the bounds of their work.

namespace {

using host::Decimal;
using Wide =
    boost::multiprecision::number<boost::multiprecision::cpp_dec_float<1000>, boost::multiprecision::et_off>;

Decimal read(std::u16string_view text) { return Decimal::parse(text).value(); }
Wide wide(const Decimal& number) { return Wide(host::toUtf8(number.text())); }

/// Half a unit of the sixteenth digit.
const Wide& halfStep() {
    static const Wide step("5e-17");
    return step;
}

TEST(DecimalArithmetic, isExactOrRoundedOnce) {
    for (unsigned seed = 0; seed < 3000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        const auto number = [&] {
            std::u16string text = random() % 2 == 0 ? u"-" : u"";
            const auto write = [&](std::uint64_t digits) {
                while (digits-- > 0)
                    text += static_cast<char16_t>(u'0' + random() % 10);
            };
            write(random() % 20 + 1);
            text += u'.';
            write(random() % 16);
            return read(text);
        };
        const Decimal a = number(), b = number();
        EXPECT_EQ(wide(a.plus(b)), Wide(wide(a) + wide(b)));
        EXPECT_EQ(wide(a.minus(b)), Wide(wide(a) - wide(b)));
        EXPECT_EQ(a < b, wide(a) < wide(b));
        EXPECT_LE(Wide(abs(wide(a.times(b)) - wide(a) * wide(b))), halfStep());
        if (const auto quotient = a.dividedBy(b))
            EXPECT_LE(Wide(abs(wide(*quotient) * wide(b) - wide(a))), Wide(halfStep() * abs(wide(b))));
        EXPECT_EQ(read(a.text()), a);
    }
}

TEST(DecimalPower, ofWholeExponentsIsRoundedOnce) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        std::mt19937 random(seed);
        const Decimal base =
            Decimal(static_cast<std::int64_t>(random() % 4000) - 2000).dividedBy(Decimal(1000)).value();
        const auto exponent = static_cast<int>(random() % 121) - 60;
        const auto power = base.power(Decimal(exponent));
        ASSERT_EQ(power.has_value(), !base.isZero() || exponent >= 0) << "seed " << seed;
        if (!power) continue;
        Wide expected = 1;
        for (int i = 0; i < std::abs(exponent); ++i)
            expected *= wide(base);
        if (exponent < 0) expected = 1 / expected;
        // A relative error of 10^-300 is allowed, because a thousand digits are not always exact.
        EXPECT_LE(Wide(abs(wide(*power) - expected)), halfStep() + abs(expected) * Wide("1e-300"))
            << "seed " << seed << ": " << host::toUtf8(base.text()) << " ^ " << exponent;
    }
}

TEST(DecimalPower, hasResultsBeyondTheRangeOfADouble) {
    const struct {
        const char *base, *exponent, *power; ///< null where there is no result
    } cases[] = {{"2", "-2000", "0"},  {".1", "-20", "100000000000000000000"},
                 {"2", "-2", ".25"},   {".01", "-3", "1000000"},
                 {"0", "-1", nullptr}, {"-1", "1000000000000000000000000000001", "-1"},
                 {"-1", "1e30", "1"},  {"-1", "-9223372036854775808", "1"},
                 {".5", "1e300", "0"}, {"1.0000000000000001", "1e16", "2.7182818284590451"},
                 {"0", "0", "1"},      {"2", "3.9", "8"}};
    for (const auto& [base, exponent, expected] : cases) {
        const auto power = read(host::fromUtf8(base)).power(read(host::fromUtf8(exponent)));
        const std::string result = power ? host::toUtf8(power->text()) : "none";
        EXPECT_EQ(result, expected == nullptr ? "none" : expected) << base << " ^ " << exponent;
    }
    EXPECT_EQ(Decimal(3).power(Decimal(-1, 400))->text().size(), 401U);
    EXPECT_EQ(Decimal(1).dividedBy(Decimal(3, 400))->text().size(), 401U);
}

TEST(DecimalBounds, areKeptByEveryOperation) {
    const Decimal most = read(std::u16string(400, u'9')), least = read(u"1e-400");
    const Decimal nearly = read(std::u16string(400, u'9') + u"." + std::u16string(20, u'9'));
    const struct {
        const char* name;
        std::function<Decimal()> work;
    } cases[] = {
        {"plus", [&] { return most.plus(Decimal(1)); }},
        {"times", [&] { return most.times(Decimal(2)); }},
        {"dividedBy", [&] { return Decimal(1).dividedBy(least).value(); }},
        {"rounded", [&] { return most.rounded(-1); }},
        {"ceiling", [&] { return nearly.ceiling(); }},
        {"setPrecision", [copy = nearly]() mutable { return copy.setPrecision(16), copy; }},
        {"power", [&] { return Decimal(2).power(read(u"1e300")).value(); }},
        {"reciprocal power", [&] { return least.power(Decimal(-1)).value(); }},
        {"slow power", [&] { return read(u"1.0000001").power(read(u"1e18")).value(); }},
    };
    const auto start = std::chrono::steady_clock::now();
    for (const auto& [name, work] : cases)
        EXPECT_THROW(std::ignore = work(), std::overflow_error) << name;
    EXPECT_THROW(std::ignore = Decimal::fromDouble(std::numeric_limits<double>::infinity()),
                 std::range_error);
    for (const std::u16string& text : {u"1." + std::u16string(1'000'000, u'9'), std::u16string(100'000, u'9'),
                                       std::u16string(u"1e99999999999"), std::u16string(u"1e400")})
        EXPECT_FALSE(Decimal::parse(text)) << host::toUtf8(text.substr(0, 20));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(DecimalRounding, leavesNoMoreThanHalfAStep) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937_64 random(seed);
        const auto mantissa = static_cast<std::int64_t>(random() % 2'000'000'000'000) - 1'000'000'000'000;
        const Decimal number = Decimal(mantissa).dividedBy(Decimal(1'000'000)).value();
        const int places = static_cast<int>(random() % 16) - 7;
        const Wide value = wide(number), step = pow(Wide(10), -places);
        const Wide rounded = wide(number.rounded(places)), cut = wide(number.truncated(places));
        const Wide gap = abs(rounded - value);
        EXPECT_TRUE(gap < step / 2 || (gap == step / 2 && abs(rounded) > abs(value))) << "seed " << seed;
        EXPECT_TRUE(abs(cut) <= abs(value) && abs(value) - abs(cut) < step) << "seed " << seed;
        for (const Wide& multiple : {Wide(rounded / step), Wide(cut / step)})
            EXPECT_EQ(multiple, trunc(multiple)) << "seed " << seed;
        EXPECT_EQ(wide(number.floor()), Wide(floor(value))) << "seed " << seed;
        EXPECT_EQ(wide(number.ceiling()), Wide(ceil(value))) << "seed " << seed;
        if (const auto root = number.squareRoot()) {
            EXPECT_LE(Wide(abs(wide(*root) - sqrt(value))), halfStep()) << "seed " << seed;
        }
    }
}

TEST(DecimalText, isReadWhollyOrNotAtAll) {
    for (const char16_t* text : {u"", u"-", u".", u"1.2.3", u"a", u"1e", u"--1", u"1 "})
        EXPECT_FALSE(Decimal::parse(text)) << host::toUtf8(text);
    EXPECT_EQ(read(u"-007.50").text(), u"-7.5");
    EXPECT_EQ(read(u"9223372036854775808").toInt64(), 9'223'372'036'854'775'807);
}

TEST(DecimalDouble, convertsBackUnchanged) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937_64 random(seed);
        const double value =
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 800) - 500);
        EXPECT_EQ(Decimal::fromDouble(value, Decimal::maximumPrecision).toDouble(), value) << "seed " << seed;
    }
}

} // namespace
