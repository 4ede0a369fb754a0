#include "host/cli/Commands.h"

#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <cstdio>
#include <memory>

namespace host::cli {

namespace {

std::string rowOf(const RegisteredFunction& function) {
    const std::string most = function.maximum < 0 ? "any" : std::to_string(function.maximum);
    char row[128];
    std::snprintf(row, sizeof row, "%2d  %-34s %d..%-3s  0x%04X  ", function.id,
                  toUtf8(function.name).substr(0, 64).c_str(), function.minimum, most.c_str(),
                  function.flags);
    return row + toUtf8(function.prototype);
}

} // namespace

Command addFunctions(CLI::App& application) {
    const auto options = std::make_shared<SessionOptions>();
    CLI::App& command = *application.add_subcommand(
        "functions", "Lists the plug-in's functions as the host has them registered: identifier, name, "
                     "parameter counts, flags, prototype.");
    addPlugInOption(command, *options);
    return {.options = &command,
            .run =
                [options] {
                    Runner runner(*options);
                    for (const RegisteredFunction& function : runner.plugIn().functions())
                        writeLine(rowOf(function));
                    return kSucceeded;
                },
            .takeArguments = {}};
}

} // namespace host::cli
