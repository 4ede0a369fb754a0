#include "host/data/Finding.h"

#include "host/values/Clock.h"
#include "host/values/Formats.h"

#include <algorithm>
#include <array>
#include <map>
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

/// Whether a text is what a pattern with `*`, `@` and `#` stands for; `isOpen` lets more follow.
bool fits(std::u16string_view pattern, std::u16string_view text, bool isOpen) {
    std::vector<bool> reached(text.size() + 1, false);
    reached[0] = true;
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

/// The value that a criterion names, as the field's type; invalid where it names none.
Data valueIn(std::u16string_view text, DataType type) {
    Data value{Text(std::u16string(text))};
    if (text == u"//" && type != DataType::text) {
        value = Data(DateTime::fromMicrosSinceEpoch(clock().localSinceYearOne().count()), DataType::date);
    }
    return value.convert(type) ? value : Data::invalid();
}

std::u16string_view trimmed(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    return first == std::u16string_view::npos ? std::u16string_view()
                                              : text.substr(first, text.find_last_not_of(u' ') + 1 - first);
}

int compare(const Data& left, const Data& right) {
    if (isBefore(left, right)) return -1;
    return isBefore(right, left) ? 1 : 0;
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
        if (const std::size_t dots = text_.find(u"..."); dots != std::u16string::npos)
            return lies(value, trimmed(text_.substr(0, dots)), trimmed(text_.substr(dots + 3)));
        return type_ == DataType::text || type_ == DataType::binary ? isIn(value) : isEqual(value);
    }

private:
    [[nodiscard]] bool stands(const Data& value, const Comparison& row) const {
        const Data bound = valueIn(trimmed(std::u16string_view(text_).substr(row.sign.size())), type_);
        if (!bound.isValid() || bound.isEmpty()) return false;
        const int order = compare(value, bound);
        return order < 0 ? row.isLess : order == 0 ? row.isEqual : row.isGreater;
    }

    [[nodiscard]] bool lies(const Data& value, std::u16string_view first, std::u16string_view last) const {
        const Data low = valueIn(first, type_), high = valueIn(last, type_);
        if (!low.isValid() || !high.isValid()) return false;
        return compare(low, value) <= 0 && compare(value, high) <= 0;
    }

    [[nodiscard]] bool isEqual(const Data& value) const {
        std::u16string_view wanted = text_;
        while (wanted.starts_with(u'='))
            wanted.remove_prefix(1);
        const Data number = valueIn(trimmed(wanted), type_);
        return number.isValid() && !number.isEmpty() && compare(value, number) == 0;
    }

    [[nodiscard]] bool isIn(const Data& value) const {
        const std::u16string content = calc::foldName(value.asText().units());
        if (text_.starts_with(u"=="))
            return fits(trimmed(std::u16string_view(text_).substr(2)), content, false);
        const std::vector<std::u16string> words = wordsOf(content);
        for (std::u16string_view rest = text_; !(rest = trimmed(rest)).empty();) {
            if (rest.front() == u'"') {
                const std::size_t close = std::min(rest.find(u'"', 1), rest.size());
                if (content.find(rest.substr(1, close - 1)) == std::u16string::npos) return false;
                rest.remove_prefix(std::min(close + 1, rest.size()));
                continue;
            }
            const std::size_t end = std::min(rest.find(u' '), rest.size());
            if (!hasWord(rest.substr(0, end), content, words)) return false;
            rest.remove_prefix(end);
        }
        return true;
    }

    static bool hasWord(std::u16string_view wanted, const std::u16string& content,
                        const std::vector<std::u16string>& words) {
        const bool isWhole = wanted.starts_with(u'=');
        if (isWhole) wanted.remove_prefix(1);
        if (wanted.find_first_of(u"*@#") != std::u16string_view::npos && !isWhole)
            return fits(u"*" + std::u16string(wanted), content, true);
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
