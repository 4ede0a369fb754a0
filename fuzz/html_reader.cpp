#include "host/html/Reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

/// Reads any bytes as a document. Refusal is the only allowed error, and the text is never longer than the
/// bytes allow.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const host::Text text =
            host::readHtml({reinterpret_cast<const char*>(data), size},
                           [](std::u16string_view name) { return static_cast<std::uint16_t>(name.size()); });
        // A byte outside of UTF-8 may stand for two units, and an element may add a return.
        if (text.size() > 2 * size || text.runs().size() > text.size()) std::abort();
    } catch (const std::runtime_error& refused) {
        if (std::string_view(refused.what()).empty()) std::abort();
    }
    return 0;
}
