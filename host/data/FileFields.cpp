#include "host/data/FileFields.h"

#include <algorithm>

namespace host {

namespace {

DataRef emptyValue() { return std::make_shared<const Data>(); }

} // namespace

std::optional<std::size_t> FileFields::occurrenceOf(Scope scope) const {
    return scope == nullptr ? position_.occurrence() : scope->occurrence;
}

std::int64_t FileFields::recordOf(Scope scope) {
    return scope == nullptr ? position_.record() : scope->record;
}

std::size_t FileFields::tableOf(calc::FieldPlace place) const {
    return records_.schema().occurrences[place.occurrence].table;
}

std::uint64_t FileFields::names(Scope scope) const {
    constexpr unsigned bits = 24;
    return (records_.version() << bits) + occurrenceOf(scope).value_or(0);
}

calc::FieldContext::Found FileFields::find(Scope scope, std::u16string_view occurrence,
                                           std::u16string_view field) const {
    const Schema& schema = records_.schema();
    const auto in = occurrence.empty() ? occurrenceOf(scope) : schema.occurrence(occurrence);
    if (!in || *in >= schema.occurrences.size()) return {.error = calc::error::missingField};
    const auto place = schema.field(*in, field);
    if (!place) return {.error = calc::error::missingField};
    return {.place = {static_cast<std::uint32_t>(*in), static_cast<std::uint32_t>(*place)}};
}

void FileFields::eachName(const std::function<void(std::u16string_view)>& visit) const {
    for (const Occurrence& occurrence : records_.schema().occurrences)
        for (const Field& field : records_.schema().tables[occurrence.table].fields)
            visit(occurrence.name + u"::" + field.name);
}

std::u16string FileFields::nameOf(calc::FieldPlace place) const {
    const Field* field = records_.field(place);
    return field == nullptr ? std::u16string()
                            : records_.schema().occurrences[place.occurrence].name + u"::" + field->name;
}

std::u16string FileFields::tableNameOf(calc::FieldPlace place) const {
    return records_.field(place) == nullptr ? std::u16string()
                                            : records_.schema().tables[tableOf(place)].name;
}

int FileFields::repetitions(calc::FieldPlace place) const {
    const Field* field = records_.field(place);
    return field == nullptr ? 1 : field->repetitions;
}

bool FileFields::isLocal(Scope scope, calc::FieldPlace place) const {
    return occurrenceOf(scope) == place.occurrence || records_.field(place)->kind == FieldKind::global;
}

std::optional<std::vector<std::int64_t>> FileFields::related(Scope scope, calc::FieldPlace place) {
    const auto from = occurrenceOf(scope);
    return from ? records_.related(*from, recordOf(scope), place.occurrence) : std::nullopt;
}

DataRef FileFields::valueIn(calc::FieldPlace place, std::int64_t record, int repetition) {
    return records_.value({tableOf(place), record}, place.field, repetition);
}

DataRef FileFields::valueAmong(const std::vector<std::int64_t>& records, std::int64_t record,
                               calc::FieldPlace place, int repetition) {
    const Field* field = records_.field(place);
    if (field == nullptr) return records_.failed(calc::error::missingField);
    if (field->kind == FieldKind::summary) return records_.summary(tableOf(place), place.field, records);
    return valueIn(place, record, repetition);
}

DataRef FileFields::value(Scope scope, calc::FieldPlace place, int repetition) {
    const Field* field = records_.field(place);
    if (field == nullptr) return records_.failed(calc::error::missingField);
    const bool isSummary = field->kind == FieldKind::summary; // a calculation may change the schema
    if (scope == nullptr && position_.mode() == Position::Mode::find)
        return position_.criterion(place, repetition);
    if (isLocal(scope, place)) {
        if (!isSummary) return valueIn(place, recordOf(scope), repetition);
        // A calculation may change the found set.
        const std::vector<std::int64_t> found = position_.foundSet(place.occurrence).records;
        return records_.summary(tableOf(place), place.field, found);
    }
    const auto sources = related(scope, place);
    if (!sources) return records_.failed(calc::error::missingRelatedTable);
    if (sources->empty() && !isSummary) return emptyValue();
    return valueAmong(*sources, sources->empty() ? 0 : sources->front(), place, repetition);
}

DataVect FileFields::values(Scope scope, calc::FieldPlace place, int repetition) {
    const Field* field = records_.field(place);
    if (field == nullptr || field->kind == FieldKind::summary) return {value(scope, place, 1)};
    const int first = std::max(repetition, 1), last = repetition == 0 ? field->repetitions : repetition;
    std::vector<std::int64_t> sources{recordOf(scope)};
    if (!isLocal(scope, place)) {
        const auto there = related(scope, place);
        if (!there) return {records_.failed(calc::error::missingRelatedTable)};
        sources = *there;
    }
    DataVect values;
    for (const std::int64_t source : sources)
        for (int each = first; each <= last; ++each)
            values.push_back(valueIn(place, source, each));
    return values;
}

DataRef FileFields::nthValue(Scope scope, calc::FieldPlace place, int repetition, std::int64_t n) {
    const Field* field = records_.field(place);
    if (field == nullptr) return nullptr;
    if (field->kind == FieldKind::global) return value(scope, place, repetition);
    const auto sources = isLocal(scope, place) ? position_.foundSet(place.occurrence).records
                                               : related(scope, place).value_or(std::vector<std::int64_t>());
    if (n < 1 || std::cmp_greater(n, sources.size())) return nullptr;
    return valueAmong(sources, sources[static_cast<std::size_t>(n - 1)], place, repetition);
}

DataRef FileFields::lookup(Scope scope, calc::FieldPlace place, int repetition) {
    if (records_.field(place) == nullptr || isLocal(scope, place)) return value(scope, place, repetition);
    const auto sources = related(scope, place);
    return sources && !sources->empty() ? valueAmong(*sources, sources->front(), place, repetition) : nullptr;
}

DataRef FileFields::lookupNext(Scope scope, calc::FieldPlace place, int repetition, bool isHigher) {
    if (DataRef found = lookup(scope, place, repetition)) return found;
    const std::int64_t next =
        records_.nextKey(occurrenceOf(scope).value_or(0), recordOf(scope), place.occurrence, isHigher);
    return next == 0 ? nullptr : valueAmong({next}, next, place, repetition);
}

/// The found set must be sorted by the break field. The group reaches as far as that field, and those that it
/// is sorted by before, have the current record's values.
DataRef FileFields::summary(Scope scope, calc::FieldPlace summaryField, calc::FieldPlace breakField) {
    const Field* field = records_.field(summaryField);
    if (field == nullptr || field->kind != FieldKind::summary)
        throw calc::Error{calc::error::summaryExpected};
    const std::size_t table = tableOf(summaryField);
    const FoundSet set = position_.foundSet(summaryField.occurrence); // a calculation may change it
    if (summaryField == breakField) return records_.summary(table, summaryField.field, set.records);
    if (records_.field(breakField) == nullptr || breakField.occurrence != summaryField.occurrence ||
        records_.field(breakField)->kind == FieldKind::summary)
        throw calc::Error{calc::error::wrongBreakField};
    const auto key = std::find_if(set.sortedBy.begin(), set.sortedBy.end(),
                                  [&](const SortKey& sorted) { return sorted.place == breakField; });
    const auto here = std::find(set.records.begin(), set.records.end(), recordOf(scope));
    if (key == set.sortedBy.end() || here == set.records.end()) return emptyValue();
    const std::vector<SortKey> keys(set.sortedBy.begin(), key + 1);
    const auto sortValues = [&](std::int64_t record) {
        DataVect values;
        for (const SortKey& sorted : keys)
            values.push_back(position_.sortValue(breakField.occurrence, record, sorted.place));
        return values;
    };
    const auto areSame = [](const DataRef& left, const DataRef& right) {
        return !isBefore(*left, *right) && !isBefore(*right, *left);
    };
    const DataVect mine = sortValues(*here);
    std::vector<std::int64_t> group;
    std::copy_if(set.records.begin(), set.records.end(), std::back_inserter(group),
                 [&](std::int64_t record) { return std::ranges::equal(mine, sortValues(record), areSame); });
    return records_.summary(table, summaryField.field, group);
}

} // namespace host
