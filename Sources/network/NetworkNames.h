#pragma once

/// Names and IPv4 addresses of hosts, as the system's resolver knows them.
///
/// A lookup that fails gives a message in the place of the answer. It takes as long as the resolver takes,
/// and belongs to the main thread, since the classic lookup has one place for all its answers. IPv4 alone: on
/// a network without it, names still have their IPv4 addresses, though nothing can be reached there.

#include <string>

namespace slib {

/// The first IPv4 address of a host in dotted form, or "Cannot retrieve IP for host".
std::string IPForName(const std::string& hostName);

/// The name of the host with an IPv4 address, in any form that inet_addr reads ("10.1" is 10.0.0.1); the
/// address in dotted form when it has no name. The name is what the network says: up to 1024 bytes of any
/// kind but zero. "Invalid IP address" for everything else and for 255.255.255.255, "Cannot get host
/// information for IP" when the resolver fails.
std::string NameForIP(const std::string& address);

} // namespace slib
