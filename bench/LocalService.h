#pragma once

#include <array>
#include <string>
#include <sys/socket.h>
#include <thread>

namespace bench {

/// The first web service that is asked for the public address, on this machine: while one lives, the name of
/// that service is looked up as this address, and nothing is asked of the network.
class LocalService {
public:
    /// Throws std::runtime_error when there is no socket for it.
    LocalService();
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;
    ~LocalService();

    /// The name that the plug-in looks up.
    [[nodiscard]] static const char* name();

private:
    void serve() const;

    int listener_;
    std::array<int, 2> stop_{};
    std::thread thread_;
};

} // namespace bench
