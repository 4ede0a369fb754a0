#include "globals/Dictionary.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"

#include <cstddef>
#include <vector>

namespace kst {

Dictionary globalDictionary;
std::recursive_mutex gRecursiveMutex;
double gCleanPeriod = 60.0;
CFRunLoopTimerRef gTimer = nullptr;
bool gStatusChecked = false;
bool gFmIsOnServer = false;

namespace {

constexpr char16_t kReturn = u'\r';

u16string keyFrom(const fmx::Text& text) {
    const std::vector<fmx::uint16> units = unitsFromFMText(text);
    return {units.begin(), units.end()};
}

fmx::DataAutoPtr copyOf(const fmx::Data& data) {
    fmx::DataAutoPtr copy;
    fmlib::FMData2FMData(data, *copy);
    return copy;
}

bool isHighSurrogate(char32_t unit) { return (unit & 0xFC00U) == 0xD800U; }
bool isLowSurrogate(char32_t unit) { return (unit & 0xFC00U) == 0xDC00U; }

/// The character at `position`, which moves behind it.
char32_t nextCharacter(const u16string& units, std::size_t& position) {
    const char32_t unit = units[position++];
    if (!isHighSurrogate(unit) && !isLowSurrogate(unit)) return unit;
    const char32_t next = position < units.size() ? units[position] : 0;
    if (!isHighSurrogate(unit) || !isLowSurrogate(next)) return 0xFFFD;
    ++position;
    return 0x10000U + ((unit & 0x3FFU) << 10U) + (next & 0x3FFU);
}

void appendUtf8(std::string& utf8, char32_t character) {
    unsigned more = 0; // bytes behind the first
    if (character >= 0x80U) more = character < 0x800U ? 1 : character < 0x10000U ? 2 : 3;
    constexpr unsigned char leads[] = {0x00, 0xC0, 0xE0, 0xF0};
    utf8.push_back(static_cast<char>(leads[more] | (character >> (6U * more))));
    while (more-- > 0)
        utf8.push_back(static_cast<char>(0x80U | ((character >> (6U * more)) & 0x3FU)));
}

} // namespace

Value::Value(const fmx::Data& data) : data_(copyOf(data)) {}

void Value::assign(const fmx::Data& data) {
    fmx::DataAutoPtr copy = copyOf(data);
    data_.swap(copy);
}

void Dictionary::loadValueForKey(const fmx::Text& key, fmx::Data& out) const {
    const auto found = values.find(keyFrom(key));
    if (found != values.end()) fmlib::FMData2FMData(found->second->data(), out);
}

void Dictionary::storeValueForKey(const fmx::Text& key, const fmx::Data& value) {
    const u16string units = keyFrom(key);
    storeValueForKey_(units, value);
    removeLocalKey_(units);
}

void Dictionary::storeValueForKey_(const u16string& key, const fmx::Data& value) {
    const auto place = values.lower_bound(key);
    if (place != values.end() && place->first == key)
        place->second->assign(value);
    else
        values.emplace_hint(place, key, std::make_shared<Value>(value));
}

void Dictionary::storeLocalValueForKey(const fmx::ExprEnv& env, const fmx::Text& key,
                                       const fmx::Data& value) {
    const u16string units = keyFrom(key);
    // All that can fail comes before the first change: a value is stored with its binding or not at all.
    LocalKeys binding;
    if (!localKeys.contains(units)) {
        const fmx::DataAutoPtr fileName;
        if (env.Evaluate(*cFMUtils::FMXTextUniquePtrFromString("Get( FileName )"), *fileName) == 0)
            binding.emplace(units, keyFrom(fileName->GetAsText()));
    }
    storeValueForKey_(units, value);
    localKeys.merge(binding);
}

void Dictionary::removeKeyValue(const fmx::Text& key) {
    const u16string units = keyFrom(key);
    removeKeyValue_(units);
    removeLocalKey_(units);
}

void Dictionary::removeKeyValue_(const u16string& key) { values.erase(key); }

void Dictionary::removeLocalKey_(const u16string& key) { localKeys.erase(key); }

Dictionary::LocalKeys::iterator Dictionary::removeLocalKeyByIterator_(LocalKeys::iterator entry) {
    return localKeys.erase(entry);
}

void Dictionary::cleanLocalKeys(const fmx::ExprEnv& env) {
    const fmx::DataAutoPtr openFiles;
    if (env.Evaluate(*cFMUtils::FMXTextUniquePtrFromString("DatabaseNames"), *openFiles) != 0) return;
    // A return on either side makes a match whole-line: Sales is not kept alive by Sales Archive.
    const u16string haystack = kReturn + keyFrom(openFiles->GetAsText()) + kReturn;
    for (auto entry = localKeys.begin(); entry != localKeys.end();) {
        if (haystack.find(kReturn + entry->second + kReturn) != u16string::npos) {
            ++entry;
        } else {
            removeKeyValue_(entry->first);
            entry = removeLocalKeyByIterator_(entry);
        }
    }
}

void Dictionary::clean() {
    values.clear();
    localKeys.clear();
}

std::ostream& operator<<(std::ostream& stream, const u16string& key) {
    std::string utf8;
    utf8.reserve(key.size());
    for (std::size_t position = 0; position < key.size();)
        appendUtf8(utf8, nextCharacter(key, position));
    return stream << utf8;
}

void TimerCallback(CFRunLoopTimerRef /*timer*/, void* /*context*/) { gStatusChecked = false; }

} // namespace kst
