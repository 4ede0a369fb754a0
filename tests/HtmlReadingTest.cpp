#include "html/GetAsHTML.h"
#include "html/PostProcessing.h"
#include "html/Reading.h"

#include "host/app/File.h"
#include "host/app/Session.h"
#include "host/calc/Environment.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// What the converter to HTML learns from the host about a text.

namespace {

namespace face = host::face;
using host::bridge::out;

host::CharacterStyle faces(std::uint16_t bits) {
    host::CharacterStyle style;
    style.setFaces(bits);
    return style;
}

class HtmlReading : public testing::Test {
protected:
    HtmlReading() {
        host::Solution solution;
        solution.fonts = {u"Helvetica", u"Grüße"};
        session.open(std::move(solution));
        scope = session.environment(session.front());
    }

    const fmx::ExprEnv& env() const { return out<fmx::ExprEnv>(scope); }

    /// The runs of a text: characters, their place, formattings.
    std::string runsOf(const host::Text& text) const {
        std::vector<cFragment> fragments;
        TextReader(env()).extractFragments(out<fmx::Text>(text), fragments);
        std::string all;
        for (const cFragment& run : fragments) {
            all.append(run.characters.begin(), run.characters.end());
            all += " " + std::to_string(run.start) + "+" + std::to_string(run.length);
            for (const auto& [name, value] : run.formattings)
                all += " " + name + (value.empty() ? "" : "=" + value);
            EXPECT_EQ(run.inlineStyles, CSSFromFormattings(run.formattings));
            EXPECT_TRUE(run.tags.empty() && run.cssClasses.empty());
            all += "|";
        }
        return all;
    }

    /// The value of $$t.
    void setVariable(const host::Text& value) const {
        session.front()->fileVariables().set(u"t", 1, std::make_shared<const host::Data>(value));
    }

