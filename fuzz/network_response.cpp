#include "network/GetClientPublicIP.h"
#include "network/PublicIPServices.h"
#include "tests/WebServices.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>

/// Reads any bytes as a service's response. An accepted address has the form of one, is a part of the
/// response, and never overruns the buffer. The services then send the response on the tests' own network:
/// the whole look-up must give the same result, or the error code for the service's behaviour.
///
/// The first byte is the service's number. The second chooses the service's behaviour, and where the response
/// ends relative to the last byte that is searched; blanks before the response fill the distance.

namespace {

using Kind = Behaviour::Kind;
using Buffer = std::array<char, kAddressBufferSize + 1>;

void require(bool holds) {
    if (!holds) std::abort();
}

constexpr char kUntouched = '\x7F';
Buffer untouched() {
    Buffer buffer{};
    buffer.fill(kUntouched);
    return buffer;
}

std::string_view collectedIn(const Buffer& out) {
    require(out.back() == kUntouched);
    const auto* const end = static_cast<const char*>(std::memchr(out.data(), 0, kAddressBufferSize));
    require(end != nullptr);
    return {out.data(), static_cast<std::size_t>(end - out.data())};
}

bool isFoundIn(const PublicIPService& service, std::string_view response, Buffer& out) {
    const bool isAddress = copyAddress(service, response, out.data());
    const std::string_view collected = collectedIn(out);
    require(response.find(collected) != std::string_view::npos);
    if (isAddress)
        require(collected.size() <= kMostAddressCharacters &&
                std::count(collected.begin(), collected.end(), '.') == 3);
    return isAddress;
}

/// Asks a service with this behaviour; gives the code, and the address in `out`.
int ask(int service, const Behaviour& behaviour, Buffer& out) {
    WebServices services({{service, behaviour}});
    const int code = GetClientPublicIP(service, out.data());
    if (code != kPublicIPFound && code != kNoAddress) require(collectedIn(out).empty());
    return code;
}

void askForTheResponse(int service, std::string_view response) {
    Buffer expected = untouched(), out = untouched();
    const std::string bytes(response); // exactly as long as its memory, for the sanitizer
    const bool isAddress =
        isFoundIn(serviceNumbered(service), std::string_view(bytes).substr(0, kResponseSize), expected);
    require(ask(service, {Kind::answers, bytes}, out) == (isAddress ? kPublicIPFound : kNoAddress));
    require(collectedIn(out) == collectedIn(expected));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const int service = data[0] % 10;
    std::string response(reinterpret_cast<const char*>(data + 2), size - 2);
    constexpr std::uint8_t kindMask = 3, placeShift = 2, middle = 32;
    const std::size_t place = data[1] >> placeShift;
    const std::size_t end = kResponseSize + place - middle;
    if (place > 0 && response.size() < end) response.insert(0, end - response.size(), ' ');

    Buffer out = untouched();
    isFoundIn(serviceNumbered(service), response, out);
    if (std::find(std::begin(kServicesAsked), std::end(kServicesAsked), service) == std::end(kServicesAsked))
        return 0;
    switch (data[1] & kindMask) {
    case 1: require(ask(service, {Kind::hangsUp, ""}, out) < 0); break;
    case 2: require(ask(service, {Kind::breaksOff, ""}, out) == kNotReceived); break;
    default: askForTheResponse(service, response); break;
    }
    return 0;
}
