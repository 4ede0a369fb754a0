#include "StyledTexts.h"
#include "host/html/Reader.h"

#include <algorithm>
#include <cstdio>

/// Styled text to HTML by the plug-in, back by the host's reader, which knows nothing of it.

namespace {

using host::Text;

class HtmlRoundTrip : public LoadedPlugIn {
protected:
    Text read(const Text& html) {
        const std::shared_ptr<host::File> front = session.front();
        return host::readHtml(html.utf8(), [&](std::u16string_view name) { return front->fontId(name); });
    }
};

std::string describe(const host::RunStyle& look) {
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
bool mayLoseDouble(const Text& text, std::uint32_t position) {
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

host::RunStyle withSingleLine(host::RunStyle look) {
    host::CharacterStyle single, twice;
    single.setFaces(host::face::underline);
    twice.enableFace(host::face::doubleUnderline);
    look.style.remove(twice);
    look.style.apply(single);
    return look;
}

/// Nothing when the texts are alike, otherwise the first difference.
std::string difference(const Text& expected, const Text& actual, const HtmlParameters& parameters,
                       bool comparesAlignment) {
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
Text withOneKindOfBreak(const Text& text) {
    Text result;
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

TEST_F(HtmlRoundTrip, keepsTextAndLooks) {
    const unsigned first = numberFromEnvironment("KESTREL_SEED", 1);
    const unsigned count = numberFromEnvironment("KESTREL_ROUND_TRIPS", 1000);
    for (unsigned seed = first; seed < first + count; ++seed) {
        const HtmlParameters& parameters = htmlParameters()[seed % htmlParameters().size()];
        const bool inVariable = seed / htmlParameters().size() % 2 == 1, hasLineBreaks = seed % 5 != 0;
        StyledTexts texts(seed, *session.front());
        const Text text = texts.next(hasLineBreaks);
        const Text html = htmlOf(session, text, parameters, inVariable);
        Text expected = textInHtml(text, parameters, inVariable), actual = read(html);
        // In a variable, a soft line break shifts the ends of the paragraphs after it, and an empty line that
        // ends no paragraph has nothing to stand in.
        const bool isShifted = inVariable && text.units().find(u'\u2028') != std::u16string_view::npos;
        if (isShifted) {
            expected = withOneKindOfBreak(expected);
            actual = withOneKindOfBreak(actual);
        }
        const std::string found = difference(expected, actual, parameters, !isShifted);
        ASSERT_EQ(found, "") << html.utf8() << "\nKESTREL_SEED=" << seed
                             << " KESTREL_ROUND_TRIPS=1 repeats it";
    }
}

} // namespace