    host::Session session;
    host::calc::Environment scope;
};

TEST_F(HtmlReading, saysWhatACharacterLooksLike) {
    const struct {
        std::uint16_t faces;
        const char* formattings;
    } cases[] = {
        {face::plain, ""},
        {face::bold | face::italic, " bold italic"},
        {face::highlight | face::outline, " highlight"},
        {face::underline | face::doubleUnderline | face::wordUnderline, " underline"},
        {face::doubleUnderline | face::wordUnderline, " doubleunderline"},
        {face::wordUnderline, ""},
        {face::strikethrough, " strikethrough"},
        {face::condense | face::extend, " condense"},
        {face::extend, " extend"},
        {face::superscript | face::subscript, " superscript"},
        {face::subscript, " subscript"},
        {face::smallCaps, " smallcaps"},
        {face::titlecase, " titlecase"},
        {face::uppercase, " uppercase"},
        {face::lowercase, " lowercase"},
    };
    for (const auto& [bits, formattings] : cases)
        EXPECT_EQ(runsOf({u"x", {.style = faces(bits)}}), "x 0+1" + std::string(formattings) + "|") << bits;

    host::CharacterStyle style;
    style.setColor({255, 0, 128});
    EXPECT_EQ(runsOf({u"x", {.style = style}}), "x 0+1 color=#ff0080|");
    style.disableAll();
    style.setSize(12);
    EXPECT_EQ(runsOf({u"x", {.style = style}}), "x 0+1 size=12px|");
    style.setSize(0);
    style.setFont(1);
    EXPECT_EQ(runsOf({u"x", {.style = style}}), "x 0+1 font=Grüße size=0px|");
    style.setFont(2); // the file has no such font
    EXPECT_EQ(runsOf({u"x", {.style = style}}), "x 0+1 size=0px|");

    const host::Text text(u"a ", {.style = faces(face::wordUnderline)});
    TextReader reader(env());
    EXPECT_TRUE(reader.formattingsFromFMCharacter(out<fmx::Text>(text), 0).empty());
    EXPECT_TRUE(reader.formattingsFromFMCharacter(out<fmx::Text>(text), 1).contains("underline"));
    const cFragment blank = reader.formattedFragmentFromFMCharacter(out<fmx::Text>(text), 1);
    EXPECT_EQ(blank.getInlineCSS(), "text-decoration:underline;");
    EXPECT_TRUE(blank.characters.empty() && blank.length == 0 && blank.narrowText.empty());
}

TEST_F(HtmlReading, cutsWhereTheCssChanges) {
    const host::RunStyle bold{.style = faces(face::bold)};
    const host::RunStyle words{.style = faces(face::wordUnderline)};
    host::Text text(u"ab");
    EXPECT_EQ(runsOf({}), "");
    EXPECT_EQ(runsOf(text), "ab 0+2|");
    text.append(u"c", bold);
    text.append(u"\r", bold); // an ordinary character here
    EXPECT_EQ(runsOf(text), "ab 0+2|c\r 2+2 bold|");
    EXPECT_EQ(runsOf({u"a b", words}), "a 0+1|  1+1 underline|b 2+1|");

    host::CharacterStyle first, second;
    first.setFont(0);
    second.setFont(1);
    host::Text fonts(u"a", {.style = first});
    fonts.append(u"b", {.style = second});
    fonts.append(u"c", {.style = first});
    EXPECT_EQ(runsOf(fonts), "a 0+1 font=Helvetica|b 1+1 font=Grüße|c 2+1 font=Helvetica|");

    // Different looks with the same CSS share a run, which keeps the first one's formattings.
    host::Text same(u"x", {.style = faces(face::outline)});
    same.append(host::Text(u"y"));
    same.append(u" ", {.style = faces(face::underline)});
    same.append(u" ", words);
    EXPECT_EQ(runsOf(same), "xy 0+2|   2+2 underline|");
}

TEST_F(HtmlReading, keepsAReadableCopyForTheLogAlone) {
    const host::Text text(u"a&b");
    const auto narrow = [&](const char* wanted) {
        ::setenv("KESTREL_LOG", wanted, 1);
        std::vector<cFragment> fragments;
        TextReader(env()).extractFragments(out<fmx::Text>(text), fragments);
        ::unsetenv("KESTREL_LOG");
        return fragments.front().narrowText;
    };
    EXPECT_EQ(narrow(""), "");
    EXPECT_EQ(narrow("1"), "a&b");
}

TEST_F(HtmlReading, asksForLinesAndAlignments) {
    const struct {
        const char16_t* value;
        std::vector<fmx::uint16> endings;
        std::size_t aligns;
    } cases[] = {
        {u"", {}, 0},
        {u"a", {0}, 1},
        {u"a\rb\r", {0x0D, 0x0D}, 2},
        {u"a\u2028b\r\rc", {0x2028, 0x0D, 0x0D, 0}, 3},
        {u"\u2028", {0x2028}, 1},
    };
    const fmx::TextUniquePtr expression;
    expression->Assign("$$t");
    for (const auto& [value, endings, aligns] : cases) {
        setVariable(host::Text(value));
        EXPECT_EQ(getLineEndings(*expression, env()), endings);
        EXPECT_EQ(getLineAligns(*expression, env()), std::vector<std::string>(aligns, "left"));
    }

    host::Text aligned(u"a\rb\rc\rd");
    aligned.setAlignment(host::Alignment::center, 2, 2);
    aligned.setAlignment(host::Alignment::right, 4, 2);
    aligned.setAlignment(host::Alignment::full, 6);
    setVariable(aligned);
    EXPECT_EQ(getLineAligns(*expression, env()),
              (std::vector<std::string>{"left", "center", "right", "full"}));

    expression->Assign("$$t +"); // does not evaluate
    EXPECT_TRUE(getLineEndings(*expression, env()).empty());
    EXPECT_THROW(getLineAligns(*expression, env()), std::invalid_argument);
}

TEST_F(HtmlReading, evaluatesBetweenAPrefixAndASuffix) {
    setVariable(host::Text(u"Grüße", {.style = faces(face::bold)}));
    const fmx::TextUniquePtr expression;
    expression->Assign("$$t");
    fmx::TextUniquePtr result;
    EXPECT_EQ(evaluateOnFM("Left ( ", *expression, " ; 3 ) & \"é\"", env(), result), 0);
    EXPECT_EQ(host::bridge::in<host::Text>(result.get()).utf8(), "Grüé");
    EXPECT_EQ(host::bridge::in<host::Text>(result.get()).runs().size(), 2U);
    EXPECT_NE(evaluateOnFM("", *expression, " +", env(), result), 0);
    EXPECT_EQ(result->GetSize(), 0U);
}

TEST(HtmlAlignment, isReadFromTheFirstTag) {
    const struct {
        const char *css, *alignment;
    } cases[] = {
        {"<span style=\"text-align: center;\">x</span>", "center"},
        {"<span style=\"color: #FF0000;text-align:full\">x</span>", "full"},
        {"<span style=\"text-align: right;\"><i style=\"text-align: center;\">", "right"},
        {"<span style=\"text-align: \";center\">", "left"},
        {"<span style=\"text-align: ;center\">", "left"},
        {"<span style=\"text-align: justify;\">", "left"},
        {"<span style=\"text-align: full center\">", "center"}, // by the order of the words
        {"<span>text-align: right;</span>", "left"},
        {"text-align: right;", "left"},
        {"", "left"},
        {">", "left"},
    };
    for (const auto& [css, alignment] : cases)
        EXPECT_EQ(parseAlignmentFromGetAsCSS(css), alignment) << css;
}

TEST(HtmlParagraphs, endWhereAReturnOrAnotherAlignmentSaysSo) {
    using Ends = std::vector<bool>;
    EXPECT_EQ(determineParagraphEnds({}, {}), Ends{});
    EXPECT_EQ(determineParagraphEnds({13, 13, 0}, {"left", "left", "left"}), (Ends{true, true, false}));
    EXPECT_EQ(determineParagraphEnds({0x2028, 0x2028, 0}, {"left", "right"}), (Ends{true, false, false}));
    EXPECT_EQ(determineParagraphEnds({0}, {"left", "left", "full"}), (Ends{false, true, false}));
}

} // namespace
