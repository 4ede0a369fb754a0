#include "host/cli/Commands.h"
#include "host/cli/Output.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <clocale>
#include <exception>
#include <stdexcept>

namespace {

using host::cli::Command;

int run(const std::vector<std::string>& given) {
    CLI::App application("The development host of the Vex Kestrel Plug-In", "kestrel");
    application.require_subcommand(1);
    application.set_version_flag("--version", "kestrel " KESTREL_VERSION);
    std::vector<Command> commands;
    for (const auto add :
         {host::cli::addEval, host::cli::addRepl, host::cli::addFunctions, host::cli::addHtml,
          host::cli::addCheck, host::cli::addExpect, host::cli::addHelp, host::cli::addCompletion})
        commands.push_back(add(application));

    std::vector<std::string> arguments = given;
    const bool namesCommand = !given.empty() && !given.front().starts_with('-');
    const auto named = std::find_if(commands.begin(), commands.end(), [&](const Command& command) {
        return namesCommand && command.options->get_name() == given.front();
    });
    if (namesCommand && named == commands.end())
        throw std::runtime_error("there is no command " + given.front() + "; help lists them");
    if (named != commands.end() && named->takeArguments) named->takeArguments(arguments);
    std::reverse(arguments.begin(), arguments.end()); // the order in which the library takes them
    try {
        application.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        host::cli::write(application.help());
        return host::cli::kSucceeded;
    } catch (const CLI::CallForVersion& version) {
        host::cli::writeLine(version.what());
        return host::cli::kSucceeded;
    }
    if (named == commands.end()) throw std::runtime_error("a command comes first; help lists them");
    return named->run();
}

} // namespace

int main(int argc, char** argv) try {
    // Characters are UTF-8 and as wide as Unicode says in every locale.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    host::cli::prepareStandardStreams();
    return run({argv + 1, argv + argc});
} catch (const std::exception& problem) {
    host::cli::report(problem.what());
    return host::cli::kWrongUsage;
}
