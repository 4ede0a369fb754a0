#include "network/PublicIPServices.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr PublicIPService kServices[] = {
    {"ip-lookup.net", "My IP address: ", AddressEnd::tag},
    {"api.ipify.org", "\r\n\r\n", AddressEnd::ofData},
    {"whatismyipaddress.com", "IP Information: ", AddressEnd::tag},
    // The path is part of the name that is looked up and of the request's Host line.
    {"dynamic.zoneedit.com/checkip.html", "\r\n\r\nd\r\n", AddressEnd::ofData},
    {"ip1.dynupdate.no-ip.com", "close\r\n\r\n", AddressEnd::ofData},
    {"v4.ident.me", "\r\n\r\nb\r\n", AddressEnd::carriageReturn},
    {"ifconfig.me", "<strong id=\"ip_address\">", AddressEnd::tag},
    {"www.whatismypublicip.com", "Your IP is ", AddressEnd::tag},
    {"checkip.dyndns.org", "Current IP Address: ", AddressEnd::tag},
};

constexpr int kDots = 3;
constexpr int kMostInGroup = 3;

/// The position of the first character that is too many, in the address or between its dots.
std::size_t firstWrong(std::string_view address) {
    int inGroup = 0;
    for (std::size_t i = 0; i < address.size(); ++i) {
        inGroup = address[i] == '.' ? 0 : inGroup + 1;
        if (i == kMostAddressCharacters || inGroup > kMostInGroup) return i;
    }
    return std::string_view::npos;
}

} // namespace

const PublicIPService& serviceNumbered(int number) {
    const bool isKnown = number >= 1 && number <= static_cast<int>(std::size(kServices));
    return kServices[isKnown ? number - 1 : 0];
}

bool copyAddress(const PublicIPService& service, std::string_view response, char* out) {
    out[0] = '\0';
    const std::string_view text = response.substr(0, response.find('\0'));
    const std::size_t marker = text.find(service.marker);
    if (marker == std::string_view::npos) return false;

    const std::string_view rest = text.substr(marker + service.marker.size());
    const std::size_t end = rest.find(static_cast<char>(service.end));
    const std::string_view address = rest.substr(0, end);
    const std::size_t wrong = firstWrong(address);
    const std::string_view copied = address.substr(0, wrong == std::string_view::npos ? wrong : wrong + 1);
    out[copied.copy(out, copied.size())] = '\0';
    const bool isTerminated = end != std::string_view::npos || service.end == AddressEnd::ofData;
    return wrong == std::string_view::npos && isTerminated &&
           std::count(copied.begin(), copied.end(), '.') == kDots;
}
