#include "support/FuzzedFunction.h"
#include "support/InputTime.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

/// Replaces any pattern in any text. The lines are the pattern, the text and two replacements; the first byte
/// chooses which parts of pattern and text are bold. Any result is right, but the call must end, no exception
/// may leave the plug-in, and no object may leak.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzedFunction substitute(u"Kestrel_RegExp_Substitute");
    if (size == 0) return 0;
    constexpr std::uint32_t startMask = 7;
    const std::uint32_t boldFrom = data[0] & startMask;
    std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
    host::CharacterStyle bold;
    bold.setFaces(host::face::bold);
    host::DataVect arguments;
    for (int i = 0; i < 4; ++i) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        host::Text line = host::Text::fromUtf8(rest.substr(0, end));
        if (boldFrom > 0) line.applyStyle(bold, boldFrom - 1, 4);
        arguments.push_back(FuzzedFunction::value(line));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    std::swap(arguments[0], arguments[1]);

    const InputTime time;
    substitute.call(arguments);
    return time.answer();
}
