#include "host/html/Reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

/// Any bytes as a document. Reading it may be refused, nothing else; and there is never more text than bytes
/// could have said.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const host::Text text =
            host::readHtml({reinterpret_cast<const char*>(data), size},
                           [](std::u16string_view name) { return static_cast<std::uint16_t>(name.size()); });
        // A byte that is no UTF-8 may stand for two units; a return may come before what it separates.
        if (text.size() > 2 * size || text.runs().size() > text.size()) std::abort();
    } catch (const std::runtime_error& refused) {
        if (std::string_view(refused.what()).empty()) std::abort();
    }
    return 0;
}
