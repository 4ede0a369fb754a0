#include "Base64.h"

#include "FMWrapper/FMXExtern.h"
#include "host/app/File.h"
#include "host/app/ObjectCounts.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Any bytes as Base64: first the coder itself, on an array of just that length; then the function, on a text
/// in a native encoding that the first byte names. Decoding never fails, and what was encoded comes back.

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

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

const host::RegisteredFunction& functionNamed(const host::PlugIn& plugIn, std::u16string_view name) {
    for (const host::RegisteredFunction& function : plugIn.functions())
        if (function.name == name) return function;
    throw std::runtime_error("a function is not registered");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static host::Session session;
    static const std::uint64_t file = session.open(host::Solution{});
    static host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    static const bool started = plugIn.init() > 0;
    static const host::RegisteredFunction decode = functionNamed(plugIn, u"Kestrel_Decode");
    if (!started || size == 0) return 0;

    const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    fuzzCoder(bytes);

    constexpr std::int32_t encodings = 8;
    const auto native = host::encodingFromNumber(data[0] % encodings);
    host::setNativeEncoding(native == host::Encoding::native ? host::Encoding::asciiMac : native);
    const host::ObjectCounts before = host::objectCounts();
    {
        const host::calc::Environment environment = session.environment(session.front());
        const host::DataVect arguments{std::make_shared<const host::Data>(host::Text(u"Base64 to UTF-8")),
                                       std::make_shared<const host::Data>(host::Text(host::fromUtf8(bytes)))};
        host::Data result;
        require(plugIn.call(decode, host::bridge::out<fmx::ExprEnv>(environment),
                            host::bridge::out<fmx::DataVect>(arguments),
                            host::bridge::out<fmx::Data>(result)) == 0);
        require(result.nativeType() == host::DataType::text);
    }
    require(host::objectCounts() == before && plugIn.misdeeds().empty());
    return file == 0 ? 1 : 0;
}
