#include "LocalService.h"

#include "network/PublicIPServices.h"

#include <atomic>
#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view kResponse =
    "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 11\r\n\r\n"
    "203.0.113.7";

/// The port of the service; 0 while there is none.
std::atomic<int> gPort{0};

} // namespace

namespace bench {

LocalService::LocalService() : listener_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    constexpr int mostWaiting = 64;
    if (listener_ < 0 || ::bind(listener_, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::listen(listener_, mostWaiting) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        ::pipe(stop_.data()) != 0)
        throw std::runtime_error("no service to measure with");
    thread_ = std::thread([this] { serve(); });
    gPort = ntohs(address.sin_port);
}

LocalService::~LocalService() {
    gPort = 0;
    ::close(stop_[1]);
    thread_.join();
    ::close(stop_[0]);
    ::close(listener_);
}

const char* LocalService::name() { return serviceNumbered(kServicesAsked[0]).host; }

void LocalService::serve() const {
    constexpr int forEver = -1;
    for (;;) {
        std::array<pollfd, 2> polled{{{listener_, POLLIN, 0}, {stop_[0], POLLIN, 0}}};
        ::poll(polled.data(), polled.size(), forEver);
        if (polled[1].revents != 0) return;
        const int client = ::accept(listener_, nullptr, nullptr);
        if (client < 0) continue;
        std::string request;
        std::array<char, 512> chunk{};
        while (!request.ends_with("\r\n\r\n")) {
            const ssize_t size = ::recv(client, chunk.data(), chunk.size(), 0);
            if (size <= 0) break;
            request.append(chunk.data(), static_cast<std::size_t>(size));
        }
        ::send(client, kResponse.data(), kResponse.size(), MSG_NOSIGNAL);
        ::close(client);
    }
}

} // namespace bench

/// Replaces the system's function: it is exported, so the plug-in calls this one.
extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* wanted, addrinfo** found) {
    using Function = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    const int port = gPort;
    if (port == 0 || node == nullptr || std::string_view(node) != bench::LocalService::name())
        return next(node, service, wanted, found);
    return next("127.0.0.1", std::to_string(port).c_str(), wanted, found);
}
