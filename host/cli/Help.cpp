#include "host/cli/Commands.h"

#include "host/cli/FunctionHelp.h"
#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace host::cli {

namespace {

struct HelpOptions {
    SessionOptions session;
    std::string topic; ///< a command or a function; empty: the program
    bool page = false; ///< the page of all functions of the app in place of a topic
};

/// CLI::App::help would describe the command that runs, which is this one.
std::string textOf(const CLI::App& command, const std::string& name) {
    return command.get_formatter()->make_help(&command, name, CLI::AppFormatMode::Normal);
}

int help(const CLI::App& application, const HelpOptions& options) {
    if (options.page) {
        write(functionsPage(calc::FunctionTable()));
        return kSucceeded;
    }
    if (options.topic.empty()) {
        write(textOf(application, application.get_name()));
        return kSucceeded;
    }
    const auto isTopic = [&](const CLI::App* command) { return command->get_name() == options.topic; };
    for (const CLI::App* command : application.get_subcommands(isTopic)) {
        write(textOf(*command, application.get_name() + " " + command->get_name()));
        return kSucceeded;
    }
    LoadedPlugIn loaded(options.session.libraries());
    const std::string text = helpFor(fromUtf8(options.topic), loaded);
    if (text.empty()) throw std::runtime_error("there is no command and no function " + options.topic);
    write(text);
    return kSucceeded;
}

} // namespace

Command addHelp(CLI::App& application) {
    const auto options = std::make_shared<HelpOptions>();
    CLI::App& command = *application.add_subcommand("help", "Describes a command or a function.");
    addPlugInOption(command, options->session);
    command.add_option("topic", options->topic, "a command or a function")->type_name("COMMAND|FUNCTION");
    command.add_flag("--functions-page", options->page, "write docs/host-functions.md")->group("Documents");
    return {.options = &command,
            .run = [options, &application] { return help(application, *options); },
            .takeArguments = {}};
}

} // namespace host::cli
