#include "host/data/Finding.h"

#include "host/values/Clock.h"
#include "host/values/Formats.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string>
#include <unicode/uchar.h>
#include <utility>

namespace host {

namespace {

bool isWordPart(char16_t unit) { return u_isalnum(unit) != 0 || unit == u'\'' || unit == u'_'; }

std::vector<std::u16string> wordsOf(std::u16string_view text) {
    std::vector<std::u16string> words;
    bool isInWord = false;
    for (const char16_t unit : text) {
        const bool isPart = isWordPart(unit);
        if (isPart && !isInWord) words.emplace_back();
        if (isPart) words.back() += unit;
        isInWord = isPart;
    }
    return words;
}

/// Whether a pattern with `*`, `@` and `#` stands for the text from a place that is `reached` on; `isOpen`
/// lets more follow.
bool fits(std::u16string_view pattern, std::u16string_view text, bool isOpen, std::vector<bool> reached) {
    for (const char16_t sign : pattern) {
        std::vector<bool> next(text.size() + 1, false);
        for (std::size_t i = 0; i <= text.size(); ++i) {
            if (sign == u'*') {
                next[i] = reached[i] || (i > 0 && next[i - 1]);
            } else if (i < text.size() && reached[i]) {
                const bool isSame =
                    sign == u'@' || sign == text[i] || (sign == u'#' && u_isdigit(text[i]) != 0);
                next[i + 1] = next[i + 1] || isSame;
            }
        }
        reached = std::move(next);
    }
    return isOpen ? std::find(reached.begin(), reached.end(), true) != reached.end() : reached.back();
}

bool fits(std::u16string_view pattern, std::u16string_view text, bool isOpen) {
    std::vector<bool> start(text.size() + 1, false);
    start[0] = true;
    return fits(pattern, text, isOpen, std::move(start));
}

/// Whether a word, or a sign between words, begins at a place of a text.
bool beginsPart(std::u16string_view text, std::size_t place) {
    return place == 0 || place == text.size() || !isWordPart(text[place - 1]) || !isWordPart(text[place]);
}

std::vector<bool> partStarts(std::u16string_view text) {
    std::vector<bool> starts(text.size() + 1);
    for (std::size_t place = 0; place < starts.size(); ++place)
        starts[place] = beginsPart(text, place);
    return starts;
}

constexpr std::u16string_view kDigits = u"0123456789";

/// A number of at most four digits.
std::optional<int> wholeIn(std::u16string_view text) {
    constexpr std::size_t most = 4;
    const bool isNumber =
        !text.empty() && text.size() <= most && text.find_first_not_of(kDigits) == std::u16string_view::npos;
    return isNumber ? std::optional(std::stoi(std::string(text.begin(), text.end()))) : std::nullopt;
}

/// The first and the last value that a criterion names.
struct Span {
    Data first, last;
};

/// The days that a criterion names: today, a day, a month as `2/2024`, or a year of four digits.
std::optional<std::pair<DateTime, DateTime>> daysIn(std::u16string_view text) {
    constexpr int firstYear = 1'000, months = 12;
    if (text == u"//") {
        const DateTime now = DateTime::fromMicrosSinceEpoch(clock().localSinceYearOne().count());
        const DateTime today{.days = now.days, .micros = 0};
        return {{today, today}};
    }
    const std::size_t sign = text.find_first_not_of(kDigits);
    const bool hasMonth = sign != std::u16string_view::npos;
    const auto year = wholeIn(hasMonth ? text.substr(sign + 1) : text),
               month = hasMonth ? wholeIn(text.substr(0, sign)) : std::nullopt;
    if (year && *year >= firstYear && (!hasMonth || (month && *month >= 1 && *month <= months))) {
        const auto first = DateTime::fromDate(*year, month.value_or(1), 1),
                   last = DateTime::fromDate(*year, month.value_or(months) + 1, 0);
        if (first && last) return {{*first, *last}};
    }
    const auto day = DateTime::parseDate(text);
    return day ? std::optional(std::pair(*day, *day)) : std::nullopt;
}

std::optional<Span> spanIn(std::u16string_view text, DataType type) {
    if (type == DataType::date || type == DataType::timestamp)
        if (const auto days = daysIn(text)) {
            const DateTime last{.days = days->second.days, .micros = DateTime::microsPerDay - 1};
            return Span{Data(days->first, type), Data(last, type)};
        }
    Data value{Text(std::u16string(text))};
    if (!value.convert(type) || value.isEmpty()) return std::nullopt;
    return Span{value, value};
}

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    return first == std::u16string_view::npos ? std::u16string_view()
                                              : text.substr(first, text.find_last_not_of(u' ') + 1 - first);
}

struct Comparison {
    std::u16string_view sign;
    bool isLess, isEqual, isGreater;
};
/// Longer signs first.
constexpr std::array comparisons{
    Comparison{u"<=", true, true, false}, Comparison{u">=", false, true, true},
    Comparison{u"≤", true, true, false},  Comparison{u"≥", false, true, true},
    Comparison{u"<", true, false, false}, Comparison{u">", false, false, true},
};

/// One criterion, which values are tried against.
class Test {
public:
    Test(std::u16string_view criterion, DataType type)
        : type_(type), text_(calc::foldName(trimmed(criterion))) {}

