#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>
#include <unicode/ucnv.h>

namespace host {

namespace {

Encoding nativeChoice = Encoding::asciiMac;

/// ICU's names, in the order of the interface's numbers.
constexpr std::array<const char*, 8> converterNames{"macintosh", "UTF-8",      "IBM437",    "windows-1252",
                                                    "macintosh", "ISO-8859-1", "Shift_JIS", "windows-31j"};

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// One converter an encoding and thread; opening one costs far more than converting a short text.
UConverter* converterFor(Encoding encoding) {
    thread_local std::array<Converter, converterNames.size()> converters;
    if (encoding == Encoding::native) encoding = nativeChoice;
    const auto index = static_cast<std::size_t>(encoding);
    if (!converters[index]) {
        UErrorCode status = U_ZERO_ERROR;
        converters[index].reset(ucnv_open(converterNames[index], &status));
        if (encoding != Encoding::utf8) ucnv_setSubstString(converters[index].get(), u"?", 1, &status);
        if (U_FAILURE(status)) throw std::runtime_error("ICU has no converter of that name");
    }
    ucnv_reset(converters[index].get());
    return converters[index].get();
}

} // namespace

Encoding encodingFromNumber(std::int32_t number) {
    return number < 0 || number >= static_cast<std::int32_t>(converterNames.size())
               ? Encoding::native
               : static_cast<Encoding>(number);
}

void setNativeEncoding(Encoding encoding) {
    nativeChoice = encoding == Encoding::native ? Encoding::asciiMac : encoding;
}

Encoding nativeEncoding() { return nativeChoice; }

std::u16string decode(std::string_view bytes, Encoding encoding) {
    UConverter* converter = converterFor(encoding);
    std::u16string units(bytes.size() + 1, u'\0');
    const char* source = bytes.data();
    std::size_t written = 0;
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        char16_t* target = units.data() + written;
        ucnv_toUnicode(converter, &target, units.data() + units.size(), &source, bytes.data() + bytes.size(),
                       nullptr, 1, &status);
        written = static_cast<std::size_t>(target - units.data());
        if (status != U_BUFFER_OVERFLOW_ERROR) break;
        units.resize(units.size() * 2);
    }
    units.resize(written);
    return units;
}

std::size_t encodeInto(std::u16string_view units, Encoding encoding, char* out, std::size_t capacity) {
    UConverter* converter = converterFor(encoding);
    const char16_t* source = units.data();
    std::size_t written = 0;
    // A converter stops before a character that does not fit whole, or keeps its rest back; by way of a small
    // buffer the cut falls at a byte.
    std::array<char, 4096> buffer{};
    for (;;) {
        UErrorCode status = U_ZERO_ERROR;
        char* target = buffer.data();
        ucnv_fromUnicode(converter, &target, buffer.data() + buffer.size(), &source,
                         units.data() + units.size(), nullptr, 1, &status);
        const auto size = std::min(static_cast<std::size_t>(target - buffer.data()), capacity - written);
        std::copy_n(buffer.data(), size, out + written);
        written += size;
        if (status != U_BUFFER_OVERFLOW_ERROR || written == capacity) return written;
    }
}

std::string encode(std::u16string_view units, Encoding encoding) {
    constexpr std::size_t mostBytesPerUnit = 4;
    std::string bytes(units.size() * mostBytesPerUnit, '\0');
    bytes.resize(encodeInto(units, encoding, bytes.data(), bytes.size()));
    return bytes;
}

} // namespace host
