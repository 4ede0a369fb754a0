#pragma once

/// Named values that outlive a calculation: one store for all files, and the state of a cleaning pass.
///
/// Values are objects of the host. They are kept until they are overwritten, removed or cleared, or the
/// library is unloaded. Everything here runs on the host's thread and takes no lock. A failing host call
/// throws std::exception or std::bad_alloc and leaves the store as it was.

#include "bridge/HostInterface.h"
#include "globals/RunLoopTimer.h"

#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>

namespace kst {

/// A key, or a file's name: the host text's UTF-16 units, compared unit by unit and never normalised. The
/// host's unit is unsigned short. Current standard libraries have no string of it: libc++ has character
/// traits for character types only. So this is a string of char16_t, which has the same size and order.
using u16string = std::u16string;

/// One stored value: a full copy of a host value, with type, content, styles and locale.
class Value {
public:
    explicit Value(const fmx::Data& data);
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    const fmx::Data& data() const { return *data_; }
    /// Replaces the copy by a copy of `data`, which may be this value's own. When copying fails, nothing
    /// changes.
    void assign(const fmx::Data& data);

private:
    fmx::DataAutoPtr data_;
};

/// Values by key, some of them bound to the file that stored them.
///
/// Operations without an underscore at the end of their name keep every key of `localKeys` in `values` too.
/// Operations with an underscore are their parts. The maps are public for reading.
class Dictionary {
public:
    using Values = std::map<u16string, std::shared_ptr<Value>>;
    using LocalKeys = std::map<u16string, u16string>;

    /// Copies the value of a key into `out`. A missing key leaves `out` as it was.
    void loadValueForKey(const fmx::Text& key, fmx::Data& out) const;

    /// Stores a copy that stays until it is overwritten or removed. A binding is dropped.
    void storeValueForKey(const fmx::Text& key, const fmx::Data& value);
    /// Stores a copy, in the same Value object if the key has one; a binding stays.
    void storeValueForKey_(const u16string& key, const fmx::Data& value);
    /// Stores a copy and binds the key to the calling file. A bound key stays bound to the first file. When
    /// the host gives no file name, the key is not bound.
    void storeLocalValueForKey(const fmx::ExprEnv& env, const fmx::Text& key, const fmx::Data& value);

    /// Removes a value and its binding; a missing key is no error.
    void removeKeyValue(const fmx::Text& key);
    void removeKeyValue_(const u16string& key);
    void removeLocalKey_(const u16string& key);
    /// Returns the entry after the removed one.
    LocalKeys::iterator removeLocalKeyByIterator_(LocalKeys::iterator entry);

    /// Removes every value whose file is no longer open. File names must be exactly equal. When the host
    /// gives no list of open files, nothing changes.
    void cleanLocalKeys(const fmx::ExprEnv& env);
    /// Removes everything.
    void clean();

    Values values;
    LocalKeys localKeys; ///< key → the file's name
};

/// Writes a key as UTF-8; a surrogate without its other half becomes U+FFFD.
std::ostream& operator<<(std::ostream& stream, const u16string& key);

/// The one store. It is emptied when the library is unloaded or the process ends. The host's library is still
/// loaded then, because this library is linked to it.
extern Dictionary globalDictionary;

/// The lock of a store that a timer's thread shares. Nothing takes it on this platform.
extern std::recursive_mutex gRecursiveMutex;
/// Seconds between two cleaning passes, any number. Without a timer it has no effect.
extern double gCleanPeriod;
/// The cleaning timer; never made on this platform.
extern CFRunLoopTimerRef gTimer;
/// True when the open files were checked since the timer's last call.
extern bool gStatusChecked;
/// True when the host is a server; never set on this platform.
extern bool gFmIsOnServer;

/// The cleaning timer's call-back: clears gStatusChecked.
void TimerCallback(CFRunLoopTimerRef timer, void* context);

} // namespace kst
