#include "host/check/Checks.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <poll.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace host::check {

namespace {

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

/// The checks call every function, many times over. Where the system lets a process leave the network, they
/// reach nobody and wait for nobody: root may do so at once, others in a user namespace of their own.
void leaveTheNetwork() {
#ifdef CLONE_NEWNET
    if (::unshare(CLONE_NEWNET) != 0) ::unshare(CLONE_NEWUSER | CLONE_NEWNET);
#endif
}

constexpr char kSkipped = '-', kJudged = '=';

[[noreturn]] void runInChild(const Check& check, const Subject& subject, int answer) {
    Finding finding;
    char kind = kJudged;
    leaveTheNetwork();
    try {
        finding = check.run(subject);
    } catch (const NoGround& reason) {
        finding = reason.what();
        kind = kSkipped;
    } catch (const std::exception& problem) {
        finding = problem.what();
    } catch (...) {
        finding = "something was thrown that is not a std::exception";
    }
    // The last byte tells a finding that is empty from a process that ended before it could answer.
    writeAll(answer, kind + finding + '\n');
    ::_exit(0);
}

/// Everything the child writes until it ends or time is up; false when time was up.
bool readAnswer(int descriptor, int secondsAllowed, std::string& answer) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(secondsAllowed);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        pollfd waiting{.fd = descriptor, .events = POLLIN, .revents = 0};
        const int ready = ::poll(&waiting, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        std::array<char, 4096> chunk{};
        const ssize_t size = ::read(descriptor, chunk.data(), chunk.size());
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) return true;
        answer.append(chunk.data(), static_cast<std::size_t>(size));
    }
}

} // namespace

Outcome runIsolated(const Check& check, const Subject& subject, int secondsAllowed) {
    const auto failed = [](std::string words) {
        return Outcome{.verdict = Verdict::failed, .words = std::move(words)};
    };
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0)
        return failed(std::string("no pipe could be made: ") + std::strerror(errno));
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe[0]);
        runInChild(check, subject, pipe[1]);
    }
    ::close(pipe[1]);
    if (child < 0) {
        ::close(pipe[0]);
        return failed(std::string("no process could be started: ") + std::strerror(errno));
    }
    std::string answer;
    const bool inTime = readAnswer(pipe[0], secondsAllowed, answer);
    ::close(pipe[0]);
    if (!inTime) ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (!inTime) return failed("did not end within " + std::to_string(secondsAllowed) + " seconds");
    if (WIFSIGNALED(status))
        return failed(std::string("ended the process: ") + ::strsignal(WTERMSIG(status)));
    if (answer.empty() || answer.back() != '\n')
        return failed("ended the process with status " + std::to_string(WEXITSTATUS(status)));
    const std::string words = answer.substr(1, answer.size() - 2);
    if (answer.front() == kSkipped) return {.verdict = Verdict::skipped, .words = words};
    return words.empty() ? Outcome{} : failed(words);
}

std::vector<Judgement> runChecks(const Subject& subject, int level,
                                 const std::function<void(const Judgement&)>& onJudged) {
    std::vector<Judgement> judged;
    const auto hasPassed = [&](std::string_view name) {
        return name.empty() || std::ranges::any_of(judged, [name](const Judgement& row) {
                   return row.check->name == name && row.outcome.verdict == Verdict::passed;
               });
    };
    for (const Check& check : checks()) {
        if (check.level > level) break;
        judged.push_back({.check = &check,
                          .outcome = hasPassed(check.needs)
                                         ? runIsolated(check, subject)
                                         : Outcome{.verdict = Verdict::skipped,
                                                   .words = std::string(check.needs) + " has not passed"}});
        onJudged(judged.back());
        const bool isLoaded = judged.front().outcome.verdict == Verdict::passed;
        if (!isLoaded) break;
    }
    return judged;
}

} // namespace host::check
