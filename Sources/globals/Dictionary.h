#pragma once

/// Named values that outlive a calculation: one store for all files, and what a cleaning pass needs.
///
/// Values are the host's objects, held from the moment they are stored until they are overwritten, removed
/// or cleared, or the library is unloaded. Everything here runs on the host's thread and takes no lock. A
/// failing host call travels as std::exception or std::bad_alloc and leaves the store as it was.

#include "bridge/HostInterface.h"
#include "globals/RunLoopTimer.h"

#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>

namespace kst {

/// A key, or a file's name: the host text's UTF-16 units, compared unit by unit and never normalised. The
/// host's unit is unsigned short, for which current standard libraries bring no string: libc++ has character
/// traits for the character types alone. So this is a string of char16_t, of the same size and order.
using u16string = std::u16string;

/// One stored value: a full copy of a host value, with type, content, looks and locale.
class Value {
public:
    explicit Value(const fmx::Data& data);
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    const fmx::Data& data() const { return *data_; }
    /// Becomes a copy of another value, which may be its own. When copying fails, nothing changes.
    void assign(const fmx::Data& data);

private:
    fmx::DataAutoPtr data_;
};

/// Values by key, some of them bound to the file that stored them.
///
/// The operations without an underscore behind their name keep every key of `localKeys` in `values` too;
/// those with one are what they are built from. The maps are there to be looked at.
class Dictionary {
public:
    using Values = std::map<u16string, std::shared_ptr<Value>>;
    using LocalKeys = std::map<u16string, u16string>;

    /// Copies the value of a key into `out`; a missing key leaves `out` as it was.
    void loadValueForKey(const fmx::Text& key, fmx::Data& out) const;

    /// Stores a copy that lasts until it is overwritten or removed; a binding is dropped.
    void storeValueForKey(const fmx::Text& key, const fmx::Data& value);
    /// Stores a copy, in the same Value object if the key has one; a binding stays.
    void storeValueForKey_(const u16string& key, const fmx::Data& value);
    /// Stores a copy and binds the key to the calling file. A bound key stays bound to the file that bound it
    /// first. When the host cannot name the file, the key is not bound.
    void storeLocalValueForKey(const fmx::ExprEnv& env, const fmx::Text& key, const fmx::Data& value);

    /// Removes a value and its binding; a missing key is no error.
    void removeKeyValue(const fmx::Text& key);
    void removeKeyValue_(const u16string& key);
    void removeLocalKey_(const u16string& key);
    /// Gives the entry behind the removed one.
    LocalKeys::iterator removeLocalKeyByIterator_(LocalKeys::iterator entry);

    /// Removes every value whose file is no longer open, by exact name. When the host cannot name the open
    /// files, nothing changes.
    void cleanLocalKeys(const fmx::ExprEnv& env);
    /// Removes everything.
    void clean();

    Values values;
    LocalKeys localKeys; ///< key → the file's name
};

/// Writes a key as UTF-8; a surrogate without its other half becomes U+FFFD.
std::ostream& operator<<(std::ostream& stream, const u16string& key);

/// The one store. It is emptied when the library is unloaded or the process ends: the library is linked to
/// the host's, which is therefore still there.
extern Dictionary globalDictionary;

/// For a store that is shared with a timer's thread; nothing here takes it.
extern std::recursive_mutex gRecursiveMutex;
/// Seconds between two cleaning passes, any number; without a timer it has no effect.
extern double gCleanPeriod;
/// The cleaning timer; never made on this platform.
extern CFRunLoopTimerRef gTimer;
/// Whether the open files were looked at since the timer's last call.
extern bool gStatusChecked;
/// Whether the host is a server; never set on this platform.
extern bool gFmIsOnServer;

/// What the cleaning timer calls: clears gStatusChecked.
void TimerCallback(CFRunLoopTimerRef timer, void* context);

} // namespace kst
