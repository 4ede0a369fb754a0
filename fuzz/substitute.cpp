#include "host/app/File.h"
#include "host/app/ObjectCounts.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

/// Any pattern on any text: lines of pattern, text and two replacements; the first byte says where the
/// pattern and the text are bold. It may answer what it likes, but it ends, nothing escapes and nothing is
/// kept.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static host::Session session;
    static const std::uint64_t file = session.open(host::Solution{});
    static host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    static const bool started = plugIn.init() > 0;
    static const auto environment = session.environment(session.front());
    if (!started || file == 0 || size == 0) return 0;

    constexpr std::uint32_t startMask = 7;
    const std::uint32_t boldFrom = data[0] & startMask;
    std::string_view rest(reinterpret_cast<const char*>(data + 1), size - 1);
    host::CharacterStyle bold;
    bold.setFaces(host::face::bold);
    host::DataVect arguments;
    for (int i = 0; i < 4; ++i) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        host::Text line = host::Text::fromUtf8(rest.substr(0, end));
        if (boldFrom > 0) line.applyStyle(bold, boldFrom - 1, 4);
        arguments.push_back(std::make_shared<const host::Data>(line));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    std::swap(arguments[0], arguments[1]);

    const auto& functions = plugIn.functions();
    static const auto function = std::find_if(functions.begin(), functions.end(), [](const auto& row) {
        return row.name == u"Kestrel_RegExp_Substitute";
    });
    const host::ObjectCounts before = host::objectCounts();
    {
        host::Data result;
        plugIn.call(*function, host::bridge::out<fmx::ExprEnv>(environment),
                    host::bridge::out<fmx::DataVect>(arguments), host::bridge::out<fmx::Data>(result));
    }
    session.find(u"Untitled")->fileVariables().clear();
    if (!(host::objectCounts() == before) || !plugIn.misdeeds().empty()) std::abort();
    return 0;
}
