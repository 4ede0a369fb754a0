#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <utility>

namespace host {

namespace {

std::atomic<Encoding> nativeChoice = Encoding::asciiMac;

/// ICU's names, in the order of the enumeration. ICU has no tables for Johab and for the Macintosh's Arabic
/// and Hebrew; the tables here agree with these in ASCII, the last two also in the letters of the alphabet.
constexpr std::array converterNames{
    "macintosh",      "UTF-8",         "IBM437",       "windows-1252",  "macintosh",
    "ISO-8859-1",     "Shift_JIS",     "windows-31j",  "EUC-KR",        "ms949",
    "ms949",          "Big5",          "ms950",        "GB2312",        "CP936",
    "macos-7_3-10.2", "windows-1251",  "ISO-8859-5",   "macos-29-10.2", "windows-1250",
    "ISO-8859-2",     "macos-35-10.2", "windows-1254", "ISO-8859-3",    "ISO-8859-9",
    "windows-1257",   "ISO-8859-4",    "ISO-8859-6",   "windows-1256",  "ISO-8859-6",
    "macos-6_2-10.4", "windows-1253",  "ISO-8859-7",   "windows-1255",  "windows-1255",
    "ISO-8859-8",     "ISO-8859-15",   "gb18030",      "windows-949",   "Big5"};
static_assert(converterNames.size() == static_cast<std::size_t>(Encoding::big5) + 1);

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

/// One converter an encoding and thread; opening one costs far more than converting a short text.
UConverter* converterFor(Encoding encoding) {
    thread_local std::array<Converter, converterNames.size()> converters;
    const auto index = static_cast<std::size_t>(encoding);
    if (!converters[index]) {
        UErrorCode status = U_ZERO_ERROR;
        Converter opened(ucnv_open(converterNames[index], &status));
        if (encoding != Encoding::utf8) ucnv_setSubstString(opened.get(), u"?", 1, &status);
        if (U_FAILURE(status)) throw std::runtime_error("ICU has no converter of that name");
        converters[index] = std::move(opened);
    }
    ucnv_reset(converters[index].get());
    return converters[index].get();
}

Encoding meantBy(Encoding encoding) { return encoding == Encoding::native ? nativeEncoding() : encoding; }

/// ICU's tables of some encodings are IBM's, where three control characters have changed places.
struct MovedControl {
    char16_t unit, unitInTable;
};
constexpr std::array<MovedControl, 3> movedControls{{{0x1A, 0x1C}, {0x1C, 0x7F}, {0x7F, 0x1A}}};

bool hasMovedControls(Encoding encoding) {
    return encoding == Encoding::asciiDos || encoding == Encoding::shiftJisMac ||
           encoding == Encoding::shiftJisWin;
}

void exchange(std::span<char16_t> units, char16_t MovedControl::* from, char16_t MovedControl::* to) {
    for (char16_t& unit : units) {
        const auto moved = std::find_if(movedControls.begin(), movedControls.end(),
                                        [&](const MovedControl& row) { return row.*from == unit; });
        if (moved != movedControls.end()) unit = (*moved).*to;
    }
}

/// Converters are fed in pieces, as they refuse sources and buffers of a gigabyte.
constexpr std::size_t pieceSize = 1024;

/// Hands the encoded bytes to `take` in pieces, until it answers that it needs no more.
template<class Take>
void encodePieces(std::u16string_view units, Encoding encoding, const Take& take) {
    encoding = meantBy(encoding);
    UConverter* converter = converterFor(encoding);
    std::array<char16_t, pieceSize> piece{};
    std::array<char, pieceSize * 4> bytes{};
    while (!units.empty()) {
        const std::size_t size = units.copy(piece.data(), piece.size());
        units.remove_prefix(size);
        if (hasMovedControls(encoding))
            exchange({piece.data(), size}, &MovedControl::unit, &MovedControl::unitInTable);
        const char16_t* source = piece.data();
        UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
        while (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            char* target = bytes.data();
            ucnv_fromUnicode(converter, &target, bytes.data() + bytes.size(), &source, piece.data() + size,
                             nullptr, static_cast<UBool>(units.empty()), &status);
            if (!take(std::string_view(bytes.data(), static_cast<std::size_t>(target - bytes.data()))))
                return;
        }
    }
}

/// Writes the units of UTF-8 and gives their number; nothing where it is malformed. There must be room for a
/// unit a byte.
std::optional<std::size_t> decodeUtf8(std::span<const char> bytes, char16_t* units) {
    const auto most = static_cast<std::int32_t>(bytes.size());
    std::int32_t size = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(units, most, &size, bytes.data(), most, &status);
    return U_FAILURE(status) ? std::nullopt : std::optional<std::size_t>(size);
}

/// The units of UTF-8, in one step; nothing where it is malformed.
std::optional<std::u16string> wellFormed(std::string_view bytes) {
    constexpr std::size_t few = 128;
    if (bytes.size() <= few) {
        // Most texts are short, and ASCII, which needs no library.
        std::array<char16_t, few> units;
        unsigned char all = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            units[i] = static_cast<unsigned char>(bytes[i]);
            all |= static_cast<unsigned char>(bytes[i]);
        }
        const auto size = all < 0x80 ? std::optional(bytes.size()) : decodeUtf8(bytes, units.data());
        return size ? std::optional(std::u16string(units.data(), *size)) : std::nullopt;
    }
    if (bytes.size() > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
    std::u16string units(bytes.size(), u'\0');
    const auto size = decodeUtf8(bytes, units.data());
    if (!size) return std::nullopt;
    units.resize(*size);
    return units;
}

} // namespace

Encoding encodingFromNumber(std::int32_t number) {
    return number < 0 || number > static_cast<std::int32_t>(Encoding::iso8859_15)
               ? Encoding::native
               : static_cast<Encoding>(number);
}

void setNativeEncoding(Encoding encoding) {
    nativeChoice = encoding == Encoding::native ? Encoding::asciiMac : encoding;
}

Encoding nativeEncoding() { return nativeChoice; }

std::u16string decode(std::string_view bytes, Encoding encoding) {
    encoding = meantBy(encoding);
    if (encoding == Encoding::utf8)
        if (auto units = wellFormed(bytes)) return *std::move(units);
    UConverter* converter = converterFor(encoding);
    std::u16string units;
    units.reserve(bytes.size());
    std::array<char16_t, pieceSize> piece{};
    while (!bytes.empty()) {
        const char* source = bytes.data();
        const char* sourceEnd = source + std::min(bytes.size(), pieceSize);
        bytes.remove_prefix(static_cast<std::size_t>(sourceEnd - source));
        UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
        while (status == U_BUFFER_OVERFLOW_ERROR) {
            status = U_ZERO_ERROR;
            char16_t* target = piece.data();
            ucnv_toUnicode(converter, &target, piece.data() + piece.size(), &source, sourceEnd, nullptr,
                           static_cast<UBool>(bytes.empty()), &status);
            units.append(piece.data(), target);
        }
    }
    if (hasMovedControls(encoding)) exchange(units, &MovedControl::unitInTable, &MovedControl::unit);
    return units;
}

std::size_t encodeInto(std::u16string_view units, Encoding encoding, char* out, std::size_t capacity) {
    std::size_t written = 0;
    encodePieces(units, encoding, [&](std::string_view bytes) {
        written += bytes.copy(out + written, capacity - written);
        return written < capacity;
    });
    return written;
}

std::string encode(std::u16string_view units, Encoding encoding) {
    std::string result;
    result.reserve(units.size());
    encodePieces(units, encoding, [&](std::string_view bytes) {
        result += bytes;
        return true;
    });
    return result;
}

} // namespace host
