#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace host::calc {

namespace {

std::uint32_t countOf(const DataRef& value) {
    return static_cast<std::uint32_t>(std::max<std::int64_t>(whole(value), 0));
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

/// Position ( text ; wanted ; start ; occurrence ): backwards for a negative occurrence, 0 when absent.
DataRef position(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const Text& wanted = arguments[1]->asText();
    std::int64_t occurrence = whole(arguments[3]);
    std::uint32_t at = std::max(countOf(arguments[2]), 1U) - 1;
    const std::uint32_t step = std::max(wanted.size(), 1U);
    const bool forwards = occurrence > 0;
    for (occurrence = std::abs(occurrence); occurrence > 0; --occurrence) {
        const std::uint32_t found =
            forwards ? text.findIgnoringCase(wanted, at) : text.findBackwardIgnoringCase(wanted, at);
        if (found == Text::end) return numberResult(0);
        if (occurrence == 1) return numberResult(std::int64_t{found} + 1);
        if (!forwards && found < step) return numberResult(0);
        at = forwards ? found + step : found - step;
    }
    return numberResult(0);
}

DataRef patternCount(Arguments arguments) {
    const std::u16string text = foldName(arguments[0]->asText().units());
    const std::u16string wanted = foldName(arguments[1]->asText().units());
    std::int64_t count = 0;
    if (!wanted.empty())
        for (std::size_t at = 0; (at = text.find(wanted, at)) != std::u16string::npos; at += wanted.size())
            ++count;
    return numberResult(count);
}

/// One search and replacement; exact in case. What replaces brings its own style.
Text substituteOne(const Text& text, const Text& wanted, const Text& replacement) {
    if (wanted.empty()) return text;
    Text result;
    std::uint32_t from = 0;
    for (;;) {
        const std::uint32_t found = text.find(wanted, from);
        if (found == Text::end) break;
        result.append(text, from, found - from);
        result.append(replacement);
        checkTextSize(result.size());
        from = found + wanted.size();
    }
    result.append(text, from);
    return result;
}

DataRef substitute(Arguments arguments) {
    if (arguments.size() % 2 == 0) throw Error{error::tooFewParameters};
    Text text = arguments[0]->asText();
    for (std::size_t i = 1; i + 1 < arguments.size(); i += 2)
        text = substituteOne(text, arguments[i]->asText(), arguments[i + 1]->asText());
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
DataRef proper(Arguments arguments) { return textResult(arguments[0]->asText().withCase(Text::Case::title)); }

DataRef trim(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::size_t first = text.units().find_first_not_of(u' ');
    if (first == std::u16string_view::npos) return textResult({});
    const std::size_t last = text.units().find_last_not_of(u' ');
    return textResult(
        text.substring(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last - first + 1)));
}

/// TrimAll ( text ; trimSpaces ; trimType ): how many blanks stay in a gap depends on the scripts on both
/// sides.
DataRef trimAll(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const std::u16string_view units = text.units();
    const bool wideToo = arguments[1]->asBoolean();
    const std::int64_t type = std::clamp<std::int64_t>(whole(arguments[2]), 0, 3);
    const auto isBlank = [&](char16_t unit) { return unit == u' ' || (wideToo && unit == u'\u3000'); };
    const auto isRoman = [](char16_t unit) { return unit < 0x2E80; };
    const auto keepsBlank = [&](char16_t before, char16_t after, bool gap) {
        if (type == 3) return false;
        if (isRoman(before) && isRoman(after)) return gap;
        if (isRoman(before) == isRoman(after)) return false;
        return type == 1 || (type == 2 && gap);
    };
    Text result;
    std::uint32_t written = text.size(); // none yet
    bool gap = false;
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        if (isBlank(units[i])) {
            gap = true;
            continue;
        }
        if (written != text.size() && keepsBlank(units[written], units[i], gap))
            result.append(std::u16string_view(u" "), text.lookAt(i));
        result.append(text, i, 1);
        written = i;
        gap = false;
    }
    return textResult(std::move(result));
}

DataRef filter(Arguments arguments) {
    const Text& text = arguments[0]->asText();
    std::u16string allowed(arguments[1]->asText().units());
    std::sort(allowed.begin(), allowed.end());
    Text result;
    std::uint32_t from = 0;
    for (std::uint32_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && std::binary_search(allowed.begin(), allowed.end(), text.units()[i])) continue;
        result.append(text, from, i - from);
        from = i + 1;
    }
    return textResult(std::move(result));
}

DataRef exact(Arguments arguments) { return booleanResult(arguments[0]->asText() == arguments[1]->asText()); }

/// Several characters stand in one number, five digits each, the first in the lowest.
constexpr int codeDigits = 5;
constexpr std::int64_t codeBase = 100'000;

