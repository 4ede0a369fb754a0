#include "host/data/Position.h"

#include "host/data/Finding.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace host {

namespace {

using calc::error::none;

/// The place of a record in a found set; nothing where it is not in it.
std::optional<std::size_t> placeIn(const std::vector<std::int64_t>& records, std::int64_t record) {
    const auto found = std::find(records.begin(), records.end(), record);
    if (found == records.end()) return std::nullopt;
    return static_cast<std::size_t>(found - records.begin());
}

/// Puts other records in, and keeps the current one current where it is among them.
void replaceRecords(FoundSet& set, std::vector<std::int64_t> records) {
    const std::int64_t record = set.current < set.records.size() ? set.records[set.current] : 0;
    set.records = std::move(records);
    const std::size_t last = set.records.empty() ? 0 : set.records.size() - 1;
    set.current = placeIn(set.records, record).value_or(std::min(set.current, last));
}

std::vector<std::int64_t> without(const std::vector<std::int64_t>& records,
                                  const std::vector<std::int64_t>& taken) {
    const std::set<std::int64_t> gone(taken.begin(), taken.end());
    std::vector<std::int64_t> left;
    std::copy_if(records.begin(), records.end(), std::back_inserter(left),
                 [&](std::int64_t record) { return !gone.contains(record); });
    return left;
}

} // namespace

Position::Position(Records& records) : records_(records) {
    if (!records_.schema().layouts.empty()) layout_ = 0;
}

std::optional<std::size_t> Position::occurrence() const {
    const auto& layouts = records_.schema().layouts;
    if (!layout_ || *layout_ >= layouts.size()) return std::nullopt;
    return layouts[*layout_].occurrence;
}

std::size_t Position::table() const {
    return records_.schema().occurrences.at(occurrence().value_or(0)).table;
}

/// Records that were deleted since leave the set; new ones join one that has all. A step that makes or
/// deletes one record changes the set itself, because comparing it with all records takes time in proportion
/// to them.
FoundSet& Position::foundSet(std::size_t occurrence) {
    const std::size_t table = records_.schema().occurrences[occurrence].table;
    const auto [place, isNew] = foundSets_.try_emplace(occurrence);
    FoundSet& set = place->second;
    const std::uint64_t now = records_.membership(table);
    if (!isNew && set.version == now) return set;
    set.version = now;
    const std::vector<std::int64_t> all = records_.all(table);
    const std::set<std::int64_t> existing(all.begin(), all.end());
    std::vector<std::int64_t> records = set.records;
    std::erase_if(records, [&](std::int64_t record) { return !existing.contains(record); });
    if (set.isAll) {
        const std::vector<std::int64_t> added = without(all, records);
        set.hasUnsorted = set.hasUnsorted || (!set.sortedBy.empty() && !added.empty());
        records.insert(records.end(), added.begin(), added.end());
    }
    replaceRecords(set, std::move(records));
    return set;
}

FoundSet* Position::current() {
    const auto here = occurrence();
    return here ? &foundSet(*here) : nullptr;
}

std::int64_t Position::record() {
    const FoundSet* set = current();
    return set == nullptr || set->records.empty() ? 0 : set->records[set->current];
}

std::size_t Position::recordNumber() {
    if (mode_ == Mode::find) return request_ + 1;
    const FoundSet* set = current();
    return set == nullptr || set->records.empty() ? 0 : set->current + 1;
}

const std::vector<std::int64_t>& Position::found() {
    static const std::vector<std::int64_t> nothing;
    const FoundSet* set = current();
    return set == nullptr ? nothing : set->records;
}

int Position::goToLayout(std::u16string_view name) {
    const auto layout = records_.schema().layout(name);
    return layout ? goToLayout(*layout) : calc::error::missingLayout;
}

int Position::goToLayout(std::size_t layout) {
    if (layout >= records_.schema().layouts.size()) return calc::error::missingLayout;
    if (const int error = leave(); error != none) return error;
    layout_ = layout;
    return none;
}

int Position::goToRecord(std::int64_t number) {
    const std::size_t count = mode_ == Mode::find ? requests_.size() : found().size();
    if (number < 1 || std::cmp_greater(number, count)) return calc::error::missingRecord;
    const auto place = static_cast<std::size_t>(number - 1);
    if (mode_ == Mode::find) {
        request_ = place;
        return none;
    }
    if (const int error = leave(); error != none) return error;
    // A calculation that checks the record may delete others.
    if (place >= found().size()) return calc::error::missingRecord;
    current()->current = place;
    return none;
}

