#include "host/cli/Commands.h"

#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"

#include <chrono>
#include <cstdio>

namespace host::cli {

int evaluate(const Options& options) {
    bool allGood = true;
    {
        Desk desk(options);
        if (options.failAt > 0)
            faults().arm(options.failAt, static_cast<Faults::Kind>(options.failWith), options.failFromThenOn);
        for (const std::string& calculation : options.calculations)
            allGood = desk.evaluateAndPrint(calculation) && allGood;
        constexpr double aDay = 86'400;
        using Seconds = std::chrono::duration<double>;
        desk.serve(Seconds(options.serveSeconds.value_or(aDay)), Seconds(options.idleAfterSeconds));
        faults().disarm();
    }
    if (options.reportObjects) {
        const std::string left = objectCounts().describe();
        std::fprintf(stderr, "kestrel: host objects left: %s\n", left.empty() ? "none" : left.c_str());
    }
    return allGood ? succeeded : evaluationFailed;
}

} // namespace host::cli
