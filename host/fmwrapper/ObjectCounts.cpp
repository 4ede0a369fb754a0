#include "host/fmwrapper/ObjectCounts.h"

#include <algorithm>
#include <atomic>
#include <numeric>

namespace host {

namespace {

constexpr std::array<std::string_view, objectClassCount> classNames{
    "QuadChar", "Locale",     "Text", "Color",    "CharacterStyle", "FixPt",
    "DateTime", "BinaryData", "Data", "DataVect", "RowVect",        "ExprEnv"};

std::array<std::atomic<std::int64_t>, objectClassCount> gLive{};

} // namespace

std::int64_t ObjectCounts::total() const {
    return std::accumulate(live.begin(), live.end(), std::int64_t{0});
}

std::string ObjectCounts::describe() const {
    std::string text;
    for (std::size_t i = 0; i < live.size(); ++i) {
        if (live[i] == 0) continue;
        if (!text.empty()) text += ", ";
        text.append(std::to_string(live[i])).append(" ").append(classNames[i]);
    }
    return text;
}

ObjectCounts ObjectCounts::operator-(const ObjectCounts& earlier) const {
    ObjectCounts difference;
    for (std::size_t i = 0; i < live.size(); ++i)
        difference.live[i] = live[i] - earlier.live[i];
    return difference;
}

ObjectCounts objectCounts() {
    ObjectCounts now;
    std::copy(gLive.begin(), gLive.end(), now.live.begin());
    return now;
}

void countObject(ObjectClass which, int change) { gLive.at(static_cast<std::size_t>(which)) += change; }

} // namespace host
