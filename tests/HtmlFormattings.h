#pragma once

#include "host/values/Text.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// Comparison of a text with the document that Kestrel_GetAsHTML made from it, after the document is read
/// back.

/// Parameters of the function, and the formatting that is lost with them.
struct HtmlParameters {
    const char16_t *tags, *classes, *styles;
    std::uint16_t lostFaces = 0;
    bool losesSize = false, losesAlignment = false, losesCentering = false;
    bool hasElements = true;     ///< formattings such as bold become elements
    bool hasInlineStyles = true; ///< single declarations may move to the paragraph
};

inline const std::vector<HtmlParameters>& htmlParameters() {
    using namespace host::face;
    static const std::vector<HtmlParameters> rows{
        {.tags = u"all", .classes = u"all=kst", .styles = u"all", .hasInlineStyles = false},
        {.tags = u"", .classes = u"", .styles = u"all", .hasElements = false},
        {.tags = u"", .classes = u"ALL", .styles = u"", .hasElements = false, .hasInlineStyles = false},
        {.tags = u"bold=strong\ritalic=em\rstrikethrough=del\rall",
         .classes = u"color=c\rfont+size=type\rall=rest",
         .styles = u"",
         .hasInlineStyles = false},
        {.tags = u"all\rcenter=div",
         .classes = u"smallcaps=caps\rcolor=",
         .styles = u"all",
         .losesCentering = true},
        {.tags = u"all",
         .classes = u"",
         .styles = u"color\rfont",
         .lostFaces = doubleUnderline | condense | extend | smallCaps | titlecase,
         .losesSize = true,
         .losesAlignment = true},
    };
    return rows;
}

/// The formatting of a character that the HTML keeps.
inline host::CharacterStyle formattingInHtml(const host::CharacterStyle& style, char16_t unit,
                                             const HtmlParameters& parameters) {
    using namespace host;
    std::uint16_t faces = style.faces();
    const auto onlyFirst = [&faces](std::uint16_t first, std::uint16_t others) {
        if ((faces & first) != 0) faces &= static_cast<std::uint16_t>(~others);
    };
    onlyFirst(face::underline, face::doubleUnderline | face::wordUnderline);
    onlyFirst(face::doubleUnderline, face::wordUnderline);
    onlyFirst(face::condense, face::extend);
    onlyFirst(face::superscript, face::subscript);
    if ((faces & face::wordUnderline) != 0 && unit == u' ') faces |= face::underline;
    faces &= static_cast<std::uint16_t>(~(face::wordUnderline | face::outline | parameters.lostFaces));
    CharacterStyle formatting;
    if (faces != 0) formatting.setFaces(faces);
    if (style.isColorEnabled()) {
        Color color = style.color();
        color.alpha = 255;
        formatting.setColor(color);
    }
    if (style.isFontEnabled()) formatting.setFont(style.font());
    if (style.isSizeEnabled() && !parameters.losesSize) formatting.setSize(style.size());
    return formatting;
}

/// The text of a document that was made from `text`. A return has no character formatting; it has the
/// alignment of its paragraph unless that is empty. A return at the end makes no paragraph.
inline host::Text textInHtml(const host::Text& text, const HtmlParameters& parameters, bool isAligned) {
    using host::Alignment;
    host::Text expected;
    Alignment before = Alignment::left;
    const bool endsWithReturn = !text.empty() && text.units().back() == u'\r';
    for (std::uint32_t i = 0; i < text.size() - (endsWithReturn ? 1 : 0); ++i) {
        const char16_t unit = text.units()[i];
        const host::RunStyle& formatting = text.formattingAt(i);
        if (unit == u'\r') {
            expected.append(u"\r", {.style = {}, .alignment = before});
            before = Alignment::left;
            continue;
        }
        const bool isLost = !isAligned || parameters.losesAlignment ||
                            (parameters.losesCentering && formatting.alignment == Alignment::center);
        before = isLost ? Alignment::left : formatting.alignment;
        expected.append(std::u16string_view(&unit, 1),
                        {.style = formattingInHtml(formatting.style, unit, parameters), .alignment = before});
    }
    return expected;
}

