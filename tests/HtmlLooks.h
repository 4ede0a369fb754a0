#pragma once

#include "host/values/Text.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

/// What Kestrel_GetAsHTML keeps of a text and its looks, and whether it did: the document, as it is read
/// back, against the text that it was made from.

/// A way to call the function, and what this way loses.
struct HtmlParameters {
    const char16_t *tags, *classes, *styles;
    std::uint16_t lostFaces = 0;
    bool losesSize = false, losesAlignment = false, losesCentering = false;
    bool hasElements = true;     ///< for bold and the other formattings that HTML has elements for
    bool hasInlineStyles = true; ///< that may move to the paragraph one by one
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

/// The look of a character as far as it can be found again in the HTML.
inline host::CharacterStyle lookInHtml(const host::CharacterStyle& style, char16_t unit,
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
    CharacterStyle look;
    if (faces != 0) look.setFaces(faces);
    if (style.isColorEnabled()) {
        Color color = style.color();
        color.alpha = 255;
        look.setColor(color);
    }
    if (style.isFontEnabled()) look.setFont(style.font());
    if (style.isSizeEnabled() && !parameters.losesSize) look.setSize(style.size());
    return look;
}

/// The text of a document that was made from this one. Returns have no look of their own; they have the
/// alignment of their paragraph, if it is not empty. A return at the end makes no paragraph.
inline host::Text textInHtml(const host::Text& text, const HtmlParameters& parameters, bool isAligned) {
    using host::Alignment;
    host::Text expected;
    Alignment before = Alignment::left;
    const bool endsWithReturn = !text.empty() && text.units().back() == u'\r';
    for (std::uint32_t i = 0; i < text.size() - (endsWithReturn ? 1 : 0); ++i) {
        const char16_t unit = text.units()[i];
        const host::RunStyle& look = text.lookAt(i);
        if (unit == u'\r') {
            expected.append(u"\r", {.style = {}, .alignment = before});
            before = Alignment::left;
            continue;
        }
        const bool isLost = !isAligned || parameters.losesAlignment ||
                            (parameters.losesCentering && look.alignment == Alignment::center);
        before = isLost ? Alignment::left : look.alignment;
        expected.append(std::u16string_view(&unit, 1),
                        {.style = lookInHtml(look.style, unit, parameters), .alignment = before});
    }
    return expected;
}

inline std::string describe(const host::RunStyle& look) {
    const host::CharacterStyle& style = look.style;
    char text[120];
    std::snprintf(text, sizeof text, "faces %04x font %d size %d colour %d #%02x%02x%02x aligned %d",
                  style.faces(), style.font(), style.size(), style.isColorEnabled() ? 1 : 0,
                  style.color().red, style.color().green, style.color().blue,
                  static_cast<int>(look.alignment));
    return text;
}

/// Where a paragraph's declarations move to its element one by one, the line may move away from what says
/// that it is double, or the other way round, and that is lost. It takes a paragraph that is underlined
/// throughout, once or twice.
inline bool mayLoseDouble(const host::Text& text, std::uint32_t position) {
    const std::u16string_view units = text.units();
    std::uint32_t first = position, end = position;
    while (first > 0 && units[first - 1] != u'\r')
        --first;
    while (end < units.size() && units[end] != u'\r')
        ++end;
    for (std::uint32_t i = first; i < end; ++i)
        if ((text.lookAt(i).style.faces() & (host::face::underline | host::face::doubleUnderline)) == 0)
            return false;
    return true;
}

inline host::RunStyle withSingleLine(host::RunStyle look) {
    host::CharacterStyle single, twice;
    single.setFaces(host::face::underline);
    twice.enableFace(host::face::doubleUnderline);
    look.style.remove(twice);
    look.style.apply(single);
    return look;
}

/// Nothing when the texts are alike, otherwise the first difference.
inline std::string difference(const host::Text& expected, const host::Text& actual,
                              const HtmlParameters& parameters, bool comparesAlignment) {
    if (expected.units() != actual.units())
        return "text \"" + expected.utf8() + "\" is read as \"" + actual.utf8() + "\"";
    for (std::uint32_t i = 0; i < expected.size(); ++i) {
        host::RunStyle wanted = expected.lookAt(i), found = actual.lookAt(i);
        if (!comparesAlignment) wanted.alignment = found.alignment = host::Alignment::left;
        if (wanted == found) continue;
        if (parameters.hasInlineStyles && mayLoseDouble(expected, i) && withSingleLine(wanted) == found)
            continue;
        return "character " + std::to_string(i) + ": " + describe(wanted) + " is read as " + describe(found);
    }
    return {};
}

/// Texts that differ only in which of their breaks are returns and which are soft line breaks, and in empty
/// lines, are one to this.
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

/// What is in a document, as it was read, other than in the text that it was made from; nothing when all is
/// there that HTML keeps. That holds for texts whose blanks and soft line breaks stand alone between other
/// characters of a line, and whose paragraphs are aligned as a whole.
inline std::string differenceInHtml(const host::Text& text, host::Text read, const HtmlParameters& parameters,
                                    bool inVariable) {
    host::Text expected = textInHtml(text, parameters, inVariable);
    // In a variable, a soft line break shifts the ends of the paragraphs after it, and an empty line that
    // ends no paragraph has nothing to stand in.
    const bool isShifted = inVariable && text.units().find(u'\u2028') != std::u16string_view::npos;
    if (isShifted) {
        expected = withOneKindOfBreak(expected);
        read = withOneKindOfBreak(read);
    }
    return difference(expected, read, parameters, !isShifted);
}
