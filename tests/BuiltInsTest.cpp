#include "host/app/Session.h"
#include "host/values/Encoding.h"

#include <gtest/gtest.h>
#include <string>

/// What the calculation functions of the host answer, a family a table.

namespace host {
namespace {

struct Example {
    const char *calculation, *result;
    DataType type = DataType::text;
};

class BuiltIns : public testing::Test {
protected:
    void SetUp() override { session.open(Solution{}); }

    template<std::size_t count>
    void expect(const Example (&examples)[count]) {
        for (const auto& [calculation, expected, type] : examples) {
            SCOPED_TRACE(calculation);
            const calc::Result result = session.evaluate(fromUtf8(calculation));
            if (result.error != 0) {
                EXPECT_EQ("error " + std::to_string(result.error), expected);
                continue;
            }
            EXPECT_EQ(result.value->asText().utf8(), expected);
            EXPECT_EQ(typeWord(result.value->nativeType()), typeWord(type));
        }
    }

    Session session;
};

TEST_F(BuiltIns, PartsOfTexts) {
    const Example examples[] = {
        {"Length ( \"größe😀\" )", "7", DataType::number},
        {"Left ( \"abc\" ; 2 ) & Left ( \"abc\" ; 9 ) & Left ( \"abc\" ; -1 ) & Left ( \"abc\" ; 1.9 )",
         "ababca"},
        {"Right ( \"abc\" ; 2 ) & Right ( \"abc\" ; 9 ) & Right ( \"abc\" ; 0 )", "bcabc"},
        {"Middle ( \"abcdef\" ; 2 ; 3 ) & Middle ( \"abc\" ; 3 ; 9 ) & Middle ( \"abc\" ; 7 ; 1 )", "bcdc"},
        {"Middle ( \"abcdef\" ; 0 ; 2 )", "ab"},
        {"LeftWords ( \"one, two; three\" ; 2 )", "one, two"},
        {"RightWords ( \"one, two; three.\" ; 2 )", "two; three"},
        {"MiddleWords ( \"one two three four\" ; 2 ; 2 )", "two three"},
        {"WordCount ( \"  one, two-three's 4.5 \" )", "4", DataType::number},
        {"LeftValues ( \"a¶b¶c\" ; 2 )", "a\rb\r"},
        {"RightValues ( \"a¶b¶c\" ; 2 )", "b\rc\r"},
        {"MiddleValues ( \"a¶b¶c\" ; 2 ; 1 )", "b\r"},
        {"GetValue ( \"a¶b¶c\" ; 2 ) & GetValue ( \"a¶b\" ; 3 ) & GetValue ( \"a\" ; 0 )", "b"},
        {"ValueCount ( \"a¶b¶\" ) & ValueCount ( \"\" ) & ValueCount ( \"¶¶\" )", "202"},
        {"Position ( \"Mississippi\" ; \"ISS\" ; 1 ; 2 ) & Position ( \"Mississippi\" ; \"iss\" ; 11 ; -1 )",
         "55"},
        {"Position ( \"abc\" ; \"x\" ; 1 ; 1 )", "0", DataType::number},
        {"PatternCount ( \"Mississippi\" ; \"is\" ) & PatternCount ( \"aaa\" ; \"AA\" )", "21"},
    };
    expect(examples);
}

TEST_F(BuiltIns, ChangedTexts) {
    const Example examples[] = {
        {"Substitute ( \"abcabc\" ; \"b\" ; \"xx\" )", "axxcaxxc"},
        {"Substitute ( \"abcABC\" ; [ \"a\" ; \"b\" ] ; [ \"b\" ; \"c\" ] )", "cccABC"},
        {"Substitute ( \"abc\" ; [ \"b\" ; \"\" ] )", "ac"},
        {"Substitute ( \"abc\" ; [ \"b\" ] )", "error 1201"},
        {"Substitute ( \"abc\" ; [ \"b\" ; \"c\" )", "error 1212"},
        {"Left ( [ \"b\" ; 1 ] )", "error 1211"},
        {"Replace ( \"abcdef\" ; 2 ; 3 ; \"X\" ) & Replace ( \"abc\" ; 9 ; 1 ; \"!\" )", "aXefabc!"},
        {"Upper ( \"straße é\" ) & Lower ( \"ÀÉ\" ) & Proper ( \"two wORDS o'clock\" )",
         "STRASSE ÉàéTwo Words O'clock"},
        {"Trim ( \"  a b  \" ) & \"|\"", "a b|"},
        {"TrimAll ( \"  Julian   Scott  \" ; 0 ; 0 )", "Julian Scott"},
        {"Filter ( \"(408)555-1212\" ; \"0123456789\" )", "4085551212"},
        {"FilterValues ( \"a¶b¶c¶a\" ; \"C¶a\" )", "a\rc\ra\r"},
        {"Exact ( \"a\" ; \"A\" ) & Exact ( \"é\" ; \"é\" )", "01"},
        {"Char ( 97 ) & Char ( 8364 ) & Code ( \"a\" )", "a€97"},
        {"Code ( \"\" )", ""},
        {"Quote ( \"a \\\"b\\\" \\\\ ¶\" )", "\"a \\\"b\\\" \\\\ ¶\""},
        {"List ( \"a\" ; \"\" ; \"b\" )", "a\rb"},
        {"SerialIncrement ( \"abc12\" ; 9 ) & SerialIncrement ( \"n099\" ; 1 )", "abc21n100"},
        {"GetAsText ( 012.50 ) & GetAsText ( Time ( 1 ; 2 ; 3 ) )", "12.51:02:03"},
        {"GetAsNumber ( \"FY98.5x1\" )", "98.51", DataType::number},
        {"GetAsDate ( \"2/29/2024\" )", "2/29/2024", DataType::date},
        {"GetAsDate ( \"2/30/2024\" )", "?", DataType::invalid},
        {"GetAsTime ( \"2:30:15\" )", "2:30:15", DataType::time},
        {"GetAsTimestamp ( \"2/29/2024 2:30:15\" )", "2/29/2024 2:30:15", DataType::timestamp},
    };
    expect(examples);
}

TEST_F(BuiltIns, Numbers) {
    const Example examples[] = {
        {"Abs ( -1.5 ) & \" \" & Ceiling ( -1.5 ) & \" \" & Floor ( -1.5 ) & \" \" & Int ( -1.5 )",
         "1.5 -1 -2 -1"},
        {"Mod ( 13 ; 4 ) & \" \" & Mod ( -13 ; 4 ) & \" \" & Mod ( 13 ; -4 )", "1 3 -3"},
        {"Mod ( 1 ; 0 )", "?", DataType::invalid},
        {"Round ( 2.5 ; 0 ) & \" \" & Round ( -2.345 ; 2 ) & \" \" & Round ( 1234 ; -2 )", "3 -2.35 1200"},
        {"Truncate ( 2.987 ; 2 ) & \" \" & Truncate ( -2.987 ; 0 )", "2.98 -2"},
        {"Sqrt ( 2 )", "1.414213562373095", DataType::number},
        {"Sqrt ( -1 )", "?", DataType::invalid},
        {"Max ( 3 ; 10 ; -1 ) & Min ( 3 ; 10 ; -1 )", "10-1"},
        {"Sum ( 1 ; 2.5 ; \"\" ) & \" \" & Average ( 1 ; 2 ; \"\" ) & \" \" & Count ( 1 ; \"\" ; 3 )",
         "3.5 1.5 2"},
        {"Let ( r = Random ; r >= 0 and r < 1 )", "1", DataType::number},
        {"IsEmpty ( \"\" ) & IsEmpty ( 0 )", "10"},
    };
    expect(examples);
}

TEST_F(BuiltIns, DatesAndTimes) {
    const Example examples[] = {
        {"Date ( 2 ; 29 ; 2024 )", "2/29/2024", DataType::date},
        {"Date ( 13 ; 32 ; 2023 )", "2/1/2024", DataType::date},
        {"Date ( 1 ; 0 ; 2024 )", "12/31/2023", DataType::date},
        {"Time ( 25 ; 61 ; 61 )", "26:02:01", DataType::time},
        {"Timestamp ( Date ( 1 ; 1 ; 2024 ) ; Time ( 13 ; 0 ; 0 ) )", "1/1/2024 13:00:00",
         DataType::timestamp},
        {"Let ( d = Date ( 12 ; 31 ; 2024 ) ; Day ( d ) & \" \" & Month ( d ) & \" \" & Year ( d ) )",
         "31 12 2024"},
        {"Let ( t = Time ( 26 ; 5 ; 7 ) ; Hour ( t ) & \" \" & Minute ( t ) & \" \" & Seconds ( t ) )",
         "26 5 7"},
        {"DayOfWeek ( Date ( 11 ; 21 ; 2026 ) )", "7", DataType::number},
        {"DayOfYear ( Date ( 12 ; 31 ; 2024 ) )", "366", DataType::number},
        {"Date ( 1 ; 1 ; 2024 ) - Date ( 1 ; 1 ; 2023 )", "365", DataType::number},
    };
    expect(examples);
}

} // namespace
} // namespace host
