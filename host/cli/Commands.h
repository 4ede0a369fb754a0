#pragma once

#include <functional>
#include <string>
#include <vector>

/// The commands of the development host, one a file. Each adds itself to the application and says how it is
/// run.

namespace CLI {
class App;
}

namespace host::cli {

/// Exit statuses.
inline constexpr int kSucceeded = 0, kFailed = 1, kWrongUsage = 2;

struct Command {
    CLI::App* options = nullptr;
    /// Does the work once the options are read; gives the exit status. Throws std::runtime_error for wrong
    /// usage and for what cannot be read, loaded or written (status 2).
    std::function<int()> run;
    /// Takes the arguments that the option library would misread; empty: there are none.
    std::function<void(std::vector<std::string>&)> takeArguments;
};

Command addEval(CLI::App& application);
Command addRepl(CLI::App& application);
Command addFunctions(CLI::App& application);
Command addHtml(CLI::App& application);
Command addCheck(CLI::App& application);
Command addExpect(CLI::App& application);
Command addHelp(CLI::App& application);
Command addCompletion(CLI::App& application);

} // namespace host::cli
