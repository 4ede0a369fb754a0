#include "host/values/Data.h"
#include "host/values/Encoding.h"

#include <boost/multiprecision/cpp_int.hpp>
#include <chrono>
#include <gtest/gtest.h>
#include <random>
#include <tuple>
#include <vector>

/// The host's values, each against a second, simpler opinion.

namespace {

using host::Data;
using host::DataType;
using host::DateTime;
using host::Decimal;
using host::Text;

/// A text as it would be without runs: a unit and a look for every character.
using Model = std::vector<std::pair<char16_t, host::RunStyle>>;

host::RunStyle randomLook(std::mt19937& random) {
    host::RunStyle look;
    if (random() % 2 == 0) look.style.setFaces(random() % 2 == 0 ? host::face::bold : host::face::italic);
    if (random() % 4 == 0) look.style.setSize(12);
    if (random() % 4 == 0) look.alignment = host::Alignment::center;
    return look;
}

void expectSame(const Text& text, const Model& model, unsigned seed) {
    ASSERT_EQ(text.size(), model.size()) << "seed " << seed;
    for (std::uint32_t i = 0; i < text.size(); ++i)
        ASSERT_TRUE(text.units()[i] == model[i].first && text.lookAt(i) == model[i].second)
            << "seed " << seed << ", unit " << i;
    for (std::size_t i = 1; i < text.runs().size(); ++i)
        ASSERT_FALSE(text.runs()[i - 1].look == text.runs()[i].look) << "seed " << seed;
    ASSERT_TRUE(text.empty() == text.runs().empty()) << "seed " << seed;
}

TEST(Text, behavesLikeACharacterByCharacterModel) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        const auto upTo = [&](std::uint32_t limit) {
            return static_cast<std::uint32_t>(random() % (limit + 2));
        };
        Text text;
        Model model;
        for (int step = 0; step < 30; ++step) {
            const std::uint32_t position = upTo(text.size()), size = random() % 8 == 0 ? Text::end : upTo(4);
            const std::size_t from = std::min<std::size_t>(position, model.size());
            const std::size_t to =
                std::min<std::size_t>(model.size(), from + std::min<std::size_t>(size, 1000));
            switch (random() % 6) {
            case 0: {
                const host::RunStyle look = randomLook(random);
                text.append(std::u16string_view(u"xyz"), look);
                for (const char16_t unit : {u'x', u'y', u'z'})
                    model.emplace_back(unit, look);
                break;
            }
            case 1: {
                const Text part = text.substring(position, size);
                const Model cut(model.begin() + static_cast<long>(from),
                                model.begin() + static_cast<long>(to));
                const std::uint32_t at = upTo(text.size());
                if (text.size() > 500) break;
                text.insert(part, at);
                model.insert(model.begin() + static_cast<long>(std::min<std::size_t>(at, model.size())),
                             cut.begin(), cut.end());
                break;
            }
            case 2:
                text.erase(position, size);
                model.erase(model.begin() + static_cast<long>(from), model.begin() + static_cast<long>(to));
                break;
            case 3: {
                const host::CharacterStyle style = randomLook(random).style;
                text.applyStyle(style, position, size);
                for (std::size_t i = from; i < to; ++i)
                    model[i].second.style.apply(style);
                break;
            }
            case 4: {
                const host::CharacterStyle style = randomLook(random).style;
                text.removeStyle(style);
                for (auto& [unit, look] : model)
                    look.style.remove(style);
                break;
            }
            default:
                if (text.size() > 500) break;
                text.append(text, position, size); // of itself
                model.reserve(2 * model.size());
                model.insert(model.end(), model.begin() + static_cast<long>(from),
                             model.begin() + static_cast<long>(to));
            }
            expectSame(text, model, seed);
        }
    }
}

TEST(Text, carriesLooksThroughCaseMappings) {
    Text text;
    host::RunStyle bold;
    bold.style.setFaces(host::face::bold);
    text.append(std::u16string_view(u"stra\u00DFe "));
    text.append(std::u16string_view(u"\u00DFx \u01C6\U00010428"), bold);
    const Text upper = text.withCase(Text::Case::upper);
    EXPECT_EQ(upper.utf8(), "STRASSE SSX \u01C4\U00010400");
    EXPECT_EQ(upper.runs(), (std::vector<Text::Run>{{0, {}}, {8, bold}}));
}

