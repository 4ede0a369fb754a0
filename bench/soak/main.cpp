#include "host/app/LoadedPlugIn.h"
#include "host/dispatch/MainQueue.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"
#include "tests/RealisticCalls.h"
#include "tests/WebServices.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

/// Calls every function in random order for a long time in one process. The process must hold no more after
/// the last tenth of the calls than after the first, and every result must be right. Delayed scripts run as
/// well; this program moves the clock. Prints a line for each tenth. The exit status is 1 when something
/// grows or a result is wrong, and 2 when the program cannot run.

namespace {

struct Holdings {
    double megabytes = 0; ///< resident memory, after the allocator has released free memory
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
    now.descriptors = openDescriptors();
    now.objects = host::objectCounts();
    return now;
}

/// Whether the process holds more after the last tenth of the calls than after the first; prints the growth.
bool grew(const Holdings& first, const Holdings& last) {
    constexpr double allowance = 1; // megabyte, because the allocator's pages vary a little between runs
    const std::string objects = (last.objects - first.objects).describe();
    if (!objects.empty()) std::printf("objects of the host: %s\n", objects.c_str());
    if (last.descriptors > first.descriptors)
        std::printf("descriptors: %zu more\n", last.descriptors - first.descriptors);
    if (last.megabytes > first.megabytes + allowance)
        std::printf("memory: %.1f MB more\n", last.megabytes - first.megabytes);
    return !objects.empty() || last.descriptors > first.descriptors ||
           last.megabytes > first.megabytes + allowance;
}

/// A calculation and its result.
struct Call {
    std::u16string calculation;
    std::string expected;
    bool asksForScript = false;
};

class Soak {
public:
    Soak() {
        host::clock().hold();
        for (const auto& [calculation, result] : realisticCalls)
            calls_.push_back({.calculation = host::fromUtf8(calculation),
                              .expected = result,
                              .asksForScript = std::string_view(result) == "0" &&
                                               std::string_view(calculation).starts_with("Kestrel_DoFile")});
    }

    /// Makes random calls; false when a result was wrong or a script did not run.
    bool makeCalls(std::uint64_t count) {
        const WebServices services(answering_); // destroyed before the measurement
        bool areRight = true;
        std::size_t asked = 0, run = 0;
        for (std::uint64_t number = 0; areRight && number < count; ++number) {
            const Call& call = calls_.at(which_(random_));
            areRight = make(call);
            asked += call.asksForScript ? 1 : 0;
            constexpr std::uint64_t callsATurn = 64;
            if (number % callsATurn == 0) run += serve();
        }
        run += serve();
        session_.evaluate(u"Kestrel_SetGlobal ( \"\" ; 1 )");
        if (run != asked) std::printf("%zu scripts were asked for, %zu ran\n", asked, run);
        return areRight && run == asked && loaded_.plugIn().violations().empty();
    }

private:
    bool make(const Call& call) {
        const host::calc::Result result = session_.evaluate(call.calculation);
        // The calculation goes on after an error that a function answers.
        const int error = result.error != 0 ? result.error : result.external.code;
        const std::string text =
            error == 0 ? result.value->asText().utf8() : "error " + std::to_string(error);
        if (text != call.expected)
            std::printf("%s\ngives %s\ninstead of %s\n", host::toUtf8(call.calculation).c_str(), text.c_str(),
                        call.expected.c_str());
        return text == call.expected;
    }
    /// Moves the clock to the end of all delays and runs the waiting scripts; gives the number run.
    std::size_t serve() {
        std::size_t run = 0;
        host::Session::Turn turn;
        do {
            if (const auto wait = host::mainQueue().untilNext()) host::clock().advance(*wait);
            turn = session_.turn();
            run += turn.scripts;
        } while (turn.blocks + turn.scriptCalls + turn.scripts > 0);
        return run;
    }

    static constexpr std::uint64_t seed = 31;
    const Behaviour answering_{Behaviour::Kind::answers, realisticAnswer};
    host::LoadedPlugIn loaded_{KESTREL_PLUGIN_PATH,
                               {host::Solution::load(KESTREL_SOURCE_DIR "/examples/contacts")}};
    host::Session& session_ = loaded_.session();
    std::vector<Call> calls_;
    std::mt19937_64 random_{seed};
    std::uniform_int_distribution<std::size_t> which_{0, realisticCalls.size() - 1};
};

int soak(std::uint64_t calls) {
    Soak soak;
    Holdings first, last;
    for (std::uint64_t tenth = 1; tenth <= 10; ++tenth) {
        if (!soak.makeCalls(calls / 10)) return 1;
        last = holdings();
        if (tenth == 1) first = last;
        std::printf("%3d %%  %10llu calls  %8.1f MB  %3zu descriptors\n", static_cast<int>(10 * tenth),
                    static_cast<unsigned long long>(tenth * (calls / 10)), last.megabytes, last.descriptors);
        std::fflush(stdout);
    }
    return grew(first, last) ? 1 : 0;
}

} // namespace

int main(int count, char** arguments) try {
    std::uint64_t calls = 1'000'000;
    if (count > 1) {
        constexpr std::uint64_t fewest = 10; // one call for each tenth
        const std::string_view given(arguments[1]);
        const auto [end, error] = std::from_chars(given.data(), given.data() + given.size(), calls);
        if (count > 2 || error != std::errc() || end != given.data() + given.size() || calls < fewest) {
            std::fprintf(stderr, "kestrel: soak needs a number of calls, 10 or more\n");
            return 2;
        }
    }
    return soak(calls);
} catch (const std::exception& error) {
    std::fprintf(stderr, "kestrel: %s\n", error.what());
    return 2;
}
