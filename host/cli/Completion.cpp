#include "host/cli/Commands.h"

#include "host/cli/Output.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace host::cli {

namespace {

struct CompletionOptions {
    SessionOptions session;
    std::vector<std::string> commands; ///< further commands of the caller
};

constexpr const char* kBegin = R"(# Completion for bash. Load it with:  source <(./kestrel completion)
_kestrel() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} words=
    COMPREPLY=()
    case $before in
)";
constexpr const char* kEnd = R"(    esac
    # Without a proposal bash completes the names of files.
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _kestrel kestrel ./kestrel
)";

std::string optionsOf(const CLI::App& command) {
    std::string names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names += " --" + name;
        for (const std::string& name : option->get_snames())
            names += " -" + name;
    }
    return names;
}

std::string functionNames(const SessionOptions& options) {
    LoadedPlugIn loaded(options.libraries());
    std::string names;
    for (const auto& plugIn : loaded.plugIns())
        for (const RegisteredFunction& function : plugIn->functions())
            names += " " + toUtf8(function.name);
    return names;
}

int writeCompletion(const CLI::App& application, const CompletionOptions& options) {
    std::string names, rows;
    for (const CLI::App* command : application.get_subcommands({})) {
        names += " " + command->get_name();
        if (command->get_name() != "help")
            rows += "    " + command->get_name() + ") words='" + optionsOf(*command) + "' ;;\n";
    }
    for (const std::string& command : options.commands)
        names += " " + command;
    write(kBegin +
          std::string("    --solution) mapfile -t COMPREPLY < <(compgen -d -- \"$word\"); return ;;\n") +
          "    -f | --file | --junit | --plugin | -o) return ;;\n    esac\n" +
          "    if [ \"$COMP_CWORD\" = 1 ]; then set -- ''; else set -- \"${COMP_WORDS[1]}\"; fi\n" +
          "    case $1 in\n    '') words='" + names + "' ;;\n    help) words='" + names +
          functionNames(options.session) + "' ;;\n" + rows + kEnd);
    return kSucceeded;
}

} // namespace

Command addCompletion(CLI::App& application) {
    const auto options = std::make_shared<CompletionOptions>();
    CLI::App& command =
        *application.add_subcommand("completion", "Prints a script that completes commands in bash.");
    addPlugInOption(command, options->session);
    command.add_option("command", options->commands, "a further command, several allowed")
        ->type_name("WORD...");
    return {.options = &command,
            .run = [options, &application] { return writeCompletion(application, *options); },
            .takeArguments = {}};
}

} // namespace host::cli