TEST(Text, findsWithoutCaseOnWholeCharacters) {
    const struct {
        const char16_t* text;
        const char16_t* wanted;
        std::uint32_t from, first, last;
    } cases[] = {
        {u"abcABC", u"bc", 0, 1, 4},
        {u"abcABC", u"BC", 2, 4, 4},
        {u"Stra\u00DFe", u"SS", 0, 4, 4},
        {u"Stra\u00DFe", u"sse", 0, 4, 4},
        {u"\u00DF", u"s", 0, Text::end, Text::end}, // half a character
        {u"\u0391\u03A3", u"\u03C2", 0, 1, 1},
        {u"abc", u"", 0, Text::end, Text::end},
        {u"", u"a", 0, Text::end, Text::end},
    };
    for (const auto& [text, wanted, from, first, last] : cases) {
        EXPECT_EQ(Text(text).findIgnoringCase(Text(wanted), from), first);
        EXPECT_EQ(Text(text).findBackwardIgnoringCase(Text(wanted), 100), last);
    }
}

TEST(Encoding, goesThereAndBackAndCutsAtAByte) {
    const std::u16string units = u"a\u00E9\u20AC\U0001F600z";
    EXPECT_EQ(host::decode(host::encode(units, host::Encoding::utf8), host::Encoding::utf8), units);
    EXPECT_EQ(host::encode(u"\u00E9", host::Encoding::native), "\x8E"); // Mac Roman
    host::setNativeEncoding(host::Encoding::utf8);
    EXPECT_EQ(host::encode(u"\u00E9", host::Encoding::native), "\xC3\xA9");
    host::setNativeEncoding(host::Encoding::asciiMac);
    const std::string whole = host::toUtf8(units);
    for (std::size_t capacity = 0; capacity <= whole.size() + 1; ++capacity) {
        std::string buffer(capacity + 1, '#');
        const std::size_t written = host::encodeInto(units, host::Encoding::utf8, buffer.data(), capacity);
        EXPECT_EQ(buffer.substr(0, written), whole.substr(0, capacity));
        EXPECT_EQ(buffer[written], '#');
    }
}

TEST(Decimal, agreesWithRationalNumbers) {
    using Integer = Decimal::Integer;
    using Rational = boost::multiprecision::number<
        boost::multiprecision::rational_adaptor<boost::multiprecision::cpp_int_backend<>>,
        boost::multiprecision::et_off>;
    const auto rational = [](const Decimal& number) {
        const std::string text = host::toUtf8(number.text());
        const std::size_t point = std::min(text.find('.'), text.size());
        std::string digits = text.substr(0, point) + (point < text.size() ? text.substr(point + 1) : "");
        const bool negative = digits.front() == '-';
        if (negative) digits.erase(0, 1);
        digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
        const auto places = static_cast<unsigned>(point < text.size() ? text.size() - point - 1 : 0);
        const Rational value(Integer(digits), boost::multiprecision::pow(Integer(10), places));
        return negative ? Rational(-value) : value;
    };
    const Rational half(1, 2);
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937_64 random(seed);
        const auto number = [&] {
            std::u16string text = random() % 2 == 0 ? u"-" : u"";
            for (std::uint64_t digits = random() % 20 + 1; digits > 0; --digits)
                text += static_cast<char16_t>(u'0' + random() % 10);
            text += u'.';
            for (std::uint64_t digits = random() % 16; digits > 0; --digits)
                text += static_cast<char16_t>(u'0' + random() % 10);
            return Decimal::parse(text).value();
        };
        const Decimal a = number(), b = number();
        const Rational ra = rational(a), rb = rational(b);
        EXPECT_EQ(rational(a.plus(b)), Rational(ra + rb)) << seed;
        EXPECT_EQ(rational(a.minus(b)), Rational(ra - rb)) << seed;
        EXPECT_EQ(a < b, ra < rb) << seed;
        // Within half a unit of the sixteenth place.
        const Rational step(1, boost::multiprecision::pow(Integer(10), 16U));
        EXPECT_LE(Rational(abs(Rational(rational(a.times(b)) - ra * rb))), Rational(step * half)) << seed;
        if (const auto quotient = a.dividedBy(b))
            EXPECT_LE(Rational(abs(Rational(rational(*quotient) - ra / rb))), Rational(step * half)) << seed;
        EXPECT_EQ(Decimal::parse(a.text()).value(), a) << seed;
    }
}

