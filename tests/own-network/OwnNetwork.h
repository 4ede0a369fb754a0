#pragma once

#include <chrono>
#include <string>

/// The network that tests and fuzzers live in: nothing that they do leaves the process.
///
/// Before main, the program starts itself once more with two libraries preloaded: one reads names from a file
/// of our own, the other makes sockets for the addresses 127.0.0.N out of files in a folder. The code under
/// test is what it always is; it looks up the real names and connects to the real ports.

namespace own_network {

/// What becomes of lookups of the web services' names. At first nobody knows them. The service of number N
/// has the address 127.0.0.N.
enum class Services { unknown, known };
void setServices(Services services);

/// While one of these lives, lookups of the name take a time more.
class Slow {
public:
    Slow(std::string name, std::chrono::milliseconds time);
    Slow(const Slow&) = delete;
    Slow& operator=(const Slow&) = delete;
    ~Slow();
};

} // namespace own_network
