#include "host/data/Records.h"

#include "host/sql/Database.h"
#include "host/sql/Store.h"
#include "host/sql/Values.h"
#include "host/values/Formats.h"

#include <algorithm>

namespace host {

namespace {

DataRef idValue(std::int64_t record) { return std::make_shared<const Data>(Decimal(record)); }

bool isMoment(DataType type) {
    return type == DataType::date || type == DataType::time || type == DataType::timestamp;
}

DataRef emptyOf(DataType type) {
    Data empty;
    empty.clear(type);
    return std::make_shared<const Data>(std::move(empty));
}

DataRef invalidValue() {
    Data mark;
    mark.setText(u"?", DataType::invalid);
    return std::make_shared<const Data>(std::move(mark));
}

/// Whether a text is a number and nothing else.
bool isNumber(std::u16string_view text) {
    static constexpr std::u16string_view signs = u"0123456789.-eE+";
    return std::all_of(text.begin(), text.end(), [](char16_t unit) {
        return signs.find(unit) != std::u16string_view::npos || unit == formats().decimalPoint;
    });
}

/// A value of the store as one of the field's type. A number field may hold a text.
DataRef typed(const DataRef& value, DataType type) {
    if (value->isEmpty()) return emptyOf(type);
    if (value->nativeType() == type) return value;
    if (isMoment(type) || type == DataType::binary) return invalidValue();
    Data result;
    result.setText(value->asText(), type);
    return std::make_shared<const Data>(std::move(result));
}

/// Whether the store keeps all of a value.
bool isPlain(const Data& value) {
    if (!value.isValid()) return false;
    switch (value.nativeType()) {
    case DataType::text: return value.asText().isPlain();
    case DataType::number: return isStoredWhole(value.asNumber());
    case DataType::binary: return value.isEmpty();
    default: return true;
    }
}

/// Whether the store still has what it keeps of a value.
bool isKept(const Data& stored, const Data& value) {
    if (value.nativeType() == DataType::number)
        return stored.asNumber().toDouble() == value.asNumber().toDouble();
    return value.nativeType() == DataType::text && stored.asText() == value.asText();
}

/// The number with the step added to its last run of digits, leading zeros kept.
std::u16string nextOf(const std::u16string& serial, std::int64_t step) {
    constexpr std::u16string_view digits = u"0123456789";
    const std::size_t last = serial.find_last_of(digits);
    const auto written = [](const Decimal& number) { return number.text(); };
    if (last == std::u16string::npos) return serial + written(step);
    const std::size_t before = serial.find_last_not_of(digits, last);
    const std::size_t first = before == std::u16string::npos ? 0 : before + 1;
    const auto number = Decimal::parse(serial.substr(first, last + 1 - first));
    std::u16string next = written(number.value_or(0).plus(step));
    if (next.size() < last + 1 - first) next.insert(0, last + 1 - first - next.size(), u'0');
    return serial.substr(0, first) + next + serial.substr(last + 1);
}

} // namespace

DataRef fitted(const DataRef& value, DataType type) {
    if (!value->isValid() && type != DataType::binary) return std::make_shared<const Data>(value->asText());
    if (!value->isValid() || value->isEmpty()) return emptyOf(type);
    if (value->nativeType() == type) return value;
    if (type == DataType::number && value->nativeType() == DataType::text &&
        !isNumber(value->asText().units()))
        return value;
    Data converted = *value;
    return converted.convert(type) ? std::make_shared<const Data>(std::move(converted)) : value;
}

bool isBefore(const Data& left, const Data& right) {
    if (left.isEmpty() || right.isEmpty()) return left.isEmpty() && !right.isEmpty();
    if (left.nativeType() == DataType::text || right.nativeType() == DataType::text)
        return formats().compare(left.asText().units(), right.asText().units()) < 0;
    return left.asNumber() < right.asNumber();
}

Records::Records(Database& database, Parse parse, Evaluate evaluate)
    : database_(database), parse_(std::move(parse)), evaluate_(std::move(evaluate)) {}

const Schema& Records::schema() const { return database_.schema(); }

/// Places mean something else in another schema.
void Records::notice() {
    finishLoading();
    if (version_ == schema().version) return;
    version_ = schema().version;
    indexes_.clear();
    expressions_.clear();
    beside_.clear();
    besideBefore_.clear();
    open_.clear();
    unchecked_.clear();
    for (std::uint64_t& number : membership_)
        ++number;
}

std::uint64_t Records::membership(std::size_t table) const {
    return (table < membership_.size() ? membership_[table] : 0) + version();
}

const Field* Records::field(std::size_t table, std::size_t field) const {
    const bool isKnown = table < schema().tables.size() && field < schema().tables[table].fields.size();
    return isKnown ? &schema().tables[table].fields[field] : nullptr;
}

const Field* Records::field(calc::FieldPlace place) const {
    const bool isKnown = place.occurrence < schema().occurrences.size();
    return isKnown ? field(schema().occurrences[place.occurrence].table, place.field) : nullptr;
}

std::vector<std::int64_t> Records::all(std::size_t table) {
    std::vector<std::int64_t> records;
    if (table >= schema().tables.size() || schema().tables[table].keys == RecordKeys::none) return records;
    const calc::SqlAnswer answer = database_.query(
        "SELECT rowid FROM " + quotedName(schema().tables[table].name) + " ORDER BY rowid", {});
    records.reserve(answer.rows.size());
    for (const DataVect& row : answer.rows)
        records.push_back(row[0]->asNumber().toInt64());
    return records;
}

std::size_t Records::count(std::size_t table) {
    if (table >= schema().tables.size()) return 0;
    const calc::SqlAnswer answer =
        database_.query("SELECT COUNT(*) FROM " + quotedName(schema().tables[table].name), {});
    return answer.rows.empty() ? 0 : static_cast<std::size_t>(answer.rows[0][0]->asNumber().toInt64());
}

bool Records::exists(RecordPlace place) {
    if (place.record == 0 || place.table >= schema().tables.size() ||
        schema().tables[place.table].keys == RecordKeys::none)
        return false;
    const calc::SqlAnswer answer =
        database_.query("SELECT 1 FROM " + quotedName(schema().tables[place.table].name) + " WHERE rowid = ?",
                        {idValue(place.record)});
    return !answer.rows.empty();
}

std::int64_t Records::modifications(RecordPlace place) {
    if (place.table >= schema().tables.size() || schema().tables[place.table].keys != RecordKeys::idAndCount)
        return 0;
    const calc::SqlAnswer answer =
        database_.query("SELECT kestrel_modifications FROM " + quotedName(schema().tables[place.table].name) +
                            " WHERE rowid = ?",
                        {idValue(place.record)});
    return answer.rows.empty() ? 0 : answer.rows[0][0]->asNumber().toInt64();
}

DataRef Records::failed(int code) {
    failure_ = code;
    return invalidValue();
}

DataRef Records::value(RecordPlace place, std::size_t number, int repetition) {
    notice();
    const Field* known = field(place.table, number);
    if (known == nullptr) return failed(calc::error::missingField);
    if (repetition < 1 || repetition > known->repetitions) return failed(calc::error::missingRepetition);
    const Cell cell{place, number, repetition};
    switch (known->kind) {
    case FieldKind::global: {
        const auto found = globals_.find(
            {calc::foldName(schema().tables[place.table].name + u"::" + known->name), repetition});
        return found == globals_.end() ? emptyOf(known->type) : found->second;
    }
    case FieldKind::summary: return summary(place.table, number, all(place.table));
    case FieldKind::unstoredCalculation: return calculated(cell);
    case FieldKind::storedCalculation:
        if (renewing_.contains(cell)) return calculated(cell);
        [[fallthrough]];
    case FieldKind::normal: break;
    }
    return place.record == 0 ? emptyOf(known->type) : stored(cell);
}

DataRef Records::stored(const Cell& cell) {
    if (const auto found = beside_.find(cell); found != beside_.end()) return found->second;
    const BaseTable& table = schema().tables[cell.place.table];
    const Field& known = table.fields[cell.field];
    if (table.keys == RecordKeys::none) return emptyOf(known.type);
    const calc::SqlAnswer answer = database_.query("SELECT " + columnName(known, cell.repetition) + " FROM " +
                                                       quotedName(table.name) + " WHERE rowid = ?",
                                                   {idValue(cell.place.record)});
    return answer.rows.empty() ? emptyOf(known.type) : typed(answer.rows[0][0], known.type);
}

void Records::writeColumn(const Cell& cell, const DataRef& value) {
    const BaseTable& table = schema().tables[cell.place.table];
    const Field& known = table.fields[cell.field];
    database_.query("UPDATE " + quotedName(table.name) + " SET " + columnName(known, cell.repetition) +
                        " = ? WHERE rowid = ?",
                    {value, idValue(cell.place.record)});
    keepBeside(cell, isPlain(*value) ? nullptr : value);
    reindex(cell.place, cell.field);
}

/// Null for nothing. A transaction that is taken back needs the value that was there before.
void Records::keepBeside(const Cell& cell, const DataRef& value) {
    const auto found = beside_.find(cell);
    if (found == beside_.end() && !value) return;
    if (inTransaction_) besideBefore_.try_emplace(cell, found == beside_.end() ? nullptr : found->second);
    if (value)
        beside_[cell] = value;
    else
        beside_.erase(found);
}

void Records::store(const Cell& cell, const DataRef& value) {
    if (const auto open = open_.find(cell.place); open != open_.end() && !open->second.isNew)
        open->second.before.try_emplace({cell.field, cell.repetition}, stored(cell));
    writeColumn(cell, value);
}

int Records::set(RecordPlace place, std::size_t number, int repetition, const DataRef& value) {
    notice();
    const Field* known = field(place.table, number);
    if (known == nullptr) return calc::error::missingField;
    if (!known->isWritable()) return calc::error::notWritable;
    if (repetition < 1 || repetition > known->repetitions) return calc::error::missingRepetition;
    const DataRef kept = fitted(value, known->type);
    if (known->kind == FieldKind::global) {
        globals_[{calc::foldName(schema().tables[place.table].name + u"::" + known->name), repetition}] =
            kept;
        return calc::error::none;
    }
    if (!exists(place)) return calc::error::missingRecord;
    open_[place].written.insert(number);
    unchecked_.insert(place);
    store({place, number, repetition}, kept);
    renew(place, {number}, false);
    return calc::error::none;
}

std::int64_t Records::create(std::size_t table) {
    notice();
    if (table >= schema().tables.size() || schema().tables[table].keys == RecordKeys::none) return 0;
    const auto answer =
        database_.query("INSERT INTO " + quotedName(schema().tables[table].name) + " DEFAULT VALUES", {});
    if (answer.error != calc::error::none) return 0;
    const RecordPlace place{table, database_.lastRecord()};
    open_[place].isNew = true;
    unchecked_.insert(place);
    membership_.resize(std::max(membership_.size(), table + 1));
    ++membership_[table];
    giveSerials(place);
    renew(place, {}, true);
    return place.record;
}

std::int64_t Records::duplicate(RecordPlace place) {
    const std::int64_t made = create(place.table);
    if (made == 0) return 0;
    const RecordPlace copy{place.table, made};
    const std::vector<Field>& fields = schema().tables[place.table].fields;
    for (std::size_t i = 0; i < fields.size(); ++i)
        for (int repetition = 1; repetition <= fields[i].repetitions; ++repetition)
            if (fields[i].kind == FieldKind::normal && !fields[i].nextSerial)
                store({copy, i, repetition}, stored({place, i, repetition}));
    renew(copy, {}, true);
    return made;
}

/// Serial numbers of fields that are empty.
void Records::giveSerials(RecordPlace place) {
    std::vector<Field>& fields = database_.schema().tables[place.table].fields;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Cell cell{place, i, 1};
        const std::optional<std::u16string> serial = fields[i].nextSerial;
        if (!serial || !stored(cell)->isEmpty()) continue;
        fields[i].nextSerial = nextOf(*serial, fields[i].serialStep);
        store(cell, fitted(std::make_shared<const Data>(Text(*serial)), fields[i].type));
    }
}

