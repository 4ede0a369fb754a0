#include "GetClientPublicIP.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <optional>
#include <string>
#include <sys/socket.h>

namespace {

constexpr int kConnectionAttempts = 11;

struct Address {
    int family;
    int type;
    int protocol;
    socklen_t size;
    sockaddr_storage storage;
};

std::optional<Address> firstAddressOf(const std::string& host) {
    addrinfo wanted{};
    wanted.ai_family = AF_UNSPEC;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), "http", &wanted, &found) != 0) return std::nullopt;
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
    if (found == nullptr || found->ai_addrlen > sizeof(sockaddr_storage)) return std::nullopt;
    Address address{found->ai_family, found->ai_socktype, found->ai_protocol, found->ai_addrlen, {}};
    std::memcpy(&address.storage, found->ai_addr, found->ai_addrlen);
    return address;
}

bool connect(kst::Deadline deadline, int socket, const Address& address) {
    for (int attempt = 1;; ++attempt) {
        const int error = kst::ConnectBy(deadline, socket, reinterpret_cast<const sockaddr&>(address.storage),
                                         address.size);
        if (error == 0) return true;
        std::printf("Error while connecting: %s\n", std::strerror(error));
        std::fflush(stdout); // a whole line, whatever becomes of the process
        if (attempt == kConnectionAttempts || kst::Deadline::clock::now() >= deadline) return false;
    }
}

} // namespace

int GetClientPublicIP(int service, char* out) {
    out[0] = '\0';
    const PublicIPService& asked = ServiceNumbered(service);
    const kst::Deadline deadline = kst::Deadline::clock::now() + kServiceTime;
    const std::string host = asked.host;
    const std::string request = "GET / HTTP/1.1\r\nHost: " + host + "\r\n\r\n";

    // Nothing, when time was up, or what the lookup gave, which may be nothing.
    const auto answer = kst::AnswerBy(deadline, [host] { return firstAddressOf(host); });
    if (!answer || !*answer) return kHostNotResolved;
    const Address& address = **answer;
    const kst::Descriptor socket = kst::MakeSocket(address.family, address.type, address.protocol);
    if (!socket.isOpen()) return kNoSocket;
    if (!connect(deadline, socket.get(), address)) return kNotConnected;
    if (!kst::SendBy(deadline, socket.get(), request.data(), request.size())) return kNotSent;
    std::array<char, kResponseSize> response{};
    const ssize_t received = kst::ReceiveBy(deadline, socket.get(), response.data(), response.size());
    if (received < 0) return kNotReceived;
    const std::string_view text(response.data(), static_cast<std::size_t>(received));
    return CopyAddress(asked, text, out) ? kPublicIPFound : kNoAddress;
}
