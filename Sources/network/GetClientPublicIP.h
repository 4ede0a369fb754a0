#pragma once

/// The device's public IPv4 address, as a web service sees it.
///
/// The address that the service's name stands for first, of whatever family, is the one that is tried. On a
/// network with IPv6 alone that is the network's translation of the service's IPv4 address, where it offers
/// one, and the answer is the translator's public address; where it offers none, the lookup or the connection
/// fails. A service that sees an IPv6 address and says so is understood as a wrong answer.

#include "network/PublicIPServices.h"

#include <chrono>

/// The outcomes of asking a service. A timeout is the failure of the step that it ends.
enum PublicIPCode : short {
    kPublicIPFound = 0,
    kHostNotResolved = -3,
    kNoSocket = -4,
    kNotConnected = -5, ///< 11 times in a row, or until time was up
    kNotSent = -6,
    kNotReceived = -7,
    kNoAddress = -8, ///< the response has no marker, or no address behind it
};

/// The longest that connecting and receiving take, of all services together: half of the time after which the
/// system ends an app that hangs, less half a second for the rest of the call. The resolver's time is not
/// counted, since nothing can end a lookup.
constexpr std::chrono::milliseconds kNetworkTime{9500};

/// The part of the time that is kept for each service still to be asked. The first may use six tenths, which
/// lets a slow one answer; the last may use all that is left.
constexpr int kKeptPart = 10;

/// The bytes of a response that are looked at. One read: of an answer that comes in pieces, the first.
constexpr std::size_t kResponseSize = 16000;

/// Asks a service, by its number in network/PublicIPServices.h, over plain HTTP, and gives a PublicIPCode.
/// `out` has at least kAddressBufferSize bytes; it holds the address and a zero, and after kNoAddress what
/// copyAddress has left there. Otherwise it is empty. Every attempt to connect that fails writes a line to
/// standard output. The service may use all of kNetworkTime.
int GetClientPublicIP(int service, char* out);

/// The same for kServicesAsked, one after another until one has answered well. Gives the last one's code.
int askForPublicIP(char* out, std::chrono::milliseconds time = kNetworkTime);
