#pragma once

#include "LoadedPlugIn.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Random styled texts, what Kestrel_GetAsHTML may lose of them, and how a test gets them into it.

/// A number from the environment, for a run that wants more than the ordinary one.
inline unsigned numberFromEnvironment(const char* name, unsigned otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

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

class StyledTexts {
public:
    /// The function keeps two bytes of a font's name for each unit; Chinese names, which need three, come
    /// out cut and are left out here.
    StyledTexts(unsigned seed, host::File& file) : random_(seed) {
        for (const char16_t* name : {u"Helvetica", u"Times New Roman", u"DejaVu Sans Mono", u"Ωmega Sérif"})
            fonts_.push_back(file.fontId(name));
    }

    /// One to five paragraphs, some of them empty, of up to five runs of 1 to 50 characters. Blanks stand
    /// only between other characters of a line: elsewhere HTML does not keep them.
    host::Text next(bool hasLineBreaks) {
        host::Text text;
        const unsigned count = upTo(5);
        for (unsigned i = 0; i < count; ++i) {
            if (i > 0) text.append(u"\r", {.style = style(), .alignment = alignment_});
            alignment_ = static_cast<host::Alignment>(upTo(4) - 1);
            if (upTo(6) > 1) addParagraph(text, hasLineBreaks);
        }
        return text;
    }

private:
    unsigned upTo(unsigned most) { return std::uniform_int_distribution<unsigned>(1, most)(random_); }
    bool oneIn(unsigned n) { return upTo(n) == 1; }

    host::CharacterStyle style() {
        using namespace host;
        constexpr std::array faces{
            face::bold,      face::italic,      face::underline,     face::highlight,
            face::condense,  face::extend,      face::strikethrough, face::smallCaps,
            face::uppercase, face::superscript, face::subscript,     face::lowercase,
            face::titlecase, face::outline,     face::wordUnderline, face::doubleUnderline};
        CharacterStyle style;
        if (oneIn(4)) return style;
        std::uint16_t chosen = 0;
        for (const std::uint16_t bits : faces)
            if (oneIn(6)) chosen |= bits;
        if (chosen != 0) style.setFaces(chosen);
        if (oneIn(8)) style.enableFace(face::bold); // said, and perhaps said to be off
        if (oneIn(3))
            style.setColor({.red = channel(), .green = channel(), .blue = channel(), .alpha = channel()});
        if (oneIn(3)) style.setFont(fonts_.at(upTo(static_cast<unsigned>(fonts_.size())) - 1));
        if (oneIn(3)) style.setSize(static_cast<std::uint16_t>(upTo(90) + 9));
        return style;
    }

    std::uint8_t channel() { return static_cast<std::uint8_t>(oneIn(3) ? 255 : upTo(256) - 1); }

    void addParagraph(host::Text& text, bool hasLineBreaks) {
        const unsigned runs = upTo(5);
        // Now and then the paragraph is of one style, or shares much of it.
        const host::CharacterStyle shared = style();
        const bool isShared = oneIn(3), isAlike = oneIn(5);
        bool afterSolid = false;
        for (unsigned run = 0; run < runs; ++run) {
            host::CharacterStyle look = isAlike ? shared : style();
            if (isShared) look.apply(shared);
            std::u16string units;
            const unsigned size = upTo(50);
            for (unsigned i = 0; i < size; ++i) {
                const bool isLast = run + 1 == runs && i + 1 == size;
                if (afterSolid && !isLast && oneIn(6)) {
                    units += hasLineBreaks && oneIn(4) ? u'\u2028' : u' ';
                    afterSolid = false;
                } else {
                    units += character();
                    afterSolid = true;
                }
            }
            text.append(units, {.style = look, .alignment = alignment_});
        }
    }

    std::u16string character() {
        static const std::array<std::u16string, 12> characters{
            u"a", u"Z", u"0", u"&", u"<", u">", u"\"", u"'", u"\u00A0", u"é", u"漢", u"\U0001F600"};
        return characters.at(upTo(characters.size()) - 1);
    }

    std::mt19937 random_;
    std::vector<std::uint16_t> fonts_;
    host::Alignment alignment_ = host::Alignment::left;
};

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

/// The plug-in's answer for a text that is given itself, or by a variable's name (which stands for itself
/// when the variable is empty).
inline host::Text htmlOf(host::Session& session, const host::Text& text, const HtmlParameters& parameters,
                         bool inVariable) {
    const host::calc::Environment place = session.topLevel();
    const auto let = [&](std::u16string_view name, const host::Text& value) {
        place.locals->set(name, 1, std::make_shared<const host::Data>(value));
    };
    let(u"text", text);
    let(u"tags", parameters.tags);
    let(u"classes", parameters.classes);
    let(u"styles", parameters.styles);
    const std::u16string argument = inVariable && !text.empty() ? u"\"$text\"" : u"$text";
    const host::calc::Result result =
        session.evaluate(u"Kestrel_GetAsHTML ( " + argument + u" ; $tags ; $classes ; $styles )");
    return result.error == 0 ? result.value->asText() : host::Text(u"error");
}
