#pragma once

/// The device's public IPv4 address, as a web service sees it.
///
/// Only the first address of the service's name is tried; its family may be any. A network with IPv6 only may
/// translate the service's IPv4 address; the response then has the translator's public address. Without a
/// translation, the lookup or the connection fails. A response with an IPv6 address counts as a wrong
/// response.

#include "network/PublicIPServices.h"

#include <chrono>

/// The outcomes of a request. A timeout counts as the failure of the step that it ends.
enum PublicIPCode : short {
    kPublicIPFound = 0,
    kHostNotResolved = -3,
    kNoSocket = -4,
    kNotConnected = -5, ///< 11 attempts failed, or the time was over
    kNotSent = -6,
    kNotReceived = -7,
    kNoAddress = -8, ///< the response has no marker, or no address after it
};

/// The longest time for connecting and receiving, for all services together. It is half of the time after
/// which the system ends an app that hangs, less half a second for the rest of the call. The resolver's time
/// is not counted, because a lookup cannot be ended.
constexpr std::chrono::milliseconds kNetworkTime{9500};

/// One part in this many of the time is kept for each later service. So the first service may use six tenths,
/// which is enough for a slow one, and the last may use all that is left.
constexpr int kKeptPart = 10;

/// The most bytes of a response that are used. There is one read: of a response in pieces, the first piece.
constexpr std::size_t kResponseSize = 16000;

/// Asks a service, by its number in network/PublicIPServices.h, over plain HTTP, and returns a PublicIPCode.
/// `out` has at least kAddressBufferSize bytes. It receives the address and a zero. After kNoAddress it has
/// the output of copyAddress. After any other error it is empty. Every failed attempt to connect writes a
/// line to standard output. The service may use all of kNetworkTime.
int GetClientPublicIP(int service, char* out);

/// Asks kServicesAsked, one after another until one gives an address. Returns the code of the last one asked.
int askForPublicIP(char* out, std::chrono::milliseconds time = kNetworkTime);
