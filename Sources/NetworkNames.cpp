#include "NetworkNames.h"

#include "BlockingCalls.h"

#include <arpa/inet.h>
#include <array>
#include <mutex>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace slib {

namespace {

constexpr const char* kNoAddress = "Cannot retrieve IP for host";
constexpr const char* kNoName = "Cannot get host information for IP";
constexpr std::size_t kNameSize = 1025;
constexpr std::size_t kServiceSize = 32;

std::string firstAddress(const std::string& hostName, kst::Deadline deadline) {
    // The classic lookup has one place for all its answers. The lock is never destroyed: a lookup that was
    // left behind may still hold it when the process ends.
    static auto& onlyOne = *new std::timed_mutex;
    const std::unique_lock<std::timed_mutex> lock(onlyOne, deadline);
    if (!lock) return kNoAddress;
    const hostent* const host = ::gethostbyname(hostName.c_str());
    if (host == nullptr || host->h_addrtype != AF_INET || host->h_addr_list[0] == nullptr) return kNoAddress;
    std::array<char, INET_ADDRSTRLEN> dotted{};
    const char* const text =
        ::inet_ntop(AF_INET, host->h_addr_list[0], dotted.data(), static_cast<socklen_t>(dotted.size()));
    return text != nullptr ? text : kNoAddress;
}

std::string nameOf(const sockaddr_in& address) {
    std::array<char, kNameSize> name{};
    std::array<char, kServiceSize> service{};
    const int error = ::getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, name.data(),
                                    static_cast<socklen_t>(name.size()), service.data(),
                                    static_cast<socklen_t>(service.size()), NI_NUMERICSERV);
    return error == 0 ? name.data() : kNoName;
}

} // namespace

std::string IPForName(const std::string& hostName) {
    const kst::Deadline deadline = kst::Deadline::clock::now() + kst::kLongestWait;
    return kst::AnswerBy(deadline, [hostName, deadline] { return firstAddress(hostName, deadline); })
        .value_or(kNoAddress);
}

std::string NameForIP(const std::string& address) {
    const in_addr_t parsed = ::inet_addr(address.c_str());
    if (parsed == INADDR_NONE) return "Invalid IP address";
    sockaddr_in socketAddress{};
#ifdef SIN6_LEN // the system's socket addresses begin with their length
    socketAddress.sin_len = sizeof socketAddress;
#endif
    socketAddress.sin_family = AF_INET;
    socketAddress.sin_addr.s_addr = parsed;
    return kst::AnswerBy(kst::Deadline::clock::now() + kst::kLongestWait,
                         [socketAddress] { return nameOf(socketAddress); })
        .value_or(kNoName);
}

} // namespace slib
