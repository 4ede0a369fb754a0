#include "host/cli/Progress.h"

#include "host/cli/Output.h"

#include <unistd.h>
#include <utility>

namespace host::cli {

Progress::Progress(std::string work) : work_(std::move(work)) {
    if (::isatty(STDERR_FILENO) != 0) clock_ = std::thread([this] { show(); });
}

Progress::~Progress() {
    if (!clock_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        hasEnded_ = true;
    }
    end_.notify_one();
    clock_.join();
}

void Progress::show() {
    constexpr std::string_view eraseLine = "\r\033[K";
    std::unique_lock lock(mutex_);
    int seconds = 0;
    while (!end_.wait_for(lock, std::chrono::seconds(1), [this] { return hasEnded_; }))
        if (++seconds >= 2)
            reportRaw(std::string(eraseLine) + "kestrel: " + work_ + ", " + std::to_string(seconds) + " s");
    if (seconds >= 2) reportRaw(eraseLine);
}

} // namespace host::cli