DataRef character(Arguments arguments) {
    std::u16string digits = arguments[0]->asNumber().truncated(0).text();
    if (arguments[0]->asNumber().sign() < 0) return questionMark();
    std::u16string units;
    while (!digits.empty()) {
        const std::size_t start = digits.size() > codeDigits ? digits.size() - codeDigits : 0;
        UChar32 code = 0;
        for (const char16_t digit : digits.substr(start))
            code = code * 10 + (digit - u'0');
        digits.resize(start);
        if (code == 0) continue;
        std::array<char16_t, 2> pair{};
        int size = 0;
        U16_APPEND_UNSAFE(pair.data(), size, code);
        units.append(pair.data(), static_cast<std::size_t>(size));
    }
    return textResult(std::move(units));
}

DataRef code(Arguments arguments) {
    const std::u16string_view units = arguments[0]->asText().units();
    constexpr std::size_t mostCharacters = 40;
    Decimal number, place(1);
    std::size_t at = 0;
    for (std::size_t count = 0; at < units.size() && count < mostCharacters; ++count) {
        UChar32 point = 0;
        U16_NEXT(units.data(), at, units.size(), point);
        number = number.plus(place.times(Decimal(point)));
        place = place.times(Decimal(codeBase));
    }
    if (units.empty()) return textResult({});
    return numberResult(number);
}

DataRef quote(Arguments arguments) {
    std::u16string quoted = u"\"";
    for (const char16_t unit : arguments[0]->asText().units()) {
        if (unit == u'"' || unit == u'\\') quoted += u'\\';
        quoted += unit == u'\r' ? u'¶' : unit;
    }
    return textResult(quoted + u'"');
}

/// Adds to the last group of digits, which keeps its width.
DataRef serialIncrement(Arguments arguments) {
    const std::u16string text(arguments[0]->asText().units());
    const Decimal step = arguments[1]->asNumber().truncated(0);
    const std::size_t last = text.find_last_of(u"0123456789");
    if (last == std::u16string::npos) return textResult(text + step.text());
    const std::size_t before = text.find_last_not_of(u"0123456789", last);
    const std::size_t first = before == std::u16string::npos ? 0 : before + 1;
    const auto number = Decimal::parse(text.substr(first, last + 1 - first));
    if (!number) return questionMark();
    const Decimal next = number->plus(step);
    std::u16string digits = (next.sign() < 0 ? next.negated() : next).text();
    if (const std::size_t width = last + 1 - first; digits.size() < width)
        digits.insert(0, width - digits.size(), u'0');
    return textResult(text.substr(0, first) + digits + text.substr(last + 1));
}

DataRef asText(Arguments arguments) { return textResult(arguments[0]->asText()); }

DataRef asNumber(Arguments arguments) {
    const auto number = arguments[0]->number();
    if (number) return numberResult(*number);
    Data empty;
    empty.setText({}, DataType::number);
    return std::make_shared<const Data>(std::move(empty));
}

template<DataType type>
DataRef asDateTime(Arguments arguments) {
    const auto value = arguments[0]->dateTime(type);
    return value ? std::make_shared<const Data>(*value, type) : questionMark();
}

constexpr std::array rows{
    EagerRow{u"Length", 1, 1, length},
    EagerRow{u"Left", 2, 2, left},
    EagerRow{u"Right", 2, 2, right},
    EagerRow{u"Middle", 3, 3, middle},
    EagerRow{u"Position", 4, 4, position},
    EagerRow{u"PatternCount", 2, 2, patternCount},
    EagerRow{u"Substitute", 3, -1, substitute, 2},
    EagerRow{u"Replace", 4, 4, replace},
    EagerRow{u"Upper", 1, 1, upper},
    EagerRow{u"Lower", 1, 1, lower},
    EagerRow{u"Proper", 1, 1, proper},
    EagerRow{u"Trim", 1, 1, trim},
    EagerRow{u"TrimAll", 3, 3, trimAll},
    EagerRow{u"Filter", 2, 2, filter},
    EagerRow{u"Exact", 2, 2, exact},
    EagerRow{u"Char", 1, 1, character},
    EagerRow{u"Code", 1, 1, code},
    EagerRow{u"Quote", 1, 1, quote},
    EagerRow{u"SerialIncrement", 2, 2, serialIncrement},
    EagerRow{u"GetAsText", 1, 1, asText},
    EagerRow{u"GetAsNumber", 1, 1, asNumber},
    EagerRow{u"GetAsDate", 1, 1, asDateTime<DataType::date>},
    EagerRow{u"GetAsTime", 1, 1, asDateTime<DataType::time>},
    EagerRow{u"GetAsTimestamp", 1, 1, asDateTime<DataType::timestamp>},
};

} // namespace

void addTextFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
