#include "patterns/PatternSearch.h"

#include "patterns/PatternOutline.h"

#include <algorithm>
#include <cstdint>
#include <regex>

namespace kst {
namespace {

using std::regex_constants::error_complexity;
using std::regex_constants::error_space;
using std::regex_constants::error_stack;

constexpr std::size_t kMostCharacters = 10'000;
constexpr std::size_t kMostDepth = 200;
constexpr std::size_t kMostBranches = 2'000;

constexpr double kMostComparisons = 1.5e8; // some ten seconds of the slowest; an app is ended after twenty
/// Beyond these the time of a comparison grows with the steps and with the size of an alternative.
constexpr double kOrdinarySteps = 18;
constexpr double kOrdinaryBytes = 256;
/// The library counts the nodes that an attempt visits in an int, up to seven for each of these steps.
constexpr double kMostComparisonsInOneAttempt = kMostComparisons / 10;
constexpr std::int64_t kComparisonsOfCompiling = 10'000'000;
constexpr std::int64_t kComparisonsOfAQuickLook = 1'000'000;
constexpr double kMostBytesOfAlternatives = 512.0 * 1024 * 1024;

/// The comparisons left to the current attempt. The library copies its traits, so these cannot hold the
/// number; there is one search at a time, since the host makes one call at a time.
std::int64_t gComparisonsLeft = 0;
/// The error when none is left.
std::regex_constants::error_type gErrorWhenNoneIsLeft = error_complexity;

void countComparison() {
    if (--gComparisonsLeft < 0) throw std::regex_error(gErrorWhenNoneIsLeft);
}

/// The library's traits, which count every comparison. The library asks them at every comparison because the
/// pattern is compiled as if case did not count; but here every character is its own other case.
class CountingTraits : public std::regex_traits<wchar_t> {
public:
    wchar_t translate_nocase(wchar_t c) const {
        countComparison();
        return c;
    }
    bool isctype(wchar_t c, char_class_type type) const {
        if (type == 0) return false; // of a set without classes
        countComparison();
        return std::regex_traits<wchar_t>::isctype(c, type);
    }
    template<class Iterator>
    char_class_type lookup_classname(Iterator first, Iterator last, bool /*icase*/ = false) const {
        return std::regex_traits<wchar_t>::lookup_classname(first, last, false);
    }
};

using Pattern = std::basic_regex<wchar_t, CountingTraits>;

constexpr auto kGrammar = std::regex_constants::ECMAScript | std::regex_constants::icase;

PatternOutline boundedOutline(const std::wstring& pattern) {
    if (pattern.size() > kMostCharacters) throw std::regex_error(error_space);
    PatternOutline outline = outlineOf(pattern);
    if (outline.depth > kMostDepth || outline.branches > kMostBranches) throw std::regex_error(error_space);
    return outline;
}

/// Compiling makes a few comparisons too.
Pattern compile(const std::wstring& pattern) {
    gComparisonsLeft = kComparisonsOfCompiling;
    return Pattern(pattern, kGrammar);
}

/// The size of an open alternative, which the library keeps in order to return to it.
double bytesOfAlternative(const PatternOutline& outline, std::size_t groups) {
    constexpr double bare = 128, perGroup = 24, perRepetition = 16;
    return bare + perGroup * static_cast<double>(groups) +
           perRepetition * static_cast<double>(outline.repetitions);
}

} // namespace

struct PatternSearch::Parts {
    const wchar_t *first, *last;
    std::wcmatch match;

    Parts(const PatternOutline& outline, const std::wstring& text)
        : first(text.data()), last(text.data() + text.size()), atStart_(compile(outline.atStart)),
          afterStart_(outline.atStart == outline.afterStart ? atStart_ : compile(outline.afterStart)) {
        const auto size = static_cast<double>(text.size());
        const double bytes = bytesOfAlternative(outline, atStart_.mark_count());
        const double weight =
            std::max(outline.steps / kOrdinarySteps, 1.0) * std::max(bytes / kOrdinaryBytes, 1.0);
        // An attempt that compares nothing takes as long as a comparison, and there is one at each position.
        if (size * weight > kMostComparisons) throw std::regex_error(error_complexity);
        left_ = static_cast<std::int64_t>(kMostComparisons / weight);
        mostInOneAttempt_ = static_cast<std::int64_t>(kMostComparisonsInOneAttempt / weight);
        // An attempt passes each character of the text once, or goes back, which makes room.
        const double mostPassed = kMostBytesOfAlternatives / bytes / outline.open;
        if (size < mostPassed) return;
        errorOfOneAttempt_ = error_stack;
        mostInOneAttempt_ = std::min(mostInOneAttempt_, static_cast<std::int64_t>(mostPassed));
    }

    /// Tries one position after the other with a limited number of comparisons: the library does that faster
    /// than a call for each position. std::nullopt when the comparisons were not enough.
    std::optional<bool> isFoundSoon(std::size_t position) {
        const std::int64_t given = std::min({left_, mostInOneAttempt_, kComparisonsOfAQuickLook});
        try {
            return isFound(position, std::regex_constants::match_default, given);
        } catch (const std::regex_error&) {
            if (gComparisonsLeft >= 0) throw; // another error than too few comparisons
        }
        left_ -= given;
        return std::nullopt;
    }
    bool matchesAt(std::size_t position) {
        const std::int64_t given = std::min(left_, mostInOneAttempt_);
        gErrorWhenNoneIsLeft = given < left_ ? errorOfOneAttempt_ : error_complexity;
        return isFound(position, std::regex_constants::match_continuous, given);
    }
    [[nodiscard]] Span spanOf(const std::wcsub_match& found) const {
        return {static_cast<std::size_t>(found.first - first),
                static_cast<std::size_t>(found.second - first)};
    }

private:
    bool isFound(std::size_t position, std::regex_constants::match_flag_type flags, std::int64_t given) {
        if (position > 0) flags |= std::regex_constants::match_prev_avail;
        gComparisonsLeft = given;
        const Pattern& pattern = position == 0 ? atStart_ : afterStart_;
        const bool isMatch = std::regex_search(first + position, last, match, pattern, flags);
        left_ -= given - gComparisonsLeft;
        return isMatch;
    }

    Pattern atStart_, afterStart_;
    std::int64_t left_ = 0, mostInOneAttempt_ = 0;
    std::regex_constants::error_type errorOfOneAttempt_ = error_complexity;
};

PatternSearch::PatternSearch(const std::wstring& pattern, const std::wstring& text)
    : parts_(std::make_unique<Parts>(boundedOutline(pattern), text)) {}

PatternSearch::~PatternSearch() = default;

bool PatternSearch::find(std::size_t position) {
    const auto size = static_cast<std::size_t>(parts_->last - parts_->first);
    if (position > size) return false;
    if (const std::optional<bool> isFound = parts_->isFoundSoon(position)) return *isFound;
    for (; position <= size; ++position)
        if (parts_->matchesAt(position)) return true;
    return false;
}

Span PatternSearch::whole() const { return parts_->spanOf(parts_->match[0]); }

std::size_t PatternSearch::groupCount() const { return parts_->match.size() - 1; }

std::optional<Span> PatternSearch::group(std::size_t number) const {
    const auto& found = parts_->match[number];
    if (!found.matched) return std::nullopt;
    return parts_->spanOf(found);
}

} // namespace kst
