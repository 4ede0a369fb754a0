#include "Benchmarks.h"
#include "Measure.h"

#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"
#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"

#include <chrono>
#include <cstdio>
#include <dlfcn.h>
#include <exception>
#include <string>
#include <unicode/ustring.h>
#include <vector>

/// The cost of loading the plug-in and of its text conversions, and all other rows under their headings.

namespace {

using host::bridge::out;

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

/// Conversions of a long text, per character, compared with ICU's own.
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

int main() try {
    const auto start = std::chrono::steady_clock::now();
    bench::heading("Each function beside its floor");
    bench::benchPlainCalls();
    bench::benchGlobals();
    bench::benchSql();
    bench::benchText();
    bench::benchPatterns();
    bench::benchNetwork();
    bench::benchHtml();
    bench::requireRowsForAllFunctions();
    benchLoad();
    bench::heading("Beside other makers' code for the same work: below 1 x ours is quicker");
    benchConversions();
    bench::benchCoderBesidePeers();
    bench::benchResponseBesidePeers();
    bench::benchHtmlBesidePeers();
    bench::heading(
        "Growth: the time for twice and four times the input over that for half of it; the floor is 2.00 x");
    bench::benchGrowth();
    bench::heading("Memory");
    bench::benchHtmlMemory();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("\nmeasured in %.0f s\n", taken.count());
} catch (const std::exception& error) {
    std::fprintf(stderr, "kestrel: %s\n", error.what());
    return 1;
}
