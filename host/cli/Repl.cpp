#include "host/cli/Commands.h"

#include "host/cli/Candidates.h"
#include "host/cli/LineEditor.h"
#include "host/cli/OpenParts.h"
#include "host/cli/Output.h"
#include "host/cli/PromptCommands.h"
#include "host/cli/Runner.h"
#include "host/values/Encoding.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <unistd.h>

namespace host::cli {

namespace {

constexpr std::string_view kPrompt = "kestrel> ", kFurtherPrompt = "     ... ";

/// Collects lines until what was begun in them is closed.
class Input {
public:
    /// Adds a line; true when the whole can be run.
    bool add(const std::string& line) {
        text_ += (isEmpty() ? "" : "\n") + line;
        return text_.starts_with(':') || openParts(fromUtf8(text_)).empty();
    }
    [[nodiscard]] bool isEmpty() const { return text_.empty(); }
    std::string take() { return std::exchange(text_, {}); }

private:
    std::string text_;
};

void run(Runner& runner, const std::string& input) {
    if (input.find_first_not_of(" \t\n") == std::string::npos) return;
    if (input.starts_with(':'))
        runPromptCommand(runner, input);
    else
        runner.evaluateAndPrint({.text = input, .file = {}});
}

/// Where the history is kept between sessions: $XDG_STATE_HOME/kestrel/history, by default in ~/.local/state.
std::filesystem::path historyFile() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    std::filesystem::path folder;
    if (state != nullptr && *state != '\0')
        folder = state;
    else if (home != nullptr && *home != '\0')
        folder = std::filesystem::path(home) / ".local/state";
    else
        return {};
    folder /= "kestrel";
    std::error_code ignored; // without the folder there is no history
    std::filesystem::create_directories(folder, ignored);
    return folder / "history";
}

void editLines(Runner& runner) {
    LineEditor editor(historyFile());
    editor.onWait = [&] {
        runner.turn();
        return runner.rest();
    };
    editor.onComplete = [&](const std::string& before) { return candidatesFor(before, runner); };
    Input input;
    for (std::string line;;) {
        const LineEditor::End end = editor.read(input.isEmpty() ? kPrompt : kFurtherPrompt, line);
        if (end == LineEditor::End::closed) break;
        if (end == LineEditor::End::cancelled) {
            input.take();
            continue;
        }
        if (!input.add(line)) continue;
        const std::string whole = input.take();
        if (!whole.empty()) editor.remember(whole);
        run(runner, whole);
    }
    write("\n");
}

/// Input that is no terminal, without prompt or history. At its end delayed scripts are served as after
/// `eval`.
void readLines(Runner& runner) {
    const auto inputWaits = [&] {
        pollfd waiting{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
        return ::poll(&waiting, 1, static_cast<int>(runner.rest().count())) > 0;
    };
    Input input;
    std::string bytes;
    for (bool open = true; open;) {
        if (!inputWaits()) {
            runner.turn();
            continue;
        }
        char chunk[4096];
        const ssize_t size = ::read(STDIN_FILENO, chunk, sizeof chunk);
        open = size > 0;
        if (open) bytes.append(chunk, static_cast<std::size_t>(size));
        if (!open && !bytes.empty()) bytes += '\n';
        std::size_t start = 0;
        for (std::size_t end = 0; (end = bytes.find('\n', start)) != std::string::npos; start = end + 1)
            if (input.add(bytes.substr(start, end - start))) run(runner, input.take());
        bytes.erase(0, start);
    }
    run(runner, input.take());
    runner.serve(std::chrono::days(1), std::chrono::seconds(0));
}

} // namespace

Command addRepl(CLI::App& application) {
    const auto options = std::make_shared<SessionOptions>();
    CLI::App& command = *application.add_subcommand(
        "repl", "Evaluates calculations from a prompt, or from a pipe. Scripts run while it waits. :help "
                "describes the prompt.");
    addSessionOptions(command, *options);
    command.add_flag("--json", options->json, "one JSON object a line");
    command.add_flag("--trace", options->trace, "report scripts that start and end");
    return {.options = &command,
            .run =
                [options] {
                    Runner runner(*options);
                    if (::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0)
                        editLines(runner);
                    else
                        readLines(runner);
                    return kSucceeded;
                },
            .takeArguments = {}};
}

} // namespace host::cli
