#include "host/data/Records.h"

#include <algorithm>
#include <optional>

/// Checks of fields before their records are committed.

namespace host {

namespace {

int typeCode(DataType type) {
    if (type == DataType::number) return calc::error::wrongNumber;
    return type == DataType::time ? calc::error::wrongTime : calc::error::wrongDate;
}

/// A text in a field of another type is one that could not be read as such.
bool isOfType(const DataRef& value, DataType type) {
    if (!value->isValid()) return false;
    return type != DataType::number ||
           fitted(std::make_shared<const Data>(value->asText()), type)->nativeType() == type;
}

bool isOutside(const Validation& rules, const Data& value) {
    if (!rules.least) return false;
    return isBefore(value, *rules.least) || (!rules.most->isEmpty() && isBefore(*rules.most, value));
}

} // namespace

/// Whether another record has a key of the value.
bool Records::isTaken(const Cell& cell, const Data& value) {
    const DataType type = schema().tables[cell.place.table].fields[cell.field].type;
    std::set<std::int64_t> owners;
    for (const Key& key : keysOf(value, type))
        index(cell.place.table, cell.field).find(key, KeyComparison::equal, owners);
    owners.erase(cell.place.record);
    return !owners.empty();
}

bool Records::isListed(std::u16string_view listName, const Data& value) {
    const auto place = schema().valueList(listName);
    if (!place) return false;
    const ValueList& list = schema().valueLists[*place];
    const std::u16string wanted = calc::foldName(value.asText().units());
    const std::optional<std::size_t> occurrence = list.occurrence;
    if (!occurrence)
        return std::any_of(list.values.begin(), list.values.end(),
                           [&](const std::u16string& known) { return calc::foldName(known) == wanted; });
    const std::size_t table = schema().occurrences[*occurrence].table, number = list.field;
    const Field& field = schema().tables[table].fields[number];
    if (!field.hasColumns()) {
        const std::vector<std::int64_t> records = all(table);
        return std::any_of(records.begin(), records.end(), [&](std::int64_t record) {
            return calc::foldName(this->value({table, record}, number, 1)->asText().units()) == wanted;
        });
    }
    std::set<std::int64_t> owners;
    for (const Key& key : keysOf(value, field.type))
        index(table, number).find(key, KeyComparison::equal, owners);
    return !owners.empty();
}

bool Records::isTrue(const Cell& cell, const std::u16string& calculation) {
    const calc::RecordScope scope = scopeOf(cell);
    const calc::Parsed parsed = parse_(calculation, scope);
    if (!parsed.expression) return false;
    const calc::Result result = evaluate_(*parsed.expression, scope);
    return result.error == calc::error::none && result.value->asBoolean();
}

int Records::violation(const Cell& cell) {
    const Field of = schema().tables[cell.place.table].fields[cell.field]; // a calculation may change it
    const Validation& rules = of.validation;
    const DataRef value = stored(cell);
    if (value->isEmpty() && value->isValid())
        return rules.isRequired && cell.repetition == 1 ? calc::error::valueRequired : calc::error::none;
    if (rules.isStrict && !isOfType(value, of.type)) return typeCode(of.type);
    if (isOutside(rules, *value)) return calc::error::outsideRange;
    if (rules.isUnique && isTaken(cell, *value)) return calc::error::notUnique;
    if (!rules.valueList.empty() && !isListed(rules.valueList, *value)) return calc::error::notListed;
    if (!rules.calculation.empty() && !isTrue(cell, rules.calculation)) return calc::error::validationFailed;
    const bool isTooLong = rules.longest > 0 && value->asText().size() > rules.longest;
    return isTooLong ? calc::error::tooLong : calc::error::none;
}

/// Checks all fields of a new record, and of another one those that were written since the last commit.
int Records::violation(const RecordPlace& place, const OpenRecord& open) {
    const std::vector<Field> fields = schema().tables[place.table].fields;
    const std::uint64_t version = schema().version;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!fields[i].validation.isAny() || (!open.isNew && !open.written.contains(i))) continue;
        for (int repetition = 1; repetition <= fields[i].repetitions; ++repetition) {
            if (const int code = violation({place, i, repetition}); code != calc::error::none) return code;
            // After a change of the tables the places mean other fields.
            if (schema().version != version) return calc::error::none;
        }
    }
    return calc::error::none;
}

int Records::violation() {
    for (notice(); !unchecked_.empty(); notice()) {
        const RecordPlace place = *unchecked_.begin();
        // A calculation may change or delete the record.
        const auto found = open_.find(place);
        const OpenRecord open = found == open_.end() ? OpenRecord() : found->second;
        if (const int code = violation(place, open); code != calc::error::none) return code;
        unchecked_.erase(place);
    }
    return calc::error::none;
}

} // namespace host
