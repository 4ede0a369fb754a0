#include "host/cli/Output.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace host::cli {

namespace {

bool gIsTerminal = false;       ///< whether standard output was one at the start
bool gEndsAtClosedPipe = false; ///< whether SIGPIPE would have ended the process at the start

/// False with errno set where not everything could be written.
bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            continue;
        }
        if (errno == EAGAIN) {
            pollfd ready{.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

/// Ends the process as the signal does. Libraries of plug-ins make the process ignore or block it.
void endAtClosedPipe() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    std::signal(SIGPIPE, SIG_DFL);
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    std::raise(SIGPIPE);
}

} // namespace

void write(std::string_view bytes) {
    if (writeAll(STDOUT_FILENO, bytes)) return;
    const int problem = errno;
    if (problem == EPIPE && gEndsAtClosedPipe) endAtClosedPipe();
    throw std::runtime_error(std::string("the output cannot be written: ") + std::strerror(problem));
}

void writeLine(std::string text) { write(text += '\n'); }

void writeJson(const nlohmann::ordered_json& object) {
    writeLine(object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

void writeFile(const std::string& file, std::string_view bytes) {
    std::ofstream stream(file, std::ios::binary);
    stream << bytes;
    stream.close();
    if (!stream) throw std::runtime_error(file + " cannot be written");
}

void report(std::string_view sentence) { reportRaw(std::string("kestrel: ").append(sentence).append("\n")); }

void reportRaw(std::string_view bytes) { writeAll(STDERR_FILENO, bytes); }

std::string shown(std::string text) { return gIsTerminal ? withLineFeeds(std::move(text)) : text; }

std::string withLineFeeds(std::string text) {
    std::replace(text.begin(), text.end(), '\r', '\n');
    return text;
}

void prepareStandardStreams() {
    gIsTerminal = ::isatty(STDOUT_FILENO) != 0;
    struct sigaction atPipe{};
    gEndsAtClosedPipe = ::sigaction(SIGPIPE, nullptr, &atPipe) == 0 && atPipe.sa_handler != SIG_IGN;
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace host::cli
