#include "Kestrel_Base64.h"
#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPad = '=';
constexpr std::size_t kCharactersOfGroup = 4, kBytesOfGroup = 3;
constexpr unsigned kSixBits = 0x3F;

/// The six bits of a character; 0 for a character outside the alphabet.
constexpr auto kValues = [] {
    std::array<unsigned char, 256> values{};
    for (std::size_t value = 0; value < kAlphabet.size(); ++value)
        values[static_cast<unsigned char>(kAlphabet[value])] = static_cast<unsigned char>(value);
    return values;
}();

/// The two characters of twelve bits. Pairs need half as many steps as single characters.
constexpr auto kPairs = [] {
    std::array<std::array<char, 2>, std::size_t{64} * 64> pairs{};
    for (std::size_t bits = 0; bits < pairs.size(); ++bits)
        pairs[bits] = {kAlphabet[bits >> 6U], kAlphabet[bits & kSixBits]};
    return pairs;
}();

std::size_t groupsIn(std::size_t length, std::size_t groupSize) {
    return std::max<std::size_t>(1, (length + groupSize - 1) / groupSize);
}

std::size_t sizeFrom(int length) { return static_cast<std::size_t>(std::max(length, 0)); }

/// A buffer for the output and its terminating zero.
std::unique_ptr<char[]> roomFor(std::size_t size) {
    if (size >= static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("Text too long for Base64");
    return std::make_unique_for_overwrite<char[]>(size + 1);
}

void encodeGroup(const char* bytes, char* characters) {
    const auto byte = [bytes](int i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i]));
    };
    const std::uint32_t bits = byte(0) << 16U | byte(1) << 8U | byte(2);
    std::memcpy(characters, kPairs[bits >> 12U].data(), 2);
    std::memcpy(characters + 2, kPairs[bits & 0xFFFU].data(), 2);
}

void decodeGroup(const char* characters, char* bytes) {
    const auto value = [characters](int i) {
        return static_cast<std::uint32_t>(kValues[static_cast<unsigned char>(characters[i])]);
    };
    const std::uint32_t bits = value(0) << 18U | value(1) << 12U | value(2) << 6U | value(3);
    bytes[0] = static_cast<char>(bits >> 16U);
    bytes[1] = static_cast<char>(bits >> 8U);
    bytes[2] = static_cast<char>(bits);
}

} // namespace

int B64_Encode(const char* in, int length, char** out) {
    if (out == nullptr) return 0;
    const std::size_t size = sizeFrom(length);
    const std::size_t groups = groupsIn(size, kBytesOfGroup);
    const std::size_t written = groups * kCharactersOfGroup;
    auto characters = roomFor(written);

    for (std::size_t group = 0; group + 1 < groups; ++group)
        encodeGroup(in + group * kBytesOfGroup, characters.get() + group * kCharactersOfGroup);

    // The last group may be short. Nothing past the end is read.
    const std::size_t start = (groups - 1) * kBytesOfGroup;
    std::array<char, kBytesOfGroup> bytes{};
    std::copy_n(in + start, size - start, bytes.begin());
    char* const last = characters.get() + written - kCharactersOfGroup;
    encodeGroup(bytes.data(), last);
    if (start + 1 >= size) last[2] = kPad;
    if (start + 2 >= size) last[3] = kPad;

    characters[written] = '\0';
    *out = characters.release();
    return static_cast<int>(written);
}

int B64_Decode(const char* in, int length, char** out) {
    if (out == nullptr) return 0;
    const std::size_t size = sizeFrom(length);
    const std::size_t groups = groupsIn(size, kCharactersOfGroup);
    std::size_t written = groups * kBytesOfGroup;
    auto bytes = roomFor(written);

    for (std::size_t group = 0; group + 1 < groups; ++group)
        decodeGroup(in + group * kCharactersOfGroup, bytes.get() + group * kBytesOfGroup);

    const std::size_t start = (groups - 1) * kCharactersOfGroup;
    std::array<char, kCharactersOfGroup> last{kPad, kPad, kPad, kPad};
    std::copy_n(in + start, size - start, last.begin());
    decodeGroup(last.data(), bytes.get() + written - kBytesOfGroup);
    written -= static_cast<std::size_t>(std::count(last.begin() + 1, last.end(), kPad));

    bytes[written] = '\0';
    *out = bytes.release();
    return static_cast<int>(written);
}

/// Text as Base64 and back.
///
/// Encode reads UTF-8 and assigns ASCII in the native encoding. Decode reads the native encoding and assigns
/// UTF-8. So any text makes the round trip with any native encoding.

namespace {

/// One direction: its selector, and its function, which converts `in` into the empty text `out`.
struct Conversion {
    const char* selector;
    void (*convert)(const fmx::Text& in, fmx::Text& out);
};

int intLength(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("Text too long for Base64");
    return static_cast<int>(length);
}

using Coder = int(const char* in, int length, char** out);

void assignCoded(Coder& code, const char* in, std::size_t length, fmx::Text& out,
                 fmx::Text::Encoding encoding) {
    char* coded = nullptr;
    const int size = code(in, intLength(length), &coded);
    const std::unique_ptr<char[]> owner(coded);
    if (size > 0) out.AssignWithLength(coded, static_cast<fmx::uint32>(size), encoding);
}

void encodeUtf8(const fmx::Text& in, fmx::Text& out) {
    constexpr std::size_t mostBytesOfUnit = 4;
    const std::size_t size = in.GetSize();
    if (size == 0) return;
    const std::string bytes = bytesFromFMText(in, mostBytesOfUnit * size);
    assignCoded(B64_Encode, bytes.data(), std::strlen(bytes.c_str()), out, fmx::Text::kEncoding_Native);
}

void decodeUtf8(const fmx::Text& in, fmx::Text& out) {
    const std::size_t size = in.GetSize();
    if (size == 0) return;
    const std::string bytes = bytesFromFMText(in, size, fmx::Text::kEncoding_Native);
    assignCoded(B64_Decode, bytes.data(), size, out, fmx::Text::kEncoding_UTF8);
}

fmx::errcode convert(const Conversion& conversion, const fmx::ExprEnv& env, const fmx::DataVect& parameters,
                     fmx::Data& result) {
    constexpr fmx::uint32 wanted = 2;
    const fmx::uint32 count = parameters.Size();
    if (count != wanted)
        return kst::answerWithError(kst::kWrongParameter,
                                    count < wanted ? "Not enough parameters" : "Too many parameters", result,
                                    env);
    if (fmlib::FindFMTextInArray(parameters.AtAsText(0), &conversion.selector, 1) != 0)
        return kst::answerWithError(kst::kWrongParameter, "Unrecognized selector", result, env);
    const fmx::TextUniquePtr converted;
    conversion.convert(parameters.AtAsText(1), *converted);
    cFMUtils::resultFromText(*converted, result);
    return 0;
}

constexpr Conversion kEncode{"UTF-8 to Base64", encodeUtf8};
constexpr Conversion kDecode{"Base64 to UTF-8", decodeUtf8};

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_Encode(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] { return convert(kEncode, env, parameters, result); });
}

FMX_PROC(fmx::errcode)
Kestrel_Decode(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] { return convert(kDecode, env, parameters, result); });
}
