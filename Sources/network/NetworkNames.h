#pragma once

/// Names and IPv4 addresses of hosts, from the system's resolver.
///
/// A failed lookup returns a message instead of the result. It takes as long as the resolver takes. It
/// belongs to the main thread, because gethostbyname has one buffer for all its results. Only IPv4 is
/// supported: on a network without it, names still give their IPv4 addresses, which cannot be reached.

#include <string>

namespace slib {

/// The first IPv4 address of a host in dotted form, or "Cannot retrieve IP for host".
std::string IPForName(const std::string& hostName);

/// The name of the host with an IPv4 address, in any form that inet_addr reads ("10.1" is 10.0.0.1). An
/// address without a name gives the address in dotted form. The name comes from the network: up to 1024
/// bytes, none of them zero. Any other string, and 255.255.255.255, give "Invalid IP address". A failing
/// resolver gives "Cannot get host information for IP".
std::string NameForIP(const std::string& address);

} // namespace slib
