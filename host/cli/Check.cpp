#include "host/check/Checks.h"

#include "host/cli/Commands.h"

#include <cstdio>

namespace host::cli {

int check(const Options& options) {
    if (!std::filesystem::exists(options.plugIn))
        throw std::runtime_error("there is no plug-in at " + options.plugIn.string());
    int passed = 0, failed = 0;
    for (const check::Check& check : check::checks()) {
        const check::Finding finding = check::runIsolated(check, options.plugIn);
        (finding.empty() ? passed : failed) += 1;
        std::printf("%-4s  %d  %-18s  %s\n", finding.empty() ? "pass" : "FAIL", check.level,
                    std::string(check.name).c_str(),
                    finding.empty() ? std::string(check.promise).c_str() : finding.c_str());
        std::fflush(stdout);
    }
    std::printf("%d checks passed, %d failed\n", passed, failed);
    return failed == 0 ? succeeded : evaluationFailed;
}

} // namespace host::cli
