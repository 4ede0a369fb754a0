#include "host/data/KeyIndex.h"

#include "host/calc/Environment.h"

#include <algorithm>

namespace host {

bool Key::operator<(const Key& other) const {
    if (isText != other.isText) return other.isText;
    return isText ? text < other.text : number < other.number;
}

bool Key::operator==(const Key& other) const { return !(*this < other) && !(other < *this); }

std::vector<Key> keysOf(const Data& value, DataType type) {
    std::vector<Key> keys;
    if (value.isEmpty() || !value.isValid() || type == DataType::binary) return keys;
    if (type != DataType::text) {
        Data converted = value;
        if (!converted.convert(type)) return keys;
        if (const auto number = converted.number())
            keys.push_back({.isText = false, .number = *number, .text = {}});
        return keys;
    }
    const std::u16string_view text = value.asText().units();
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(u'\r', start), text.size());
        if (end > start)
            keys.push_back(
                {.isText = true, .number = 0, .text = calc::foldName(text.substr(start, end - start))});
        start = end + 1;
    }
    return keys;
}

bool holds(const Key& left, KeyComparison comparison, const Key& right) {
    switch (comparison) {
    case KeyComparison::equal: return left == right;
    case KeyComparison::notEqual: return !(left == right);
    case KeyComparison::less: return left < right;
    case KeyComparison::lessOrEqual: return !(right < left);
    case KeyComparison::greater: return right < left;
    case KeyComparison::greaterOrEqual: return !(left < right);
    case KeyComparison::any: break;
    }
    return true;
}

void KeyIndex::put(std::int64_t record, std::vector<Key> keys) {
    remove(record);
    if (keys.empty()) return;
    for (const Key& key : keys)
        records_[key].insert(record);
    keys_.emplace(record, std::move(keys));
}

void KeyIndex::remove(std::int64_t record) {
    const auto known = keys_.find(record);
    if (known == keys_.end()) return;
    for (const Key& key : known->second) {
        const auto place = records_.find(key);
        if (place == records_.end()) continue; // a key that the value has twice
        place->second.erase(record);
        if (place->second.empty()) records_.erase(place);
    }
    keys_.erase(known);
}

void KeyIndex::find(const Key& key, KeyComparison comparison, std::set<std::int64_t>& records) const {
    auto first = records_.begin(), last = records_.end();
    // The keys are in order, so that all but the last two comparisons hold for one range.
    switch (comparison) {
    case KeyComparison::equal:
        first = records_.lower_bound(key);
        last = records_.upper_bound(key);
        break;
    case KeyComparison::less: first = records_.upper_bound(key); break;
    case KeyComparison::lessOrEqual: first = records_.lower_bound(key); break;
    case KeyComparison::greater: last = records_.lower_bound(key); break;
    case KeyComparison::greaterOrEqual: last = records_.upper_bound(key); break;
    case KeyComparison::notEqual:
    case KeyComparison::any: break;
    }
    for (; first != last; ++first)
        if (holds(key, comparison, first->first)) records.insert(first->second.begin(), first->second.end());
}

const std::vector<Key>& KeyIndex::keysOf(std::int64_t record) const {
    static const std::vector<Key> none;
    const auto found = keys_.find(record);
    return found == keys_.end() ? none : found->second;
}

std::int64_t KeyIndex::next(const Key& key, bool isHigher) const {
    const auto place = isHigher ? records_.upper_bound(key) : records_.lower_bound(key);
    if (isHigher) return place == records_.end() ? 0 : *place->second.begin();
    return place == records_.begin() ? 0 : *std::prev(place)->second.begin();
}

} // namespace host
