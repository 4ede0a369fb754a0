#include "host/fmwrapper/Versions.h"

#include "FMWrapper/FMXExtern.h"

#include <atomic>

namespace host {

namespace {

std::atomic<int> gAnnounced = kCurrentExtnVersion;
std::array<std::atomic<bool>, kNewerFunctions.size()> gCalled{};

} // namespace

int announcedVersion() { return gAnnounced; }

void announceVersion(int version) { gAnnounced = version; }

void noteCallBeyondVersion(std::size_t row) { gCalled.at(row) = true; }

std::vector<const NewerFunction*> callsBeyondVersion() {
    std::vector<const NewerFunction*> calls;
    for (std::size_t i = 0; i < gCalled.size(); ++i)
        if (gCalled[i]) calls.push_back(&kNewerFunctions[i]);
    return calls;
}

} // namespace host
