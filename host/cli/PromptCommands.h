#pragma once

#include <span>
#include <string>
#include <string_view>

namespace host::cli {

class Runner;

/// A command of the prompt.
struct PromptCommand {
    std::string_view name;       ///< with its colon
    std::string_view parameters; ///< as help shows them; empty: it takes none
    std::string_view sentence;
    /// Runs it with the text after its name; throws std::runtime_error when it cannot be done.
    void (*run)(Runner& runner, const std::string& argument);
};

std::span<const PromptCommand> promptCommands();

/// Runs a line that begins with a colon; an unknown command and what it complains of go to standard error.
void runPromptCommand(Runner& runner, const std::string& line);

} // namespace host::cli
