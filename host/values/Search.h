#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Searches whose time grows with the lengths of text and pattern alone, however both repeat themselves.

namespace host {

/// Where `wanted` first stands at or after `from`, exact in case; npos where it does not, and for an empty
/// `wanted`.
std::size_t findUnits(std::u16string_view text, std::u16string_view wanted, std::size_t from);

/// Goes from match to match without regard to case (ICU's full case folding). A match begins and ends at
/// whole characters of the text.
class CaselessSearch {
public:
    struct Match {
        std::uint32_t start, end; ///< in units of the text
    };

    /// Begins at `position`. The text must outlive the search. An empty `wanted` matches nothing.
    CaselessSearch(std::u16string_view text, std::u16string_view wanted, std::size_t position = 0);

    /// The next match, which may overlap with the last one; nothing when no more follows.
    std::optional<Match> next();
    /// Makes the next match begin no sooner than the last one ended.
    void skipOverlaps() { matched_ = 0; }

private:
    struct Origin {
        std::uint32_t position; ///< of the character in the text
        bool isFirst;           ///< whether the unit is the first that the character folds to
    };

    void skipOthers();
    /// Whether the pattern is complete with this folded unit.
    bool takeUnit(char16_t unit, const Origin& origin);

    std::u16string_view text_;
    std::u16string wanted_; ///< folded
    std::vector<std::uint32_t> borders_;
    std::vector<Origin> origins_; ///< a ring: where the last units of the pattern's number come from
    std::size_t oldest_ = 0;      ///< the first of them
    std::size_t next_;            ///< the first character of the text that is not folded yet
    std::size_t matched_ = 0;     ///< units of the pattern that the folded text ends with
};

} // namespace host
