#include "host/cli/Commands.h"

#include "host/values/Encoding.h"

#include <cstdio>

namespace host::cli {

int listFunctions(const Options& options) {
    Desk desk(options);
    for (const RegisteredFunction& function : desk.plugIn().functions()) {
        const std::string most = function.maximum < 0 ? "any" : std::to_string(function.maximum);
        std::printf("%2d  %-34s %d..%-3s  0x%04X  %s\n", function.id, toUtf8(function.name).c_str(),
                    function.minimum, most.c_str(), function.flags, toUtf8(function.prototype).c_str());
    }
    return succeeded;
}

} // namespace host::cli