int Position::goToRecord(Step step) {
    const auto number = static_cast<std::int64_t>(recordNumber());
    switch (step) {
    case Step::first: return goToRecord(1);
    case Step::previous: return goToRecord(number - 1);
    case Step::next: return goToRecord(number + 1);
    case Step::last: break;
    }
    return goToRecord(static_cast<std::int64_t>(mode_ == Mode::find ? requests_.size() : found().size()));
}

/// Takes in a record that was made since the set had the version `before`, and makes it current.
void Position::add(FoundSet& set, std::int64_t made, std::uint64_t before) {
    set.hasUnsorted = !set.sortedBy.empty();
    if (set.version == before && records_.membership(table()) == before + 1) {
        set.version = before + 1;
        set.records.push_back(made);
        set.current = set.records.size() - 1;
        return;
    }
    std::ignore = current(); // takes new records into a set that has all
    if (!placeIn(set.records, made)) set.records.push_back(made);
    set.current = placeIn(set.records, made).value_or(0);
}

int Position::newRecord() {
    if (mode_ == Mode::find) {
        requests_.emplace_back();
        request_ = requests_.size() - 1;
        return none;
    }
    if (!occurrence()) return calc::error::unavailable;
    if (const int error = leave(); error != none) return error;
    FoundSet& set = *current();
    const std::uint64_t before = set.version;
    const std::int64_t made = records_.create(table());
    if (made == 0) return calc::error::unavailable;
    add(set, made, before);
    return none;
}

int Position::duplicateRecord() {
    if (mode_ == Mode::find) {
        requests_.push_back(requests_[request_]);
        request_ = requests_.size() - 1;
        return none;
    }
    const std::int64_t original = record();
    if (original == 0) return calc::error::missingRecord;
    if (const int error = leave(); error != none) return error;
    FoundSet& set = *current();
    const std::uint64_t before = set.version;
    const std::int64_t made = records_.duplicate({table(), original});
    if (made == 0) return calc::error::unavailable;
    add(set, made, before);
    return none;
}

int Position::deleteRecord() {
    if (mode_ == Mode::find) {
        requests_.erase(requests_.begin() + static_cast<std::ptrdiff_t>(request_));
        if (requests_.empty()) requests_.emplace_back();
        request_ = std::min(request_, requests_.size() - 1);
        return none;
    }
    const std::int64_t doomed = record();
    if (doomed == 0) return calc::error::missingRecord;
    FoundSet& set = *current();
    const std::uint64_t before = set.version;
    records_.remove({table(), doomed});
    if (set.version != before || records_.membership(table()) != before + 1) return none;
    set.version = before + 1;
    set.records.erase(set.records.begin() + static_cast<std::ptrdiff_t>(set.current));
    if (set.current == set.records.size() && set.current > 0) --set.current;
    return none;
}

int Position::deleteAllRecords() {
    if (mode_ == Mode::find) return calc::error::unavailable;
    const std::vector<std::int64_t> doomed = found();
    if (doomed.empty()) return calc::error::missingRecord;
    for (const std::int64_t record : doomed)
        records_.remove({table(), record});
    return none;
}

int Position::truncateTable(std::u16string_view name) {
    const auto occurrence = records_.schema().occurrence(name);
    if (!occurrence) return calc::error::missingTable;
    if (transaction_) return calc::error::unavailable;
    if (const int error = leave(); error != none) return error;
    records_.clear(records_.schema().occurrences[*occurrence].table);
    return none;
}

/// The record whose field is set; 0 with a reason. A global needs none.
std::int64_t Position::recordToChange(calc::FieldPlace place, int& error) {
    const auto here = occurrence();
    const Field& field = records_.schema().tableOf(place.occurrence).fields[place.field];
    if (field.kind == FieldKind::global) return 0;
    const std::int64_t local = record();
    if (local == 0) error = calc::error::missingRecord;
    if (error != none || place.occurrence == *here) return local;
    const auto related = records_.related(*here, local, place.occurrence);
    if (!related) error = calc::error::missingRelatedTable;
    if (error != none) return 0;
    if (!related->empty()) return related->front();
    const std::int64_t made = records_.createRelated(*here, local, place.occurrence);
    if (made == 0) error = calc::error::missingRecord;
    return made;
}

