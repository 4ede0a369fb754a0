#include "FunctionCalls.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "html/GetAsHTML.h"
#include "html/Output.h"
#include "html/PostProcessing.h"
#include "html/Reading.h"

#include "host/values/Encoding.h"
#include "host/values/Text.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// Kestrel_GetAsHTML through the loaded plug-in: styled text in, HTML out. Returns are written as "|".

namespace {

namespace face = host::face;

host::RunStyle formatted(std::uint16_t faces, host::Alignment alignment = host::Alignment::left) {
    host::CharacterStyle style;
    if (faces != 0) style.setFaces(faces);
    return {.style = style, .alignment = alignment};
}

const host::RunStyle plain = formatted(face::plain), bold = formatted(face::bold),
                     boldItalic = formatted(face::bold | face::italic);

host::Text joined(const std::vector<std::pair<const char16_t*, host::RunStyle>>& pieces) {
    host::Text all;
    for (const auto& [units, formatting] : pieces)
        all.append(units, formatting);
    return all;
}

std::string shown(std::string html) {
    std::replace(html.begin(), html.end(), '\r', '|');
    return html;
}

std::string block(const std::string& rules) { return "<style type=\"text/css\">|" + rules + "</style>|"; }

/// A call. The parameters after the text are separated by ";", and their lines by "|".
struct Case {
    host::Text text;
    std::string parameters, html;
};

class GetAsHTML : public FunctionCalls {
protected:
    std::string html(const host::Text& text, const std::string& parameters = "") {
        std::vector<host::Data> arguments{host::Data(text)};
        std::istringstream lists(parameters.empty() ? "" : parameters + ";");
        for (std::string list; std::getline(lists, list, ';');) {
            std::replace(list.begin(), list.end(), '|', '\r');
            arguments.emplace_back(host::Text::fromUtf8(list));
        }
        const Answer answer = call(u"Kestrel_GetAsHTML", arguments);
        EXPECT_EQ(answer.error, 0);
        EXPECT_TRUE(answer.value.asText().isPlain());
        return shown(answer.value.asText().utf8());
    }
    void expect(const std::vector<Case>& cases) {
        for (const auto& [text, parameters, expected] : cases)
            EXPECT_EQ(html(text, parameters), expected) << text.utf8();
    }
    void setVariable(const host::Text& value) {
        session.front()->fileVariables().set(u"t", 1, std::make_shared<const host::Data>(value));
    }
    std::string htmlOfVariable(const host::Text& value, const std::string& parameters = "") {
        setVariable(value);
        return html(u"$$t", parameters);
    }
    /// The number of host calls of a conversion.
    std::uint64_t callsFor(const host::Text& text) {
        return hostCallsDuring([&] { html(text); });
    }
};

TEST_F(GetAsHTML, writesElementsClassesAndDeclarations) {
    const host::Text text = joined({{u"Hello", bold}, {u" world", plain}}), both(u"x", boldItalic);
    host::RunStyle red, redAndItalic = formatted(face::italic), redAndBoth = boldItalic;
    for (host::RunStyle* const formatting : {&red, &redAndItalic, &redAndBoth})
        formatting->style.setColor({255, 0, 0});
    for (host::RunStyle* const formatting : {&red, &redAndItalic})
        formatting->style.setSize(12);
    const host::Text rich = joined({{u"both", boldItalic}, {u"red", red}, {u"more", redAndItalic}});
    const host::Text all(u"x", redAndBoth);
    host::Text usual;
    for (const std::uint16_t bits :
         {face::underline, face::strikethrough, face::highlight, face::superscript, face::subscript})
        usual.append(u"x", formatted(bits));
    expect({
        {text, "", "<b>Hello</b> world"},
        {text, "ALL", "<b>Hello</b> world"},
        {usual, "", "<u>x</u><s>x</s><mark>x</mark><sup>x</sup><sub>x</sub>"},
        {text, ";", "<span style=\"font-weight:bold;\">Hello</span> world"},
        {text, "bold=strong|all", "<strong>Hello</strong> world"},
        {text, "Bold=B", "<B>Hello</B> world"},
        {text, "all=never|bold=x=y", "<x>Hello</x> world"},
        {text, "bold;all", block(".kst { font-weight:bold; }|") + "<span class=\"kst\">Hello</span> world"},
        {text, ";;Bold|color", "<span style=\"font-weight:bold;\">Hello</span> world"},
        {text, ";;italic", "Hello world"},
        {rich, "",
         block(".kst { color:#ff0000;font-size:12px; }|") +
             "<b><i>both</i></b><span class=\"kst\">red</span><i class=\"kst\">more</i>"},
        {rich, "bold+italic=em;size=small;color",
         block(".small { font-size:12px; }|") +
             "<em>both</em><span class=\"small\" style=\"color:#ff0000;\">redmore</span>"},
        {rich, ";;all",
         "<span style=\"font-style:italic;font-weight:bold;\">both</span><span style=\"color:#ff0000;"
         "font-size:12px;\">red</span><span style=\"color:#ff0000;font-size:12px;font-style:italic;\">"
         "more</span>"},
        {rich, ";italic=x|all=x",
         block(".x { font-style:italic; }|.x1 { font-weight:bold; }|.x2 { color:#ff0000;font-size:12px; }|") +
             "<span class=\"x x1\">both</span><span class=\"x2\">red</span><span class=\"x x2\">more</span>"},
        // A combination becomes an element or a class as a whole or not at all.
        {both, "bold+bold=b;;", "<b>x</b>"},
        {both, "bold+=b;;", "<b>x</b>"},
        {both, "bold++italic=b|bold+underline=b|=b|bold=;;", "x"},
        {both, ";bold+underline=never|=never;", "x"},
        // Each formatting goes to one place: an element, otherwise a class, otherwise a declaration.
        {all, "bold=b|bold+italic=strong;;all", "<b style=\"color:#ff0000;font-style:italic;\">x</b>"},
        {all, "bold=b;italic=slanted;color",
         block(".slanted { font-style:italic; }|") + "<b class=\"slanted\" style=\"color:#ff0000;\">x</b>"},
        {all, "italic=i|bold=b;;color", "<i><b style=\"color:#ff0000;\">x</b></i>"},
        {both, ";all=kst|bold=never;",
         block(".kst { font-style:italic;font-weight:bold; }|") + "<span class=\"kst\">x</span>"},
        // Names that are in use get a number, and the list is in the order of the names.
        {{u"x", formatted(face::bold | face::italic | face::underline)},
         ";italic=kst|bold=kst|underline=kst1;",
         block(".kst { font-style:italic; }|.kst1 { font-weight:bold; }|.kst11 { text-decoration:underline; "
               "}|") +
             "<span class=\"kst kst1 kst11\">x</span>"},
        {both, ";bold=z|italic=a;",
         block(".a { font-style:italic; }|.z { font-weight:bold; }|") + "<span class=\"z a\">x</span>"},
    });
    EXPECT_EQ(lastError(), " "); // success leaves the last error unchanged
}

TEST_F(GetAsHTML, declaresColorFontAndSize) {
    const auto declared = [](const std::string& css) { return "<span style=\"" + css + "\">x</span>"; };
    host::RunStyle formatting;
    formatting.style.setColor({255, 0, 128});
    EXPECT_EQ(html({u"x", formatting}, ";;all"), declared("color:#ff0080;"));
    formatting.style.setSize(0);
    formatting.style.setFont(session.front()->fontId(u"Гельветика"));
    EXPECT_EQ(html({u"x", formatting}, ";;all"),
              declared("color:#ff0080;font-family:Гельветика;font-size:0px;"));
    formatting.style.setFont(99); // the file has no such font
    EXPECT_EQ(html({u"x", formatting}, ";;all"), declared("color:#ff0080;font-size:0px;"));
}

TEST_F(GetAsHTML, startsARunWhereTheCssChanges) {
    host::RunStyle first, second;
    first.style.setFont(session.front()->fontId(u"Helvetica"));
    second.style.setFont(session.front()->fontId(u"Grüße"));
    const auto inFont = [](const char* name, const char* text) {
        return std::string("<span style=\"font-family:") + name + ";\">" + text + "</span>";
    };
    const host::RunStyle words = formatted(face::wordUnderline);
    expect({
        {{u"a b", words}, "", "a<u> </u>b"},
        {joined({{u"a", first}, {u"b", second}, {u"c", first}}), ";;all",
         inFont("Helvetica", "a") + inFont("Grüße", "b") + inFont("Helvetica", "c")},
        // Different formatting with the same CSS shares a run.
        {joined({{u"x", formatted(face::outline)},
                 {u"y", plain},
                 {u" ", formatted(face::underline)},
                 {u" ", words}}),
         "", "xy<u>  </u>"},
    });
}

TEST_F(GetAsHTML, escapesCharactersOnce) {
    expect({
        {u"a\u2028b\u00A0c\n<&>\"'", "", "a<br/>|b&nbsp;c<br/>|&lt;&amp;&gt;\"'"},
        {u"&lt;\u2028\n", "", "&amp;lt;<br/>|<br/>|"},
        {u"\U0001F600\r\U0001F600", "", "<p>\U0001F600</p>|<p>\U0001F600</p>|"},
        {std::u16string{0xD83D, 0, u'x'}, "", std::string("\uFFFD\0x", 5)},
        {u"\u0126\u013C\u0A26\u20A0", "",
         "\u0126\u013C\u0A26\u20A0"}, // characters with the low byte of an escaped one
    });
}

TEST_F(GetAsHTML, readsVariablesWithTheirAlignment) {
    using enum host::Alignment;
    const auto aligned = [](host::Alignment alignment) { return formatted(0, alignment); };
    const host::Text toTheRight(u"one", aligned(right)), inTheMiddle(u"one", aligned(center)),
        justified(u"one", aligned(full));
    host::RunStyle small = aligned(center);
    small.style.setColor({255, 0, 0});
    host::RunStyle large = small;
    small.style.setSize(12);
    large.style.setSize(13);
    const Case cases[] = {
        {u"one", "", "one"},
        {inTheMiddle, "", block(".kst { text-align:center; }|") + "<p class=\"kst\">one</p>|"},
        {inTheMiddle, "all|center=div", "<div>one</div>|"},
        {inTheMiddle, ";all|center=mid;",
         block(".mid { text-align:center; }|") + "<p class=\"mid\">one</p>|"},
        {inTheMiddle, ";center=;all", "<p style=\"text-align:center;\">one</p>|"},
        {toTheRight, "right=div|right=h1", "<div>one</div>|"},
        {toTheRight, ";bold=x;left", "<p>one</p>|"},
        {justified, ";;full", "<p style=\"text-align:justify;\">one</p>|"},
        {joined(
             {{u"a\r", plain}, {u"b\r", aligned(center)}, {u"c\r", aligned(right)}, {u"d", aligned(full)}}),
         "center=center|right=right|full=full",
         "<p>a</p>|<center>b</center>|<right>c</right>|<full>d</full>|"},
        {joined({{u"a\r", plain}, {u"b\r", aligned(right)}, {u"c", plain}}), ";right=r",
         block(".r { text-align:right; }|") + "<p>a</p>|<p class=\"r\">b</p>|<p>c</p>|"},
        {u"a\r\rb\r", "", "<p>a</p>|<p></p>|<p>b</p>|"},
        {u"a\u2028b", "", "a<br/>|b"},
        // A soft break ends a line but no value, so the next line gets the alignment of the one before.
        {u"a\u2028b\rc\rd", "", "<p>a<br/>|b<br/>|c</p>|<p>d</p>|"},
        {u"a\u2028b\rc", "", "<p>a<br/>|b<br/>|c</p>|"},
        {{u"a\u2028b\rc", aligned(center)}, "center=div;;", "<div>a<br/>|b<br/>|c</div>|"},
        // Declarations that move to the paragraph come after its own. Its own element stays.
        {{u"<&", formatted(face::bold, center)},
         ";;all",
         "<p style=\"font-weight:bold;text-align:center;\">&lt;&amp;</p>|"},
        {{u"x", formatted(face::bold, center)}, "bold=h2|center=div", "<div><h2>x</h2></div>|"},
        {joined({{u"x", formatted(face::bold | face::underline, center)},
                 {u"y", formatted(face::bold, center)}}),
         ";center=own|underline=b|bold=a;",
         block(".a { font-weight:bold; }|.b { text-decoration:underline; }|.own { text-align:center; }|") +
             "<p class=\"own a\"><span class=\"b\">x</span>y</p>|"},
        {joined({{u"x", small}, {u"y", large}}), ";;all",
         "<p style=\"color:#ff0000;text-align:center;\"><span style=\"font-size:12px;\">x</span>"
         "<span style=\"font-size:13px;\">y</span></p>|"},
    };
    for (const auto& [value, parameters, expected] : cases)
        EXPECT_EQ(htmlOfVariable(value, parameters), expected) << value.utf8();

    EXPECT_EQ(
        shown(textOf("Let ( $note = TextStyleAdd ( \"x¶y\" ; Italic ) ; Kestrel_GetAsHTML ( \"$note\" ) )")),
        "<p><i>x</i></p>|<p><i>y</i></p>|");
}

TEST_F(GetAsHTML, takesNamesWithoutAValueAsText) {
    for (const char16_t* const text : {u"$nothing", u"$$nothing", u"$", u"$5 + (", u" $$t", u"$a ; 1"}) {
        setVariable(u"value");
        EXPECT_EQ(html(text), host::Text(text).utf8());
    }
    EXPECT_EQ(htmlOfVariable(host::Text()), "$$t");
    EXPECT_EQ(html({u"$no\r$ne", formatted(face::bold)}), "<p><b>$no</b></p>|<p><b>$ne</b></p>|");
    // Any expression that can stand in parentheses may follow.
    EXPECT_EQ(htmlOfVariable(u"a\rb", ";"), "<p>a</p>|<p>b</p>|");
    EXPECT_EQ(html(u"$$t & \"c\""), "<p>a</p>|<p>bc</p>|");
}

/// The number of host calls is compared here, because times vary. The benchmark shows the times.
TEST_F(GetAsHTML, limitsCountsThatTheTextDetermines) {
    setVariable(host::Text(u"x"));
    EXPECT_LT(hostCallsDuring([&] { html(u"$$t ) * 2000000000 + ( 0"); }), 1000U);
}

TEST_F(GetAsHTML, callsTheHostInProportionToTheText) {
    const auto everyCharacterDifferent = [](std::uint32_t size) {
        host::Text text;
        for (std::uint32_t i = 0; i < size; ++i) {
            host::CharacterStyle style;
            style.setColor({static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i >> 8U), 7});
            text.append(u"x", {.style = style});
        }
        return text;
    };
    const auto equalAfterwards = [](std::uint32_t size) {
        host::Text text;
        for (std::uint32_t i = 0; i < size; ++i)
            text.append(u"x",
                        formatted(i % 2 == 0 ? face::bold | face::condense : face::bold | face::extend));
        return text;
    };
    const struct {
        const char* what;
        std::function<host::Text(std::uint32_t)> text;
    } cases[] = {
        {"a style for every character", everyCharacterDifferent},
        {"one run", [](std::uint32_t size) { return host::Text(std::u16string(size, u'x')); }},
        {"empty paragraphs", [](std::uint32_t size) { return host::Text(std::u16string(size, u'\r')); }},
        {"escapes", [](std::uint32_t size) { return host::Text(std::u16string(size, u'&')); }},
        {"equal after filtering", equalAfterwards},
    };
    constexpr std::uint32_t size = 5000;
    for (const auto& [what, text] : cases) {
        const std::uint64_t once = callsFor(text(size)), twice = callsFor(text(2 * size));
        EXPECT_LE(static_cast<double>(twice), 2.05 * static_cast<double>(once)) << what;
    }
    EXPECT_EQ(html(equalAfterwards(size), ";;bold"),
              "<span style=\"font-weight:bold;\">" + std::string(size, 'x') + "</span>");
    const std::string lines(300, '\r');
    setVariable(host::Text::fromUtf8(lines));
    const std::uint64_t once = callsFor(u"$$t");
    setVariable(host::Text::fromUtf8(lines + lines));
    EXPECT_LE(callsFor(u"$$t"), once * 21 / 10);
}

