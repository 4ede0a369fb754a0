#include "support/FuzzedFunction.h"

#include "host/html/Reader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>

/// Any styled text with any tags, classes and styles, by value or by the name of a variable. Text of letters
/// in one paragraph, with the parameters left away, reads back as it was.

namespace {

host::RunStyle anyLook(FuzzedDataProvider& input) {
    const auto faces = static_cast<std::uint16_t>(input.ConsumeIntegral<std::uint16_t>() & host::face::all);
    const auto colour = input.ConsumeIntegral<std::uint8_t>();
    return {.style = host::CharacterStyle(input.ConsumeIntegralInRange<std::uint16_t>(0, 4), faces,
                                          input.ConsumeIntegralInRange<std::uint16_t>(0, 500),
                                          {.red = colour, .green = 0, .blue = colour}),
            .alignment = input.PickValueInArray({host::Alignment::left, host::Alignment::center,
                                                 host::Alignment::right, host::Alignment::full})};
}

host::Text styled(FuzzedDataProvider& input, bool ofLetters) {
    constexpr std::size_t longest = 40;
    host::Text text;
    for (int run = input.ConsumeIntegralInRange(0, 12); run > 0; --run) {
        std::string bytes = input.ConsumeRandomLengthString(longest);
        if (ofLetters)
            for (char& byte : bytes)
                byte = static_cast<char>('a' + (static_cast<unsigned char>(byte) % 26));
        text.append(host::fromUtf8(bytes), anyLook(input));
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzedFunction convert(u"Kestrel_GetAsHTML");
    FuzzedDataProvider input(data, size);
    const bool ofLetters = input.ConsumeBool(), byName = input.ConsumeBool();
    const int parameters = input.ConsumeIntegralInRange(0, 3);
    const host::Text text = styled(input, ofLetters);

    host::DataVect arguments{FuzzedFunction::value(byName ? host::Text(u"$$t") : text)};
    constexpr std::size_t longest = 200;
    for (int i = 0; i < parameters; ++i)
        arguments.push_back(FuzzedFunction::value(host::fromUtf8(input.ConsumeRandomLengthString(longest))));
    if (byName) convert.file().fileVariables().set(u"t", 1, FuzzedFunction::value(text));
    convert.call(arguments, [&](fmx::errcode error, const host::Data& result) {
        require(error == 0);
        if (!ofLetters || byName || parameters > 0) return;
        const host::Text read = host::readHtml(result.asText().utf8(), [](std::u16string_view) { return 0; });
        require(read.units() == text.units());
    });
    return 0;
}
