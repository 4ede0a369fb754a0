#include "host/cli/OpenParts.h"

#include <algorithm>

namespace host::cli {

namespace {

constexpr std::size_t kNone = std::u16string_view::npos;
constexpr std::u16string_view kOpening = u"([{", kClosing = u")]}";

/// The position after a text constant that begins at `at`; none when it does not end.
std::size_t endOfText(std::u16string_view source, std::size_t at) {
    for (++at; at < source.size(); ++at) {
        if (source[at] == u'"') return at + 1;
        if (source[at] == u'\\') ++at;
    }
    return kNone;
}

/// The position after a comment or text constant that begins at `at`; `at` itself where none does.
std::size_t endOfOpaquePart(std::u16string_view source, std::size_t at) {
    const std::u16string_view rest = source.substr(at);
    if (rest.starts_with(u'"')) return endOfText(source, at);
    if (rest.starts_with(u"//")) return std::min(source.find_first_of(u"\r\n", at), source.size());
    if (!rest.starts_with(u"/*")) return at;
    const std::size_t end = source.find(u"*/", at + 2);
    return end == kNone ? kNone : end + 2;
}

} // namespace

std::vector<OpenPart> openParts(std::u16string_view calculation) {
    std::vector<OpenPart> open;
    for (std::size_t at = 0; at < calculation.size();) {
        const char16_t unit = calculation[at];
        const auto position = static_cast<std::uint32_t>(at);
        const std::size_t end = endOfOpaquePart(calculation, at);
        if (end == kNone) {
            open.push_back({.mark = unit == u'"' ? unit : u'*', .position = position});
            break;
        }
        if (end != at) {
            at = end;
            continue;
        }
        if (kOpening.find(unit) != kNone) open.push_back({.mark = unit, .position = position});
        if (const std::size_t kind = kClosing.find(unit);
            kind != kNone && !open.empty() && open.back().mark == kOpening[kind])
            open.pop_back();
        ++at;
    }
    return open;
}

} // namespace host::cli
