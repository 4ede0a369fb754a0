#include "host/cli/Terminal.h"

#include "host/calc/Engine.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cwchar>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <termios.h>
#include <unistd.h>

namespace host::cli {

namespace {

constexpr std::array kWatched{SIGINT, SIGWINCH, SIGCONT};

/// The data of the handler.
std::array<int, 2> gPipe{-1, -1};
std::atomic<bool> gIsInterrupted = false;
termios gFoundTerminal{};
std::array<struct sigaction, kWatched.size()> gBefore{};

void onSignal(int signal) {
    const int savedError = errno;
    if (signal == SIGINT) {
        if (gIsInterrupted.exchange(true)) {
            ::tcsetattr(STDIN_FILENO, TCSANOW, &gFoundTerminal);
            ::signal(SIGINT, SIG_DFL);
            ::raise(SIGINT);
        }
        calc::stopCalculations();
    }
    const char kind = signal == SIGINT ? 'i' : 'r';
    [[maybe_unused]] const ssize_t written = ::write(gPipe[1], &kind, 1);
    errno = savedError;
}

} // namespace

Signals::Signals() {
    ::tcgetattr(STDIN_FILENO, &gFoundTerminal);
    if (::pipe2(gPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    struct sigaction action{};
    action.sa_handler = onSignal;
    for (std::size_t i = 0; i < kWatched.size(); ++i)
        ::sigaction(kWatched[i], &action, &gBefore[i]);
}

Signals::~Signals() {
    if (gPipe[0] < 0) return;
    for (std::size_t i = 0; i < kWatched.size(); ++i)
        ::sigaction(kWatched[i], &gBefore[i], nullptr);
    for (int& end : gPipe)
        ::close(std::exchange(end, -1));
}

int Signals::descriptor() const { return gPipe[0]; }

Signals::Taken Signals::take() {
    Taken taken;
    for (char kind = 0; ::read(gPipe[0], &kind, 1) == 1;)
        (kind == 'i' ? taken.interrupt : taken.redraw) = true;
    gIsInterrupted = false;
    calc::resumeCalculations();
    return taken;
}

CapturedOutput::CapturedOutput() : file_(::memfd_create("kestrel-output", MFD_CLOEXEC)) {
    if (file_ < 0) return;
    output_ = ::dup(STDOUT_FILENO);
    error_ = ::dup(STDERR_FILENO);
    ::dup2(file_, STDOUT_FILENO);
    ::dup2(file_, STDERR_FILENO);
}

void CapturedOutput::restore() {
    if (output_ < 0 || error_ < 0) return;
    ::dup2(output_, STDOUT_FILENO);
    ::dup2(error_, STDERR_FILENO);
    for (int* descriptor : {&output_, &error_, &file_})
        ::close(std::exchange(*descriptor, -1));
}

std::string CapturedOutput::take() {
    if (file_ < 0) return {};
    const off_t size = ::lseek(file_, 0, SEEK_END);
    std::string text(static_cast<std::size_t>(std::max<off_t>(size, 0)), '\0');
    const ssize_t read = ::pread(file_, text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(read, 0)));
    restore();
    return text;
}

std::size_t rowsBelow(std::wstring_view text, std::size_t columns) {
    std::size_t row = 0, column = 0;
    for (const wchar_t character : text) {
        const auto width = static_cast<std::size_t>(std::max(::wcwidth(character), 0));
        if (character == L'\n' || column + width > columns) {
            ++row;
            column = 0;
        }
        column += width;
    }
    return column == columns ? row + 1 : row;
}

std::size_t terminalColumns() {
    constexpr std::size_t usual = 80;
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
}

} // namespace host::cli
