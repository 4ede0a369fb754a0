#pragma once

/// The web services that tell a device its public address, and what is known about their answers.
///
/// A service is asked for "/" and its raw response, headers included, is searched for a marker; what stands
/// between the marker and a terminator is the address. The marker says which form of answer is understood: a
/// service that answers otherwise, or not at all any more, is passed over.
///
/// The hosts have IPv4 addresses alone, as far as is known, so that what they see and tell is an IPv4
/// address.

#include <cstddef>
#include <string_view>

/// Where an address ends in the response.
enum class AddressEnd : char { ofData = 0, carriageReturn = '\r', tag = '<' };

struct PublicIPService {
    const char* host;
    std::string_view marker;
    AddressEnd end;
};

/// Services are numbered from 1 to 9; any other number gives the first.
const PublicIPService& serviceNumbered(int number);

/// The services that are asked, in this order. The others stand in the table.
inline constexpr int kServicesAsked[] = {2, 6, 5, 8, 9};

/// The longest that an address may be. What is collected may have one character more: the one too many.
constexpr std::size_t kMostAddressCharacters = 15;
constexpr std::size_t kAddressBufferSize = kMostAddressCharacters + 2;

/// Copies the address out of a response into `out`, a buffer of kAddressBufferSize bytes, with a zero behind
/// it. True when it is one: at most 15 characters, three dots, at most three other characters between dots
/// (digits or not), and the terminator behind it. If not, `out` holds what was collected, up to and with the
/// character that was wrong; nothing when there is no marker. The response may be any bytes; nothing is read
/// past its first zero byte or its end.
bool copyAddress(const PublicIPService& service, std::string_view response, char* out);