TEST_F(GetAsHTML, namesTenThousandClasses) {
    host::Text text;
    constexpr std::uint32_t classes = 10'000;
    for (std::uint32_t i = 0; i < classes; ++i) {
        host::CharacterStyle style;
        style.setSize(static_cast<std::uint16_t>(i));
        text.append(u"x", {.style = style});
    }
    const std::string out = html(text);
    EXPECT_NE(out.find("|.kst9999 { font-size:9999px; }|</style>|"), std::string::npos);
    EXPECT_NE(out.find("<span class=\"kst9999\">x</span>"), std::string::npos);
}

TEST_F(GetAsHTML, logsMergesOnRequestOnly) {
    const host::Text text = joined({{u"a", bold}, {u"&", plain}, {u"b", boldItalic}});
    for (const std::string wanted : {"", "1"}) {
        ::setenv("KESTREL_LOG", wanted.c_str(), 1);
        testing::internal::CaptureStdout();
        EXPECT_EQ(html(text, ";;"), "a&amp;b");
        ::unsetenv("KESTREL_LOG");
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  wanted.empty() ? ""
                                 : "Merging 2 fragments: 'a' + 'a&' \nMerging 2 fragments: 'a&' + 'a&b' \n");
    }
}

TEST_F(GetAsHTML, readsCharactersAndRuns) {
    const host::calc::Environment place = session.environment(session.front());
    const host::Text words(u"a ", formatted(face::wordUnderline));
    const auto& text = host::bridge::out<fmx::Text>(words);
    const auto& env = host::bridge::out<fmx::ExprEnv>(place);
    EXPECT_TRUE(formattingsFromFMCharacter(text, 0, env).empty());
    EXPECT_TRUE(formattingsFromFMCharacter(text, 1, env).contains("underline"));
    const cFragment blank = formattedFragmentFromFMCharacter(text, 1, env);
    EXPECT_EQ(blank.getInlineCSS(), "text-decoration:underline;");
    EXPECT_TRUE(blank.characters.empty() && blank.length == 0 && blank.narrowText.empty());
    std::vector<cFragment> runs(1, blank);
    extractFragments(text, env, runs);
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[2].characters, std::vector<fmx::uint16>{u' '});
    EXPECT_TRUE(runs[2].start == 1 && runs[2].length == 1 && runs[2].formattings == blank.formattings);
}

