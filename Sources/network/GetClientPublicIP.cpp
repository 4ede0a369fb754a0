#include "network/GetClientPublicIP.h"

#include "network/BlockingCalls.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <netdb.h>
#include <string>

namespace {

constexpr int kConnectionAttempts = 11;

using Clock = kst::Deadline::clock;

bool connect(kst::Deadline deadline, int socket, const addrinfo& to) {
    for (int attempt = 1;; ++attempt) {
        const int error = kst::connectBy(deadline, socket, *to.ai_addr, to.ai_addrlen);
        if (error == 0) return true;
        std::printf("Error while connecting: %s\n", std::strerror(error));
        std::fflush(stdout); // the line is written even when the process ends soon after
        if (attempt == kConnectionAttempts || Clock::now() >= deadline) return false;
    }
}

int exchange(kst::Deadline deadline, int socket, const addrinfo& to, const PublicIPService& service,
             char* out) {
    if (!connect(deadline, socket, to)) return kNotConnected;
    if (!kst::sendAtOnce(socket, "GET / HTTP/1.1\r\nHost: " + std::string(service.host) + "\r\n\r\n"))
        return kNotSent;
    std::array<char, kResponseSize> response{};
    const ssize_t received = kst::receiveBy(deadline, socket, response.data(), response.size());
    if (received < 0) return kNotReceived;
    const std::string_view text(response.data(), static_cast<std::size_t>(received));
    return copyAddress(service, text, out) ? kPublicIPFound : kNoAddress;
}

/// Asks one service. Connecting and receiving may use `left` less `kept`, and the time used is subtracted
/// from `left`.
int ask(const PublicIPService& service, char* out, Clock::duration& left, Clock::duration kept) {
    out[0] = '\0';
    addrinfo wanted{};
    wanted.ai_family = AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(service.host, "http", &wanted, &found) != 0) return kHostNotResolved;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> first(found, ::freeaddrinfo);
    const kst::Socket socket(first->ai_family, first->ai_socktype, first->ai_protocol);
    if (!socket.isReady()) return kNoSocket;
    const kst::Deadline start = Clock::now();
    const int code = exchange(start + left - kept, socket.get(), *first, service, out);
    left -= Clock::now() - start;
    return code;
}

} // namespace

int GetClientPublicIP(int service, char* out) {
    Clock::duration left = kNetworkTime;
    return ask(serviceNumbered(service), out, left, {});
}

int askForPublicIP(char* out, std::chrono::milliseconds time) {
    Clock::duration left = time;
    auto kept = time / kKeptPart * std::ssize(kServicesAsked);
    int code = kHostNotResolved;
    for (const int service : kServicesAsked) {
        kept -= time / kKeptPart;
        code = ask(serviceNumbered(service), out, left, kept);
        if (code == kPublicIPFound) break;
    }
    return code;
}
