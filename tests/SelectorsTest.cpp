#include "FunctionCalls.h"
#include "Handlers.h"
#include "globals/Dictionary.h"
#include "host/values/Clock.h"
#include "selectors/InlineDocumentation.h"

#include <cstdlib>
#include <locale>

/// Selectors that read and change state, number sorting, and the names of types.

namespace {

using host::Data;
using host::DataType;
using enum DataType;

class Selectors : public FunctionCalls {
protected:
    std::string sorted(const std::u16string& list) {
        const Answer answer = call(u"Kestrel_Get", {Data(u"sort"), Data(host::Text(list))});
        EXPECT_EQ(answer.error, 0);
        EXPECT_EQ(answer.value.nativeType(), DataType::text);
        return answer.value.asText().utf8();
    }
};

TEST_F(Selectors, setNothingWithoutAValue) {
    EXPECT_EQ(call(u"Kestrel_Set", {Data(u"globalDieInterval")}).value.asText().utf8(), "-50");
    EXPECT_EQ(lastError(), "-50 Not enough parameters");
}

TEST_F(Selectors, keepTheCleanPeriodUnchanged) {
    // The test calls the handler that is linked into it, because it can read that copy's variable.
    EXPECT_EQ(kst::gCleanPeriod, 60);
    for (const double seconds : {-5.0, 0.0, 0.25, 60.0}) {
        using host::bridge::out;
        const host::calc::Environment environment = session.environment(session.front());
        const host::DataVect arguments{std::make_shared<const Data>(u"GLOBALDIEINTERVAL"),
                                       std::make_shared<const Data>(host::Decimal::fromDouble(seconds))};
        Data result;
        EXPECT_EQ(Kestrel_Set(0, out<fmx::ExprEnv>(environment), out<fmx::DataVect>(arguments),
                              out<fmx::Data>(result)),
                  0);
        EXPECT_EQ(kst::gCleanPeriod, seconds);
    }
}

TEST_F(Selectors, giveTheLocalTimeAcrossSummerTimeChanges) {
    const struct {
        const char* zone;
        std::int64_t moment; // seconds since 1970, UTC
        const char *date, *time;
    } cases[] = {
        {"Europe/Berlin", 1'774'745'999, "Date ( 3 ; 29 ; 2026 )", "Time ( 1 ; 59 ; 59 )"},
        {"Europe/Berlin", 1'774'746'000, "Date ( 3 ; 29 ; 2026 )", "Time ( 3 ; 0 ; 0 )"},
        {"Europe/Berlin", 1'792'889'999, "Date ( 10 ; 25 ; 2026 )", "Time ( 2 ; 59 ; 59 )"},
        {"Europe/Berlin", 1'792'890'000, "Date ( 10 ; 25 ; 2026 )", "Time ( 2 ; 0 ; 0 )"},
        {"America/St_Johns", 1'772'947'799, "Date ( 3 ; 8 ; 2026 )", "Time ( 1 ; 59 ; 59 )"},
        {"America/St_Johns", 1'772'947'800, "Date ( 3 ; 8 ; 2026 )", "Time ( 3 ; 0 ; 0 )"},
        {"XST5XDT,0/0,J365/25", 1'700'000'000, "Date ( 11 ; 14 ; 2023 )",
         "Time ( 18 ; 13 ; 20 )"}, // always summer
        // Samoa skipped a Friday when it crossed the date line.
        {"Pacific/Apia", 1'325'239'199, "Date ( 12 ; 29 ; 2011 )", "Time ( 23 ; 59 ; 59 )"},
        {"Pacific/Apia", 1'325'239'200, "Date ( 12 ; 31 ; 2011 )", "Time ( 0 ; 0 ; 0 )"},
        {"Asia/Kolkata", 0, "Date ( 1 ; 1 ; 1970 )", "Time ( 5 ; 30 ; 0 )"},
    };
    const char* const former = std::getenv("TZ");
    const std::string kept = former == nullptr ? "" : former;
    host::clock().hold();
    for (const auto& [zone, moment, date, time] : cases) {
        ::setenv("TZ", zone, 1);
        host::clock().set(std::chrono::seconds(moment));
        const std::string expected =
            textOf(std::string("GetAsNumber ( Timestamp ( ") + date + " ; " + time + " ) )");
        for (const char* now :
             {"Kestrel_Get ( \"timestamp\" )", "Kestrel_GetTimestamp", "Get ( CurrentTimestamp )"})
            EXPECT_EQ(textOf(std::string("GetAsNumber ( ") + now + " )"), expected)
                << zone << ' ' << moment << ' ' << now;
    }
    former == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", kept.c_str(), 1);
    host::clock().reset();
}

TEST_F(Selectors, sortListsWithControlCharacters) {
    EXPECT_EQ(sorted(u" \t4 apples\r+2\r2,5"), "2\r2\r4\r");
    EXPECT_EQ(sorted(u"3\r\n1"), "1\r3\r");
    EXPECT_EQ(sorted({u"2\0005\r1", 5}), "1\r2\r");
}

TEST_F(Selectors, sortLongLists) {
    constexpr std::size_t million = 1'000'000;
    EXPECT_EQ(sorted(std::u16string(million, u'7') + u"\r0." + std::u16string(million, u'3')),
              "0.333333\rinf\r");
    EXPECT_EQ(sorted(std::u16string(million, u' ') + u"1\r"), "1\r1\r");
    EXPECT_EQ(sorted(std::u16string(million, u'\r')).size(), 2 * (million + 1));
    std::u16string mixed;
    for (std::size_t i = 0; i < million / 10; ++i)
        mixed += i % 3 == 0 ? u"nan\r" : i % 3 == 1 ? u"-4\r" : u"4\r";
    const std::string numbers = sorted(mixed);
    EXPECT_EQ(numbers.find("nan"), numbers.rfind("4\r") + 2);
    EXPECT_TRUE(numbers.ends_with("nan\r"));
}

TEST_F(Selectors, sortTheSameInEveryLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(sorted(u"2.5\r1,5\r12345"), "1\r2.5\r12345\r");
    std::locale::global(former);
}

TEST_F(Selectors, nameTypes) {
    const std::pair<int, const char*> words[] = {
        {-1, ""},    {0, ""},          {1, "Text"},      {2, "Number"},  {3, "Date"},
        {4, "Time"}, {5, "Timestamp"}, {6, "Container"}, {7, "Boolean"}, {8, ""}};
    for (const auto& [code, word] : words) {
        Data value;
        // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): unknown types are tested too
        value.setNumber(host::Decimal(1), static_cast<DataType>(code));
        const Answer answer = call(u"Kestrel_ValueType", {value});
        EXPECT_EQ(answer.error, 0);
        EXPECT_EQ(answer.value.nativeType(), text);
        EXPECT_EQ(answer.value.asText().utf8(), word);
    }
    EXPECT_EQ(call(u"Kestrel_ValueType", {}).value.asText().utf8(), "");
}

TEST(InlineDocumentation, isOnUntilTurnedOff) {
    EXPECT_TRUE(isInlineDocOn());
    turnOffInlineDoc();
    EXPECT_EQ(getHumanReadableState(), "off");
    turnOnInlineDoc();
    EXPECT_EQ(getHumanReadableState(), "on");
}

} // namespace