inline std::string describe(const host::RunStyle& formatting) {
    const host::CharacterStyle& style = formatting.style;
    char text[120];
    std::snprintf(text, sizeof text, "faces %04x font %d size %d colour %d #%02x%02x%02x aligned %d",
                  style.faces(), style.font(), style.size(), style.isColorEnabled() ? 1 : 0,
                  style.color().red, style.color().green, style.color().blue,
                  static_cast<int>(formatting.alignment));
    return text;
}

/// Whether a double underline may be read as a single one. Declarations of a paragraph move to its element
/// one by one, so a line and its double style may be separated. This happens only in a paragraph that is
/// underlined throughout.
inline bool mayLoseDouble(const host::Text& text, std::uint32_t position) {
    const std::u16string_view units = text.units();
    std::uint32_t first = position, end = position;
    while (first > 0 && units[first - 1] != u'\r')
        --first;
    while (end < units.size() && units[end] != u'\r')
        ++end;
    for (std::uint32_t i = first; i < end; ++i)
        if ((text.formattingAt(i).style.faces() & (host::face::underline | host::face::doubleUnderline)) == 0)
            return false;
    return true;
}

inline host::RunStyle withSingleLine(host::RunStyle formatting) {
    host::CharacterStyle single, twice;
    single.setFaces(host::face::underline);
    twice.enableFace(host::face::doubleUnderline);
    formatting.style.remove(twice);
    formatting.style.apply(single);
    return formatting;
}

/// The first difference between the texts; empty when there is none.
inline std::string difference(const host::Text& expected, const host::Text& actual,
                              const HtmlParameters& parameters, bool comparesAlignment) {
    if (expected.units() != actual.units())
        return "text \"" + expected.utf8() + "\" is read as \"" + actual.utf8() + "\"";
    for (std::uint32_t i = 0; i < expected.size(); ++i) {
        host::RunStyle wanted = expected.formattingAt(i), found = actual.formattingAt(i);
        if (!comparesAlignment) wanted.alignment = found.alignment = host::Alignment::left;
        if (wanted == found) continue;
        if (parameters.hasInlineStyles && mayLoseDouble(expected, i) && withSingleLine(wanted) == found)
            continue;
        return "character " + std::to_string(i) + ": " + describe(wanted) + " is read as " + describe(found);
    }
    return {};
}

/// The text with a return for each run of returns and soft line breaks, and none at the beginning or end.
inline host::Text withOneKindOfBreak(const host::Text& text) {
    host::Text result;
    bool isBroken = false;
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text.units()[i];
        if (unit == u'\r' || unit == u'\u2028') {
            isBroken = true;
            continue;
        }
        if (isBroken && !result.empty()) result.append(std::u16string_view(u"\r"));
        isBroken = false;
        result.append(text, i, 1);
    }
    return result;
}

/// The first difference between a text and its document after reading; empty when the document keeps
/// everything that HTML can keep. Blanks and soft line breaks of the text must stand alone between other
/// characters of a line, and its paragraphs must be aligned as a whole.
inline std::string differenceInHtml(const host::Text& text, host::Text read, const HtmlParameters& parameters,
                                    bool inVariable) {
    host::Text expected = textInHtml(text, parameters, inVariable);
    // A soft line break in a variable shifts the ends of later paragraphs, and an empty line that ends no
    // paragraph is lost.
    const bool isShifted = inVariable && text.units().find(u'\u2028') != std::u16string_view::npos;
    if (isShifted) {
        expected = withOneKindOfBreak(expected);
        read = withOneKindOfBreak(read);
    }
    return difference(expected, read, parameters, !isShifted);
}
