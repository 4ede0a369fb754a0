#include "host/values/Text.h"

#include <algorithm>
#include <stdexcept>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <vector>

/// What depends on Unicode's case rules: mapping, folding, search without case.

namespace host {

namespace {

void check(UErrorCode status) {
    if (U_FAILURE(status)) throw std::runtime_error("ICU could not map a text's case");
}

/// Runs an ICU mapping into a string that is as long as the answer wants.
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

std::u16string fold(std::u16string_view units) {
    return mapped(units, [](char16_t* to, std::int32_t capacity, const char16_t* from, std::int32_t size,
                            UErrorCode* status) {
        return u_strFoldCase(to, capacity, from, size, U_FOLD_CASE_DEFAULT, status);
    });
}

/// As much of a text, from a position on, as was folded so far, and where each folded unit came from.
class Folded {
public:
    Folded(std::u16string_view source, std::size_t from) : source_(source), next_(from) {}

    /// Folds the characters that begin before `stop`.
    void extendTo(std::size_t stop) {
        stop = std::min(stop, source_.size());
        while (next_ < stop) {
            const std::size_t start = next_;
            UChar32 point = 0;
            U16_NEXT(source_.data(), next_, source_.size(), point);
            if (point < 0x80) {
                units_ += static_cast<char16_t>(u_foldCase(point, U_FOLD_CASE_DEFAULT));
            } else {
                units_ += fold(source_.substr(start, next_ - start));
            }
            origins_.resize(units_.size(), static_cast<std::uint32_t>(start));
        }
    }

    [[nodiscard]] bool isComplete() const { return next_ >= source_.size(); }
    [[nodiscard]] const std::u16string& units() const { return units_; }
    [[nodiscard]] std::uint32_t origin(std::size_t at) const { return origins_[at]; }
    /// The first folded unit of a character behind a position of the source.
    [[nodiscard]] std::size_t firstBehind(std::uint32_t position) const {
        const auto behind = std::upper_bound(origins_.begin(), origins_.end(), position);
        return static_cast<std::size_t>(behind - origins_.begin());
    }
    /// True when a match begins and ends on whole characters of the source.
    [[nodiscard]] bool isWhole(std::size_t at, std::size_t size) const {
        return isBoundary(at) && isBoundary(at + size);
    }

private:
    [[nodiscard]] bool isBoundary(std::size_t at) const {
        return at == 0 || at == units_.size() || origins_[at] != origins_[at - 1];
    }

    std::u16string_view source_;
    std::size_t next_;
    std::u16string units_;
    std::vector<std::uint32_t> origins_;
};

/// A search folds this much more than the pattern at first, then twice as much each time: a caller that goes
/// from match to match does not pay for the whole text at every step.
constexpr std::size_t firstWindow = 256;

/// How many units of a mapping came from `character`, whose mapping `rest` begins with.
std::size_t mappedSize(std::u16string_view character, std::u16string_view rest, Text::Case wanted) {
    const bool title = wanted == Text::Case::title;
    const std::u16string alone = withCaseOf(character, title ? Text::Case::lower : wanted);
    // In title case a character is the first of its word or in lower case.
    return !title || rest.starts_with(alone) ? alone.size() : withCaseOf(character, wanted).size();
}

} // namespace

Text Text::withCase(Case wanted) const {
    // The mapping sees across runs (words, the final sigma); the looks are laid over it afterwards.
    const std::u16string whole = withCaseOf(units_, wanted);
    const std::u16string_view rest = whole;
    Text result;
    if (runs_.size() <= 1) {
        result.append(whole, lookAt(0));
        return result;
    }
    std::vector<std::size_t> cuts; // where each run begins in the mapping
    std::size_t mappedTo = 0;
    for (std::size_t at = 0; at < units_.size();) {
        const std::size_t start = at;
        UChar32 point = 0;
        U16_NEXT(units_.data(), at, units_.size(), point);
        while (cuts.size() < runs_.size() && runs_[cuts.size()].start < at)
            cuts.push_back(std::min(mappedTo + runs_[cuts.size()].start - start, whole.size()));
        mappedTo +=
            point < 0x80 ? 1 : mappedSize(units().substr(start, at - start), rest.substr(mappedTo), wanted);
        mappedTo = std::min(mappedTo, whole.size());
    }
    cuts.push_back(whole.size());
    for (std::size_t i = 0; i < runs_.size(); ++i)
        result.append(rest.substr(cuts[i], cuts[i + 1] - cuts[i]), runs_[i].look);
    return result;
}

std::uint32_t Text::findIgnoringCase(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty() || position >= size()) return end;
    const std::u16string pattern = fold(wanted.units_);
    Folded text(units_, position);
    std::size_t from = 0;
    for (std::size_t window = pattern.size() + firstWindow;; window *= 2) {
        text.extendTo(position + window);
        for (std::size_t at = from; (at = text.units().find(pattern, at)) != std::u16string::npos; ++at)
            if (text.isWhole(at, pattern.size())) return text.origin(at);
        if (text.isComplete()) return end;
        // Only a match that reaches past what was folded is still to come.
        from = text.units().size() - pattern.size() + 1;
    }
}

std::uint32_t Text::findBackwardIgnoringCase(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty() || empty()) return end;
    const std::u16string pattern = fold(wanted.units_);
    position = std::min(position, size() - 1);
    for (std::size_t window = pattern.size() + firstWindow;; window *= 2) {
        std::size_t start = position - std::min<std::size_t>(position, window);
        U16_SET_CP_START(units_.data(), 0, start);
        Folded text(units_, start);
        // No character folds to fewer units than it has: a match is no longer than its pattern.
        text.extendTo(position + pattern.size());
        for (std::size_t at = text.firstBehind(position); at > 0;) {
            at = text.units().rfind(pattern, at - 1);
            if (at == std::u16string::npos) break;
            if (text.isWhole(at, pattern.size())) return text.origin(at);
        }
        if (start == 0) return end;
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
