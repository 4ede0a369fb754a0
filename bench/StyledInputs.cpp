#include "StyledInputs.h"

#include <array>
#include <string>

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

host::Text newStyleEachCharacter(std::uint32_t size) {
    host::Text text;
    for (std::uint32_t i = 0; i < size; ++i)
        text.append(u"x", {.style = styleOfRun(i)});
    return text;
}

host::Text newDeclarationsEachCharacter(std::uint32_t size) {
    host::Text text;
    for (std::uint32_t i = 0; i < size; ++i) {
        host::CharacterStyle style;
        style.setColor({static_cast<std::uint8_t>(i >> 16U), static_cast<std::uint8_t>(i >> 8U),
                        static_cast<std::uint8_t>(i)});
        text.append(u"x", {.style = style});
    }
    return text;
}

host::Text runsThatBecomeEqual(std::uint32_t size) {
    host::Text text;
    for (std::uint32_t i = 0; i < size; ++i) {
        host::CharacterStyle style;
        style.setFaces(host::face::bold);
        style.setSize(static_cast<std::uint16_t>(10 + i % 2));
        text.append(u"x", {.style = style});
    }
    return text;
}

host::Text styledLines(std::uint32_t count) {
    host::Text text;
    for (std::uint32_t line = 0; line < count; ++line)
        text.append(u"a line\r", {.style = styleOfRun(line)});
    return text;
}

} // namespace bench
