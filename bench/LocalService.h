#pragma once

#include <array>
#include <string>
#include <sys/socket.h>
#include <thread>

namespace bench {

/// A local replacement of the first web service for the public address. While it lives, the name of that
/// service leads to this machine, and no request reaches the network.
class LocalService {
public:
    /// Throws std::runtime_error when the system gives no socket.
    LocalService();
    LocalService(const LocalService&) = delete;
    LocalService& operator=(const LocalService&) = delete;
    ~LocalService();

    /// The name of the service, which the plug-in looks up.
    [[nodiscard]] static const char* name();

private:
    void serve() const;

    int listener_;
    std::array<int, 2> stop_{};
    std::thread thread_;
};

} // namespace bench
