#include "support/FuzzedFunction.h"
#include "support/InputTime.h"

#include "host/fmwrapper/Faults.h"

#include <cstddef>
#include <cstdint>

/// Merges any template. The first byte chooses a host call that fails, the second a bold part. A text without
/// delimiters must stay unchanged, no exception may leave the plug-in, and no object may leak.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzedFunction merge(u"Kestrel_MergeText", FuzzedFunction::Evaluates::calculations);
    if (size < 2) return 0;
    host::Text text(host::fromUtf8({reinterpret_cast<const char*>(data + 2), size - 2}));
    host::CharacterStyle bold;
    bold.setFaces(host::face::bold);
    constexpr std::uint8_t low = 0x0F;
    text.applyStyle(bold, data[1] & low, data[1] >> 4U);

    const host::DataVect arguments{FuzzedFunction::value(text)};
    if (data[0] != 0) host::faults().arm(data[0], host::Faults::Kind::unknown, false);
    const InputTime time;
    merge.call(arguments, [&](fmx::errcode error, const host::Data& result) {
        const bool failed = data[0] != 0 && host::faults().fired();
        host::faults().disarm();
        if (failed) return;
        require(error == 0);
        const bool opens = text.units().find(u"<<") != std::u16string_view::npos;
        const bool closes = text.units().find(u">>") != std::u16string_view::npos;
        if (!opens || !closes) require(result.asText().isIdenticalTo(text));
    });
    return time.answer();
}
