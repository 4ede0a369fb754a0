#include "host/app/Faults.h"
#include "host/app/File.h"
#include "host/app/ObjectCounts.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

/// Any template. The first byte names a host call that fails, the second where a bold stretch begins and
/// ends. A text without delimiters comes back as it was; nothing escapes and nothing is kept.

namespace {

void require(bool holds) {
    if (!holds) std::abort();
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
    static const host::RegisteredFunction merge = functionNamed(plugIn, u"Kestrel_MergeText");
    if (!started || size < 2) return 0;

    host::Text text(host::fromUtf8({reinterpret_cast<const char*>(data + 2), size - 2}));
    host::CharacterStyle bold;
    bold.setFaces(host::face::bold);
    constexpr std::uint8_t low = 0x0F;
    text.applyStyle(bold, data[1] & low, data[1] >> 4U);

    const host::ObjectCounts before = host::objectCounts();
    {
        const host::calc::Environment environment = session.environment(session.front());
        const host::DataVect arguments{std::make_shared<const host::Data>(text)};
        host::Data result;
        if (data[0] != 0) host::faults().arm(data[0], host::Faults::Kind::unknown, false);
        const fmx::errcode error =
            plugIn.call(merge, host::bridge::out<fmx::ExprEnv>(environment),
                        host::bridge::out<fmx::DataVect>(arguments), host::bridge::out<fmx::Data>(result));
        const bool fired = host::faults().fired();
        host::faults().disarm();
        if (data[0] == 0 || !fired) {
            require(error == 0);
            const bool opens = text.units().find(u"<<") != std::u16string_view::npos;
            const bool closes = text.units().find(u">>") != std::u16string_view::npos;
            if (!opens || !closes) require(result.asText().isIdenticalTo(text));
        }
    }
    session.find(u"Untitled")->fileVariables().clear();
    require(host::objectCounts() == before && plugIn.misdeeds().empty());
    return file == 0 ? 1 : 0;
}
