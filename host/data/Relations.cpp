#include "host/data/Records.h"

#include <algorithm>
#include <deque>

/// The relations of records: paths between occurrences, and the records at their ends.

namespace host {

namespace {

/// The comparison with its sides exchanged.
KeyComparison reversed(KeyComparison comparison) {
    switch (comparison) {
    case KeyComparison::less: return KeyComparison::greater;
    case KeyComparison::lessOrEqual: return KeyComparison::greaterOrEqual;
    case KeyComparison::greater: return KeyComparison::less;
    case KeyComparison::greaterOrEqual: return KeyComparison::lessOrEqual;
    default: return comparison;
    }
}

} // namespace

/// The shortest way, in the order in which the relationships are declared.
std::optional<std::vector<Records::Hop>> Records::path(std::size_t from, std::size_t to) const {
    std::map<std::size_t, std::vector<Hop>> ways{{from, {}}};
    for (std::deque<std::size_t> open{from}; !open.empty(); open.pop_front()) {
        const std::size_t here = open.front();
        if (here == to) return ways[here];
        for (std::size_t i = 0; i < schema().relationships.size(); ++i)
            for (int side = 0; side < 2; ++side) {
                const Relationship& relationship = schema().relationships[i];
                const std::size_t next = relationship.sides[side].occurrence;
                if (relationship.sides[1 - side].occurrence != here || ways.contains(next)) continue;
                std::vector<Hop> way = ways[here];
                way.push_back({i, side});
                ways.emplace(next, std::move(way));
                open.push_back(next);
            }
    }
    return std::nullopt;
}

/// IDs of the records whose keys match those of a record on the other side; all predicates must hold.
std::set<std::int64_t> Records::matching(const Hop& hop, std::int64_t record) {
    const Relationship& relationship = schema().relationships[hop.relationship];
    const std::size_t here = schema().occurrences[relationship.sides[1 - hop.side].occurrence].table,
                      there = schema().occurrences[relationship.sides[hop.side].occurrence].table;
    std::optional<std::set<std::int64_t>> matches;
    for (const Relationship::Predicate& predicate : relationship.predicates) {
        if (predicate.comparison == KeyComparison::any) continue;
        const std::size_t theirs = predicate.fields[hop.side];
        const Field& field = schema().tables[there].fields[theirs];
        std::set<std::int64_t> found;
        const DataRef value = this->value({here, record}, predicate.fields[1 - hop.side], 1);
        const KeyComparison comparison =
            hop.side == 1 ? predicate.comparison : reversed(predicate.comparison);
        if (field.hasColumns())
            for (const Key& key : keysOf(*value, field.type))
                index(there, theirs).find(key, comparison, found);
        if (matches)
            std::erase_if(*matches, [&](std::int64_t id) { return !found.contains(id); });
        else
            matches = std::move(found);
    }
    if (matches) return *matches;
    const std::vector<std::int64_t> records = all(there);
    return {records.begin(), records.end()};
}

void Records::sortRelated(const Relationship::Side& side, std::vector<std::int64_t>& records) {
    if (!side.sortField) return;
    const std::size_t table = schema().occurrences[side.occurrence].table, field = *side.sortField;
    std::map<std::int64_t, DataRef> values;
    for (const std::int64_t record : records)
        values[record] = value({table, record}, field, 1);
    std::stable_sort(records.begin(), records.end(), [&](std::int64_t left, std::int64_t right) {
        return side.isDescending ? isBefore(*values[right], *values[left])
                                 : isBefore(*values[left], *values[right]);
    });
}

std::vector<std::int64_t> Records::step(const Hop& hop, std::int64_t record) {
    const std::set<std::int64_t> matches = matching(hop, record);
    std::vector<std::int64_t> records(matches.begin(), matches.end());
    sortRelated(schema().relationships[hop.relationship].sides[hop.side], records);
    return records;
}

std::optional<std::vector<std::int64_t>> Records::related(std::size_t from, std::int64_t record,
                                                          std::size_t to) {
    notice();
    const auto way = path(from, to);
    if (!way) return std::nullopt;
    std::vector<std::int64_t> records{record};
    for (const Hop& hop : *way) {
        std::vector<std::int64_t> next;
        std::set<std::int64_t> seen;
        for (const std::int64_t here : records)
            for (const std::int64_t there : step(hop, here))
                if (seen.insert(there).second) next.push_back(there);
        records = std::move(next);
    }
    return records;
}

std::int64_t Records::nextKey(std::size_t from, std::int64_t record, std::size_t to, bool isHigher) {
    notice();
    const auto way = path(from, to);
    if (!way || way->size() != 1) return 0;
    const Hop& hop = way->front();
    const Relationship& relationship = schema().relationships[hop.relationship];
    if (relationship.predicates.size() != 1) return 0;
    const std::size_t here = schema().occurrences[from].table, there = schema().occurrences[to].table;
    const std::size_t theirs = relationship.predicates[0].fields[hop.side];
    const Field& field = schema().tables[there].fields[theirs];
    if (!field.hasColumns()) return 0;
    const DataRef value = this->value({here, record}, relationship.predicates[0].fields[1 - hop.side], 1);
    const std::vector<Key> keys = keysOf(*value, field.type);
    return keys.empty() ? 0 : index(there, theirs).next(keys.front(), isHigher);
}

std::int64_t Records::createRelated(std::size_t from, std::int64_t record, std::size_t to) {
    notice();
    const auto way = path(from, to);
    if (!way || way->size() != 1) return 0;
    const Hop& hop = way->front();
    const Relationship relationship = schema().relationships[hop.relationship];
    if (!relationship.sides[hop.side].mayCreate) return 0;
    const std::size_t here = schema().occurrences[from].table, there = schema().occurrences[to].table;
    std::vector<std::pair<std::size_t, DataRef>> keys;
    for (const Relationship::Predicate& predicate : relationship.predicates) {
        if (predicate.comparison != KeyComparison::equal) continue;
        keys.emplace_back(predicate.fields[hop.side],
                          value({here, record}, predicate.fields[1 - hop.side], 1));
        if (keys.back().second->isEmpty()) return 0;
    }
    const std::int64_t made = create(there);
    for (const auto& [field, key] : keys)
        if (made != 0) set({there, made}, field, 1, key);
    return made;
}

} // namespace host
