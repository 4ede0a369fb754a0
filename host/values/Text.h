#pragma once

#include "host/values/Style.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The formatting of a run of characters.
struct RunStyle {
    CharacterStyle style;
    Alignment alignment = Alignment::left;
    bool operator==(const RunStyle&) const = default;
};

/// UTF-16 text with run-length styles. Positions and sizes are in UTF-16 units; those that reach past the end
/// are cut at the end, never an error. Neighbouring runs are always different, and a text has at most as many
/// runs as units; an empty text has none. Every operation is linear in the units and runs that it touches; a
/// style is found at a position in the logarithm of the number of runs.
class Text {
public:
    static constexpr std::uint32_t end =
        0xFFFFFFFF; ///< as a size: all that follows; as a position: not found

    struct Run {
        std::uint32_t start; ///< first unit; it reaches to the next run's start
        RunStyle formatting;
        bool operator==(const Run&) const = default;
    };

    Text() = default;
    Text(std::u16string units); // NOLINT(google-explicit-constructor): a text is its units
    Text(std::u16string units, const RunStyle& formatting);
    Text(const char16_t* units) : Text(std::u16string(units)) {} // NOLINT(google-explicit-constructor)
    static Text fromUtf8(std::string_view bytes);
    [[nodiscard]] std::string utf8() const;

    [[nodiscard]] std::u16string_view units() const { return units_; }
    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(units_.size()); }
    [[nodiscard]] bool empty() const { return units_.empty(); }
    /// Valid until the text is changed.
    [[nodiscard]] std::span<const Run> runs() const {
        if (empty()) return {};
        return runs_ ? std::span(*runs_) : std::span(&plainRun, 1);
    }
    /// Calls `use` with the units and the formatting of each run, in order.
    template<class Use>
    void forEachRun(const Use& use) const {
        const std::span<const Run> all = runs();
        for (std::size_t i = 0; i < all.size(); ++i) {
            const std::size_t stop = i + 1 < all.size() ? all[i + 1].start : units_.size();
            use(units().substr(all[i].start, stop - all[i].start), all[i].formatting);
        }
    }
    /// True when every character has the default formatting.
    [[nodiscard]] bool isPlain() const { return !runs_; }

    /// The formatting at a position; the default formatting at or past the end.
    [[nodiscard]] const RunStyle& formattingAt(std::uint32_t position) const;

    [[nodiscard]] Text substring(std::uint32_t position, std::uint32_t size = end) const;
    /// Styles travel with the characters. `source` may be this text itself. A text that would outgrow 2^31
    /// units throws std::length_error.
    void append(const Text& source, std::uint32_t position = 0, std::uint32_t size = end);
    void append(std::u16string_view units, const RunStyle& formatting = {});
    void insert(const Text& source, std::uint32_t position);
    void erase(std::uint32_t position, std::uint32_t size = end);

    /// Lays enabled traits over a range, or gives them back everywhere.
    void applyStyle(const CharacterStyle& style, std::uint32_t position = 0, std::uint32_t size = end);
    void removeStyle(const CharacterStyle& style);
    void removeAllStyles();
    void setAlignment(Alignment alignment, std::uint32_t position = 0, std::uint32_t size = end);

    /// First match at or after (last match at or before) a position, `end` when absent. Matching without case
    /// folds both sides by ICU's full case folding and reports whole characters of this text; an empty
    /// `wanted` matches nothing.
    [[nodiscard]] std::uint32_t find(const Text& wanted, std::uint32_t position) const;
    [[nodiscard]] std::uint32_t findBackward(const Text& wanted, std::uint32_t position) const;
    [[nodiscard]] std::uint32_t findIgnoringCase(const Text& wanted, std::uint32_t position) const;
    [[nodiscard]] std::uint32_t findBackwardIgnoringCase(const Text& wanted, std::uint32_t position) const;

    /// Case by the root locale's full mappings (ICU); a character that becomes several keeps its style on all
    /// of them.
    enum class Case { upper, lower, title };
    [[nodiscard]] Text withCase(Case wanted) const;

    /// Raw code units alone; styles do not count.
    bool operator==(const Text& other) const { return units_ == other.units_; }
    auto operator<=>(const Text& other) const { return units_ <=> other.units_; }
    /// Units and formattings.
    [[nodiscard]] bool isIdenticalTo(const Text& other) const {
        return units_ == other.units_ && std::ranges::equal(runs(), other.runs());
    }

private:
    /// Runs, copied with their owner. Without runs it takes the size of a pointer.
    class OptionalRuns : public std::unique_ptr<std::vector<Run>> {
    public:
        using std::unique_ptr<std::vector<Run>>::unique_ptr;
        OptionalRuns(const OptionalRuns& other)
            : unique_ptr(other ? std::make_unique<std::vector<Run>>(*other) : nullptr) {}
        OptionalRuns(OptionalRuns&&) = default;
        OptionalRuns& operator=(const OptionalRuns& other) { return *this = OptionalRuns(other); }
        OptionalRuns& operator=(OptionalRuns&&) = default;
        ~OptionalRuns() = default;
    };

    static const Run plainRun; ///< from position 0, with the default formatting

    template<class Change>
    void changeRange(std::uint32_t position, std::uint32_t size, const Change& change);
    void addRun(std::uint32_t start, const RunStyle& formatting);
    template<class Change>
    void changeRuns(const Change& change);
    void leaveOutPlain();

    std::u16string units_;
    OptionalRuns runs_; ///< none in a text of the default formatting, which needs no memory for them
};

/// Compares as calculations do: without regard to case (ICU folding), by code points otherwise. <0, 0, >0.
int compareIgnoringCase(std::u16string_view left, std::u16string_view right);

} // namespace host
