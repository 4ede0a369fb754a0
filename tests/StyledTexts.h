#pragma once

#include "HtmlFormattings.h"
#include "LoadedPlugIn.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Random styled texts, and calls of Kestrel_GetAsHTML with them.

inline constexpr std::array everyFace{
    host::face::bold,      host::face::italic,      host::face::underline,     host::face::highlight,
    host::face::condense,  host::face::extend,      host::face::strikethrough, host::face::smallCaps,
    host::face::uppercase, host::face::superscript, host::face::subscript,     host::face::lowercase,
    host::face::titlecase, host::face::outline,     host::face::wordUnderline, host::face::doubleUnderline};

/// A number from the environment, for a run that tries more than usual.
inline unsigned numberFromEnvironment(const char* name, unsigned otherwise) {
    const char* const value = std::getenv(name);
    return value == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

class StyledTexts {
public:
    /// The fonts have no Chinese names: the function keeps two bytes of a name for each unit and would cut
    /// characters of three bytes.
    StyledTexts(unsigned seed, host::File& file) : random_(seed) {
        for (const char16_t* name : {u"Helvetica", u"Times New Roman", u"DejaVu Sans Mono", u"Ωmega Sérif"})
            fonts_.push_back(file.fontId(name));
    }

    /// One to five paragraphs, some of them empty, of up to five runs of 1 to 50 characters. Blanks stand
    /// only between other characters of a line, because HTML drops all others.
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
        CharacterStyle style;
        if (oneIn(4)) return style;
        std::uint16_t chosen = 0;
        for (const std::uint16_t bits : everyFace)
            if (oneIn(6)) chosen |= bits;
        if (chosen != 0) style.setFaces(chosen);
        if (oneIn(8)) style.enableFace(face::bold); // enabled, even where the bit is off
        if (oneIn(3))
            style.setColor({.red = channel(), .green = channel(), .blue = channel(), .alpha = channel()});
        if (oneIn(3)) style.setFont(fonts_.at(upTo(static_cast<unsigned>(fonts_.size())) - 1));
        if (oneIn(3)) style.setSize(static_cast<std::uint16_t>(upTo(90) + 9));
        return style;
    }

    std::uint8_t channel() { return static_cast<std::uint8_t>(oneIn(3) ? 255 : upTo(256) - 1); }

    void addParagraph(host::Text& text, bool hasLineBreaks) {
        const unsigned runs = upTo(5);
        // Some paragraphs have one style, and some share a part of it.
        const host::CharacterStyle shared = style();
        const bool isShared = oneIn(3), isAlike = oneIn(5);
        bool afterSolid = false;
        for (unsigned run = 0; run < runs; ++run) {
            host::CharacterStyle formatting = isAlike ? shared : style();
            if (isShared) formatting.apply(shared);
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
            text.append(units, {.style = formatting, .alignment = alignment_});
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

/// The plug-in's HTML for a text, passed directly or by a variable's name. An empty text is always passed
/// directly, because the function takes the name of an empty variable as text.
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
