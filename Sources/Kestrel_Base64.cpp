#include "Base64.h"
#include "HandlerFrame.h"
#include "Handlers.h"
#include "LastError.h"
#include "StringUtils.h"
#include "cFMUtils.h"
#include "fmlib.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string_view>

/// Text as Base64 and back.
///
/// Encode reads UTF-8 and assigns its ASCII in the native encoding; Decode reads natively and assigns UTF-8.
/// So any text makes the round trip, whatever the native encoding.

namespace {

/// What one way of converting does: text from `in`, appended to nothing, into `out`.
struct Conversion {
    const char* selector;
    void (*convert)(const fmx::Text& in, fmx::Text& out);
};

int intLength(std::size_t length) {
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("Text too long for Base64");
    return static_cast<int>(length);
}

/// The whole text as bytes with a zero behind them; the rest of the room is zeros as well.
std::unique_ptr<char[]> bytesOf(const fmx::Text& text, std::size_t room, fmx::Text::Encoding encoding) {
    auto bytes = std::make_unique<char[]>(room);
    const auto size = std::min<std::size_t>(room, std::numeric_limits<fmx::uint32>::max());
    text.GetBytes(bytes.get(), static_cast<fmx::uint32>(size), 0, fmx::Text::kSize_End, encoding);
    return bytes;
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
    const auto bytes = bytesOf(in, mostBytesOfUnit * size + 1, fmx::Text::kEncoding_UTF8);
    assignCoded(B64_Encode, bytes.get(), std::strlen(bytes.get()), out, fmx::Text::kEncoding_Native);
}

void decodeUtf8(const fmx::Text& in, fmx::Text& out) {
    const std::size_t size = in.GetSize();
    if (size == 0) return;
    const auto bytes = bytesOf(in, size + 1, fmx::Text::kEncoding_Native);
    assignCoded(B64_Decode, bytes.get(), size, out, fmx::Text::kEncoding_UTF8);
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
