#include "support/FuzzedFunction.h"
#include "support/InputTime.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// Counts any pattern in any text: the first line is the pattern, the rest the text. The call must end.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzedFunction count(u"Kestrel_RegExp_PatternCount");
    if (size == 0) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    host::DataVect arguments;
    for (const std::string_view part : {input.substr(std::min(end + 1, size)), input.substr(0, end)})
        arguments.push_back(FuzzedFunction::value(host::Text::fromUtf8(part)));
    const InputTime time;
    count.call(arguments);
    return time.answer();
}