void Records::removeRow(RecordPlace place) {
    database_.query("DELETE FROM " + quotedName(schema().tables[place.table].name) + " WHERE rowid = ?",
                    {idValue(place.record)});
    forget(place);
}

void Records::forget(RecordPlace place) {
    for (auto& [key, index] : indexes_)
        if (key.first == place.table) index.remove(place.record);
    const auto last = beside_.lower_bound({{place.table, place.record + 1}, 0, 0});
    for (auto cell = beside_.lower_bound({place, 0, 0}); cell != last;) {
        const Cell known = (cell++)->first;
        keepBeside(known, nullptr);
    }
    open_.erase(place);
    unchecked_.erase(place);
    membership_.resize(std::max(membership_.size(), place.table + 1));
    ++membership_[place.table];
}

void Records::remove(RecordPlace place) {
    notice();
    std::vector<RecordPlace> doomed{place};
    while (!doomed.empty()) {
        const RecordPlace next = doomed.back();
        doomed.pop_back();
        if (!exists(next)) continue;
        for (std::size_t i = 0; i < schema().relationships.size(); ++i)
            for (int side = 0; side < 2; ++side) {
                const Relationship& relationship = schema().relationships[i];
                const auto tableOf = [&](int which) {
                    return schema().occurrences[relationship.sides[which].occurrence].table;
                };
                if (!relationship.sides[side].deletes || tableOf(1 - side) != next.table) continue;
                for (const std::int64_t record : step({i, side}, next.record))
                    doomed.push_back({tableOf(side), record});
            }
        removeRow(next);
    }
}

