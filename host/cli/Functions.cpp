#include "host/cli/Commands.h"

#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

namespace host::cli {

namespace {

std::string numbered(int id) { return (id < 10 ? " " : "") + std::to_string(id) + "  "; }

std::string rowOf(const RegisteredFunction& function) {
    const std::string most = function.maximum < 0 ? "any" : std::to_string(function.maximum);
    char row[128];
    std::snprintf(row, sizeof row, "%-34s %d..%-3s  0x%04X  ", toUtf8(function.name).substr(0, 64).c_str(),
                  function.minimum, most.c_str(), function.flags);
    return numbered(function.id) + row + toUtf8(function.prototype);
}

std::string rowOf(const RegisteredStep& step) {
    std::string labels;
    for (const StepParameter& parameter : step.parameters)
        labels += (labels.empty() ? " [ " : " ; ") + toUtf8(parameter.label);
    return numbered(step.id) + toUtf8(step.name) + labels + (labels.empty() ? "" : " ]") + "  (script step)";
}

} // namespace

Command addFunctions(CLI::App& application) {
    const auto options = std::make_shared<SessionOptions>();
    CLI::App& command = *application.add_subcommand(
        "functions", "Lists the plug-ins' functions as the host has them registered: identifier, name, "
                     "parameter counts, flags, prototype; then their script steps.");
    addPlugInOption(command, *options);
    return {.options = &command,
            .run =
                [options] {
                    Runner runner(*options);
                    for (const auto& plugIn : runner.loaded().plugIns()) {
                        for (const RegisteredFunction& function : plugIn->functions())
                            writeLine(rowOf(function));
                        for (const auto& step : plugIn->steps())
                            writeLine(rowOf(*step));
                    }
                    return kSucceeded;
                },
            .takeArguments = {}};
}

} // namespace host::cli