    [[nodiscard]] bool findsDuplicates() const { return text_ == u"!"; }

    [[nodiscard]] bool holds(const Data& value) const {
        if (text_ == u"=" || text_ == u"==") return value.isValid() && value.isEmpty();
        if (text_ == u"?") return !value.isValid();
        if (text_ == u"*" || text_ == u"*\"\"") return !value.isEmpty();
        if (value.isEmpty() || !value.isValid()) return false;
        for (const Comparison& row : comparisons)
            if (text_.starts_with(row.sign)) return stands(value, row);
        if (const std::size_t dots = text_.find(u".."); dots != std::u16string::npos) {
            const std::size_t end = std::min(text_.find_first_not_of(u'.', dots), text_.size());
            return lies(value, trimmed(std::u16string_view(text_).substr(0, dots)),
                        trimmed(std::u16string_view(text_).substr(end)));
        }
        return type_ == DataType::text || type_ == DataType::binary ? isIn(value) : isEqual(value);
    }

private:
    [[nodiscard]] bool stands(const Data& value, const Comparison& row) const {
        const auto bound = spanIn(trimmed(std::u16string_view(text_).substr(row.sign.size())), type_);
        if (!bound) return false;
        if (isBefore(value, bound->first)) return row.isLess;
        return isBefore(bound->last, value) ? row.isGreater : row.isEqual;
    }

    [[nodiscard]] bool lies(const Data& value, std::u16string_view first, std::u16string_view last) const {
        const auto low = spanIn(first, type_), high = spanIn(last, type_);
        return low && high && !isBefore(value, low->first) && !isBefore(high->last, value);
    }

    [[nodiscard]] bool isEqual(const Data& value) const {
        std::u16string_view wanted = text_;
        while (wanted.starts_with(u'='))
            wanted.remove_prefix(1);
        const auto span = spanIn(trimmed(wanted), type_);
        return span && !isBefore(value, span->first) && !isBefore(span->last, value);
    }

    [[nodiscard]] bool isIn(const Data& value) const {
        const std::u16string content = calc::foldName(value.asText().units());
        if (text_.starts_with(u"=="))
            return fits(trimmed(std::u16string_view(text_).substr(2)), content, false);
        const std::vector<std::u16string> words = wordsOf(content);
        for (std::u16string_view rest = text_; !(rest = trimmed(rest)).empty();) {
            const bool isWhole = rest.starts_with(u"=\""), isMarked = isWhole || rest.starts_with(u"*\"");
            const std::u16string_view quoted = rest.substr(isMarked ? 1 : 0);
            if (quoted.front() == u'"') {
                const std::size_t close = std::min(quoted.find(u'"', 1), quoted.size());
                if (!hasPhrase(quoted.substr(1, close - 1), content, isWhole)) return false;
                rest = quoted.substr(std::min(close + 1, quoted.size()));
                continue;
            }
            const std::size_t end = std::min(rest.find(u' '), rest.size());
            if (!hasWord(rest.substr(0, end), content, words)) return false;
            rest.remove_prefix(end);
        }
        return true;
    }

