#include "support/FuzzedFunction.h"
#include "tests/HtmlFormattings.h"

#include "host/html/Reader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <optional>
#include <string>

/// Converts any styled text with any tags, classes and styles, by value or by the name of a variable. Where
/// HTML can keep everything, the document must have the whole text with its formatting.

namespace {

using Bytes = FuzzedDataProvider;

constexpr std::array alignments{host::Alignment::left, host::Alignment::center, host::Alignment::right,
                                host::Alignment::full};
constexpr std::size_t longestRun = 40;
constexpr int mostRuns = 12;

host::Text anyText(Bytes& bytes) {
    host::Text text;
    for (int run = bytes.ConsumeIntegralInRange(0, mostRuns); run > 0; --run) {
        const std::string units = bytes.ConsumeRandomLengthString(longestRun);
        const auto faces =
            static_cast<std::uint16_t>(bytes.ConsumeIntegral<std::uint16_t>() & host::face::all);
        const auto colour = bytes.ConsumeIntegral<std::uint8_t>();
        const host::CharacterStyle style(bytes.ConsumeIntegralInRange<std::uint16_t>(0, 4), faces,
                                         bytes.ConsumeIntegralInRange<std::uint16_t>(0, 500),
                                         {.red = colour, .green = 0, .blue = colour});
        text.append(host::fromUtf8(units), {.style = style, .alignment = bytes.PickValueInArray(alignments)});
    }
    return text;
}

/// A style that HTML can express completely.
host::CharacterStyle keptStyle(Bytes& bytes, host::File& file) {
    constexpr std::array fonts{u"Helvetica", u"Times New Roman", u"\u03A9mega S\u00E9rif"};
    enum : std::uint8_t { hasFaces = 1, hasColor = 2, hasFont = 4, hasSize = 8, saysBold = 16 };
    const auto traits = bytes.ConsumeIntegral<std::uint8_t>();
    host::CharacterStyle style;
    if ((traits & hasFaces) != 0) {
        const auto faces = bytes.ConsumeIntegral<std::uint16_t>() & host::face::all;
        if (faces != 0) style.setFaces(static_cast<std::uint16_t>(faces));
    }
    if ((traits & saysBold) != 0) style.enableFace(host::face::bold); // enabled, even where the bit is off
    if ((traits & hasColor) != 0)
        style.setColor({.red = bytes.ConsumeIntegral<std::uint8_t>(),
                        .green = bytes.ConsumeIntegral<std::uint8_t>(),
                        .blue = bytes.ConsumeIntegral<std::uint8_t>(),
                        .alpha = bytes.ConsumeIntegral<std::uint8_t>()});
    if ((traits & hasFont) != 0) style.setFont(file.fontId(bytes.PickValueInArray(fonts)));
    if ((traits & hasSize) != 0) style.setSize(bytes.ConsumeIntegralInRange<std::uint16_t>(1, 99));
    return style;
}

/// A text that HTML can keep: a blank or soft line break stands alone between other characters of a line, and
/// paragraphs are aligned as a whole. Each of the fuzzer's bytes is a character.
class KeptText {
public:
    KeptText(Bytes& bytes, host::File& file) {
        for (int run = bytes.ConsumeIntegralInRange(0, mostRuns); run > 0; --run) {
            const host::CharacterStyle style = keptStyle(bytes, file);
            for (const char byte : bytes.ConsumeRandomLengthString(longestRun))
                add(characters[static_cast<unsigned char>(byte) % characters.size()], style, bytes);
        }
    }
    [[nodiscard]] const host::Text& text() const { return text_; }

private:
    static constexpr std::array<std::u16string_view, 16> characters{
        u"a",  u"Z", u"0", u"&",      u"<",      u">",          u"\"",     u"'",
        u"\r", u" ", u"-", u"\u00A0", u"\u00E9", u"\U0001F600", u"\u6F22", u"\u2028"};

    void add(std::u16string_view character, const host::CharacterStyle& style, Bytes& bytes) {
        const host::RunStyle formatting{.style = style, .alignment = alignment_};
        if (character == u"\r") {
            text_.append(character, formatting);
            alignment_ = bytes.PickValueInArray(alignments);
            lineBegins_ = true;
            blank_.reset();
        } else if (character == u" " || character == u"\u2028") {
            if (!lineBegins_ && !blank_) blank_ = host::Text(std::u16string(character), formatting);
        } else {
            if (blank_) text_.append(*blank_);
            blank_.reset();
            text_.append(character, formatting);
            lineBegins_ = false;
        }
    }

    host::Text text_;
    std::optional<host::Text> blank_; ///< added when a character follows it
    host::Alignment alignment_ = host::Alignment::left;
    bool lineBegins_ = true;
};

/// Passes the text by the name of a variable with `byName`, unless it is empty: the name of an empty variable
/// counts as text.
void convert(const FuzzedFunction& function, const host::Text& text, bool byName,
             const std::vector<host::Text>& parameters, const FuzzedFunction::Judge& judge) {
    host::DataVect arguments{FuzzedFunction::value(byName ? host::Text(u"$$t") : text)};
    for (const host::Text& parameter : parameters)
        arguments.push_back(FuzzedFunction::value(parameter));
    if (byName) function.file().fileVariables().set(u"t", 1, FuzzedFunction::value(text));
    function.call(arguments, judge);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzedFunction function(u"Kestrel_GetAsHTML");
    Bytes bytes(data, size);
    const bool isJudged = bytes.ConsumeBool(), byName = bytes.ConsumeBool();
    if (!isJudged) {
        constexpr std::size_t longest = 200;
        std::vector<host::Text> parameters(bytes.ConsumeIntegralInRange<std::size_t>(0, 3));
        for (host::Text& parameter : parameters)
            parameter = host::fromUtf8(bytes.ConsumeRandomLengthString(longest));
        convert(function, anyText(bytes), byName, parameters,
                [](fmx::errcode error, const host::Data&) { require(error == 0); });
        return 0;
    }
    const HtmlParameters& parameters =
        htmlParameters()[bytes.ConsumeIntegralInRange<std::size_t>(0, htmlParameters().size() - 1)];
    host::File& file = function.file();
    const host::Text text = KeptText(bytes, file).text();
    const bool inVariable = byName && !text.empty();
    convert(function, text, inVariable, {parameters.tags, parameters.classes, parameters.styles},
            [&](fmx::errcode error, const host::Data& result) {
                require(error == 0);
                const host::Text read = host::readHtml(
                    result.asText().utf8(), [&](std::u16string_view name) { return file.fontId(name); });
                const std::string lost = differenceInHtml(text, read, parameters, inVariable);
                if (!lost.empty())
                    std::fprintf(stderr, "%s\n%s\n", lost.c_str(), result.asText().utf8().c_str());
                require(lost.empty());
            });
    return 0;
}