TEST_F(GetAsHTML, readsNoLinesOfInvalidExpressions) {
    const host::calc::Environment place = session.environment(session.front());
    const auto& env = host::bridge::out<fmx::ExprEnv>(place);
    const fmx::TextUniquePtr expression = cFMUtils::getUTF16data("$$t +");
    EXPECT_TRUE(getLineEndings(*expression, env).empty());
    EXPECT_THROW(getLineAligns(*expression, env), std::invalid_argument);
}

TEST(HtmlText, isEscapedInPlace) {
    const fmx::TextUniquePtr text = cFMUtils::getUTF16data("&lt;\u00A0\u2028\n");
    addEntitiesAndFixEndlines(*text);
    EXPECT_EQ(host::bridge::in<host::Text>(&*text).utf8(), "&amp;lt;&nbsp;<br/>\r<br/>\r");
}

TEST(HtmlFragment, isEmptyAfterMoving) {
    cFragment fragment;
    fragment.addChar(0xD83D);
    fragment.addChar(0);
    fragment.formattings["bold"];
    fragment.tags = fragment.cssClasses = {"a"};
    fragment.inlineStyles["color"] = "red";
    const fmx::TextUniquePtr text = cFMUtils::getUTF16data("before");
    fragment.getText(*text);
    EXPECT_EQ(unitsFromFMText(*text), fragment.characters);
    const cFragment copy = fragment;
    cFragment moved;
    moved = std::move(fragment);
    EXPECT_TRUE(fragmentsHaveEqualAppearance(moved, copy));
    EXPECT_TRUE(moved.characters == copy.characters && moved.formattings == copy.formattings);
    // NOLINTNEXTLINE(bugprone-use-after-move): the state after a move is tested
    EXPECT_TRUE(fragment.characters.empty() && fragment.narrowText.empty() && fragment.formattings.empty() &&
                fragment.tags.empty() && fragment.cssClasses.empty() && fragment.inlineStyles.empty());
}