    static bool hasPhrase(std::u16string_view phrase, const std::u16string& content, bool isWhole) {
        std::size_t at = content.find(phrase);
        while (isWhole && at != std::u16string::npos &&
               !(beginsPart(content, at) && beginsPart(content, at + phrase.size())))
            at = content.find(phrase, at + 1);
        return at != std::u16string::npos;
    }

    static bool hasWord(std::u16string_view wanted, const std::u16string& content,
                        const std::vector<std::u16string>& words) {
        const bool isWhole = wanted.starts_with(u'=');
        if (isWhole) wanted.remove_prefix(1);
        if (wanted.find_first_of(u"*@#") != std::u16string_view::npos && !isWhole)
            return fits(wanted, content, true, partStarts(content));
        if (std::all_of(wanted.begin(), wanted.end(), isWordPart) || isWhole)
            return std::any_of(words.begin(), words.end(),
                               [&](const std::u16string& word) { return fits(wanted, word, !isWhole); });
        // Signs divide words, in the field as in the criterion.
        const std::vector<std::u16string> parts = wordsOf(wanted);
        return std::all_of(parts.begin(), parts.end(), [&](const std::u16string& part) {
            return std::any_of(words.begin(), words.end(),
                               [&](const std::u16string& word) { return word.starts_with(part); });
        });
    }

    DataType type_;
    std::u16string text_; ///< folded
};

/// The values of a criterion's field in a record, or in all related ones.
DataVect valuesFor(Records& records, std::size_t occurrence, std::int64_t record,
                   const FindRequest::Criterion& criterion) {
    const std::size_t there = criterion.place.occurrence;
    const std::size_t table = records.schema().occurrences[there].table;
    std::vector<std::int64_t> sources{record};
    if (there != occurrence)
        sources = records.related(occurrence, record, there).value_or(std::vector<std::int64_t>());
    DataVect values;
    for (const std::int64_t source : sources)
        values.push_back(records.value({table, source}, criterion.place.field, criterion.repetition));
    return values;
}

std::vector<std::int64_t> meeting(Records& records, std::size_t occurrence,
                                  const FindRequest::Criterion& criterion,
                                  const std::vector<std::int64_t>& candidates) {
    const Field& field = records.schema().tableOf(criterion.place.occurrence).fields[criterion.place.field];
    const Test test(criterion.text, field.type);
    std::vector<std::int64_t> met;
    std::map<std::u16string, std::vector<std::int64_t>> byValue;
    for (const std::int64_t record : candidates) {
        const DataVect values = valuesFor(records, occurrence, record, criterion);
        if (test.findsDuplicates()) {
            for (const DataRef& value : values)
                if (!value->isEmpty()) byValue[calc::foldName(value->asText().units())].push_back(record);
        } else if (std::any_of(values.begin(), values.end(),
                               [&](const DataRef& value) { return test.holds(*value); })) {
            met.push_back(record);
        }
    }
    for (const auto& [value, owners] : byValue)
        if (owners.size() > 1) met.insert(met.end(), owners.begin(), owners.end());
    return met;
}

} // namespace

std::set<std::int64_t> findRecords(Records& records, std::size_t occurrence,
                                   const std::vector<FindRequest>& requests,
                                   const std::vector<std::int64_t>& candidates) {
    std::set<std::int64_t> found;
    // Omitting alone takes records out of all.
    if (!requests.empty() && requests.front().omits) found.insert(candidates.begin(), candidates.end());
    for (const FindRequest& request : requests) {
        if (request.criteria.empty()) continue;
        std::vector<std::int64_t> met = candidates;
        for (const FindRequest::Criterion& criterion : request.criteria)
            met = meeting(records, occurrence, criterion, met);
        for (const std::int64_t record : met) {
            if (request.omits)
                found.erase(record);
            else
                found.insert(record);
        }
    }
    return found;
}

} // namespace host
