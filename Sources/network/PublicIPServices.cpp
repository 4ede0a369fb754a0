#include "network/PublicIPServices.h"

#include <iterator>

namespace {

constexpr PublicIPService kServices[] = {
    {"ip-lookup.net", "My IP address: ", AddressEnd::tag},
    {"api.ipify.org", "\r\n\r\n", AddressEnd::ofData},
    {"whatismyipaddress.com", "IP Information: ", AddressEnd::tag},
    // With its path, which stands in the name to look up and in the request as it is.
    {"dynamic.zoneedit.com/checkip.html", "\r\n\r\nd\r\n", AddressEnd::ofData},
    {"ip1.dynupdate.no-ip.com", "close\r\n\r\n", AddressEnd::ofData},
    {"v4.ident.me", "\r\n\r\nb\r\n", AddressEnd::carriageReturn},
    {"ifconfig.me", "<strong id=\"ip_address\">", AddressEnd::tag},
    {"www.whatismypublicip.com", "Your IP is ", AddressEnd::tag},
    {"checkip.dyndns.org", "Current IP Address: ", AddressEnd::tag},
};

constexpr int kDots = 3;
constexpr int kMostInGroup = 3;

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

    std::size_t size = 0;
    int dots = 0;
    int inGroup = 0;
    for (const char c : text.substr(marker + service.marker.size())) {
        if (c == static_cast<char>(service.end)) return dots == kDots;
        out[size++] = c;
        out[size] = '\0';
        if (size > kMostAddressCharacters) return false;
        if (c == '.') {
            ++dots;
            inGroup = 0;
        } else if (++inGroup > kMostInGroup) {
            return false;
        }
    }
    return service.end == AddressEnd::ofData && dots == kDots;
}
