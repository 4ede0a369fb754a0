#include "Benchmarks.h"
#include "Inputs.h"
#include "Loaded.h"
#include "Measure.h"

#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTypes.h"

#include <map>
#include <string>
#include <vector>

/// Globals. The floor of each operation is one operation of an ordered map and one copy of a host value.

namespace bench {

namespace {

using host::bridge::out;

constexpr std::size_t keyCount = 10'000;
constexpr std::size_t stride = 7'919; ///< a prime, so each key comes once in a round, far from the one before

std::u16string keyAt(std::size_t position) {
    const std::string digits = std::to_string(position * stride % keyCount);
    return u"invoice total " + std::u16string(digits.begin(), digits.end());
}

/// The store of the floor.
using Map = std::map<std::u16string, fmx::DataUniquePtr>;

void copy(const fmx::Data& from, fmx::Data& to) { to.SetAsText(from.GetAsText(), from.GetLocale()); }

/// Gives the same positions in every round.
class Rounds {
public:
    /// Gives the next position; calls `atStart` at the start of each round.
    template<class AtStart>
    std::size_t next(const AtStart& atStart) {
        if (position_ == keyCount) position_ = 0;
        if (position_ == 0) atStart();
        return position_++;
    }

private:
    std::size_t position_ = 0;
};

} // namespace

void benchGlobals() {
    const Loaded plugIn;
    const auto &set = plugIn.function(u"Kestrel_SetGlobal"), &get = plugIn.function(u"Kestrel_GetGlobal");
    const auto value = shared(host::Text(u"a value of ordinary length"));
    const auto& opaqueValue = out<fmx::Data>(*value);
    std::vector<std::u16string> keys;
    std::vector<host::DataVect> toSet, toGet;
    for (std::size_t position = 0; position < keyCount; ++position) {
        keys.push_back(keyAt(position));
        toGet.push_back({shared(host::Text(keys.back()))});
        toSet.push_back({toGet.back().front(), value});
    }
    Map map;
    host::Data result;
    const std::string floor = "map + host copy";
    const auto nothing = [] {};
    Rounds ours, theirs;

    const auto clear = [&] {
        const host::DataRef empty = shared(host::Data());
        plugIn.call(set, {empty, empty}, result);
    };
    row(
        "Kestrel_SetGlobal, a new key, cleared in the end",
        [&] { plugIn.call(set, toSet[ours.next(clear)], result); }, floor,
        [&] {
            const std::size_t position = theirs.next([&] { map.clear(); });
            fmx::DataUniquePtr stored;
            copy(opaqueValue, *stored);
            map.emplace(keys[position], std::move(stored));
        });

    for (std::size_t position = 0; position < keyCount; ++position) {
        plugIn.call(set, toSet[position], result);
        fmx::DataUniquePtr stored;
        copy(opaqueValue, *stored);
        map.emplace(keys[position], std::move(stored));
    }
    row(
        "Kestrel_SetGlobal, a key that is there",
        [&] { plugIn.call(set, toSet[ours.next(nothing)], result); }, floor,
        [&] { copy(opaqueValue, *map.find(keys[theirs.next(nothing)])->second); });
    row(
        "Kestrel_GetGlobal", [&] { plugIn.call(get, toGet[ours.next(nothing)], result); }, floor,
        [&] { copy(*map.find(keys[theirs.next(nothing)])->second, out<fmx::Data>(result)); });
    clear();
}

} // namespace bench
