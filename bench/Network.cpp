#include "Benchmarks.h"
#include "Inputs.h"
#include "Loaded.h"
#include "LocalService.h"
#include "Measure.h"

#include "network/PublicIPServices.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <string>
#include <unistd.h>

/// Look-ups of local names, compared with the resolver alone, and a web service on this machine. No row uses
/// the network.

namespace bench {

namespace {

void lookUpName() { keep(::gethostbyname("localhost")); }

void lookUpAddress() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::array<char, 1025> name{};
    keep(::getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, name.data(),
                       static_cast<socklen_t>(name.size()), nullptr, 0, 0));
}

/// One exchange with the service, by blocking calls.
void askService() {
    addrinfo wanted{};
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(LocalService::name(), "http", &wanted, &found) != 0) return;
    const int socket = ::socket(found->ai_family, found->ai_socktype, found->ai_protocol);
    constexpr std::string_view request = "GET / HTTP/1.1\r\nHost: localhost\r\n\r\n";
    std::array<char, 1024> response{};
    if (socket >= 0 && ::connect(socket, found->ai_addr, found->ai_addrlen) == 0 &&
        ::send(socket, request.data(), request.size(), MSG_NOSIGNAL) > 0)
        keep(::recv(socket, response.data(), response.size(), 0));
    if (socket >= 0) ::close(socket);
    ::freeaddrinfo(found);
}

} // namespace

void benchNetwork() {
    const Loaded loaded;
    const auto rowOf = [&](const char* name, const char16_t* function, const host::DataVect& arguments,
                           const char* floorName, const auto& floor) {
        const host::RegisteredFunction& ours = loaded.function(function);
        host::Data result;
        row(name, [&] { loaded.call(ours, arguments, result); }, floorName, floor);
    };
    rowOf("Kestrel_GetIPforName", u"Kestrel_GetIPforName", texts({u"localhost"}), "gethostbyname",
          lookUpName);
    rowOf("Kestrel_GetNameForIP", u"Kestrel_GetNameForIP", texts({u"127.0.0.1"}), "getnameinfo",
          lookUpAddress);
    const LocalService service;
    rowOf("Kestrel_GetClientPublicIPAddress", u"Kestrel_GetClientPublicIPAddress", {},
          "the exchange by calls that wait", askService);
}

void benchResponseBesidePeers() {
    const std::string response = "HTTP/1.1 200 OK\r\n" + std::string(15'000, 'x') + "\r\n\r\n203.0.113.7";
    std::array<char, kAddressBufferSize> out{};
    row(
        "the address in a response of 15 kB",
        [&] { keep(copyAddress(serviceNumbered(kServicesAsked[0]), response, out.data())); }, "strstr",
        [&] { keep(std::strstr(response.c_str(), "\r\n\r\n")); });
}

} // namespace bench
