#pragma once

#include "host/app/PlugIn.h"
#include "host/app/Session.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

/// The commands of the development host. Each gives the process's exit status.

namespace host::cli {

inline constexpr int succeeded = 0, evaluationFailed = 1, wrongUsage = 2;

struct Options {
    std::filesystem::path plugIn;
    std::vector<std::filesystem::path> solutions; ///< the first one calculates
    std::vector<std::string> calculations;        ///< UTF-8
    bool json = false;
    std::optional<double> serveSeconds; ///< how long delayed scripts are served; unset: until none is left

    /// A document and how it is converted; lists as Kestrel_GetAsHTML takes them, lines for returns.
    std::filesystem::path document, output; ///< "-" is standard input; no output: standard output
    std::string tags = "all", classes = "all=kst", styles = "all";

    /// Means of testing: one host call in a session that fails, what is left at the end, and the time.
    std::uint64_t failAt = 0; ///< 0: none
    int failWith = 2;
    bool failFromThenOn = false;
    bool reportObjects = false;
    std::optional<std::int64_t> clockSeconds; ///< since 1970; held still
    double idleAfterSeconds = 0;              ///< how long the user stays busy after the last calculation
    std::string nativeEncoding;
};

int evaluate(const Options& options);
int prompt(const Options& options);
int listFunctions(const Options& options);
int check(const Options& options);
int convertHtml(const Options& options);

/// A session with the options' solutions open and the plug-in enabled; throws std::runtime_error (exit status
/// 2) when a solution or the plug-in cannot be had.
class Desk {
public:
    explicit Desk(const Options& options);
    ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    [[nodiscard]] Session& session() { return session_; }
    [[nodiscard]] PlugIn& plugIn() { return *plugIn_; }
    /// Evaluates and writes the result, or the error to standard error; true when it evaluated.
    bool evaluateAndPrint(const std::string& calculation);
    /// The same with a result in place of a calculation.
    bool print(const calc::Result& result);
    /// One turn of the host's loop (Session::turn); true when the next one has work to do at once.
    bool turn();
    /// How long the loop may rest before its next turn: not at all when it has work to do, otherwise until
    /// the next delay ends, a quarter of a second at most.
    [[nodiscard]] std::chrono::milliseconds rest() const;
    /// Turns of the loop until nothing more can come of what has been started, or time is up. Before the
    /// first idle message the user stays busy for `idleAfter`, in which delays end all the same.
    void serve(std::chrono::duration<double> most, std::chrono::duration<double> idleAfter);

private:
    Session session_;
    std::unique_ptr<PlugIn> plugIn_;
    std::size_t idleMessagesOwed_ = 0;
    bool isBusy_ = false, json_;
};

} // namespace host::cli
