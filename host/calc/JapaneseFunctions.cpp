#include "host/calc/Arguments.h"
#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>
#include <unicode/unorm2.h>
#include <utility>

/// Kana, the widths of characters, and numbers in Japanese. Other characters pass unchanged.

namespace host::calc {

namespace {

/// Characters that stand in for others, code by code.
struct Range {
    char16_t first, last, firstOfOthers;
};
constexpr std::array kToHiragana{Range{u'ァ', u'ヶ', u'ぁ'}, Range{u'ヽ', u'ヾ', u'ゝ'}};
constexpr std::array kToKatakana{Range{u'ぁ', u'ゖ', u'ァ'}, Range{u'ゝ', u'ゞ', u'ヽ'}};
constexpr std::array kToNarrowRoman{Range{u'\uFF01', u'\uFF5E', u'!'}};
constexpr std::array kToWideRoman{Range{u'!', u'~', u'\uFF01'}};

Text replaced(const Text& text, std::span<const Range> ranges) {
    Text result;
    text.forEachRun([&](std::u16string_view units, const RunStyle& formatting) {
        std::u16string changed(units);
        for (char16_t& unit : changed)
            for (const Range& range : ranges)
                if (unit >= range.first && unit <= range.last) {
                    unit = static_cast<char16_t>(range.firstOfOthers + (unit - range.first));
                    break;
                }
        result.append(changed, formatting);
    });
    return result;
}

template<const auto& ranges>
DataRef replacing(Arguments arguments) {
    return textResult(replaced(arguments[0]->asText(), ranges));
}

/// The wide forms of the characters from U+FF61 on.
constexpr std::u16string_view kWideKana = u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタ"
                                          u"チツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワン゛゜";
constexpr char16_t kFirstNarrowKana = u'\uFF61';

/// A mark that changes a syllable's sound: a character of its own beside narrow kana, part of a wide one.
struct SoundMark {
    char16_t narrow, combining;
};
constexpr std::array kSoundMarks{SoundMark{u'\uFF9E', u'\u3099'}, SoundMark{u'\uFF9F', u'\u309A'}};

const UNormalizer2* composition() {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* normalizer = unorm2_getNFCInstance(&status);
    if (U_FAILURE(status)) throw Error{error::unspecific};
    return normalizer;
}

/// The character of a wide kana with a narrow mark; nothing when there is none.
char16_t withMark(char16_t wide, char16_t mark) {
    const auto* row = std::find_if(kSoundMarks.begin(), kSoundMarks.end(),
                                   [mark](const SoundMark& candidate) { return candidate.narrow == mark; });
    if (row == kSoundMarks.end()) return 0;
    return static_cast<char16_t>(std::max(unorm2_composePair(composition(), wide, row->combining), 0));
}

std::u16string widened(std::u16string_view units) {
    std::u16string wide;
    for (std::size_t at = 0; at < units.size(); ++at) {
        const std::size_t index = static_cast<std::size_t>(units[at]) - kFirstNarrowKana;
        if (units[at] < kFirstNarrowKana || index >= kWideKana.size()) {
            wide += units[at];
            continue;
        }
        const char16_t marked = at + 1 < units.size() ? withMark(kWideKana[index], units[at + 1]) : 0;
        wide += marked != 0 ? marked : kWideKana[index];
        if (marked != 0) ++at;
    }
    return wide;
}

/// The narrow form of a wide kana without a mark; the character itself when it has none.
char16_t narrowKana(char16_t wide) {
    const std::size_t index = kWideKana.find(wide);
    return index == std::u16string_view::npos ? wide : static_cast<char16_t>(kFirstNarrowKana + index);
}

std::u16string narrowed(std::u16string_view units) {
    std::u16string narrow;
    for (const char16_t unit : units) {
        std::array<char16_t, 4> parts{};
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t size =
            unit < kWideKana.front()
                ? 0
                : unorm2_getRawDecomposition(composition(), unit, parts.data(), std::ssize(parts), &status);
        const auto* mark = std::find_if(kSoundMarks.begin(), kSoundMarks.end(),
                                        [&](const SoundMark& row) { return row.combining == parts[1]; });
        const char16_t base = size == 2 && mark != kSoundMarks.end() ? narrowKana(parts[0]) : u'\0';
        if (base != u'\0' && base != parts[0])
            narrow += {base, mark->narrow};
        else
            narrow += narrowKana(unit);
    }
    return narrow;
}

Text byRun(const Text& text, std::u16string (*change)(std::u16string_view)) {
    Text result;
    text.forEachRun([&](std::u16string_view units, const RunStyle& formatting) {
        result.append(change(units), formatting);
    });
    return result;
}

DataRef kanaZenkaku(Arguments arguments) { return textResult(byRun(arguments[0]->asText(), widened)); }
DataRef kanaHankaku(Arguments arguments) { return textResult(byRun(arguments[0]->asText(), narrowed)); }
DataRef hiragana(Arguments arguments) {
    return textResult(replaced(byRun(arguments[0]->asText(), widened), kToHiragana));
}

/// The digits by the third parameter of NumToJText: half-width, full-width, kanji, old kanji.
constexpr std::array<std::u16string_view, 4> kDigits{u"0123456789", u"０１２３４５６７８９",
                                                     u"〇一二三四五六七八九", u"零壱弐参四伍六七八九"};
constexpr std::size_t kKanji = 2, kOldKanji = 3;

std::u16string inDigits(std::u16string_view number, std::size_t kind) {
    std::u16string digits(number);
    for (char16_t& unit : digits)
        if (unit >= u'0' && unit <= u'9') unit = kDigits.at(kind)[static_cast<std::size_t>(unit - u'0')];
    return digits;
}

DataRef kanjiNumeral(Arguments arguments) {
    return textResult(byRun(arguments[0]->asText(), [](std::u16string_view units) {
        std::u16string changed(units);
        for (char16_t& unit : changed)
            if (unit >= u'０' && unit <= u'９') unit = static_cast<char16_t>(u'0' + (unit - u'０'));
        return inDigits(changed, kKanji);
    }));
}

std::u16string withCommas(std::u16string_view whole, std::size_t kind) {
    std::u16string text = inDigits(whole, kind);
    for (std::size_t at = text.size(); at > 3;)
        text.insert(at -= 3, 1, u',');
    return text;
}

constexpr std::size_t kGroupDigits = 4;
constexpr std::u16string_view kGroupUnits = u" 万億兆京垓秭穣溝澗正載極";
constexpr std::array<std::u16string_view, 2> kPlaceUnits{u" 十百千", u" 拾百千"};

/// The digits of a group, four at most but in the highest, without zeros before them.
std::u16string groupText(std::u16string_view digits, std::size_t kind, bool withPlaces) {
    digits.remove_prefix(std::min(digits.find_first_not_of(u'0'), digits.size()));
    if (!withPlaces || digits.size() > kGroupDigits) return inDigits(digits, kind);
    std::u16string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const std::size_t place = digits.size() - 1 - i;
        if (digits[i] == u'0') continue;
        // A one before ten, hundred and thousand is left out but in old kanji.
        if (digits[i] != u'1' || place == 0 || kind == kOldKanji) text += inDigits(digits.substr(i, 1), kind);
        if (place > 0) text += kPlaceUnits.at(kind == kOldKanji ? 1 : 0)[place];
    }
    return text;
}

template<bool withPlaces>
std::u16string withUnits(std::u16string_view whole, std::size_t kind) {
    std::u16string text;
    for (std::size_t group = 0; !whole.empty(); ++group) {
        // The highest unit counts all digits that are left.
        const bool isHighest = group + 1 == kGroupUnits.size() || whole.size() <= kGroupDigits;
        const std::size_t start = isHighest ? 0 : whole.size() - kGroupDigits;
        std::u16string part = groupText(whole.substr(start), kind, withPlaces);
        if (group > 0 && !part.empty()) part += kGroupUnits[group];
        text.insert(0, part);
        whole = whole.substr(0, start);
    }
    return text.empty() ? inDigits(u"0", kind) : text;
}

/// The functions by the second parameter of NumToJText.
constexpr std::array kSeparations{inDigits, withCommas, withUnits<false>, withUnits<true>};

/// One of the choices from 0; 0 for any other number.
std::size_t choice(const DataRef& value, std::size_t choices) {
    const std::int64_t number = whole(value);
    return number > 0 && std::cmp_less(number, choices) ? static_cast<std::size_t>(number) : 0;
}

/// NumToJText ( number ; separator ; characterType )
DataRef numToJText(Arguments arguments) {
    const std::optional<Decimal> number = arguments[0]->number();
    if (!number) return emptyResult();
    const std::size_t separator = choice(arguments[1], kSeparations.size());
    const std::size_t kind = choice(arguments[2], kDigits.size());
    const bool isNegative = number->sign() < 0;
    const std::u16string digits = (isNegative ? number->negated() : *number).text();
    const std::size_t point = std::min(digits.find(u'.'), digits.size());
    const std::u16string whole = point == 0 ? u"0" : digits.substr(0, point);
    std::u16string text = isNegative ? u"-" : u"";
    text += kSeparations.at(separator)(whole, kind);
    text += inDigits(digits.substr(point), kind);
    return textResult(std::move(text));
}

constexpr std::array rows{
    EagerRow{u"Hiragana", hiragana},
    EagerRow{u"Katakana", replacing<kToKatakana>},
    EagerRow{u"KanaHankaku", kanaHankaku},
    EagerRow{u"KanaZenkaku", kanaZenkaku},
    EagerRow{u"RomanHankaku", replacing<kToNarrowRoman>},
    EagerRow{u"RomanZenkaku", replacing<kToWideRoman>},
    EagerRow{u"KanjiNumeral", kanjiNumeral},
    EagerRow{u"NumToJText", numToJText},
};

} // namespace

void addJapaneseFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
