#include "host/calc/Aggregates.h"
#include "host/data/Records.h"

#include <algorithm>
#include <array>

/// Fields that are calculated: read, renewed when others change, summed up.

namespace host {

namespace {

/// The most calculations of fields that run inside each other.
constexpr std::size_t kMostCalculations = 50;

struct SummaryFunction {
    SummaryKind kind;
    std::u16string_view function;
};
constexpr std::array summaryFunctions{
    SummaryFunction{SummaryKind::total, u"Sum"},   SummaryFunction{SummaryKind::average, u"Average"},
    SummaryFunction{SummaryKind::count, u"Count"}, SummaryFunction{SummaryKind::minimum, u"Min"},
    SummaryFunction{SummaryKind::maximum, u"Max"}, SummaryFunction{SummaryKind::standardDeviation, u"StDev"},
    SummaryFunction{SummaryKind::list, u"List"},
};

} // namespace

calc::RecordScope Records::scopeOf(const Cell& cell) const {
    calc::RecordScope scope{
        .occurrence = 0, .record = cell.place.record, .repetition = cell.repetition, .self = {}};
    const auto& occurrences = schema().occurrences;
    while (scope.occurrence < occurrences.size() && occurrences[scope.occurrence].table != cell.place.table)
        ++scope.occurrence;
    scope.self = calc::FieldPlace{static_cast<std::uint32_t>(scope.occurrence),
                                  static_cast<std::uint32_t>(cell.field)};
    return scope;
}

/// Null, with the failure, where the calculation cannot be read.
calc::ExpressionRef Records::expression(std::size_t table, std::size_t number,
                                        const calc::RecordScope& scope) {
    const auto known = expressions_.find({table, number});
    if (known != expressions_.end()) return known->second;
    const Field& of = schema().tables[table].fields[number];
    const calc::Parsed parsed = parse_(of.autoEnter.empty() ? of.calculation : of.autoEnter, scope);
    failure_ = parsed.error;
    if (parsed.expression) expressions_[{table, number}] = parsed.expression;
    return parsed.expression;
}

/// The result of a field's calculation; a failure, and a calculation that needs its own result, is "?".
DataRef Records::evaluated(const Cell& cell) {
    const bool isRunning = std::find(calculating_.begin(), calculating_.end(), cell) != calculating_.end();
    if (isRunning || calculating_.size() >= kMostCalculations) return failed(calc::error::ownFormula);
    const calc::RecordScope scope = scopeOf(cell);
    const calc::ExpressionRef parsed = expression(cell.place.table, cell.field, scope);
    if (!parsed) return failed(failure_);
    calculating_.push_back(cell);
    const calc::Result result = evaluate_(*parsed, scope);
    calculating_.pop_back();
    if (result.error != calc::error::none) return failed(result.error);
    if (!result.value->isValid()) failure_ = result.innerError;
    return result.value;
}

DataRef Records::calculated(const Cell& cell) {
    const DataType type = schema().tables[cell.place.table].fields[cell.field].type;
    DataRef value = evaluated(cell);
    if (!value->isValid() || value->isEmpty() || value->nativeType() == type) return value;
    Data converted = *value;
    return converted.convert(type) ? std::make_shared<const Data>(std::move(converted)) : failed(0);
}

bool Records::reads(const Cell& cell, const std::set<std::size_t>& fields) {
    const calc::RecordScope scope = scopeOf(cell);
    const calc::ExpressionRef parsed = expression(cell.place.table, cell.field, scope);
    if (!parsed) return false;
    const std::vector<calc::FieldPlace>& read = calc::fieldsOf(*parsed);
    return std::any_of(read.begin(), read.end(), [&](const calc::FieldPlace& place) {
        return place.occurrence == scope.occurrence && fields.contains(place.field);
    });
}

/// Calculates again what depends on fields of a record: first the automatic values of fields that are empty,
/// then what the record stores.
void Records::renew(RecordPlace place, std::set<std::size_t> changed, bool isAll) {
    const std::vector<Field>& known = schema().tables[place.table].fields;
    if (std::none_of(known.begin(), known.end(), [](const Field& field) {
            return !field.autoEnter.empty() || field.kind == FieldKind::storedCalculation;
        }))
        return;
    const std::vector<Field> fields = known; // a calculation may change the schema
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Cell cell{place, i, 1};
        if (fields[i].autoEnter.empty() || fields[i].kind != FieldKind::normal) continue;
        if ((!isAll && !reads(cell, changed)) || !stored(cell)->isEmpty()) continue;
        const DataRef value = evaluated(cell);
        if (!value->isValid()) continue; // a later change may give a value
        store(cell, fitted(value, fields[i].type));
        changed.insert(i);
    }
    std::set<std::size_t> stale;
    for (std::size_t before = 0; before != stale.size() + 1;) {
        before = stale.size() + 1;
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (fields[i].kind == FieldKind::storedCalculation && !stale.contains(i) &&
                (isAll || reads({place, i, 1}, changed))) {
                stale.insert(i);
                changed.insert(i);
            }
    }
    for (const std::size_t i : stale)
        for (int repetition = 1; repetition <= fields[i].repetitions; ++repetition)
            renewing_.insert({place, i, repetition});
    for (const std::size_t i : stale)
        for (int repetition = 1; repetition <= fields[i].repetitions; ++repetition) {
            const Cell cell{place, i, repetition};
            const DataRef value = calculated(cell);
            renewing_.erase(cell);
            store(cell, value);
        }
    failure_ = calc::error::none;
}

DataRef Records::summary(std::size_t table, std::size_t number, const std::vector<std::int64_t>& records) {
    const Field* of = field(table, number);
    if (of == nullptr) return failed(calc::error::missingField);
    const std::vector<Field>& fields = schema().tables[table].fields;
    const auto summarized = std::find_if(fields.begin(), fields.end(), [&](const Field& known) {
        return calc::foldName(known.name) == calc::foldName(of->summarized);
    });
    if (summarized == fields.end() || summarized->kind == FieldKind::summary)
        return failed(calc::error::missingField);
    const auto row = std::find_if(summaryFunctions.begin(), summaryFunctions.end(),
                                  [&](const SummaryFunction& known) { return known.kind == of->summary; });
    const auto place = static_cast<std::size_t>(summarized - fields.begin());
    const int repetitions = summarized->repetitions; // a calculation may change the schema
    DataVect values;
    for (const std::int64_t record : records)
        for (int repetition = 1; repetition <= repetitions; ++repetition)
            values.push_back(value({table, record}, place, repetition));
    return calc::aggregateNamed(row->function)(values);
}

void Records::reindex(RecordPlace place, std::size_t number) {
    const auto index = indexes_.find({place.table, number});
    if (index == indexes_.end()) return;
    const Field& of = schema().tables[place.table].fields[number];
    std::vector<Key> keys;
    for (int repetition = 1; repetition <= of.repetitions; ++repetition)
        for (Key& key : keysOf(*stored({place, number, repetition}), of.type))
            keys.push_back(std::move(key));
    index->second.put(place.record, std::move(keys));
}

const KeyIndex& Records::index(std::size_t table, std::size_t number) {
    notice();
    const auto [index, isNew] = indexes_.try_emplace({table, number});
    if (isNew)
        for (const std::int64_t record : all(table))
            reindex({table, record}, number);
    return index->second;
}

} // namespace host
