#include "host/html/Reader.h"

#include <array>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>

/// The host's reader on documents as people and programs write them.

namespace {

using host::Text;

/// The number of a font is the length of its name.
Text read(const std::string& html) {
    return host::readHtml(html,
                          [](std::u16string_view name) { return static_cast<std::uint16_t>(name.size()); });
}

/// The runs with their formatting, such as "[bold red]text". Returns are "|", soft line breaks "/".
std::string written(const Text& text) {
    constexpr std::array<std::pair<std::uint16_t, const char*>, 14> faceNames{{
        {host::face::bold, "bold"},
        {host::face::italic, "italic"},
        {host::face::underline, "underline"},
        {host::face::doubleUnderline, "double"},
        {host::face::strikethrough, "struck"},
        {host::face::highlight, "marked"},
        {host::face::superscript, "super"},
        {host::face::subscript, "sub"},
        {host::face::smallCaps, "caps"},
        {host::face::condense, "narrow"},
        {host::face::extend, "wide"},
        {host::face::titlecase, "title"},
        {host::face::uppercase, "upper"},
        {host::face::lowercase, "lower"},
    }};
    constexpr const char* alignments[] = {"", "center", "right", "full"};
    std::string all;
    for (std::size_t i = 0; i < text.runs().size(); ++i) {
        const auto& [start, formatting] = text.runs()[i];
        const std::uint32_t end = i + 1 < text.runs().size() ? text.runs()[i + 1].start : text.size();
        std::string words;
        std::uint16_t faces = formatting.style.faces();
        for (const auto& [bits, name] : faceNames) {
            if ((faces & bits) != bits) continue;
            faces &= static_cast<std::uint16_t>(~bits);
            words += std::string(" ") + name;
        }
        const host::Color& color = formatting.style.color();
        if (formatting.style.isColorEnabled())
            words += " " + std::to_string(color.red) + "," + std::to_string(color.green) + "," +
                     std::to_string(color.blue);
        if (formatting.style.isFontEnabled()) words += " font" + std::to_string(formatting.style.font());
        if (formatting.style.isSizeEnabled()) words += " " + std::to_string(formatting.style.size()) + "px";
        if (formatting.alignment != host::Alignment::left)
            words += std::string(" ") + alignments[static_cast<std::size_t>(formatting.alignment)];
        all += (words.empty() ? "[]" : "[" + words.substr(1) + "]");
        std::u16string shown(text.units().substr(start, end - start));
        for (char16_t& unit : shown)
            unit = unit == u'\r' ? u'|' : unit == u'\u2028' ? u'/' : unit == u'\u00A0' ? u'_' : unit;
        all += Text(shown).utf8();
    }
    return all;
}

TEST(HtmlReader, readsFormattingAndParagraphs) {
    const std::string aMember = "<style>.a{color:#0f0}p.a{font-weight:bold}P{font-style:italic}</style>";
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"just text", "[]just text"},
        {"<b>a<i>b</b>c", "[bold]a[bold italic]b[]c"},
        {"<em>a</em><strong>b</strong><del>c</del><strike>d</strike><ins>e</ins><big>f</big>",
         "[italic]a[bold]b[struck]cd[underline]e[19px]f"},
        {"<mark>a<sup>b</sup></mark><sub>c</sub><small>d</small>", "[marked]a[marked super]b[sub]c[13px]d"},
        {"<h1>a</h1>b<h6 align=right>c</h6>", "[bold 32px]a[]|b|[bold 11px right]c"},
        {"<font color=Red face='Arial, sans-serif' size=5>a</font><font size=+1>b</font>",
         "[255,0,0 font5 24px]a[18px]b"},
        // Blanks, breaks, empty paragraphs
        {"  a \n b <b> c</b> <br> d  </p>  ", "[]a b [bold]c[]/d"},
        {"<p>a</p><p></p>\n<p> </p><div><div>b</div></div>c<div><script>x</script></div>", "[]a|||b|c"},
        {"a&nbsp;&nbsp;b &amp; &lt;&#65;&euro;&#x1F600;", "[]a__b & <A€\xF0\x9F\x98\x80"},
        {"<pre>\n a\r\n  b</pre>", "[font9] a/  b"},
        {"<ul><li>a<li>b</ul><table><tr><td>1<td>2</table><hr>", "[]a|b|1 2"},
        {"<title>x</title>a<!-- b --><span style='display:none'>c<b>d</b></span>e", "[]ae"},
        {"<html><body bgcolor=red style='background:#eee'><p>a", "[]a"},
        {"a<title>x</title>b", "[]ab"},
        // Declarations
        {"<span style='FONT-WEIGHT: 600 !important; font-style:oblique'>a<i style='font-style:normal'>b",
         "[bold italic]a[bold]b"},
        {"<s style='text-decoration:underline'>a</s><u style='text-decoration:none'>b</u>",
         "[underline struck]a[]b"},
        {"<i style='text-decoration-style:double;text-decoration:underline'>a</i>"
         "<i style='text-decoration:underline;text-decoration-style:double'>b</i>",
         "[italic underline]a[italic double]b"},
        {"<i style='letter-spacing:-.5em;font-variant:small-caps;text-transform:capitalize'>a",
         "[italic caps narrow title]a"},
        {"<i style='letter-spacing:0.1px;vertical-align:super;text-transform:uppercase'>a",
         "[italic super wide upper]a"},
        {"<i style='font-size:12pt'>a<b style='font-size:150%'>b<b style='font-size:-3px'>c",
         "[italic 16px]a[bold italic 24px]bc"},
        {"<i style='color:rgb(10%, 300, 3)'>a<b style='color:rgba(1,2,3,0)'>b<b style='color:#12'>c",
         "[italic 26,255,3]a[bold italic 26,255,3]bc"},
        {"<i style='background-color:#FFFFFF'>a<b style='background:yellow'>b</b><b "
         "style='background:none'>c",
         "[italic]a[bold italic marked]b[bold italic]c"},
        {"<i style='font-family:\"Times New Roman\", serif'>a<b style=\"font-family:'a;b'\">b",
         "[italic font15]a[bold italic font3]b"},
        {"<div style='text-align:justify'>a<p style='text-align:end'>b</div>c", "[full]a|[right]b|[]c"},
        // Style blocks
        {aMember + "<p class='b a'>x<p>y", "[bold italic 0,255,0]x[]|[italic]y"},
        {"<style>/* .a{} */ @media print { .a { color:red } } .a > b, i { color:blue } "
         ".a.b{color:red}</style>"
         "<b class=a>x</b><i>y",
         "[bold]x[italic 0,0,255]y"},
        {"<i class=a style='color:red'>x</i><style>.a{color:blue;font-size:9px}.a{font-size:8px}</style>",
         "[italic 255,0,0 8px]x"},
        {"<style>.a{color:red", ""},
    };
    for (const auto& [html, expected] : rows)
        EXPECT_EQ(written(read(html)), expected) << html;
}

