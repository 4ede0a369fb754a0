#include "Benchmarks.h"
#include "Loaded.h"
#include "Measure.h"

#include "PublicIPServices.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <memory>
#include <netdb.h>
#include <netinet/in.h>
#include <string>

/// Lookups of what the machine knows by itself, beside the bare resolver: no row asks the network.

namespace {

host::DataVect argument(const char16_t* text) {
    return {std::make_shared<const host::Data>(host::Text(text))};
}

void benchLookups() {
    const bench::Loaded loaded;
    const auto bareAddress = [] {
        addrinfo wanted{};
        wanted.ai_family = AF_INET;
        addrinfo* found = nullptr;
        if (::getaddrinfo("localhost", nullptr, &wanted, &found) == 0) ::freeaddrinfo(found);
        bench::keep(found);
    };
    const auto bareName = [] {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        std::array<char, 1025> name{};
        bench::keep(::getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, name.data(),
                                  static_cast<socklen_t>(name.size()), nullptr, 0, 0));
    };
    const auto row = [&](const char* name, const char16_t* function, const char16_t* asked,
                         const char* floorName, const auto& floor) {
        const host::RegisteredFunction& ours = loaded.function(function);
        const host::DataVect arguments = argument(asked);
        host::Data result;
        bench::row(name, [&] { loaded.call(ours, arguments, result); }, floorName, floor);
    };
    row("the address of a name", u"Kestrel_GetIPforName", u"localhost", "getaddrinfo", bareAddress);
    row("the name of an address", u"Kestrel_GetNameForIP", u"127.0.0.1", "getnameinfo", bareName);
}

void benchResponse() {
    const std::string response = "HTTP/1.1 200 OK\r\n" + std::string(15'000, 'x') + "\r\n\r\n203.0.113.7";
    std::array<char, kAddressBufferSize> out{};
    bench::row(
        "the address in a response of 15 kB",
        [&] { bench::keep(CopyAddress(ServiceNumbered(2), response, out.data())); }, "strstr",
        [&] { bench::keep(std::strstr(response.c_str(), "\r\n\r\n")); });
}

} // namespace

void bench::benchNetwork() {
    benchLookups();
    benchResponse();
}
