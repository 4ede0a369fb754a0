#pragma once

/// The standard library's search for a pattern, with an end.
///
/// The library itself would search for hours, fill the memory or overflow the stack, depending on pattern
/// and text. Here such a search ends with std::regex_error:
///
/// - error_complexity bounds comparisons of characters: 150 million, and 15 million in the attempt at one
///   position. A pattern with many steps between two comparisons (1,500 assertions in a row) has fewer,
///   and so has one with more than some five groups or eight repetitions, which the library copies
///   whenever it leaves an alternative open.
/// - error_stack bounds comparisons in the attempt at one position, in a text so long that what an attempt
///   leaves open might need more than some 512 megabytes. With one group and one repetition that is beyond
///   three million.
/// - error_space bounds the pattern: 10,000 characters, 200 groups in each other, 2,000 groups, alternatives
///   and repetitions.
///
/// A malformed pattern is the library's own std::regex_error. Exhausted memory is std::bad_alloc.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace kst {

/// A piece of the text: the position of its first character and the one after its last.
struct Span {
    std::size_t begin, end;
    [[nodiscard]] std::size_t length() const { return end - begin; }
};

/// One pattern in one text, which must stay as it is. Case counts, and the grammar is ECMAScript's.
class PatternSearch {
public:
    PatternSearch(const std::wstring& pattern, const std::wstring& text);
    ~PatternSearch();
    PatternSearch(const PatternSearch&) = delete;
    PatternSearch& operator=(const PatternSearch&) = delete;

    /// Finds the first match that begins at `position` or later. The characters before it count for word
    /// boundaries, and "^" matches only at the start of the whole text.
    [[nodiscard]] bool find(std::size_t position);

    /// The following functions describe the last match that was found.
    [[nodiscard]] Span whole() const;
    [[nodiscard]] std::size_t groupCount() const;
    /// A group, counted from 1; std::nullopt when it took no part in the match.
    [[nodiscard]] std::optional<Span> group(std::size_t number) const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace kst
