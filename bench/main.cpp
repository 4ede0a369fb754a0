#include "Benchmarks.h"
#include "Measure.h"

#include "cFMUtils.h"
#include "fmlib.h"
#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"

#include <dlfcn.h>
#include <map>
#include <string>
#include <unicode/ustring.h>
#include <vector>

/// What the frame of the plug-in costs, each thing beside the least that must be done for it.

namespace {

using host::bridge::out;

void benchCall() {
    host::Session session;
    session.open(host::Solution{});
    host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
    plugIn.init();
    const auto environment = session.environment(session.front());
    const auto parsed = host::calc::parse(u"Kestrel_DoBashCmd ( 1 )", session.functions());

    // The floor: the same handler, found by its name and called, without a calculation around it.
    std::map<std::u16string, const host::RegisteredFunction*, std::less<>> table;
    for (const host::RegisteredFunction& function : plugIn.functions())
        table[function.name] = &function;
    const host::DataVect arguments{std::make_shared<const host::Data>(host::Decimal(1))};
    host::Data result;
    bench::row(
        "call of a function that does nothing",
        [&] { bench::keep(host::calc::evaluate(*parsed.expression, environment).error); }, "a C call",
        [&] {
            const host::RegisteredFunction& function = *table.find(u"Kestrel_DoBashCmd")->second;
            bench::keep(function.handler(function.id, out<fmx::ExprEnv>(environment),
                                         out<fmx::DataVect>(arguments), out<fmx::Data>(result)));
        });
}

void benchLoad() {
    host::Session session;
    session.open(host::Solution{});
    bench::row(
        "load, init, register, shut down, unload",
        [&] {
            host::PlugIn plugIn(session, KESTREL_PLUGIN_PATH);
            bench::keep(plugIn.init());
        },
        "dlopen, dlclose", [] { ::dlclose(::dlopen(KESTREL_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL)); });
}

/// Conversions of a long text, per character, beside ICU's own.
void benchConversions() {
    constexpr std::size_t size = 100'000;
    std::string bytes;
    while (bytes.size() < size)
        bytes += "The quick brown fox. ";
    bytes.resize(size);
    const host::Text text = host::Text::fromUtf8(bytes);
    const auto& opaque = out<fmx::Text>(text);
    const std::u16string source(text.units());
    std::vector<char> narrow(2 * size + 1);
    std::vector<char16_t> units(size + 1);
    const double characters = size;

    const auto icuToUtf8 = [&] {
        UErrorCode status = U_ZERO_ERROR;
        int32_t written = 0;
        u_strToUTF8(narrow.data(), static_cast<int32_t>(narrow.size()), &written, source.data(),
                    static_cast<int32_t>(text.size()), &status);
        bench::keep(written);
    };
    bench::row(
        "host text to UTF-8", [&] { bench::keep(fmlib::StringFromFmText(opaque).size()); }, "ICU", icuToUtf8,
        characters, "char");
    bench::row(
        "UTF-8 to host text", [&] { bench::keep(cFMUtils::getUTF16data(bytes).get()); }, "ICU",
        [&] {
            UErrorCode status = U_ZERO_ERROR;
            int32_t written = 0;
            u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &written, bytes.data(),
                          static_cast<int32_t>(bytes.size()), &status);
            bench::keep(written);
        },
        characters, "char");
    std::vector<wchar_t> wide(size + 1);
    bench::row(
        "host text to wide characters", [&] { bench::keep(fmlib::WStringFromFMText(opaque).size()); }, "ICU",
        [&] {
            UErrorCode status = U_ZERO_ERROR;
            int32_t written = 0;
            u_strToWCS(wide.data(), static_cast<int32_t>(wide.size()), &written, source.data(),
                       static_cast<int32_t>(text.size()), &status);
            bench::keep(written);
        },
        characters, "char");
}

} // namespace

int main() {
    benchCall();
    benchLoad();
    benchConversions();
    bench::benchGlobals();
    bench::benchSql();
    bench::benchText();
    bench::benchNetwork();
    bench::benchHtml();
    bench::benchPatterns();
    bench::benchGrowth();
}
