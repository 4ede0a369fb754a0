#pragma once

/// The web services that report a device's public address, and the form of their responses.
///
/// The path of the request is "/". The raw response, headers included, is searched for a marker. The address
/// is the text between the marker and a terminator. A service whose response has another form, or that no
/// longer exists, is skipped.
///
/// The hosts have only IPv4 addresses, as far as is known, so they see and report an IPv4 address.

#include <cstddef>
#include <string_view>

/// The end of an address in the response.
enum class AddressEnd : char { ofData = 0, carriageReturn = '\r', tag = '<' };

struct PublicIPService {
    const char* host;
    std::string_view marker;
    AddressEnd end;
};

/// Services are numbered from 1 to 9. Any other number gives the first.
const PublicIPService& serviceNumbered(int number);

/// The services that are asked, in this order. The other services are in the table only.
inline constexpr int kServicesAsked[] = {2, 6, 5, 8, 9};

/// The longest address. The output may have one character more, at which collecting stops.
constexpr std::size_t kMostAddressCharacters = 15;
constexpr std::size_t kAddressBufferSize = kMostAddressCharacters + 2;

/// Copies the address from a response into `out`, a buffer of kAddressBufferSize bytes, and adds a zero. True
/// for an address: at most 15 characters, three dots, at most three other characters between dots (digits or
/// not), and then the terminator. Otherwise `out` has the characters up to and including the wrong one;
/// without a marker it is empty. The response may be any bytes. Nothing is read after its first zero byte or
/// its end.
bool copyAddress(const PublicIPService& service, std::string_view response, char* out);
