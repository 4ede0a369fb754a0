#include "host/values/CaseFolding.h"
#include "host/values/Search.h"
#include "host/values/Text.h"

#include <algorithm>
#include <stdexcept>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <vector>

/// The text operations that depend on Unicode's case rules: mapping, folding, search without case.

namespace host {

namespace {

void check(UErrorCode status) {
    if (U_FAILURE(status)) throw std::runtime_error("ICU could not map a text's case");
}

/// Runs an ICU mapping into a string that is as long as the answer needs.
template<class Mapping>
std::u16string mapped(std::u16string_view source, const Mapping& mapping) {
    std::u16string result(source.size() + source.size() / 8 + 16, u'\0');
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t size = mapping(result.data(), static_cast<std::int32_t>(result.size()),
                                          source.data(), static_cast<std::int32_t>(source.size()), &status);
        if (status != U_BUFFER_OVERFLOW_ERROR) check(status);
        const bool fits = size <= static_cast<std::int32_t>(result.size());
        result.resize(static_cast<std::size_t>(size));
        if (fits) return result;
    }
}

std::u16string withCaseOf(std::u16string_view units, Text::Case wanted) {
    return mapped(units, [&](char16_t* to, std::int32_t capacity, const char16_t* from, std::int32_t size,
                             UErrorCode* status) {
        switch (wanted) {
        case Text::Case::upper: return u_strToUpper(to, capacity, from, size, "", status);
        case Text::Case::lower: return u_strToLower(to, capacity, from, size, "", status);
        default: return u_strToTitle(to, capacity, from, size, nullptr, "", status);
        }
    });
}

/// How many units of a mapping came from `character`, whose mapping `rest` begins with.
std::size_t mappedSize(std::u16string_view character, std::u16string_view rest, Text::Case wanted) {
    const bool title = wanted == Text::Case::title;
    const std::u16string alone = withCaseOf(character, title ? Text::Case::lower : wanted);
    // In title case a character is the first of its word or in lower case.
    return !title || rest.starts_with(alone) ? alone.size() : withCaseOf(character, wanted).size();
}

/// A backward search looks this far before the pattern's place at first, then twice as far each time: a
/// caller that goes from match to match does not pay for the whole text at every step.
constexpr std::size_t kFirstWindow = 256;

} // namespace

std::u16string foldCase(std::u16string_view units) {
    if (std::all_of(units.begin(), units.end(), isAscii)) {
        std::u16string folded(units);
        std::transform(folded.begin(), folded.end(), folded.begin(), foldAscii);
        return folded;
    }
    return mapped(units, [](char16_t* to, std::int32_t capacity, const char16_t* from, std::int32_t size,
                            UErrorCode* status) {
        return u_strFoldCase(to, capacity, from, size, U_FOLD_CASE_DEFAULT, status);
    });
}

FoldedCharacter foldOther(char32_t character) {
    FoldedCharacter folded{};
    std::array<char16_t, 2> units{};
    std::int32_t size = 0;
    U16_APPEND_UNSAFE(units.data(), size, character);
    UErrorCode status = U_ZERO_ERROR;
    folded.size = static_cast<std::size_t>(u_strFoldCase(folded.units.data(), std::ssize(folded.units),
                                                         units.data(), size, U_FOLD_CASE_DEFAULT, &status));
    check(status);
    return folded;
}

Text Text::withCase(Case wanted) const {
    // The mapping sees across runs (words, the final sigma); the formattings are laid over it afterwards.
    const std::u16string whole = withCaseOf(units_, wanted);
    const std::u16string_view rest = whole;
    Text result;
    const std::span<const Run> all = runs();
    if (all.size() <= 1) {
        result.append(whole, formattingAt(0));
        return result;
    }
    std::vector<std::size_t> cuts; // where each run begins in the mapping
    std::size_t mappedTo = 0;
    for (std::size_t at = 0; at < units_.size();) {
        const std::size_t start = at;
        UChar32 point = 0;
        U16_NEXT(units_.data(), at, units_.size(), point);
        while (cuts.size() < all.size() && all[cuts.size()].start < at)
            cuts.push_back(std::min(mappedTo + all[cuts.size()].start - start, whole.size()));
        mappedTo +=
            point < 0x80 ? 1 : mappedSize(units().substr(start, at - start), rest.substr(mappedTo), wanted);
        mappedTo = std::min(mappedTo, whole.size());
    }
    cuts.push_back(whole.size());
    for (std::size_t i = 0; i < all.size(); ++i)
        result.append(rest.substr(cuts[i], cuts[i + 1] - cuts[i]), all[i].formatting);
    return result;
}

std::uint32_t Text::findIgnoringCase(const Text& wanted, std::uint32_t position) const {
    const auto match = CaselessSearch(units_, wanted.units_, position).next();
    return match ? match->start : end;
}

std::uint32_t Text::findBackwardIgnoringCase(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty() || empty()) return end;
    position = std::min(position, size() - 1);
    // No character folds to fewer units than it has: a match is no longer than its pattern.
    std::size_t stop = std::min<std::size_t>(size(), std::size_t{position} + wanted.size());
    U16_SET_CP_LIMIT(units_.data(), 0, stop, units_.size());
    for (std::size_t window = wanted.size() + kFirstWindow;; window *= 2) {
        std::size_t start = position - std::min<std::size_t>(position, window);
        U16_SET_CP_START(units_.data(), 0, start);
        CaselessSearch search(units().substr(0, stop), wanted.units_, start);
        std::uint32_t last = end;
        for (auto match = search.next(); match && match->start <= position; match = search.next())
            last = match->start;
        if (last != end || start == 0) return last;
    }
}

int compareIgnoringCase(std::u16string_view left, std::u16string_view right) {
    // ICU takes no null pointer, which an empty view may hold.
    if (left.empty() || right.empty())
        return static_cast<int>(right.empty()) - static_cast<int>(left.empty());
    UErrorCode status = U_ZERO_ERROR;
    const int order =
        u_strCaseCompare(left.data(), static_cast<std::int32_t>(left.size()), right.data(),
                         static_cast<std::int32_t>(right.size()), U_COMPARE_CODE_POINT_ORDER, &status);
    check(status);
    return order;
}

} // namespace host
