#pragma once

#include <chrono>
#include <string>

/// A private network for tests and fuzzers: no packet leaves the process.
///
/// Before main, the program starts itself again with two preloaded libraries. One reads host names from a
/// file; the other emulates sockets of the addresses 127.0.0.N with files in a folder. The code under test is
/// unchanged: it looks up the real names and connects to the real ports.

namespace own_network {

/// Whether the names of the web services can be looked up; at first they are unknown. Service number N has
/// the address 127.0.0.N.
enum class Services { unknown, known };
void setServices(Services services);

/// Delays look-ups of the name by `time` as long as the object lives.
class Slow {
public:
    Slow(std::string name, std::chrono::milliseconds time);
    Slow(const Slow&) = delete;
    Slow& operator=(const Slow&) = delete;
    ~Slow();
};

} // namespace own_network
