#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <array>

/// Blanks around and between the parts of texts.

namespace host::calc {

namespace {

constexpr char16_t kBlank = u' ';

DataRef trim(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::size_t first = text.units().find_first_not_of(kBlank);
    if (first == std::u16string_view::npos) return textResult({});
    const std::size_t last = text.units().find_last_not_of(kBlank);
    return textResult(
        text.substring(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last - first + 1)));
}

/// Scripts that write without blanks begin here; characters below it are called roman.
constexpr char16_t kFirstOther = u'\u2F00';

/// The blanks that stay between two characters.
enum class Gap : std::uint8_t {
    none,  ///< nothing
    one,   ///< one blank where there were some
    always ///< one blank in any case
};
/// The rows are by the third parameter, the columns by the number of roman characters of the two.
constexpr std::array<std::array<Gap, 3>, 4> kGaps{{
    {Gap::none, Gap::none, Gap::one},
    {Gap::none, Gap::always, Gap::one},
    {Gap::none, Gap::one, Gap::one},
    {Gap::none, Gap::none, Gap::none},
}};

/// Whether a blank stands between two characters, which had blanks between them or not.
bool keepsBlank(const std::array<Gap, 3>& gaps, char16_t before, char16_t after, bool hadBlanks) {
    const auto isRoman = [](char16_t unit) { return unit < kFirstOther ? std::size_t{1} : std::size_t{0}; };
    const Gap gap = gaps[isRoman(before) + isRoman(after)];
    return gap == Gap::always || (gap == Gap::one && hadBlanks);
}

/// TrimAll ( text ; trimSpaces ; trimType )
DataRef trimAll(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::u16string_view units = text.units();
    const std::u16string_view blanks = arguments[1]->asBoolean() ? u" \u3000" : u" ";
    const std::int64_t type = whole(arguments[2]);
    const auto& gaps = kGaps[type > 0 && type < std::ssize(kGaps) ? static_cast<std::size_t>(type) : 0];
    Text result;
    std::uint32_t rest = 0; // begins after the last character that was written
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        if (blanks.find(units[i]) != std::u16string_view::npos) continue;
        if (!result.empty() && keepsBlank(gaps, units[rest - 1], units[i], rest < i))
            result.append(std::u16string_view(&kBlank, 1), text.formattingAt(rest));
        result.append(text, i, 1);
        rest = i + 1;
    }
    return textResult(std::move(result));
}

constexpr std::array rows{
    EagerRow{u"Trim", trim},
    EagerRow{u"TrimAll", trimAll},
};

} // namespace

void addTrimFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