int Position::setField(calc::FieldPlace place, int repetition, const DataRef& value) {
    const Schema& schema = records_.schema();
    if (place.occurrence >= schema.occurrences.size() ||
        place.field >= schema.tableOf(place.occurrence).fields.size())
        return calc::error::missingField;
    const Field& field = schema.tableOf(place.occurrence).fields[place.field];
    if (repetition < 1 || repetition > field.repetitions) return calc::error::missingRepetition;
    if (mode_ == Mode::find) return setCriterion(place, repetition, value);
    if (!field.isWritable()) return calc::error::notWritable;
    int error = none;
    const std::int64_t target = recordToChange(place, error);
    if (error != none) return error;
    return records_.set({schema.occurrences[place.occurrence].table, target}, place.field, repetition, value);
}

int Position::setField(std::u16string_view text, const DataRef& value) {
    const calc::FieldName name = calc::fieldNameIn(text);
    const auto in = name.occurrence.empty() ? occurrence() : records_.schema().occurrence(name.occurrence);
    const auto field = in ? records_.schema().field(*in, name.field) : std::nullopt;
    if (!field) return calc::error::missingField;
    return setField({static_cast<std::uint32_t>(*in), static_cast<std::uint32_t>(*field)},
                    name.repetition.value_or(1), value);
}

int Position::setCriterion(calc::FieldPlace place, int repetition, const DataRef& value) {
    std::vector<FindRequest::Criterion>& criteria = requests_[request_].criteria;
    std::erase_if(criteria, [&](const FindRequest::Criterion& criterion) {
        return criterion.place == place && criterion.repetition == repetition;
    });
    if (!value->isEmpty()) criteria.push_back({place, repetition, std::u16string(value->asText().units())});
    return none;
}

DataRef Position::criterion(calc::FieldPlace place, int repetition) const {
    for (const FindRequest::Criterion& criterion : requests_.at(request_).criteria)
        if (criterion.place == place && criterion.repetition == repetition)
            return std::make_shared<const Data>(Text(criterion.text));
    return std::make_shared<const Data>();
}

int Position::replaceFieldContents(calc::FieldPlace place,
                                   const std::function<DataRef()>& valueOfCurrentRecord) {
    if (mode_ == Mode::find) return calc::error::unavailable;
    if (record() == 0) return calc::error::missingRecord;
    const std::size_t before = current()->current;
    int error = none;
    const std::size_t count = found().size(); // a calculation may make and delete records
    for (std::size_t i = 0; i < std::min(count, found().size()) && error == none; ++i) {
        current()->current = i;
        error = setField(place, 1, valueOfCurrentRecord());
    }
    const int refusal = commit();
    if (!found().empty()) current()->current = std::min(before, found().size() - 1);
    return error != none ? error : refusal;
}

void Position::show(std::vector<std::int64_t> records, bool isAll) {
    FoundSet& set = *current();
    set.records = std::move(records);
    set.isAll = isAll;
    set.current = 0;
    set.sortedBy.clear();
    set.hasUnsorted = false;
}

int Position::showAllRecords() {
    enterBrowseMode();
    if (!occurrence()) return calc::error::unavailable;
    if (const int error = leave(); error != none) return error;
    const std::int64_t here = record();
    show(records_.all(table()), true);
    current()->current = placeIn(found(), here).value_or(0);
    return none;
}

int Position::showOmittedOnly() {
    if (mode_ == Mode::find || !occurrence()) return calc::error::unavailable;
    if (const int error = leave(); error != none) return error;
    show(without(records_.all(table()), found()), false);
    return none;
}

int Position::omitRecord() {
    if (mode_ == Mode::find) {
        requests_[request_].omits = !requests_[request_].omits;
        return none;
    }
    return omitRecords(1);
}

int Position::omitRecords(std::int64_t count) {
    if (mode_ == Mode::find) return calc::error::unavailable;
    if (record() == 0 || count < 1) return calc::error::missingRecord;
    if (const int error = leave(); error != none) return error;
    FoundSet& set = *current();
    const auto first = set.records.begin() + static_cast<std::ptrdiff_t>(set.current);
    set.records.erase(first, first + std::min<std::int64_t>(count, set.records.end() - first));
    set.isAll = false;
    if (!set.records.empty()) set.current = std::min(set.current, set.records.size() - 1);
    return none;
}

int Position::enterFindMode() {
    if (!occurrence()) return calc::error::unavailable;
    if (const int error = leave(); error != none) return error;
    mode_ = Mode::find;
    requests_.assign(1, {});
    request_ = 0;
    return none;
}

int Position::enterBrowseMode() {
    mode_ = Mode::browse;
    return none;
}

