#include "network/NetworkNames.h"

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace slib {

namespace {

constexpr std::size_t kNameSize = 1025;
constexpr std::size_t kServiceSize = 32;

} // namespace

std::string IPForName(const std::string& hostName) {
    const hostent* const host = ::gethostbyname(hostName.c_str());
    if (host == nullptr || host->h_addrtype != AF_INET || host->h_addr_list[0] == nullptr)
        return "Cannot retrieve IP for host";
    in_addr first{};
    std::memcpy(&first, host->h_addr_list[0], sizeof first);
    return ::inet_ntoa(first);
}

std::string NameForIP(const std::string& address) {
    sockaddr_in socketAddress{};
#ifdef SIN6_LEN // the system's socket addresses begin with their length
    socketAddress.sin_len = sizeof socketAddress;
#endif
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_addr.s_addr = ::inet_addr(address.c_str());
    if (socketAddress.sin_addr.s_addr == INADDR_NONE) return "Invalid IP address";
    std::array<char, kNameSize> name{};
    std::array<char, kServiceSize> service{};
    const int error = ::getnameinfo(reinterpret_cast<const sockaddr*>(&socketAddress), sizeof socketAddress,
                                    name.data(), static_cast<socklen_t>(name.size()), service.data(),
                                    static_cast<socklen_t>(service.size()), NI_NUMERICSERV);
    return error == 0 ? name.data() : "Cannot get host information for IP";
}

} // namespace slib
