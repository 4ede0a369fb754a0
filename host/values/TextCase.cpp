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

/// A folded text and where each of its units came from.
struct Folded {
    std::u16string units;
    std::vector<std::uint32_t> origins; ///< one more than units: the last is the source's end

    explicit Folded(std::u16string_view source) {
        units.reserve(source.size());
        origins.reserve(source.size() + 1);
        for (std::size_t at = 0; at < source.size();) {
            const auto start = static_cast<std::uint32_t>(at);
            UChar32 point = 0;
            U16_NEXT(source.data(), at, source.size(), point);
            if (point < 0x80) {
                units += static_cast<char16_t>(u_foldCase(point, U_FOLD_CASE_DEFAULT));
            } else {
                units += fold(source.substr(start, at - start));
            }
            origins.resize(units.size(), start);
        }
        origins.push_back(static_cast<std::uint32_t>(source.size()));
    }

    /// True when a match at `at` begins and ends on whole characters of the source.
    [[nodiscard]] bool isWhole(std::size_t at, std::size_t size) const {
        const bool begins = at == 0 || origins[at] != origins[at - 1];
        return begins && (at + size == units.size() || origins[at + size] != origins[at + size - 1]);
    }
};

} // namespace

Text Text::withCase(Case wanted) const {
    const std::u16string whole = withCaseOf(units_, wanted);
    Text result;
    if (runs_.size() <= 1) {
        result.append(whole, lookAt(0));
        return result;
    }
    // Where no run changes its length, the mapping of the whole, which sees across runs, is cut at the same
    // places.
    std::vector<std::u16string> pieces;
    bool sameLengths = whole.size() == units_.size();
    for (std::size_t i = 0; i < runs_.size(); ++i) {
        const std::uint32_t runEnd = i + 1 < runs_.size() ? runs_[i + 1].start : size();
        pieces.push_back(withCaseOf(units().substr(runs_[i].start, runEnd - runs_[i].start), wanted));
        sameLengths = sameLengths && pieces.back().size() == runEnd - runs_[i].start;
    }
    if (sameLengths) {
        result.units_ = whole;
        result.runs_ = runs_;
        return result;
    }
    for (std::size_t i = 0; i < runs_.size(); ++i)
        result.append(pieces[i], runs_[i].look);
    return result;
}

std::uint32_t Text::findIgnoringCase(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty() || position >= size()) return end;
    const Folded text(units().substr(position));
    const std::u16string pattern = fold(wanted.units_);
    for (std::size_t at = 0; (at = text.units.find(pattern, at)) != std::u16string::npos; ++at)
        if (text.isWhole(at, pattern.size())) return position + text.origins[at];
    return end;
}

std::uint32_t Text::findBackwardIgnoringCase(const Text& wanted, std::uint32_t position) const {
    if (wanted.empty()) return end;
    const Folded text(units_);
    const std::u16string pattern = fold(wanted.units_);
    // The last unit that came from a character at or before the position.
    const auto after = std::upper_bound(text.origins.begin(), text.origins.end(), position);
    std::size_t at = static_cast<std::size_t>(after - text.origins.begin());
    while (at > 0) {
        at = text.units.rfind(pattern, at - 1);
        if (at == std::u16string::npos) return end;
        if (text.isWhole(at, pattern.size())) return text.origins[at];
    }
    return end;
}

int compareIgnoringCase(std::u16string_view left, std::u16string_view right) {
    UErrorCode status = U_ZERO_ERROR;
    const int order =
        u_strCaseCompare(left.data(), static_cast<std::int32_t>(left.size()), right.data(),
                         static_cast<std::int32_t>(right.size()), U_COMPARE_CODE_POINT_ORDER, &status);
    check(status);
    return order;
}

} // namespace host