void Records::clear(std::size_t table) {
    notice();
    for (const std::int64_t record : all(table))
        removeRow({table, record});
}

OpenState Records::state(RecordPlace place) const {
    const auto open = open_.find(place);
    if (open == open_.end()) return OpenState::committed;
    return open->second.isNew ? OpenState::isNew : OpenState::changed;
}

std::vector<std::u16string> Records::modifiedFields(RecordPlace place) const {
    std::vector<std::u16string> names;
    if (const auto open = open_.find(place); open != open_.end())
        for (const std::size_t number : open->second.written)
            if (const Field* known = field(place.table, number)) names.push_back(known->name);
    return names;
}

void Records::load(std::size_t table, const std::vector<Column>& columns, const DataVect& values) {
    isLoading_ = true;
    const BaseTable& known = schema().tables[table];
    std::string names, marks;
    DataVect kept;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        names += (i == 0 ? "" : ", ") + columnName(known.fields[columns[i].first], columns[i].second);
        marks += i == 0 ? "?" : ", ?";
        kept.push_back(fitted(values[i], known.fields[columns[i].first].type));
    }
    database_.query("INSERT INTO " + quotedName(known.name) +
                        (columns.empty() ? " DEFAULT VALUES" : " (" + names + ") VALUES (" + marks + ")"),
                    kept);
    const RecordPlace place{table, database_.lastRecord()};
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (!isPlain(*kept[i])) beside_[{place, columns[i].first, columns[i].second}] = kept[i];
}

