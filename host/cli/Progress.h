#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace host::cli {

/// Shows on standard error how long some work takes, from its third second until it is done. It shows nothing
/// where standard error is no terminal.
class Progress {
public:
    /// `work` is one word or two: "converting".
    explicit Progress(std::string work);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void show();

    std::string work_;
    std::mutex mutex_;
    std::condition_variable end_;
    bool hasEnded_ = false;
    std::thread clock_; ///< runs only for a terminal
};

} // namespace host::cli