TEST(HtmlFragment, isProcessedByTheParametersOfEachCall) {
    cFragment boldRun;
    boldRun.formattings["bold"];
    std::vector<cFragment> asElement(2, boldRun), asClass(1, boldRun), asStyle(1, boldRun),
        dropped(1, boldRun);
    ClassMap classMap;
    fragmentsPostProcessing(asElement, classMap, {{"bold", "b"}}, {{"all", "kst"}}, {});
    fragmentsPostProcessing(asClass, classMap, {}, {{"all", "kst"}}, {});
    fragmentsPostProcessing(asStyle, classMap, {}, {}, {{"bold", "1"}});
    fragmentsPostProcessing(dropped, classMap, {}, {}, {{"color", "1"}});
    for (const cFragment& run : asElement)
        EXPECT_TRUE(run.containsTag("b") && run.cssClasses.empty() && run.formattings.empty());
    EXPECT_TRUE(asClass[0].tags.empty() && asClass[0].containsCssClassName("kst"));
    EXPECT_EQ(asStyle[0].getInlineCSS(), "font-weight:bold;");
    EXPECT_TRUE(fragmentsHaveEqualAppearance(dropped[0], cFragment()));
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
        {"<span style=\"text-align: full center\">", "center"}, // the order of the plug-in's words decides
        {"<span>text-align: right;</span>", "left"},
        {"text-align: right;", "left"},
        {"", "left"},
        {">", "left"},
    };
    for (const auto& [css, alignment] : cases)
        EXPECT_EQ(parseAlignmentFromGetAsCSS(css), alignment) << css;
}

TEST(HtmlParagraphs, endAtReturnsAndChangesOfAlignment) {
    using Ends = std::vector<bool>;
    EXPECT_EQ(determineParagraphEnds({}, {}), Ends{});
    EXPECT_EQ(determineParagraphEnds({13, 13, 0}, {"left", "left", "left"}), (Ends{true, true, false}));
    EXPECT_EQ(determineParagraphEnds({0x2028, 0x2028, 0}, {"left", "right"}), (Ends{true, false, false}));
    EXPECT_EQ(determineParagraphEnds({0}, {"left", "left", "full"}), (Ends{false, true, false}));
}

} // namespace
