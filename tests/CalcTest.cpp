#include "host/calc/BuiltIns.h"
#include "host/calc/Engine.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

/// The calculation engine: grammar, operators, errors, and that no calculation is too much for it.

namespace host::calc {
namespace {

class OneFile final : public Surroundings {
public:
    [[nodiscard]] bool isOpen() const override { return open; }
    Variables& fileVariables() override { return variables; }
    std::optional<DataRef> get(std::u16string_view name) override {
        if (name != u"filename") return std::nullopt;
        return textResult(u"Contacts");
    }
    std::int64_t localMicros() override { return 739'940 * DateTime::microsPerDay + 58'029'500'000; }
    std::optional<std::u16string> scriptNames(std::u16string_view fileName) override {
        return fileName.empty() ? std::optional<std::u16string>(u"One\rTwo") : std::nullopt;
    }
    std::u16string databaseNames() override { return u"Contacts"; }
    SqlAnswer executeSql(std::u16string_view statement, std::u16string_view,
                         const DataVect& parameters) override {
        if (statement.empty()) return {.error = 8310, .rows = {}};
        return {.error = 0, .rows = {parameters, parameters}};
    }
    std::uint16_t fontId(std::u16string_view) override { return 7; }
    std::optional<std::u16string> fontName(std::uint16_t id) override {
        return id == 7 ? std::optional<std::u16string>(u"Helvetica") : std::nullopt;
    }

    bool open = true;
    Variables variables;
};

class CalcTest : public testing::Test {
protected:
    Result run(const std::string& source) const { return calc::evaluate(fromUtf8(source), scope, table); }
    std::string text(const std::string& source) const {
        const Result result = run(source);
        return result.error == 0 ? result.value->asText().utf8() : "error " + std::to_string(result.error);
    }
    static std::string repeated(const std::string& part, std::size_t count) {
        std::string all;
        for (std::size_t i = 0; i < count; ++i)
            all += part;
        return all;
    }

