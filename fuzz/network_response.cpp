#include "PublicIPServices.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

/// Any bytes as a service's response, the first of them being the service's number. What is taken for an
/// address is one in form; nothing is written past the buffer, and what is collected stood in the response.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const PublicIPService& service = ServiceNumbered(data[0] % 10);
    const std::string_view response(reinterpret_cast<const char*>(data + 1), size - 1);
    constexpr char untouched = '\x7F';
    std::array<char, kAddressBufferSize + 1> out{};
    out.fill(untouched);
    const bool isAddress = CopyAddress(service, response, out.data());

    if (out.back() != untouched) std::abort();
    const auto* const end = static_cast<const char*>(std::memchr(out.data(), 0, kAddressBufferSize));
    if (end == nullptr) std::abort();
    const std::string_view collected(out.data(), static_cast<std::size_t>(end - out.data()));
    if (!collected.empty() && response.find(collected) == std::string_view::npos) std::abort();
    if (isAddress && (collected.size() > kMostAddressCharacters ||
                      std::count(collected.begin(), collected.end(), '.') != 3))
        std::abort();
    return 0;
}
