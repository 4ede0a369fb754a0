#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"
#include "host/calc/Pieces.h"
#include "host/values/Search.h"

#include <algorithm>
#include <array>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <vector>

/// Parts of texts, search, and changes.

namespace host::calc {

namespace {

std::uint32_t countOf(const DataRef& value) {
    return static_cast<std::uint32_t>(std::max<std::int64_t>(whole(value), 0));
}

std::vector<UChar32> charactersOf(std::u16string_view units) {
    std::vector<UChar32> points;
    for (std::size_t at = 0; at < units.size();) {
        points.emplace_back();
        U16_NEXT(units.data(), at, units.size(), points.back());
    }
    return points;
}

std::u16string unitsOf(UChar32 point) {
    std::array<char16_t, 2> units{};
    std::size_t size = 0;
    U16_APPEND_UNSAFE(units.data(), size, point);
    return {units.data(), size};
}

DataRef length(Arguments arguments) { return numberResult(arguments[0]->asText().size()); }

DataRef left(Arguments arguments) {
    return textResult(arguments[0]->asText().substring(0, countOf(arguments[1])));
}

DataRef right(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::uint32_t count = std::min(countOf(arguments[1]), text.size());
    return textResult(text.substring(text.size() - count));
}

DataRef middle(Arguments arguments) {
    // Positions count from 1; a start before the text is its first character.
    const std::uint32_t start = std::max(countOf(arguments[1]), 1U) - 1;
    return textResult(arguments[0]->asText().substring(start, countOf(arguments[2])));
}

/// The place of a match, counted from 1 among those that begin up to `last`; 0 when there are not so many.
std::int64_t placeOf(CaselessSearch search, std::int64_t occurrence, std::uint32_t last = Text::end) {
    for (auto match = search.next(); match && match->start <= last; match = search.next())
        if (--occurrence == 0) return std::int64_t{match->start} + 1;
    return 0;
}

std::int64_t matchesUpTo(CaselessSearch search, std::uint32_t last) {
    std::int64_t count = 0;
    for (auto match = search.next(); match && match->start <= last; match = search.next())
        ++count;
    return count;
}

/// Position ( text ; wanted ; start ; occurrence ): 0 when absent, backwards for a negative occurrence.
/// Occurrences may overlap.
DataRef position(Arguments arguments) {
    const std::u16string_view text = arguments[0]->asText().units();
    const std::u16string_view wanted = arguments[1]->asText().units();
    const std::uint32_t start = std::max(countOf(arguments[2]), 1U) - 1;
    const std::int64_t occurrence = whole(arguments[3]);
    if (occurrence > 0) return numberResult(placeOf(CaselessSearch(text, wanted, start), occurrence));
    if (occurrence == 0) return numberResult(0);
    const CaselessSearch search(text, wanted);
    return numberResult(placeOf(search, matchesUpTo(search, start) + 1 + occurrence, start));
}

DataRef patternCount(Arguments arguments) {
    CaselessSearch search(arguments[0]->asText().units(), arguments[1]->asText().units());
    std::int64_t count = 0;
    for (; search.next(); ++count)
        search.skipOverlaps();
    return numberResult(count);
}

/// One search and replacement, exact in case. The replacement brings its own style.
Text substituteOne(const Text& text, const Text& wanted, const Text& replacement) {
    Text result;
    std::uint32_t from = 0;
    for (std::uint32_t found = 0; (found = text.find(wanted, from)) != Text::end;) {
        result.append(text, from, found - from);
        result.append(replacement);
        checkTextSize(result.size());
        from = found + wanted.size();
    }
    result.append(text, from);
    return result;
}

DataRef substitute(Arguments arguments) {
    Text text = arguments[0]->asText();
    for (std::size_t i = 1; i + 1 < arguments.size(); i += 2) {
        text = substituteOne(text, arguments[i]->asText(), arguments[i + 1]->asText());
        Work::chargeText(text.size());
    }
    return textResult(std::move(text));
}

DataRef replace(Arguments arguments) {
    Text text = arguments[0]->asText();
    const std::uint32_t start = std::min(std::max(countOf(arguments[1]), 1U) - 1, text.size());
    text.erase(start, countOf(arguments[2]));
    text.insert(arguments[3]->asText(), start);
    return textResult(std::move(text));
}

DataRef upper(Arguments arguments) { return textResult(arguments[0]->asText().withCase(Text::Case::upper)); }
DataRef lower(Arguments arguments) { return textResult(arguments[0]->asText().withCase(Text::Case::lower)); }

/// The first letter of each word in upper case unless a digit is before it, all others in lower case.
DataRef proper(Arguments arguments) {
    const Text text = arguments[0]->asText().withCase(Text::Case::lower);
    Text result;
    std::uint32_t from = 0;
    for (const Piece& word : wordsOf(text.units())) {
        UChar32 point = 0;
        std::uint32_t at = word.start, next = at;
        do {
            at = next;
            U16_NEXT(text.units().data(), next, text.size(), point);
        } while (next < word.start + word.size && u_isalnum(point) == 0);
        result.append(text, from, at - from);
        result.append(unitsOf(u_totitle(point)), text.formattingAt(at));
        from = next;
    }
    result.append(text, from);
    return textResult(std::move(result));
}

/// The characters of a text that occur in another one.
DataRef filter(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::vector<UChar32> allowed = [&] {
        std::vector<UChar32> points = charactersOf(arguments[1]->asText().units());
        std::sort(points.begin(), points.end());
        return points;
    }();
    Text result;
    std::uint32_t from = 0, at = 0;
    while (at < text.size()) {
        const std::uint32_t start = at;
        UChar32 point = 0;
        U16_NEXT(text.units().data(), at, text.size(), point);
        if (std::binary_search(allowed.begin(), allowed.end(), point)) continue;
        result.append(text, from, start - from);
        from = at;
    }
    result.append(text, from);
    return textResult(std::move(result));
}

DataRef exact(Arguments arguments) {
    const Data &left = *arguments[0], &right = *arguments[1];
    const bool areContainers =
        left.nativeType() == DataType::binary && right.nativeType() == DataType::binary;
    return booleanResult(areContainers ? left.asBinary().streams() == right.asBinary().streams()
                                       : left.asText() == right.asText());
}

/// Several characters stand in one number, five digits each, the first in the lowest.
constexpr std::size_t kCodeDigits = 5, kMostCodes = Decimal::maximumIntegerDigits / kCodeDigits;

DataRef character(Arguments arguments) {
    if (arguments[0]->asNumber().sign() < 0) return questionMark();
    std::u16string digits = arguments[0]->asNumber().truncated(0).text();
    std::u16string units;
    while (!digits.empty()) {
        const std::size_t start = digits.size() - std::min(digits.size(), kCodeDigits);
        UChar32 code = 0;
        for (const char16_t digit : digits.substr(start))
            code = code * 10 + (digit - u'0');
        digits.resize(start);
        if (code == 0) continue;
        units += unitsOf(code);
    }
    return textResult(std::move(units));
}

DataRef code(Arguments arguments) {
    const std::u16string_view units = arguments[0]->asText().units();
    if (units.empty()) return emptyResult();
    if (units.size() > kMostCodes) return questionMark();
    std::u16string digits;
    for (const char16_t unit : units) {
        const std::u16string number = Decimal(unit).text();
        digits.insert(0, std::u16string(kCodeDigits - number.size(), u'0') + number);
    }
    return numberResult(Decimal::parse(digits).value_or(Decimal()));
}

struct Escape {
    char16_t unit;
    std::u16string_view text;
};
constexpr std::array kEscapes{Escape{u'"', u"\\\""}, Escape{u'\\', u"\\\\"}, Escape{u'¶', u"\\¶"},
                              Escape{u'\r', u"¶"}};

/// The text as a text constant that stands for it.
DataRef quote(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::u16string_view mark = u"\"";
    Text quoted;
    quoted.append(mark);
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        const auto* escape = std::find_if(kEscapes.begin(), kEscapes.end(),
                                          [&](const Escape& row) { return row.unit == text.units()[i]; });
        if (escape == kEscapes.end())
            quoted.append(text, i, 1);
        else
            quoted.append(escape->text, text.formattingAt(i));
    }
    quoted.append(mark);
    return textResult(std::move(quoted));
}

/// Adds to the last run of digits, whose width leading zeros keep; adds a run to a text without one.
DataRef serialIncrement(Arguments arguments) {
    constexpr std::u16string_view kDigits = u"0123456789";
    Text text = arguments[0]->asText();
    const std::u16string_view units = text.units();
    const std::size_t end = units.find_last_of(kDigits) + 1;
    const std::size_t start = end == 0 ? units.size() : units.find_last_not_of(kDigits, end - 1) + 1;
    const std::size_t width = end == 0 ? 0 : end - start;
    const auto number = width == 0 ? Decimal() : Decimal::parse(units.substr(start, width));
    if (!number) return questionMark();
    const Decimal next = number->plus(arguments[1]->asNumber().truncated(0));
    std::u16string digits = next.text();
    const bool hasZeros = width > 0 && units[start] == u'0';
    if (const std::size_t sign = next.sign() < 0 ? 1 : 0; hasZeros && digits.size() < width + sign)
        digits.insert(sign, width + sign - digits.size(), u'0');
    const auto at = static_cast<std::uint32_t>(start);
    const RunStyle formatting = text.formattingAt(at);
    text.erase(at, static_cast<std::uint32_t>(width));
    text.insert({std::move(digits), formatting}, at);
    return textResult(std::move(text));
}

constexpr std::array rows{
    EagerRow{u"Length", length},
    EagerRow{u"Left", left},
    EagerRow{u"Right", right},
    EagerRow{u"Middle", middle},
    EagerRow{u"Position", position},
    EagerRow{u"PatternCount", patternCount},
    EagerRow{u"Substitute", substitute, 2},
    EagerRow{u"Replace", replace},
    EagerRow{u"Upper", upper},
    EagerRow{u"Lower", lower},
    EagerRow{u"Proper", proper},
    EagerRow{u"Filter", filter},
    EagerRow{u"Exact", exact},
    EagerRow{u"Char", character},
    EagerRow{u"Code", code},
    EagerRow{u"Quote", quote},
    EagerRow{u"SerialIncrement", serialIncrement},
};

} // namespace

void addTextFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