void Records::finishLoading() {
    if (!std::exchange(isLoading_, false)) return;
    for (std::size_t table = 0; table < schema().tables.size(); ++table) {
        const std::vector<Field>& fields = schema().tables[table].fields;
        const bool stores = std::any_of(fields.begin(), fields.end(), [](const Field& known) {
            return known.kind == FieldKind::storedCalculation;
        });
        if (!stores) continue;
        for (const std::int64_t record : all(table))
            renew({table, record}, {}, true);
    }
}

void Records::changed(RecordPlace place, Change change) {
    notice();
    if (change == Change::deleted) return forget(place);
    for (auto& [key, index] : indexes_)
        if (key.first == place.table) reindex(place, key.second);
    const auto first = beside_.lower_bound({place, 0, 0});
    for (auto cell = first; cell != beside_.end() && cell->first.place == place;) {
        const auto [known, kept] = *cell++;
        keepBeside(known, nullptr);
        if (isKept(*stored(known), *kept)) keepBeside(known, kept);
    }
    if (change == Change::inserted) {
        membership_.resize(std::max(membership_.size(), place.table + 1));
        ++membership_[place.table];
        giveSerials(place);
        return renew(place, {}, true);
    }
    std::set<std::size_t> fields;
    for (std::size_t i = 0; i < schema().tables[place.table].fields.size(); ++i)
        fields.insert(fields.end(), i);
    renew(place, std::move(fields), false);
}

std::u16string Records::nextSerial(std::size_t table, std::size_t number) const {
    const Field* known = field(table, number);
    return known == nullptr ? std::u16string() : known->nextSerial.value_or(u"");
}

} // namespace host
