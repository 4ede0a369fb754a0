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

class CalcTest : public testing::Test {
protected:
    CalcTest() {
        scope.script = std::make_shared<const ScriptFrame>(ScriptFrame{u"Greet", numberResult(5)});
        scope.lastError->code = 104;
    }
    Result run(const std::string& source) const { return calc::evaluate(fromUtf8(source), scope, table); }
    std::string textOf(const std::string& source) const {
        const Result result = run(source);
        return result.error == 0 ? result.value->asText().utf8() : "error " + std::to_string(result.error);
    }
    static std::string repeated(const std::string& part, std::size_t count) {
        std::string all;
        for (std::size_t i = 0; i < count; ++i)
            all += part;
        return all;
    }

    Session session;
    std::uint64_t file = session.open(
        {u"Contacts", u"", u"", u"", {}, {{u"One", {}}, {u"Two", {}}}, "", {{u"Wrong", {}, u"1 +"}}});
    Environment scope = session.environment(session.front());
    std::shared_ptr<FunctionTable> table = session.functions();
};

TEST_F(CalcTest, FunctionsReadTheEnvironment) {
    EXPECT_EQ(textOf("Get ( filename ) & Get ( ScriptName ) & Get ( ScriptParameter ) & Get ( LastError )"),
              "ContactsGreet5104");
    EXPECT_EQ(textOf("ScriptNames ( \"\" ) & ScriptNames ( \"other\" )"), "One\rTwo");
    EXPECT_EQ(run("").value->nativeType(), DataType::text);
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
        {"1 ; 2", operatorExpected, 2},        {"Let ( a = 1 ; a  b )", operatorExpected, 17},
        {"( 1", unbalancedParenthesis, 3},     {"Nothing ( 1 )", functionNotFound, 0},
        {"Abs ( 1", unbalancedParenthesis, 7}, {"Abs ( 1 ; 2 )", tooManyParameters, 0},
        {"1 )", unbalancedParenthesis, 2},     {"Let ( a = 1 )", tooFewParameters, 0},
        {"1 /* two", unterminatedComment, 2},  {"Let ( a = 1 ; 2 ; 3 )", tooManyParameters, 0},
        {"1 & \"two", unterminatedText, 4},    {"Let ( [ a = 1 ; ", unexpectedEnd, 16},
        {"1 + nothing", missingField, 4},      {"Let ( 1 = 1 ; 2 )", nameMissing, 6},
        {"1 + Abs ( )", tooFewParameters, 4},  {"$ + 1", nameMissing, 0},
        {"Abs", tooFewParameters, 0},          {"Abs ( [ 1 ; 2 ] )", listNotAllowed, 6},
        {"1 # 2", operatorExpected, 2},        {"Get ( 1 )", invalidGetParameter, 6}};
    for (const Wrong& example : examples) {
        const Parsed parsed = parse(fromUtf8(example.source), table);
        EXPECT_EQ(parsed.error, example.error) << example.source;
        EXPECT_EQ(parsed.problem.position, example.position) << example.source;
        EXPECT_FALSE(parsed.expression) << example.source;
        EXPECT_NE(errorMessage(parsed.error), "unknown error");
    }
    session.close(file);
    EXPECT_EQ(run("1").error, error::missingFile);
}

TEST_F(CalcTest, FailuresNameTheirPlaceAndCause) {
    struct Failure {
        std::string source, near, message;
    };
    const std::vector<Failure> examples{
        {"1 + Lenght ( 2 )", "Lenght", "function `Lenght` is not known; did you mean `Length`?"},
        {"Qqqqqqqq ( 2 )", "Qqqqqqqq", "function `Qqqqqqqq` is not known"},
        {"Contacts::nam & 1", "Contacts::nam", "`Contacts::nam`: no such field"},
        {"Let ( total = 1 ; totl )", "totl", "`totl`: no such field; did you mean `total`?"},
        {"Left ( “x” ; 1 )", "“", "`“` is a curly quotation mark; texts stand between straight ones (\")"},
        {"Left ( 1 , 1 )", ",",
         "`,` is a comma; parameters are separated by a semicolon, decimals by a point"},
        {"Abs ( ( 1 + 2 )", "", "`)` is missing after `( ( 1 + 2 )`"},
        {"Let ( [ a = 1 ; b = 2", "", "`]` is missing after `[ a = 1 ; b = 2`"},
        {"Left ( \"abc\" )", "Left", "`Left` takes 2 parameters"},
        {"If ( 1 ; 2 ; 3 ; 4 )", "If", "`If` takes 2 to 3 parameters"},
        {"Get ( Nonsense )", "Nonsense", "`Get` knows no `Nonsense`"},
        {"GetSensor ( 1 )", "GetSensor", "the host has no `GetSensor` (a device with sensors)"},
        {"\"a\" & \"b", "\"", "text constant must end with a quotation mark"},
        {"1 & Wrong", "Wrong",
         "custom function `Wrong`: number, text constant, field name or \"(\" expected"},
        {"1 + Upper ( Let ( $x[0] = 1 ; 1 ) )", "Let", "a variable has no such repetition"},
    };
    for (const auto& [source, near, message] : examples) {
        const Result result = run(source);
        EXPECT_NE(result.error, error::none) << source;
        EXPECT_EQ(result.problem.message, message) << source;
        EXPECT_EQ(toUtf8(result.problem.near), near) << source;
        EXPECT_EQ(fromUtf8(source).substr(result.problem.position, result.problem.length),
                  result.problem.near);
    }
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
        "Evaluate Get Plain é \xF0\x9F\x98\x80 \x01 TextStyleAdd While SetRecursion ${a } :: True , “ [ ; = "
        "\\");
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
