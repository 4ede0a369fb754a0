#include "host/app/File.h"
#include "host/app/Session.h"
#include "host/calc/BuiltIns.h"
#include "host/values/Encoding.h"

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

/// The calculation engine: grammar, operators, errors, functions (a table for each family), and its bounds
/// for oversized calculations.

namespace host::calc {
namespace {

using enum DataType;

struct Example {
    std::string source, text; ///< "error N" for a calculation that fails
    DataType type = DataType::text;
};

class CalcTest : public testing::Test {
protected:
    CalcTest() {
        scope.script = std::make_shared<const ScriptFrame>(ScriptFrame{u"Greet", numberResult(5)});
        *scope.lastError = 104;
    }
    Result run(const std::string& source) const { return calc::evaluate(fromUtf8(source), scope, table); }
    std::string textOf(const std::string& source) const {
        const Result result = run(source);
        return result.error == 0 ? result.value->asText().utf8() : "error " + std::to_string(result.error);
    }
    void expect(const std::vector<Example>& examples) const {
        for (const auto& [source, expected, type] : examples) {
            SCOPED_TRACE(source);
            EXPECT_EQ(textOf(source), expected);
            if (const Result result = run(source); result.error == 0)
                EXPECT_EQ(typeWord(result.value->nativeType()), typeWord(type));
        }
    }
    static std::string repeated(const std::string& part, std::size_t count) {
        std::string all;
        for (std::size_t i = 0; i < count; ++i)
            all += part;
        return all;
    }

