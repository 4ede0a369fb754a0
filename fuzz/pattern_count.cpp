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

/// Any pattern counted in any text: a line of pattern, then the text. It may answer what it likes, but it
/// ends, nothing escapes and nothing is kept.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static host::Session session;
    static const std::uint64_t file = session.open(host::Solution{});
    static host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    static const bool started = plugIn.init() > 0;
    static const auto environment = session.environment(session.front());
    if (!started || file == 0 || size == 0) return 0;

    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    host::DataVect arguments;
    for (const std::string_view part : {input.substr(std::min(end + 1, size)), input.substr(0, end)})
        arguments.push_back(std::make_shared<const host::Data>(host::Text::fromUtf8(part)));

    const auto& functions = plugIn.functions();
    static const auto function = std::find_if(functions.begin(), functions.end(), [](const auto& row) {
        return row.name == u"Kestrel_RegExp_PatternCount";
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
