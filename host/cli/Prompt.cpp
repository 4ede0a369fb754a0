#include "host/cli/Commands.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <editline/readline.h>
#include <poll.h>
#include <unistd.h>

namespace host::cli {

namespace {

/// The line editor calls back with plain functions, so what they work on stands here.
Desk* promptDesk = nullptr;
bool promptDone = false;

void onLine(char* line) {
    if (line == nullptr) {
        promptDone = true;
        return;
    }
    if (*line != '\0') {
        ::add_history(line);
        promptDesk->evaluateAndPrint(line);
    }
    std::free(line); // NOLINT(bugprone-unhandled-*): the line editor gives it away
}

/// Whether input comes while the loop rests.
bool inputWaits(const Desk& desk) {
    pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    return ::poll(&input, 1, static_cast<int>(desk.rest().count())) > 0;
}

void editLines(Desk& desk) {
    promptDesk = &desk;
    promptDone = false;
    ::rl_callback_handler_install("kestrel> ", onLine);
    while (!promptDone) {
        if (inputWaits(desk))
            ::rl_callback_read_char();
        else
            desk.turn();
    }
    ::rl_callback_handler_remove();
    std::puts("");
}

/// Input that is no terminal: a calculation a line, without prompt or history. At its end delayed scripts are
/// served as after `eval`.
void readLines(Desk& desk) {
    std::string pending;
    for (bool open = true; open;) {
        if (!inputWaits(desk)) {
            desk.turn();
            continue;
        }
        char chunk[4096];
        const ssize_t size = ::read(STDIN_FILENO, chunk, sizeof chunk);
        open = size > 0;
        if (open) pending.append(chunk, static_cast<std::size_t>(size));
        std::size_t start = 0;
        for (std::size_t end = 0; (end = pending.find('\n', start)) != std::string::npos; start = end + 1)
            if (end > start) desk.evaluateAndPrint(pending.substr(start, end - start));
        pending.erase(0, start);
    }
    if (!pending.empty()) desk.evaluateAndPrint(pending);
    desk.serve(std::chrono::days(1), std::chrono::seconds(0));
}

} // namespace

int prompt(const Options& options) {
    Desk desk(options);
    if (::isatty(STDIN_FILENO) != 0)
        editLines(desk);
    else
        readLines(desk);
    return succeeded;
}

} // namespace host::cli