TEST(HtmlReader, knowsEncodings) {
    EXPECT_EQ(read("\xEF\xBB\xBFgr\xC3\xBC\xC3\x9F").utf8(), "grüß");
    EXPECT_EQ(read("<meta charset=iso-8859-1><p>gr\xC3\xBC\xC3\x9F").utf8(),
              "grüß"); // valid UTF-8 wins over the declared encoding
    EXPECT_EQ(read("gr\xFC\xDF").utf8(), "grüß");
    EXPECT_EQ(read("<html><head><meta charset=koi8-r></head><body>\xC4\xC1").utf8(), "да");
    EXPECT_EQ(read(std::string("\xFF\xFE<\0p\0>\0a\0", 10)).utf8(), "a");
    EXPECT_EQ(read(std::string("a\0b", 3)).utf8(), "a b");
}

TEST(HtmlReader, refusesOversizedDocuments) {
    const auto repeated = [](const std::string& part, std::size_t count) {
        std::string all;
        while (count-- > 0)
            all += part;
        return all;
    };
    EXPECT_EQ(read(repeated("<b>", 200) + "x").utf8(), "x");
    EXPECT_THROW(read(repeated("<div>", 300)), std::runtime_error);
    EXPECT_THROW(read(repeated("x", 11'000'000)), std::runtime_error);
    EXPECT_THROW(read(std::string(host::HtmlLimits::bytes + 1, ' ')), std::runtime_error);
    EXPECT_EQ(read(repeated("</p>", 100'000) + repeated("<p>x", 100'000)).size(), 199'999);
    // The cost of many rules and many elements is their sum, not their product.
    const std::string rules = repeated(".a{font-family:" + std::string(240, 'x') + "}", 5'000);
    EXPECT_EQ(read("<style>" + rules + "</style>" + repeated("<i class='a a a'>x</i>", 20'000)).runs().size(),
              1);
}

} // namespace
