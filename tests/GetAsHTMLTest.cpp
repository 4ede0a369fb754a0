#include "FunctionCalls.h"

#include "host/values/Encoding.h"
#include "host/values/Text.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Kestrel_GetAsHTML through the loaded plug-in: styled text in, HTML out. Returns are written as "|".

namespace {

namespace face = host::face;

host::RunStyle looks(std::uint16_t faces, host::Alignment alignment = host::Alignment::left) {
    host::CharacterStyle style;
    if (faces != 0) style.setFaces(faces);
    return {.style = style, .alignment = alignment};
}

std::string shown(std::string html) {
    std::replace(html.begin(), html.end(), '\r', '|');
    return html;
}

class GetAsHTML : public FunctionCalls {
protected:
    std::string html(const host::Text& text, const std::vector<std::string>& parameters = {}) {
        std::vector<host::Data> arguments{host::Data(text)};
        for (std::string parameter : parameters) {
            std::replace(parameter.begin(), parameter.end(), '|', '\r');
            arguments.emplace_back(host::Text::fromUtf8(parameter));
        }
        const Answer answer = call(u"Kestrel_GetAsHTML", arguments);
        EXPECT_EQ(answer.error, 0);
        EXPECT_TRUE(answer.value.asText().isPlain());
        return shown(answer.value.asText().utf8());
    }
    void setVariable(const host::Text& value) {
        session.front()->fileVariables().set(u"t", 1, std::make_shared<const host::Data>(value));
    }
    std::string htmlOfVariable(const host::Text& value, const std::vector<std::string>& parameters = {}) {
        setVariable(value);
        return html(u"$$t", parameters);
    }
    /// Host calls that a conversion makes.
    std::uint64_t callsFor(const host::Text& text) {
        host::faults().disarm();
        html(text);
        return host::faults().calls();
    }
};

TEST_F(GetAsHTML, writesElementsClassesAndDeclarations) {
    host::Text text(u"Hello", looks(face::bold));
    text.append(host::Text(u" world"));
    host::Text rich(u"both", looks(face::bold | face::italic));
    host::CharacterStyle red;
    red.setColor({255, 0, 0});
    red.setSize(12);
    rich.append(u"red", {.style = red});
    host::CharacterStyle redAndItalic = red;
    redAndItalic.setFaces(face::italic);
    rich.append(u"more", {.style = redAndItalic});
    host::Text usual;
    for (const std::uint16_t bits :
         {face::underline, face::strikethrough, face::highlight, face::superscript, face::subscript})
        usual.append(u"x", looks(bits));
    const std::string kst = "<style type=\"text/css\">|.kst { color:#ff0000;font-size:12px; }|</style>|";
    const struct {
        const host::Text& text;
        std::vector<std::string> parameters;
        std::string html;
    } cases[] = {
        {text, {}, "<b>Hello</b> world"},
        {text, {"ALL"}, "<b>Hello</b> world"},
        {usual, {}, "<u>x</u><s>x</s><mark>x</mark><sup>x</sup><sub>x</sub>"},
        {text, {"", ""}, "<span style=\"font-weight:bold;\">Hello</span> world"},
        {text, {"bold=strong|all"}, "<strong>Hello</strong> world"},
        {text, {"Bold=B"}, "<B>Hello</B> world"},
        {text, {"all=never|bold=x=y"}, "<x>Hello</x> world"},
        {text,
         {"", "bold=loud"},
         "<style type=\"text/css\">|.loud { font-weight:bold; }|</style>|"
         "<span class=\"loud\">Hello</span> world"},
        {text,
         {"bold", "all"},
         "<style type=\"text/css\">|.kst { font-weight:bold; }|</style>|"
         "<span class=\"kst\">Hello</span> world"},
        {text, {"", "", "Bold|color"}, "<span style=\"font-weight:bold;\">Hello</span> world"},
        {text, {"", "", ""}, "Hello world"},
        {text, {"", "", "italic"}, "Hello world"},
        {rich, {}, kst + "<b><i>both</i></b><span class=\"kst\">red</span><i class=\"kst\">more</i>"},
        {rich,
         {"bold+italic=em", "size=small", "color"},
         "<style type=\"text/css\">|.small { font-size:12px; }|</style>|<em>both</em>"
         "<span class=\"small\" style=\"color:#ff0000;\">redmore</span>"},
        {rich,
         {"", "", "all"},
         "<span style=\"font-style:italic;font-weight:bold;\">both</span><span style=\"color:#ff0000;"
         "font-size:12px;\">red</span><span style=\"color:#ff0000;font-size:12px;font-style:italic;\">"
         "more</span>"},
        {rich,
         {"", "italic=x|all=x"},
         "<style type=\"text/css\">|.x { font-style:italic; }|.x1 { font-weight:bold; }|"
         ".x2 { color:#ff0000;font-size:12px; }|</style>|<span class=\"x x1\">both</span>"
         "<span class=\"x2\">red</span><span class=\"x x2\">more</span>"},
    };
    for (const auto& [styled, parameters, expected] : cases)
        EXPECT_EQ(html(styled, parameters), expected);
}

TEST_F(GetAsHTML, splitsTextAtReturns) {
    host::Text heading(u"a", looks(face::bold));
    heading.append(host::Text(u"b\rc"));
    const struct {
        host::Text text;
        std::vector<std::string> parameters;
        const char* html;
    } cases[] = {
        {{}, {}, ""},
        {u"\r", {}, ""},
        {u"one", {}, "one"},
        {u"one\r", {}, "one"},
        {u"one\rtwo", {}, "<p>one</p>|<p>two</p>|"},
        {u"one\r\rtwo\r", {}, "<p>one</p>|<p></p>|<p>two</p>|"},
        {u"\r\r", {}, "<p></p>|<p></p>|"},
        {u"a\u2028b\u00A0c\n<&>", {}, "a<br/>|b&nbsp;c<br/>|&lt;&amp;&gt;"},
        {u"\U0001F600\r\U0001F600", {}, "<p>\U0001F600</p>|<p>\U0001F600</p>|"},
        {u"a\rb", {"=div"}, "<div>a</div>|<div>b</div>|"}, // their alignment has no name
        {heading, {"bold=h2"}, "<p><h2>a</h2>b</p>|<p>c</p>|"},
        {heading.substring(0, 1), {"bold=h2"}, "<h2>a</h2>"},
        {{u"a\rb", looks(face::bold)}, {"bold=h2"}, "<h2>a</h2>|<h2>b</h2>|"},
        {{u"a\rb", looks(face::bold)},
         {"", "", "bold"},
         "<p style=\"font-weight:bold;\">a</p>|"
         "<p style=\"font-weight:bold;\">b</p>|"},
        {{u"a\rb", looks(face::bold)},
         {"", "bold=x"},
         "<style type=\"text/css\">|.x { font-weight:bold; }|"
         "</style>|<p class=\"x\">a</p>|<p class=\"x\">b</p>|"},
    };
    for (const auto& [text, parameters, expected] : cases)
        EXPECT_EQ(html(text, parameters), expected) << text.utf8();
}

TEST_F(GetAsHTML, readsVariablesWithTheirAlignment) {
    const host::RunStyle left = looks(0), right = looks(0, host::Alignment::right),
                         center = looks(0, host::Alignment::center), full = looks(0, host::Alignment::full);
    const auto text = [](const std::vector<std::pair<const char16_t*, host::RunStyle>>& pieces) {
        host::Text all;
        for (const auto& [units, look] : pieces)
            all.append(units, look);
        return all;
    };
    const auto block = [](const std::string& rows) {
        return "<style type=\"text/css\">|" + rows + "</style>|";
    };
    const struct {
        host::Text value;
        std::vector<std::string> parameters;
        std::string html;
    } cases[] = {
        {text({{u"one", left}}), {}, "one"},
        {text({{u"one", center}}), {}, block(".kst { text-align:center; }|") + "<p class=\"kst\">one</p>|"},
        {text({{u"one", center}}), {"all|center=div"}, "<div>one</div>|"},
        {text({{u"one", full}}), {"", "", "full"}, "<p style=\"text-align:justify;\">one</p>|"},
        {text({{u"one", full}}), {"", "", "bold"}, "<p>one</p>|"},
        {text({{u"a\r", left}, {u"b\r", right}, {u"c", left}}),
         {"", "right=r"},
         block(".r { text-align:right; }|") + "<p>a</p>|<p class=\"r\">b</p>|<p>c</p>|"},
        {text({{u"a\r\rb\r", left}}), {}, "<p>a</p>|<p></p>|<p>b</p>|"},
        {text({{u"a\u2028b", left}}), {}, "a<br/>|b"},
        // A soft break ends a line and no value, so what follows is taken for the line before.
        {text({{u"a\u2028b\rc\rd", left}}), {}, "<p>a<br/>|b<br/>|c</p>|<p>d</p>|"},
        {text({{u"a\u2028b\rc", left}}), {}, "<p>a<br/>|b<br/>|c</p>|"},
        {text({{u"a\u2028b\rc", center}}), {"center=div", "", ""}, "<div>a<br/>|b<br/>|c</div>|"},
        {text({{u"<&", looks(face::bold, host::Alignment::center)}}),
         {"", "", "all"},
         "<p style=\"font-weight:bold;text-align:center;\">&lt;&amp;</p>|"},
    };
    for (const auto& [value, parameters, expected] : cases)
        EXPECT_EQ(htmlOfVariable(value, parameters), expected) << value.utf8();

    EXPECT_EQ(
        shown(textOf("Let ( $note = TextStyleAdd ( \"x¶y\" ; Italic ) ; Kestrel_GetAsHTML ( \"$note\" ) )")),
        "<p><i>x</i></p>|<p><i>y</i></p>|");
}

TEST_F(GetAsHTML, takesWhatHasNoValueAsText) {
    for (const char16_t* const text : {u"$nothing", u"$$nothing", u"$", u"$5 + (", u" $$t", u"$a ; 1"}) {
        setVariable(u"value");
        EXPECT_EQ(html(text), host::Text(text).utf8());
    }
    EXPECT_EQ(htmlOfVariable(host::Text()), "$$t");
    EXPECT_EQ(html({u"$no\r$ne", looks(face::bold)}), "<p><b>$no</b></p>|<p><b>$ne</b></p>|");
    // Any expression may follow, as long as it stands between parentheses as well.
    EXPECT_EQ(htmlOfVariable(u"a\rb", {"", ""}), "<p>a</p>|<p>b</p>|");
    EXPECT_EQ(html(u"$$t & \"c\""), "<p>a</p>|<p>bc</p>|");
}

TEST_F(GetAsHTML, reportsWhatGoesWrong) {
    const Answer answer = call(u"Kestrel_GetAsHTML", {});
    EXPECT_EQ(answer.error, 0);
    EXPECT_EQ(answer.value.asText().utf8(), "-50");
    EXPECT_EQ(lastError(), "-50 Input parameter is missing");
    textOf("Kestrel_GetAsHTML ( 12 )");
    EXPECT_EQ(lastError(), "-50 Input parameter is missing"); // success says nothing
}

/// How the time grows the benchmark shows; what is asked of the host can be counted.
TEST_F(GetAsHTML, believesNoCountThatTheTextMakesUp) {
    setVariable(host::Text(u"x"));
    host::faults().disarm();
    html(u"$$t ) * 2000000000 + ( 0");
    EXPECT_LT(host::faults().calls(), 1000U);
}

TEST_F(GetAsHTML, asksTheHostInProportionToTheText) {
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
            text.append(u"x", looks(i % 2 == 0 ? face::bold | face::condense : face::bold | face::extend));
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
    EXPECT_EQ(html(equalAfterwards(size), {"", "", "bold"}),
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

} // namespace
