#include "host/scripts/Scanner.h"

#include <algorithm>
#include <unicode/uchar.h>

namespace host::scripts {

namespace {

constexpr std::size_t npos = std::u16string_view::npos;

bool begins(std::u16string_view text, std::size_t at, std::u16string_view mark) {
    return text.substr(at).starts_with(mark);
}

/// The position after a comment that begins at `at`; `at` where none begins; npos where it has no end.
std::size_t commentEnd(std::u16string_view text, std::size_t at) {
    if (begins(text, at, u"//")) return std::min(text.find(u'\n', at), text.size());
    if (!begins(text, at, u"/*")) return at;
    const std::size_t close = text.find(u"*/", at + 2);
    return close == npos ? npos : close + 2;
}

} // namespace

std::u16string_view trimmed(std::u16string_view text) {
    while (!text.empty() && u_isUWhiteSpace(text.front()) != 0)
        text.remove_prefix(1);
    while (!text.empty() && u_isUWhiteSpace(text.back()) != 0)
        text.remove_suffix(1);
    return text;
}

std::size_t quotedEnd(std::u16string_view text, std::size_t at) {
    if (begins(text, at, u"“")) {
        const std::size_t close = text.find(u'”', at);
        return close == npos ? npos : close + 1;
    }
    if (!begins(text, at, u"\"")) return at;
    for (++at; at < text.size(); ++at) {
        if (text[at] == u'"') return at + 1;
        if (text[at] == u'\\') ++at;
    }
    return npos;
}

std::size_t optionEnd(std::u16string_view text, std::size_t at) {
    constexpr std::u16string_view opening = u"([{", closing = u")]}";
    std::size_t depth = 0;
    while (at < text.size()) {
        const std::size_t next = std::max(quotedEnd(text, at), commentEnd(text, at));
        if (next == npos) return npos;
        if (next > at) {
            at = next;
            continue;
        }
        const char16_t unit = text[at];
        if (depth == 0 && (unit == u';' || unit == u']')) return at;
        if (opening.find(unit) != npos) ++depth;
        if (closing.find(unit) != npos && depth > 0) --depth;
        ++at;
    }
    return npos;
}

std::size_t labelLength(std::u16string_view option) {
    constexpr std::u16string_view alsoInLabels = u" \t()/-&";
    for (std::size_t at = 0; at < option.size(); ++at) {
        if (option[at] == u':') return at > 0 && !begins(option, at, u"::") ? at : 0;
        if (u_isalnum(option[at]) == 0 && alsoInLabels.find(option[at]) == npos) return 0;
    }
    return 0;
}

} // namespace host::scripts
