#pragma once

#include "host/sql/Schema.h"
#include "host/values/Data.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

/// A value as a key: a number for numbers, dates and times, otherwise a line of text without regard
/// to case.
struct Key {
    bool isText = false;
    Decimal number;
    std::u16string text; ///< folded
    bool operator<(const Key& other) const;
    bool operator==(const Key& other) const;
};

/// The keys of a value for a field of that type: none of an empty one, and one for each line of a text.
std::vector<Key> keysOf(const Data& value, DataType type);
/// Whether two keys stand in a relation.
bool holds(const Key& left, KeyComparison comparison, const Key& right);

/// The records of a table by the keys that a field has in them.
class KeyIndex {
public:
    /// Gives the record these keys in place of others.
    void put(std::int64_t record, std::vector<Key> keys);
    void remove(std::int64_t record);

    /// Adds the records with a key that stands in the relation, `key comparison theirs`.
    void find(const Key& key, KeyComparison comparison, std::set<std::int64_t>& records) const;
    [[nodiscard]] const std::vector<Key>& keysOf(std::int64_t record) const;
    /// The first record with the key that is next above or below; 0 where there is none.
    [[nodiscard]] std::int64_t next(const Key& key, bool isHigher) const;

private:
    std::map<Key, std::set<std::int64_t>> records_;
    std::unordered_map<std::int64_t, std::vector<Key>> keys_;
};

} // namespace host
