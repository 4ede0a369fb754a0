#include "host/cli/Commands.h"

#include "host/app/Faults.h"
#include "host/app/ObjectCounts.h"

#include <chrono>
#include <cstdio>

namespace host::cli {

namespace {

/// Serves what the calculations started, until nothing waits or time is up.
void serve(Desk& desk, double seconds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (desk.turn() > 0 && std::chrono::steady_clock::now() < deadline) {
    }
}

} // namespace

int evaluate(const Options& options) {
    bool allGood = true;
    {
        Desk desk(options);
        if (options.failAt > 0)
            faults().arm(options.failAt, static_cast<Faults::Kind>(options.failWith), options.failFromThenOn);
        for (const std::string& calculation : options.calculations)
            allGood = desk.evaluateAndPrint(calculation) && allGood;
        constexpr double aDay = 86'400;
        serve(desk, options.serveSeconds.value_or(aDay));
        faults().disarm();
    }
    if (options.reportObjects) {
        const std::string left = objectCounts().describe();
        std::fprintf(stderr, "kestrel: host objects left: %s\n", left.empty() ? "none" : left.c_str());
    }
    return allGood ? succeeded : evaluationFailed;
}

} // namespace host::cli
