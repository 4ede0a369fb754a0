#include "Kestrel_Base64.h"
#include "support/FuzzedFunction.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Decodes any bytes as Base64: first with the coder itself, on an array of exactly that length, then with
/// the function, on a text in a native encoding that the first byte chooses. Decoding must never fail, and
/// encoded text must decode to itself.

namespace {

std::string coded(int (*code)(const char*, int, char**), std::string_view bytes) {
    std::vector<char> exact(bytes.begin(), bytes.end());
    exact.shrink_to_fit();
    char* out = nullptr;
    const int size = code(exact.data(), static_cast<int>(exact.size()), &out);
    const std::unique_ptr<char[]> owner(out);
    require(size >= 0 && out != nullptr && out[size] == '\0');
    return {out, static_cast<std::size_t>(size)};
}

void fuzzCoder(std::string_view bytes) {
    const std::string decoded = coded(B64_Decode, bytes);
    const std::size_t groups = (bytes.size() + 3) / 4;
    require(decoded.size() <= 3 * groups && decoded.size() + 3 >= 3 * groups);
    if (!bytes.empty()) require(coded(B64_Decode, coded(B64_Encode, bytes)) == bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzedFunction decode(u"Kestrel_Decode");
    if (size == 0) return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    fuzzCoder(bytes);

    constexpr std::int32_t encodings = 8;
    const auto native = host::encodingFromNumber(data[0] % encodings);
    host::setNativeEncoding(native == host::Encoding::native ? host::Encoding::asciiMac : native);
    decode.call({FuzzedFunction::value(u"Base64 to UTF-8"), FuzzedFunction::value(host::fromUtf8(bytes))},
                [](fmx::errcode error, const host::Data& result) {
                    require(error == 0);
                    require(result.nativeType() == host::DataType::text);
                });
    return 0;
}
