#include "host/values/Search.h"

#include "host/values/CaseFolding.h"

#include <algorithm>
#include <unicode/utf16.h>

namespace host {

namespace {

/// Up to this length the standard library's search costs no more than this many comparisons a unit.
constexpr std::size_t kShortPattern = 32;

/// For each beginning of the pattern, the length of the longest shorter beginning that it ends with.
std::vector<std::uint32_t> bordersOf(std::u16string_view pattern) {
    std::vector<std::uint32_t> borders(pattern.size());
    std::uint32_t matched = 0;
    for (std::size_t at = 1; at < pattern.size(); ++at) {
        while (matched > 0 && pattern[matched] != pattern[at])
            matched = borders[matched - 1];
        if (pattern[matched] == pattern[at]) ++matched;
        borders[at] = matched;
    }
    return borders;
}

/// How much of the pattern is matched after one more unit, when `matched` units were before it.
std::size_t matchedWith(std::u16string_view pattern, const std::vector<std::uint32_t>& borders,
                        std::size_t matched, char16_t unit) {
    while (matched > 0 && (matched == pattern.size() || pattern[matched] != unit))
        matched = borders[matched - 1];
    return pattern[matched] == unit ? matched + 1 : matched;
}

} // namespace

std::size_t findUnits(std::u16string_view text, std::u16string_view wanted, std::size_t from) {
    if (wanted.empty()) return std::u16string_view::npos;
    if (wanted.size() <= kShortPattern) return text.find(wanted, from);
    if (from > text.size() || text.size() - from < wanted.size()) return std::u16string_view::npos;
    const std::vector<std::uint32_t> borders = bordersOf(wanted);
    std::size_t matched = 0;
    for (std::size_t at = from; at < text.size(); ++at) {
        matched = matchedWith(wanted, borders, matched, text[at]);
        if (matched == wanted.size()) return at + 1 - matched;
    }
    return std::u16string_view::npos;
}

CaselessSearch::CaselessSearch(std::u16string_view text, std::u16string_view wanted, std::size_t position)
    : text_(text), next_(position) {
    // No character folds to more than three units.
    const bool isPossible = position < text.size() && wanted.size() <= 3 * (text.size() - position);
    if (isPossible) wanted_ = foldCase(wanted);
    borders_ = bordersOf(wanted_);
    origins_.resize(wanted_.size());
}

/// Skips characters that no match can begin with.
void CaselessSearch::skipOthers() {
    const auto isOther = [&](char16_t unit) { return isAscii(unit) && foldAscii(unit) != wanted_.front(); };
    while (next_ < text_.size() && isOther(text_[next_]))
        ++next_;
}

bool CaselessSearch::takeUnit(char16_t unit, const Origin& origin) {
    origins_[oldest_] = origin;
    oldest_ = oldest_ + 1 == origins_.size() ? 0 : oldest_ + 1;
    matched_ = matchedWith(wanted_, borders_, matched_, unit);
    return matched_ == wanted_.size();
}

std::optional<CaselessSearch::Match> CaselessSearch::next() {
    if (wanted_.empty()) return std::nullopt;
    for (;;) {
        if (matched_ == 0) skipOthers();
        if (next_ >= text_.size()) return std::nullopt;
        const auto position = static_cast<std::uint32_t>(next_);
        UChar32 point = 0;
        U16_NEXT(text_.data(), next_, text_.size(), point);
        const FoldedCharacter character = foldCase(static_cast<char32_t>(point));
        bool isMatch = false;
        for (std::size_t i = 0; i < character.size; ++i)
            isMatch = takeUnit(character.units[i], {.position = position, .isFirst = i == 0});
        if (const Origin& start = origins_[oldest_]; isMatch && start.isFirst)
            return Match{.start = start.position, .end = static_cast<std::uint32_t>(next_)};
    }
}

} // namespace host