/// Finds among candidates; records that were kept stay in front.
int Position::find(const std::vector<std::int64_t>& candidates, const std::vector<std::int64_t>& kept) {
    const bool hasCriteria = std::any_of(requests_.begin(), requests_.end(), [](const FindRequest& request) {
        return !request.criteria.empty();
    });
    if (mode_ != Mode::find || !hasCriteria) {
        mode_ = Mode::browse;
        return calc::error::noCriteria;
    }
    mode_ = Mode::browse;
    const std::set<std::int64_t> matches =
        findRecords(records_, occurrence().value_or(0), requests_, candidates);
    std::vector<std::int64_t> found = kept;
    for (const std::int64_t record : candidates)
        if (matches.contains(record)) found.push_back(record);
    const bool isNothing = found.empty();
    show(std::move(found), false);
    return isNothing ? calc::error::nothingFound : none;
}

int Position::performFind() {
    if (!occurrence()) return calc::error::unavailable;
    return find(records_.all(table()), {});
}

int Position::constrainFoundSet() {
    if (!occurrence()) return calc::error::unavailable;
    return find(std::vector<std::int64_t>(found()), {});
}

int Position::extendFoundSet() {
    if (!occurrence()) return calc::error::unavailable;
    const std::vector<std::int64_t> before = found();
    return find(without(records_.all(table()), before), before);
}

int Position::sort(std::vector<SortKey> keys) {
    FoundSet* set = current();
    if (set == nullptr || mode_ == Mode::find) return calc::error::unavailable;
    const std::size_t here = *occurrence();
    for (const SortKey& key : keys) {
        const Field* field = records_.field(key.place);
        const bool isReached = field != nullptr && (field->kind == FieldKind::global ||
                                                    records_.path(here, key.place.occurrence));
        if (!isReached) return calc::error::missingField;
    }
    if (const int error = leave(); error != none) return error;
    std::map<std::int64_t, DataVect> values;
    const std::vector<std::int64_t> records = found();
    for (const std::int64_t record : records)
        for (const SortKey& key : keys)
            values[record].push_back(sortValue(here, record, key.place));
    set = current();
    if (set == nullptr) return calc::error::unavailable;
    // A calculation that makes records while it is evaluated leaves them at the end.
    const auto end = std::stable_partition(set->records.begin(), set->records.end(),
                                           [&](std::int64_t record) { return values.contains(record); });
    std::stable_sort(set->records.begin(), end, [&](std::int64_t left, std::int64_t right) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const Data &first = *values[keys[i].isDescending ? right : left][i],
                       &second = *values[keys[i].isDescending ? left : right][i];
            if (isBefore(first, second)) return true;
            if (isBefore(second, first)) return false;
        }
        return false;
    });
    set->sortedBy = std::move(keys);
    set->hasUnsorted = end != set->records.end();
    set->current = 0;
    return none;
}

DataRef Position::sortValue(std::size_t from, std::int64_t record, calc::FieldPlace place) {
    if (records_.field(place) == nullptr) return std::make_shared<const Data>();
    if (place.occurrence != from) {
        const auto related = records_.related(from, record, place.occurrence);
        if (!related || related->empty()) return std::make_shared<const Data>();
        record = related->front();
    }
    return records_.value({records_.schema().occurrences[place.occurrence].table, record}, place.field, 1);
}

int Position::unsort() {
    FoundSet* set = current();
    if (set == nullptr || mode_ == Mode::find) return calc::error::unavailable;
    std::vector<std::int64_t> records = set->records;
    std::sort(records.begin(), records.end());
    replaceRecords(*set, std::move(records));
    set->sortedBy.clear();
    set->hasUnsorted = false;
    return none;
}

int Position::goToRelatedRecord(std::u16string_view name, std::u16string_view layoutName, bool onlyRelated) {
    const auto there = records_.schema().occurrence(name);
    const auto layout = records_.schema().layout(layoutName);
    if (mode_ == Mode::find || !occurrence()) return calc::error::unavailable;
    if (!there) return calc::error::missingRelationship;
    if (!layout) return calc::error::missingLayout;
    const auto related = records_.related(*occurrence(), record(), *there);
    if (!related) return calc::error::missingRelationship;
    if (related->empty()) return calc::error::missingRecord;
    const std::size_t table = records_.schema().occurrences[*there].table;
    if (records_.schema().tableOf(records_.schema().layouts[*layout].occurrence).name !=
        records_.schema().tables[table].name)
        return calc::error::missingLayout;
    const std::int64_t first = related->front();
    if (const int error = goToLayout(*layout); error != none) return error;
    if (onlyRelated)
        show(*related, false);
    else if (!placeIn(found(), first))
        show(records_.all(table), true);
    const auto place = placeIn(found(), first);
    if (!place) return calc::error::missingRecord;
    current()->current = *place;
    return none;
}

} // namespace host
