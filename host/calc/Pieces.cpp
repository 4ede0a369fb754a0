#include "host/calc/Pieces.h"

#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <memory>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace host::calc {

namespace {

constexpr auto kWordUnits =
    static_cast<std::uint32_t>(U_GC_L_MASK | U_GC_N_MASK | U_GC_M_MASK | U_GC_PC_MASK | U_GC_CF_MASK);

/// The work of setting up the search for words.
constexpr std::size_t kBreaksSteps = 20;

struct CloseBreaks {
    void operator()(UBreakIterator* breaks) const { ubrk_close(breaks); }
};

std::unique_ptr<UBreakIterator, CloseBreaks> wordBreaks(std::u16string_view units) {
    Work::charge(kBreaksSteps);
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UBreakIterator, CloseBreaks> breaks(
        ubrk_open(UBRK_WORD, "en", units.data(), static_cast<std::int32_t>(units.size()), &status));
    if (U_FAILURE(status)) throw Error{error::unspecific};
    return breaks;
}

UChar32 characterAt(std::u16string_view units, std::size_t at) {
    UChar32 point = 0;
    U16_GET(units.data(), 0, at, units.size(), point);
    return point;
}

/// Whether the unit inside a stretch that Unicode takes for a word belongs to a word here as well.
bool isInWord(std::u16string_view stretch, std::size_t at) {
    const UChar32 point = characterAt(stretch, at);
    if ((U_GET_GC_MASK(point) & kWordUnits) != 0) return true;
    if (at == 0 || at + 1 >= stretch.size()) return false;
    const UChar32 before = characterAt(stretch, at - 1), after = characterAt(stretch, at + 1);
    if (point == u'.') return u_isdigit(before) != 0 && u_isdigit(after) != 0;
    return (point == u'\'' || point == u'’') && u_isalpha(before) != 0 && u_isalpha(after) != 0;
}

/// Adds the words of a stretch, which most often is one word.
void addWords(std::vector<Piece>& words, std::u16string_view stretch, std::uint32_t start) {
    std::uint32_t first = 0;
    for (std::uint32_t at = 0; at <= stretch.size(); ++at) {
        if (at < stretch.size() && isInWord(stretch, at)) continue;
        if (at > first) words.push_back({.start = start + first, .size = at - first});
        first = at + 1;
    }
}

} // namespace

std::vector<Piece> wordsOf(std::u16string_view units) {
    std::vector<Piece> words;
    if (units.empty()) return words;
    const auto breaks = wordBreaks(units);
    std::int32_t start = ubrk_first(breaks.get());
    for (std::int32_t end = ubrk_next(breaks.get()); end != UBRK_DONE; end = ubrk_next(breaks.get())) {
        const auto at = static_cast<std::uint32_t>(start);
        if (ubrk_getRuleStatus(breaks.get()) >= UBRK_WORD_NONE_LIMIT)
            addWords(words, units.substr(at, static_cast<std::size_t>(end - start)), at);
        start = end;
    }
    return words;
}

std::vector<Piece> valuesOf(std::u16string_view units) {
    std::vector<Piece> values;
    for (std::size_t start = 0; start < units.size();) {
        const std::size_t end = std::min(units.find(u'\r', start), units.size());
        values.push_back(
            {.start = static_cast<std::uint32_t>(start), .size = static_cast<std::uint32_t>(end - start)});
        start = end + 1;
    }
    return values;
}

DataRef wordsResult(const Text& text, std::span<const Piece> words) {
    if (words.empty()) return textResult({});
    return textResult(
        text.substring(words.front().start, words.back().start + words.back().size - words.front().start));
}

DataRef valuesResult(const Text& text, std::span<const Piece> values) {
    Text result;
    for (const Piece& value : values) {
        result.append(text, value.start, value.size + 1);
        if (value.start + value.size >= text.size()) result.append(std::u16string_view(u"\r"));
    }
    return textResult(std::move(result));
}

} // namespace host::calc