    Session session;
    std::uint64_t file = session.open({u"Contacts", u"", u"", u"", {}, {{u"One", {}}, {u"Two", {}}}, ""});
    Environment scope = session.environment(session.front());
    std::shared_ptr<FunctionTable> table = session.functions();
};

TEST_F(CalcTest, ExpressionsGiveValues) {
    expect({{" // nothing\n /* at all */ ", ""}, {"", ""},
            {"1 + 2 * 3 ^ 2", "19", number},     {"-2 ^ 2", "-4", number},
            {"2 ^ -1 ^ 2", ".25", number},       {"2 ^ 3 ^ 2", "64", number},
            {"1 < 2 & \"\"", "1", number},       {"not 0 = 1", "1", number},
            {"1 and 0 or 1 xor 1", "0", number}, {"not 2 ^ 2", "0", number},
            {"1e2 + .5", "100.5", number},       {"10 - 4 - 3 & 1 + 1", "32"},
            {"\"ABC\" = \"abc\"", "1", number},  {"10 < \"9\"", "0", number},
            {"\"é\" = \"É\"", "1", number},      {"1 / 0", "?", invalid},
            {"\"10\" < \"9\"", "1", number},     {"1 / 0 + 1", "?", invalid},
            {"\"abc\" = 0", "0", number},        {"10 ^ 1000", "?", invalid},
            {"\"abc12\" + 1", "13", number}});
    expect({
        {"\"a\\\"b\\\\c\\n¶\" & ¶", "a\"b\\c\\n\r\r"},
        {"\"abc\" ≠ 1 and 1 <> 2 and 2 ≥ 2 and 1 ≤ 2", "1", number},
        {"Date ( 2 ; 28 ; 2024 ) + 2", "3/1/2024", date},
        {"Date ( 3 ; 1 ; 2024 ) - Date ( 2 ; 28 ; 2024 )", "2", number},
        {"Date ( 1 ; 1 ; 2024 ) < Date ( 10 ; 1 ; 2023 )", "0", number},
        {"Date ( 1 ; 1 ; 2024 ) = \"1/1/2024\"", "1", number},
        {"Date ( 1 ; 1 ; 1 ) - 400", "?", invalid},
        {"Time ( 1 ; 0 ; 0 ) + Time ( 23 ; 0 ; 1 )", "24:00:01", time},
        {"Date ( 1 ; 1 ; 2024 ) + Time ( 1 ; 2 ; 3 ) + 1", "1/1/2024 1:02:04", timestamp},
        {"Let ( a = 1 ; a + 1 )", "2", number},
        {"Let ( [ a = 1 ; b = a + 1 ; a = b * 10 ; größe_2 = 5 ] ; a & b & GRÖSSE_2 )", "2025"},
        {"Let ( [ a = 1 ; b = Let ( a = 2 ; a ) ] ; a & b )", "12"},
        {"Let ( [ $x = 2 ; $y[3] = 4 ; $$z = $x ] ; $x & $y & $y[1 + 2] & $Y[99999] & $$Z )", "242"},
        {"Let ( left = 4 ; Left ( \"abcdef\" ; left ) )", "abcd"},
        {"Let ( a = 3 ; Evaluate ( \"a * Let ( a = a + 1 ; a )\" ) )", "12", number},
        {"If ( 0 ; 1 / 0 ; \"no\" ) & If ( 0 ; 1 ) & Case ( 0 ; 1 ; 1 ; 2 ; 3 ) & Case ( 0 ; 1 ; \"d\" )",
         "no2d"},
        {"Choose ( 1 ; \"a\" ; \"b\" ) & Choose ( 7 ; \"a\" )", "b"},
        {"Evaluate ( \"1 +\" )", "?", invalid},
        {"EvaluationError ( Evaluate ( \"1 +\" ) ) & EvaluationError ( 1 )", "12040"},
        {"EvaluationError ( Get ( Nothing ) )", "1218", number},
        {"IsValidExpression ( \"1 +\" ) & IsValidExpression ( \"1\" ) & IsValid ( 1 / 0 ) & IsValid ( 1 )",
         "0101"},
        {"IsEmpty ( \"\" ) & IsEmpty ( 0 ) & GetAsBoolean ( \"x7\" ) & GetAsBoolean ( \"x\" )", "1010"},
        {"SetPrecision ( 1 / 3 ; 20 )", ".33333333333333333333", number},
        {"1 / 3", ".3333333333333333", number},
        {"Get ( filename ) & Get ( ScriptName ) & Get ( ScriptParameter ) & Get ( LastError )",
         "ContactsGreet5104"},
        {"Let ( t = Get ( CurrentHostTimestamp ) ; PatternCount ( t ; \":\" ) & PatternCount ( t ; \"/\" ) & "
         "( GetAsNumber ( t ) = Int ( t ) ) & ( Abs ( t - Get ( CurrentTimestamp ) ) ≤ 1 ) )",
         "2211"},
        {"Length ( Get ( UUID ) )", "36", number},
        {"ScriptNames ( \"\" ) & ScriptNames ( \"other\" ) & DatabaseNames & DatabaseNames ( )",
         "One\rTwoContactsContacts"},
    });
}

TEST_F(CalcTest, WrongExpressionsGiveTheirErrorCode) {
    struct Wrong {
        std::string source;
        int error;
        std::uint32_t position;
    };
    using namespace error;
    const std::vector<Wrong> examples{
        {"1 +", operandExpected, 3},           {"Abs ( 1 , 2 )", operatorExpected, 8},
        {"Abs ( 1 ; ) ", operandExpected, 10}, {"Let ( a ; 1 )", operatorExpected, 8},
        {"Abs ( , )", operandExpected, 6},     {"1 + table::field", missingField, 4},
        {"1 2", operatorExpected, 2},          {"Let ( a = 1 ; a ) & a", missingField, 20},
        {"1 ; 2", operatorExpected, 2},        {"TextStyleAdd ( Bold ; Bold )", missingField, 15},
        {"( 1", unbalancedParenthesis, 3},     {"Nothing ( 1 )", functionNotFound, 0},
        {"Abs ( 1", unbalancedParenthesis, 7}, {"Abs ( 1 ; 2 )", tooManyParameters, 0},
        {"1 )", unbalancedParenthesis, 2},     {"Let ( a = 1 )", tooFewParameters, 0},
        {"1 /* two", unterminatedComment, 2},  {"Let ( a = 1 ; 2 ; 3 )", tooManyParameters, 0},
        {"1 & \"two", unterminatedText, 4},    {"Let ( [ a = 1 ; ", unexpectedEnd, 16},
        {"1 + nothing", missingField, 4},      {"Let ( 1 = 1 ; 2 )", nameMissing, 6},
        {"1 + Abs ( )", tooFewParameters, 4},  {"$ + 1", nameMissing, 0},
        {"Abs", tooFewParameters, 0},          {"Abs ( [ 1 ; 2 ] )", listNotAllowed, 6},
        {"1 # 2", operatorExpected, 2},        {"TextStyleAdd ( 1 ; \"Bold\" )", operandExpected, 19}};
    for (const Wrong& example : examples) {
        const Parsed parsed = parse(fromUtf8(example.source), table);
        EXPECT_EQ(parsed.error, example.error) << example.source;
        EXPECT_EQ(parsed.problem.position, example.position) << example.source;
        EXPECT_FALSE(parsed.expression) << example.source;
        EXPECT_NE(errorMessage(parsed.error), "unknown error");
    }
    EXPECT_FALSE(run("1 / 0").value->isValid());
    EXPECT_FALSE(run("Evaluate ( \"1 +\" )").value->isValid());
    EXPECT_EQ(run("Get ( Nothing )").error, error::unknownKeyword);
    EXPECT_EQ(run("TextStyleAdd ( 1 ; Loud )").error, error::missingField);
    EXPECT_EQ(run("Let ( $x[0] = 1 ; 1 )").error, error::outOfRange);
    session.close(file);
    EXPECT_EQ(run("1").error, error::missingFile);
}

TEST_F(CalcTest, ResultsHaveTypes) {
    expect({
        {"Abs ( -1.5 )", "1.5", number},
        {"Abs ( Time ( -1 ; 0 ; 0 ) )", "1:00:00", time},
        {"Sqrt ( -1 )", "?", invalid},
        {"Date ( 13 ; 32 ; 2023 )", "2/1/2024", date},
        {"DayName ( \"11/21/2026\" ) & DayOfWeek ( \"11/21/2026\" )", "Saturday7"},
        {"DayOfYear ( Date ( 12 ; 31 ; 2024 ) )", "366", number},
        {"JSONGetElement ( \"[\\\"a\\\", 1, true]\" ; 0 )", "a"},
        {"JSONGetElement ( \"[\\\"a\\\", 1, true]\" ; 2 )", "1", number},
        {"TextEncode ( \"a\" ; \"utf-8\" ; 1 )", "text.txt", binary},
        {"Base64Decode ( \"YQ==\" )", "a"},
        {"CryptDigest ( \"a\" ; \"none\" )", "?", invalid},
    });
}

TEST_F(CalcTest, AParsedExpressionIsEvaluatedManyTimes) {
    const Parsed parsed = parse(u"Let ( $n = $n + 1 ; $n )", table);
    ASSERT_TRUE(parsed.expression);
    for (int i = 1; i <= 1000; ++i)
        ASSERT_EQ(calc::evaluate(*parsed.expression, scope).value->asNumber(), Decimal(i));
}

TEST_F(CalcTest, DeepNestingIsAnErrorAndLongChainsAreNot) {
    const auto nested = [](const std::string& open, const std::string& close, std::size_t depth) {
        return repeated(open, depth) + "1" + repeated(close, depth);
    };
    EXPECT_EQ(textOf(nested("(", ")", 399)), "1");
    // A deep calculation that parses and evaluates another at its deepest point. This is the deepest use of
    // the stack.
    const auto bottom = [&](std::size_t depth) { return nested("Abs(0 or 1 and 0=0&1+1*2^", ")", depth); };
    scope.locals->set(u"deep", 1, textResult(fromUtf8(bottom(399))));
    std::string around = bottom(390);
    around.replace(around.find("^1"), 2, "^IsValidExpression($deep)");
    EXPECT_EQ(run(around).error, error::none);
    scope.locals->set(u"deep", 1, textResult(fromUtf8(bottom(90))));
    around.replace(around.find("IsValidExpression"), 17, "Evaluate");
    EXPECT_EQ(run(around).error, error::none);

    const std::vector<std::array<std::string, 2>> kinds{{"(", ")"}, {"Abs(", ")"}, {"Let(a=", ";a)"},
                                                        {"-", ""},  {"not ", ""},  {"$x[", "]"}};
    for (const auto& [open, close] : kinds)
        for (const std::size_t depth : {400U, 100'000U})
            EXPECT_EQ(run(nested(open, close, depth)).error, error::unspecific) << open << depth;

    EXPECT_EQ(textOf("0" + repeated("+1", 100'000)), "100000");
    EXPECT_EQ(run("\"a\"" + repeated("&\"b\"", 100'000)).value->asText().size(), 100'001U);
    EXPECT_EQ(textOf("Sum(1" + repeated(";1", 10'000) + ")"), "10001");
}

TEST_F(CalcTest, RecursiveCalculationsEnd) {
    const std::vector<std::string> endless{
        "Let ( $x = \"Evaluate ( $x )\" ; Evaluate ( $x ) )",
        "Let ( $x = \"Evaluate ( $x ) & Evaluate ( $x )\" ; Evaluate ( $x ) )",
        "Let ( $x = \"EvaluationError ( Evaluate ( $x ) ) & IsValid ( $x & Evaluate ( $x ) )\" ; "
        "Evaluate ( $x ) )",
        // The depth is small here, so only the limit of work ends the calculation.
        "Let ( [ n = 50 ; $x = \"If ( n < 1 ; 0 ; Let ( n = n - 1 ; Evaluate ( $x ) + Evaluate ( $x ) ) )\" "
        "] ; "
        "Evaluate ( $x ) )",
    };
    for (const std::string& source : endless)
        EXPECT_EQ(run(source).error, error::unspecific) << source;

    // The same limits hold for a function that calls the engine again, as plug-ins do.
    table->add(
        {.name = u"Again",
         .minimum = 0,
         .maximum = 0,
         .eager =
             [](Evaluation& evaluation, std::span<const DataRef>) {
                 return calc::evaluate(u"Again", evaluation.environment(), evaluation.functions()).value;
             },
         .lazy = {}});
    EXPECT_EQ(run("Again").error, error::unspecific);
    EXPECT_EQ(textOf("1 + 1"), "2") << "what was exhausted has recovered";
}

TEST_F(CalcTest, AnyTextGivesAValueOrAnErrorCode) {
    std::istringstream words(
        "Let ( ) [ ] ; = a $a $$b 1 .5e3 \"x \" and or + - * / ^ & ¶ ≠ < not /* */ // Abs If "
        "Evaluate Get Plain é \xF0\x9F\x98\x80 \x01 TextStyleAdd");
    std::vector<std::string> pieces{" ", "\n"};
    for (std::string word; words >> word;)
        pieces.push_back(word);
    std::mt19937 generator(20261121);
    std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1), length(1, 25);
    for (int round = 0; round < 20'000; ++round) {
        std::string source;
        for (std::size_t i = length(generator); i > 0; --i)
            source += pieces[pick(generator)];
        const Result result = run(source);
        ASSERT_TRUE(result.value);
        ASSERT_NE(errorMessage(result.error), "unknown error") << source;
        run("Evaluate ( Quote ( $$s ) )");
        session.front()->fileVariables().set(u"s", 1, textResult(fromUtf8(source)));
    }
}

} // namespace
} // namespace host::calc
