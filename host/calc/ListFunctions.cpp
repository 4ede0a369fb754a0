#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <set>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <vector>

namespace host::calc {

namespace {

/// A piece of a text, in units.
struct Piece {
    std::uint32_t start, size;
};

/// Letters and digits make words; an apostrophe, point or comma does too where it stands between two of them.
std::vector<Piece> wordsOf(std::u16string_view units) {
    const auto isWordAt = [&](std::size_t at) {
        if (at >= units.size()) return false;
        UChar32 point = 0;
        std::size_t start = at;
        if (U16_IS_TRAIL(units[at]) && at > 0) --start;
        U16_NEXT(units.data(), start, units.size(), point);
        return u_isalnum(point) != 0 || (U_GET_GC_MASK(point) & U_GC_M_MASK) != 0;
    };
    const auto isInner = [](char16_t unit) {
        return unit == u'\'' || unit == u'’' || unit == u'.' || unit == u',';
    };
    std::vector<Piece> words;
    for (std::size_t at = 0; at < units.size();) {
        if (!isWordAt(at)) {
            ++at;
            continue;
        }
        const std::size_t start = at;
        while (isWordAt(at) || (at < units.size() && isInner(units[at]) && isWordAt(at + 1)))
            ++at;
        words.push_back({static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(at - start)});
    }
    return words;
}

/// The values of a list, without the returns; a return at the very end opens no further value.
std::vector<Piece> valuesOf(std::u16string_view units) {
    std::vector<Piece> values;
    for (std::size_t start = 0; start < units.size();) {
        const std::size_t end = std::min(units.find(u'\r', start), units.size());
        values.push_back({static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end - start)});
        start = end + 1;
    }
    return values;
}

/// `count` pieces from `first` (from 0), held within what there is.
std::span<const Piece> cut(const std::vector<Piece>& pieces, std::int64_t first, std::int64_t count) {
    const auto size = static_cast<std::int64_t>(pieces.size());
    const std::int64_t from = std::clamp<std::int64_t>(first, 0, size);
    const std::int64_t to = std::clamp<std::int64_t>(first + count, from, size);
    return std::span(pieces).subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
}

/// From the first word's first character to the last one's last, with all that stands between.
DataRef wordsResult(const Text& text, std::span<const Piece> words) {
    if (words.empty()) return textResult({});
    return textResult(
        text.substring(words.front().start, words.back().start + words.back().size - words.front().start));
}

/// Each value with a return behind it.
DataRef valuesResult(const Text& text, std::span<const Piece> values) {
    Text result;
    for (const Piece& value : values) {
        result.append(text, value.start, value.size + 1);
        if (value.start + value.size >= text.size()) result.append(std::u16string_view(u"\r"));
    }
    return textResult(std::move(result));
}

using Split = std::vector<Piece> (*)(std::u16string_view);
using Answer = DataRef (*)(const Text&, std::span<const Piece>);

template<Split split, Answer answer>
DataRef leftOf(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    return answer(text, cut(split(text.units()), 0, std::max<std::int64_t>(whole(arguments[1]), 0)));
}

template<Split split, Answer answer>
DataRef rightOf(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::vector<Piece> pieces = split(text.units());
    const std::int64_t size = static_cast<std::int64_t>(pieces.size());
    const std::int64_t count = std::clamp<std::int64_t>(whole(arguments[1]), 0, size);
    return answer(text, cut(pieces, size - count, count));
}

template<Split split, Answer answer>
DataRef middleOf(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::int64_t first = std::max<std::int64_t>(whole(arguments[1]), 1) - 1;
    return answer(text, cut(split(text.units()), first, std::max<std::int64_t>(whole(arguments[2]), 0)));
}

template<Split split>
DataRef countOf(Arguments arguments) {
    return numberResult(static_cast<std::int64_t>(split(arguments[0]->asText().units()).size()));
}

/// Only the wanted line is looked for, since solutions walk long lists with it.
DataRef getValue(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::u16string_view units = text.units();
    std::size_t start = 0;
    for (std::int64_t wanted = whole(arguments[1]); wanted != 1; --wanted) {
        const std::size_t end = wanted < 1 ? std::u16string_view::npos : units.find(u'\r', start);
        if (end == std::u16string_view::npos) return textResult({});
        start = end + 1;
    }
    const std::size_t end = std::min(units.find(u'\r', start), units.size());
    return textResult(
        text.substring(static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end - start)));
}

DataRef filterValues(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::u16string_view allowed = arguments[1]->asText().units();
    std::set<std::u16string> names;
    for (const Piece& value : valuesOf(allowed))
        names.insert(foldName(allowed.substr(value.start, value.size)));
    std::vector<Piece> kept;
    for (const Piece& value : valuesOf(text.units()))
        if (names.contains(foldName(text.units().substr(value.start, value.size)))) kept.push_back(value);
    return valuesResult(text, kept);
}

DataRef list(Arguments arguments) {
    Text result;
    for (const DataRef& value : arguments) {
        if (value->isEmpty()) continue;
        if (!result.empty()) result.append(std::u16string_view(u"\r"));
        result.append(value->asText());
    }
    return textResult(std::move(result));
}

constexpr std::array rows{
    EagerRow{u"LeftWords", 2, 2, leftOf<wordsOf, wordsResult>},
    EagerRow{u"RightWords", 2, 2, rightOf<wordsOf, wordsResult>},
    EagerRow{u"MiddleWords", 3, 3, middleOf<wordsOf, wordsResult>},
    EagerRow{u"WordCount", 1, 1, countOf<wordsOf>},
    EagerRow{u"LeftValues", 2, 2, leftOf<valuesOf, valuesResult>},
    EagerRow{u"RightValues", 2, 2, rightOf<valuesOf, valuesResult>},
    EagerRow{u"MiddleValues", 3, 3, middleOf<valuesOf, valuesResult>},
    EagerRow{u"ValueCount", 1, 1, countOf<valuesOf>},
    EagerRow{u"GetValue", 2, 2, getValue},
    EagerRow{u"FilterValues", 2, 2, filterValues},
    EagerRow{u"List", 1, -1, list},
};

} // namespace

void addListFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