TEST(Decimal, hasBoundsAndExactForms) {
    EXPECT_EQ(Decimal(1).dividedBy(Decimal(3, 400))->text().size(), 401U);
    EXPECT_THROW(std::ignore = Decimal(10).power(Decimal(400)), std::overflow_error);
    EXPECT_EQ(Decimal(2).power(Decimal(-2))->text(), u".25");
    EXPECT_FALSE(Decimal(0).power(Decimal(-1)));
    EXPECT_EQ(Decimal(2).squareRoot()->text(), u"1.414213562373095");
    EXPECT_EQ(Decimal::parse(u"1e400"), std::nullopt);
    EXPECT_EQ(Decimal::parse(std::u16string(100'000, u'9')), std::nullopt);
    for (const char16_t* text : {u"", u"-", u".", u"1.2.3", u"a", u"1e", u"--1", u"1 "})
        EXPECT_FALSE(Decimal::parse(text)) << host::toUtf8(text);
    EXPECT_EQ(Decimal::parse(u"-007.50")->text(), u"-7.5");
    EXPECT_EQ(Decimal::parse(u"-2.5")->rounded(0).text(), u"-3");
    EXPECT_EQ(Decimal::parse(u"-2.5")->floor().text(), u"-3");
    EXPECT_EQ(Decimal::parse(u"1234.5")->rounded(-2).text(), u"1200");
    EXPECT_EQ(Decimal(9'223'372'036'854'775'807).plus(Decimal(1)).toInt64(), 9'223'372'036'854'775'807);
}

TEST(DateTime, knowsEveryDayOfItsCalendar) {
    using namespace std::chrono;
    for (std::int64_t day = 0; day <= DateTime::lastDay; ++day) {
        const year_month_day date = sys_days(year{1} / 1 / 1) + days(static_cast<int>(day));
        const DateTime value{.days = day, .micros = 0};
        const auto parts = value.date();
        ASSERT_TRUE(year{parts.year} / parts.month / parts.day == date) << day;
        ASSERT_EQ(value.dayOfWeek(), static_cast<int>(weekday(sys_days(date)).c_encoding()) + 1) << day;
        if (day % 97 == 0) {
            ASSERT_EQ(DateTime::parseDate(value.dateText()), value) << day;
        }
    }
    EXPECT_FALSE(DateTime::fromDate(4000, 12, 32));
    EXPECT_FALSE(DateTime::fromDate(1, 1, 0));
    EXPECT_EQ(DateTime::fromDate(2024, 14, 0)->dateText(), u"1/31/2025");
}

TEST(DateTime, readsWhatPeopleWrite) {
    const struct {
        const char16_t* written;
        const char16_t* read; ///< null: nothing
    } times[] = {{u"16:05", u"16:05:00"},
                 {u"4:05:06 PM", u"16:05:06"},
                 {u"12:00 am", u"0:00:00"},
                 {u"-1:30:00", u"-1:30:00"},
                 {u"100:00:00.25", u"100:00:00.25"},
                 {u"24:60", nullptr},
                 {u"13:00 PM", nullptr},
                 {u"", nullptr},
                 {u"5", nullptr}};
    for (const auto& [written, read] : times) {
        const auto time = DateTime::parseTime(written);
        ASSERT_EQ(time.has_value(), read != nullptr) << host::toUtf8(written);
        if (time) {
            EXPECT_EQ(time->timeText(), read);
        }
    }
    for (const char16_t* bad : {u"2/29/2023", u"13/1/2024", u"1/1", u"1-1/2024", u"0/1/2024", u"1/1/4001"})
        EXPECT_FALSE(DateTime::parseDate(bad)) << host::toUtf8(bad);
    EXPECT_EQ(DateTime::parseTimestamp(u"11/21/2026 4:05 PM")->timestampText(), u"11/21/2026 16:05:00");
}

TEST(Data, readsAsEveryTypeThatItCan) {
    const Data date(*DateTime::fromDate(2026, 11, 21), DataType::date);
    EXPECT_EQ(date.asText().units(), u"11/21/2026");
    EXPECT_EQ(date.asNumber(), Decimal(739'940));
    EXPECT_EQ(date.asTimestamp().timestampText(), u"11/21/2026 0:00:00");
    const struct {
        const char16_t* text;
        const char16_t* number; ///< null: none
    } cases[] = {{u"abc12", u"12"}, {u"abc", nullptr}, {u"1.2.3", u"1.23"}, {u"-5", u"-5"},
                 {u"a-5", u"-5"},   {u"5-", u"5"},     {u"", nullptr},      {u"$1,234.50", u"1234.5"}};
    for (const auto& [text, number] : cases) {
        const auto value = Data(Text(text)).number();
        ASSERT_EQ(value.has_value(), number != nullptr) << host::toUtf8(text);
        if (value) {
            EXPECT_EQ(value->text(), number);
        }
    }
    Data converted{Text(u"abc")};
    EXPECT_FALSE(converted.convert(DataType::date));
    EXPECT_EQ(converted.asText().units(), u"abc");
    EXPECT_TRUE(converted.convert(DataType::number));
    EXPECT_TRUE(converted.isEmpty());
}

} // namespace
