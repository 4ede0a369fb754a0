#include "globals/Dictionary.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"

namespace kst {

Dictionary globalDictionary;
std::recursive_mutex gRecursiveMutex;
double gCleanPeriod = 60.0;
CFRunLoopTimerRef gTimer = nullptr;
bool gStatusChecked = false;
bool gFmIsOnServer = false;

namespace {

u16string keyFrom(const fmx::Text& text) {
    const Units units = unitsFromFMText(text);
    return {units.begin(), units.end()};
}

/// The text between two returns.
u16string asLine(const u16string& text) { return u'\r' + text + u'\r'; }

fmx::DataAutoPtr copyOf(const fmx::Data& data) {
    fmx::DataAutoPtr copy;
    fmlib::FMData2FMData(data, *copy);
    return copy;
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
    // Every step that can fail comes before the first change: a value is stored with its binding or not at
    // all.
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
    // Whole lines are compared: an open file "Sales Archive" does not keep the values of "Sales".
    const u16string haystack = asLine(keyFrom(openFiles->GetAsText()));
    for (auto entry = localKeys.begin(); entry != localKeys.end();) {
        if (haystack.find(asLine(entry->second)) != u16string::npos) {
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

std::ostream& operator<<(std::ostream& stream, const u16string& key) { return stream << utf8FromUtf16(key); }

void TimerCallback(CFRunLoopTimerRef /*timer*/, void* /*context*/) { gStatusChecked = false; }

} // namespace kst
