#include "StyledInputs.h"

#include <array>
#include <string>
#include <string_view>

namespace bench {

host::Solution solutionWithFonts() {
    host::Solution solution;
    solution.fonts = {u"Helvetica", u"Times New Roman"};
    return solution;
}

host::CharacterStyle styleOfRun(std::uint32_t run) {
    constexpr std::array<std::uint16_t, 6> faces{host::face::bold,
                                                 host::face::italic,
                                                 host::face::plain,
                                                 host::face::bold | host::face::italic,
                                                 host::face::underline | host::face::strikethrough,
                                                 host::face::highlight};
    const std::uint32_t which = run % (2 * faces.size());
    host::CharacterStyle style;
    style.setFaces(faces.at(which % faces.size()));
    if (which >= faces.size()) style.setColor({static_cast<std::uint8_t>(which * 20), 0, 128});
    if (which % 4 == 0) style.setSize(static_cast<std::uint16_t>(10 + which));
    if (which % 3 == 0) style.setFont(static_cast<std::uint16_t>(which % 2));
    return style;
}

host::Text ordinaryText(std::uint32_t size) {
    std::u16string units;
    while (units.size() < size)
        units += u"The quick brown fox & co. ";
    units.resize(size);
    for (std::uint32_t end = kParagraph - 1; end < size; end += kParagraph)
        units[end] = u'\r';
    host::Text text;
    for (std::uint32_t start = 0; start < size; start += kRun)
        text.append(units.substr(start, kRun), {.style = styleOfRun(start / kRun)});
    return text;
}

namespace {

/// `count` runs of the same characters, each with a style of its own.
template<class StyleOf>
host::Text textOfRuns(std::u16string_view characters, std::uint32_t count, const StyleOf& styleOf) {
    host::Text text;
    for (std::uint32_t i = 0; i < count; ++i)
        text.append(characters, {.style = styleOf(i)});
    return text;
}

} // namespace

host::Text newStyleEachCharacter(std::uint32_t size) { return textOfRuns(u"x", size, styleOfRun); }

host::Text newDeclarationsEachCharacter(std::uint32_t size) {
    return textOfRuns(u"x", size, [](std::uint32_t i) {
        host::CharacterStyle style;
        style.setColor({static_cast<std::uint8_t>(i >> 16U), static_cast<std::uint8_t>(i >> 8U),
                        static_cast<std::uint8_t>(i)});
        return style;
    });
}

host::Text runsThatBecomeEqual(std::uint32_t size) {
    return textOfRuns(u"x", size, [](std::uint32_t i) {
        host::CharacterStyle style;
        style.setFaces(host::face::bold);
        style.setSize(static_cast<std::uint16_t>(10 + i % 2));
        return style;
    });
}

host::Text styledLines(std::uint32_t count) { return textOfRuns(u"a line\r", count, styleOfRun); }

} // namespace bench
