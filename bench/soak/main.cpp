#include "host/app/ObjectCounts.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/values/Encoding.h"
#include "tests/RealisticCalls.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

/// Every function called in a random order for a long time in one process: what it holds after the first
/// tenth of the calls is all that it ever holds. Prints a line a tenth; exit status 1 when something grows.

namespace {

struct Holdings {
    double megabytes = 0; ///< resident memory, with what the allocator can give back given back
    std::size_t descriptors = 0;
    host::ObjectCounts objects;
};

Holdings holdings() {
    Holdings now;
    malloc_trim(0);
    std::ifstream statm("/proc/self/statm");
    std::size_t pages = 0, resident = 0;
    statm >> pages >> resident;
    now.megabytes = static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    now.descriptors = static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
    now.objects = host::objectCounts();
    return now;
}

/// What the first tenth of the calls did not need and the last does.
bool grew(const Holdings& first, const Holdings& last) {
    constexpr double allowance = 1; // megabyte: an allocator's pages settle a little differently each time
    const std::string objects = (last.objects - first.objects).describe();
    if (!objects.empty()) std::printf("objects of the host: %s\n", objects.c_str());
    if (last.descriptors > first.descriptors)
        std::printf("descriptors: %zu more\n", last.descriptors - first.descriptors);
    if (last.megabytes > first.megabytes + allowance)
        std::printf("memory: %.1f MB more\n", last.megabytes - first.megabytes);
    return !objects.empty() || last.descriptors > first.descriptors ||
           last.megabytes > first.megabytes + allowance;
}

int soak(std::uint64_t calls) {
    host::Session session;
    session.open(host::Solution::load(KESTREL_SOURCE_DIR "/examples/contacts"));
    host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    if (plugIn.init() < 0) return 2;

    constexpr std::uint64_t seed = 31;
    std::mt19937_64 random(seed);
    std::uniform_int_distribution<std::size_t> which(0, realisticCalls.size() - 1);
    std::vector<std::u16string> calculations;
    calculations.reserve(realisticCalls.size());
    for (const char* const calculation : realisticCalls)
        calculations.push_back(host::fromUtf8(calculation));
    Holdings first, last;
    for (std::uint64_t tenth = 1; tenth <= 10; ++tenth) {
        for (std::uint64_t call = 0; call < calls / 10; ++call) {
            session.evaluate(calculations.at(which(random)));
            if (call % 64 == 0) session.turn();
        }
        while (session.turn().scripts > 0) {
        }
        session.evaluate(u"Kestrel_SetGlobal ( \"\" ; 1 )");
        last = holdings();
        if (tenth == 1) first = last;
        std::printf("%3d %%  %10llu calls  %8.1f MB  %3zu descriptors\n", static_cast<int>(10 * tenth),
                    static_cast<unsigned long long>(tenth * (calls / 10)), last.megabytes, last.descriptors);
        std::fflush(stdout);
    }
    return grew(first, last) || !plugIn.misdeeds().empty() ? 1 : 0;
}

} // namespace

int main(int count, char** arguments) try {
    std::uint64_t calls = 1'000'000;
    if (count > 1) {
        const std::string_view given(arguments[1]);
        if (std::from_chars(given.data(), given.data() + given.size(), calls).ptr !=
            given.data() + given.size()) {
            std::fprintf(stderr, "usage: kestrel-soak [CALLS]\n");
            return 2;
        }
    }
    return soak(calls);
} catch (const std::exception& error) {
    std::fprintf(stderr, "kestrel: %s\n", error.what());
    return 2;
}