    std::shared_ptr<OneFile> file = std::make_shared<OneFile>();
    Environment scope{.sessionId = 1,
                      .fileId = 1,
                      .file = file,
                      .locals = std::make_shared<Variables>(),
                      .script = std::make_shared<const ScriptFrame>(ScriptFrame{u"Greet", numberResult(5)}),
                      .lastError = std::make_shared<int>(104)};
    std::shared_ptr<FunctionTable> table = std::make_shared<FunctionTable>();
};

struct Example {
    std::string source, text;
    std::string_view type{}; ///< not looked at when empty
};

TEST_F(CalcTest, ExpressionsGiveValues) {
    const std::vector<Example> examples{
        {"", "", "Text"},
        {" // nothing\n /* at all */ ", "", "Text"},
        {"1 + 2 * 3 ^ 2", "19", "Number"},
        {"-2 ^ 2", "-4", "Number"},
        {"2 ^ -1 ^ 2", ".25"},
        {"2 ^ 3 ^ 2", "64"},
        {"not 0 = 1", "1", "Number"},
        {"not 2 ^ 2", "0"},
        {"10 - 4 - 3 & 1 + 1", "32", "Text"},
        {"1 < 2 & \"\"", "1"},
        {"1 and 0 or 1 xor 1", "0"},
        {"1e2 + .5", "100.5"},
        {"\"a\\\"b\\\\c\\n¶\" & ¶", "a\"b\\c\\n\r\r"},
        {"\"ABC\" = \"abc\"", "1"},
        {"\"é\" = \"É\"", "1"},
        {"\"10\" < \"9\"", "1"},
        {"10 < \"9\"", "0"},
        {"\"abc\" = 0", "0"},
        {"\"abc12\" + 1", "13", "Number"},
        {"\"abc\" ≠ 1 and 1 <> 2 and 2 ≥ 2 and 1 ≤ 2", "1"},
        {"1 / 0", "?"},
        {"1 / 0 + 1", "?"},
        {"10 ^ 1000", "?"},
        {"Date ( 2 ; 28 ; 2024 ) + 2", "3/1/2024", "Date"},
        {"Date ( 3 ; 1 ; 2024 ) - Date ( 2 ; 28 ; 2024 )", "2", "Number"},
        {"Date ( 1 ; 1 ; 2024 ) < Date ( 10 ; 1 ; 2023 )", "0"},
        {"Date ( 1 ; 1 ; 2024 ) = \"1/1/2024\"", "1"},
        {"Date ( 1 ; 1 ; 1 ) - 400", "?"},
        {"Time ( 1 ; 0 ; 0 ) + Time ( 23 ; 0 ; 1 )", "24:00:01", "Time"},
        {"Date ( 1 ; 1 ; 2024 ) + Time ( 1 ; 2 ; 3 ) + 1", "1/1/2024 1:02:04", "Timestamp"},
        {"Let ( a = 1 ; a + 1 )", "2"},
        {"Let ( [ a = 1 ; b = a + 1 ; a = b * 10 ; größe_2 = 5 ] ; a & b & GRÖSSE_2 )", "2025"},
        {"Let ( [ a = 1 ; b = Let ( a = 2 ; a ) ] ; a & b )", "12"},
        {"Let ( [ $x = 2 ; $y[3] = 4 ; $$z = $x ] ; $x & $y & $y[1 + 2] & $Y[99999] & $$Z )", "242"},
        {"Let ( left = 4 ; Left ( \"abcdef\" ; left ) )", "abcd"},
        {"Let ( a = 3 ; Evaluate ( \"a * Let ( a = a + 1 ; a )\" ) )", "12", "Number"},
        {"If ( 0 ; 1 / 0 ; \"no\" ) & If ( 0 ; 1 ) & Case ( 0 ; 1 ; 1 ; 2 ; 3 ) & Case ( 0 ; 1 ; \"d\" )",
         "no2d"},
        {"Choose ( 1 ; \"a\" ; \"b\" ) & Choose ( 7 ; \"a\" )", "b"},
        {"Evaluate ( \"1 +\" )", "?"},
        {"EvaluationError ( Evaluate ( \"1 +\" ) ) & EvaluationError ( 1 )", "12040"},
        {"EvaluationError ( Get ( Nothing ) )", "1218"},
        {"IsValidExpression ( \"1 +\" ) & IsValidExpression ( \"1\" ) & IsValid ( 1 / 0 ) & IsValid ( 1 )",
         "0101"},
        {"IsEmpty ( \"\" ) & IsEmpty ( 0 ) & GetAsBoolean ( \"x7\" ) & GetAsBoolean ( \"x\" )", "1010"},
        {"SetPrecision ( 1 / 3 ; 20 )", ".33333333333333333333", "Number"},
        {"1 / 3", ".3333333333333333"},
        {"Get ( filename ) & Get ( ScriptName ) & Get ( ScriptParameter ) & Get ( LastError )",
         "ContactsGreet5104"},
        {"Get ( CurrentHostTimestamp )", "11/21/2026 16:07:09", "Timestamp"},
        {"Length ( Get ( UUID ) )", "36"},
        {"ScriptNames ( \"\" ) & ScriptNames ( \"other\" ) & DatabaseNames & DatabaseNames ( )",
         "One\rTwoContactsContacts"},
        {"ExecuteSQL ( \"q\" ; \"\" ; \"|\" ; 1 ; \"b\" ) & ExecuteSQL ( \"\" ; \"\" ; \"\" )", "1,b|1,b?"},
        {"RGB ( 255 ; 0 ; 300 )", "16711935", "Number"},
    };
    for (const Example& example : examples) {
        SCOPED_TRACE(example.source);
        EXPECT_EQ(text(example.source), example.text);
        if (!example.type.empty()) EXPECT_EQ(typeWord(run(example.source).value->nativeType()), example.type);
    }
}

TEST_F(CalcTest, WrongExpressionsAnswerTheirCode) {
    struct Wrong {
        std::string source;
        int error;
        std::uint32_t position;
    };
    const std::vector<Wrong> examples{
        {"1 +", error::operandExpected, 3},
        {"Abs ( 1 ; ) ", error::operandExpected, 10},
        {"Abs ( , )", error::operandExpected, 6},
        {"1 2", error::operatorExpected, 2},
        {"Abs ( 1 , 2 )", error::operatorExpected, 8},
        {"1 ; 2", error::operatorExpected, 2},
        {"Let ( a ; 1 )", error::operatorExpected, 8},
        {"( 1", error::unbalancedParenthesis, 3},
        {"Abs ( 1", error::unbalancedParenthesis, 7},
        {"1 )", error::unbalancedParenthesis, 2},
        {"1 /* two", error::unterminatedComment, 2},
        {"1 & \"two", error::unterminatedText, 4},
        {"1 + nothing", error::missingField, 4},
        {"1 + table::field", error::missingField, 4},
        {"Let ( a = 1 ; a ) & a", error::missingField, 20},
        {"TextStyleAdd ( Bold ; Bold )", error::missingField, 15},
        {"Nothing ( 1 )", error::functionNotFound, 0},
        {"1 + Abs ( )", error::tooFewParameters, 4},
        {"Abs", error::tooFewParameters, 0},
        {"Abs ( 1 ; 2 )", error::tooManyParameters, 0},
        {"Let ( a = 1 )", error::tooFewParameters, 0},
        {"Let ( a = 1 ; 2 ; 3 )", error::tooManyParameters, 0},
        {"Let ( [ a = 1 ; ", error::unexpectedEnd, 16},
        {"Let ( 1 = 1 ; 2 )", error::nameMissing, 6},
        {"$ + 1", error::nameMissing, 0},
        {"Abs ( [ 1 ; 2 ] )", error::listNotAllowed, 6},
        {"TextStyleAdd ( 1 ; \"Bold\" )", error::operandExpected, 19},
        {"1 # 2", error::operatorExpected, 2},
    };
    for (const Wrong& example : examples) {
        const Parsed parsed = parse(fromUtf8(example.source), table);
        EXPECT_EQ(parsed.error, example.error) << example.source;
        EXPECT_EQ(parsed.position, example.position) << example.source;
        EXPECT_FALSE(parsed.expression) << example.source;
        EXPECT_NE(errorMessage(parsed.error), "unknown error");
    }
    EXPECT_FALSE(run("1 / 0").value->isValid());
    EXPECT_FALSE(run("Evaluate ( \"1 +\" )").value->isValid());
    EXPECT_EQ(run("Get ( Nothing )").error, error::unknownKeyword);
    EXPECT_EQ(run("TextStyleAdd ( 1 ; Loud )").error, error::missingField);
    EXPECT_EQ(run("Let ( $x[0] = 1 ; 1 )").error, error::outOfRange);
    file->open = false;
    EXPECT_EQ(run("1").error, error::missingFile);
}

TEST_F(CalcTest, LooksTravelAndAreWrittenAsCss) {
    const std::string frank =
        "TextStyleAdd ( TextColor ( TextSize ( TextFont ( \"Frank\" ; \"Helvetica\" ) ; 12 ) ; "
        "RGB ( 255 ; 0 ; 0 ) ) ; bold + Plain )";
    const std::vector<Example> examples{
        {"GetAsCSS ( " + frank + " )",
         "<span style=\"font-family: 'Helvetica';font-size: 12px;color: #FF0000;font-weight: bold;"
         "text-align: left;\">Frank</span>"},
        {"GetAsCSS ( \"a<b&\" & TextStyleAdd ( \"c¶d\" ; Italic + Underline + Strikethrough ) )",
         "<span style=\"text-align: left;\">a&lt;b&amp;</span><span style=\"font-style: italic;"
         "text-decoration: underline line-through;text-align: left;\">c<br>\nd</span>"},
        {"GetAsCSS ( \"a\" & Char ( 8232 ) & \"b\" )", "<span style=\"text-align: left;\">a<br>\nb</span>"},
        {"GetAsCSS ( \"\" )", ""},
        {"GetAsCSS ( TextStyleAdd ( TextStyleAdd ( 1 ; Bold + Titlecase ) ; Plain ) )",
         "<span style=\"text-align: left;\">1</span>"},
        {"GetAsCSS ( TextStyleRemove ( TextStyleAdd ( 1 ; AllStyles ) ; AllStyles ) )",
         "<span style=\"text-align: left;\">1</span>"},
        {"GetAsCSS ( TextSizeRemove ( TextSize ( 1 ; 9 ) & TextSize ( 2 ; 10 ) ; 9 ) )",
         "<span style=\"text-align: left;\">1</span><span style=\"font-size: 10px;text-align: "
         "left;\">2</span>"},
        {"GetAsCSS ( TextFormatRemove ( " + frank + " ) )", "<span style=\"text-align: left;\">Frank</span>"},
        {"GetAsCSS ( TextColorRemove ( TextFontRemove ( TextSizeRemove ( TextStyleRemove ( " + frank +
             " ; Bold ) ) ) ; RGB ( 255 ; 0 ; 0 ) ) )",
         "<span style=\"text-align: left;\">Frank</span>"},
    };
    for (const Example& example : examples)
        EXPECT_EQ(text(example.source), example.text) << example.source;
}

TEST_F(CalcTest, RegisteredFunctionsJoinAndLeaveTheTable) {
    const auto failing = [](Evaluation&, std::span<const DataRef>) -> DataRef { throw Error{-4}; };
    Function function{.name = u"Own_Fail", .minimum = 0, .maximum = 1, .eager = failing, .lazy = {}};
    ASSERT_TRUE(table->add(function));
    EXPECT_FALSE(table->add(function));
    function.name = u"ABS";
    EXPECT_FALSE(table->add(function));

    const Parsed parsed = parse(u"own_FAIL & OWN_fail ( )", table);
    ASSERT_TRUE(parsed.expression);
    EXPECT_EQ(calc::evaluate(*parsed.expression, scope).error, -4);
    EXPECT_EQ(text("EvaluationError ( Own_Fail ( 1 ) )"), "-4");
    ASSERT_TRUE(table->remove(u"Own_fail"));
    EXPECT_EQ(calc::evaluate(*parsed.expression, scope).error, error::functionNotFound);
    EXPECT_EQ(run("Own_Fail").error, error::missingField);
}

TEST_F(CalcTest, ParsedOnceItIsEvaluatedManyTimes) {
    const Parsed parsed = parse(u"Let ( $n = $n + 1 ; $n )", table);
    ASSERT_TRUE(parsed.expression);
    for (int i = 1; i <= 1000; ++i)
        ASSERT_EQ(calc::evaluate(*parsed.expression, scope).value->asNumber(), Decimal(i));
}

TEST_F(CalcTest, DeepNestingIsAnErrorAndLongChainsAreNot) {
    const auto nested = [](const std::string& open, const std::string& close, std::size_t depth) {
        return repeated(open, depth) + "1" + repeated(close, depth);
    };
    EXPECT_EQ(text(nested("(", ")", 399)), "1");
    // A deep calculation that parses and evaluates another at its bottom: the deepest that the stack must
    // bear.
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

    EXPECT_EQ(text("0" + repeated("+1", 100'000)), "100000");
    EXPECT_EQ(run("\"a\"" + repeated("&\"b\"", 100'000)).value->asText().size(), 100'001U);
    EXPECT_EQ(text("Sum(1" + repeated(";1", 10'000) + ")"), "10001");
}

TEST_F(CalcTest, CalculationsThatFeedThemselvesEnd) {
    const std::vector<std::string> endless{
        "Let ( $x = \"Evaluate ( $x )\" ; Evaluate ( $x ) )",
        "Let ( $x = \"Evaluate ( $x ) & Evaluate ( $x )\" ; Evaluate ( $x ) )",
        "Let ( $x = \"EvaluationError ( Evaluate ( $x ) ) & IsValid ( $x & Evaluate ( $x ) )\" ; "
        "Evaluate ( $x ) )",
        // To a smaller depth, where no limit but that of work ends it.
        "Let ( [ n = 50 ; $x = \"If ( n < 1 ; 0 ; Let ( n = n - 1 ; Evaluate ( $x ) + Evaluate ( $x ) ) )\" "
        "] ; "
        "Evaluate ( $x ) )",
    };
    for (const std::string& source : endless)
        EXPECT_EQ(run(source).error, error::unspecific) << source;

    // A function that evaluates anew, as plug-ins do, is held by the same bounds.
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
    EXPECT_EQ(text("1 + 1"), "2") << "what was exhausted has recovered";
}

TEST_F(CalcTest, AnyTextIsAnsweredWithAValueOrACode) {
    const std::vector<std::string> pieces{"Let",
                                          "(",
                                          ")",
                                          "[",
                                          "]",
                                          ";",
                                          "=",
                                          "a",
                                          "$a",
                                          "$$b",
                                          "1",
                                          ".5e3",
                                          "\"x",
                                          "\"",
                                          "and",
                                          "or",
                                          "+",
                                          "-",
                                          "*",
                                          "/",
                                          "^",
                                          "&",
                                          "¶",
                                          "≠",
                                          "<",
                                          "not",
                                          "/*",
                                          "*/",
                                          "//",
                                          "\n",
                                          "Abs",
                                          "If",
                                          "Evaluate",
                                          "Get",
                                          "Plain",
                                          "é",
                                          "\xF0\x9F\x98\x80",
                                          "\x01",
                                          "TextStyleAdd",
                                          " "};
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
        file->variables.set(u"s", 1, textResult(fromUtf8(source)));
    }
}

} // namespace
} // namespace host::calc
