#include "Benchmarks.h"
#include "Conversion.h"
#include "Measure.h"

#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTextStyle.h"
#include "host/app/File.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// The conversion of styled text into HTML: its memory, and its cost. The floor is the least work that reads
/// the text.

namespace bench {

namespace {

using host::bridge::out;

constexpr std::uint32_t kMega = 1'000'000;

/// The least work that reads a text: all characters, and for each its style and a comparison.
std::size_t read(const fmx::Text& text) {
    std::vector<fmx::uint16> units(text.GetSize());
    text.GetUnicode(units.data(), 0, static_cast<fmx::uint32>(units.size()));
    fmx::CharacterStyleUniquePtr style;
    fmx::CharacterStyleUniquePtr next;
    std::size_t changes = 0;
    for (fmx::uint32 i = 0; i < units.size(); ++i) {
        text.GetStyle(*next, i);
        if (*next == *style) continue;
        style.swap(next);
        ++changes;
    }
    return changes;
}

/// The value and the alignment of every line of a variable are requests to the host.
void benchVariable(const Loaded& plugIn) {
    constexpr std::uint32_t lines = 2'000;
    host::Session& session = *host::Session::current();
    session.front()->fileVariables().set(u"t", 1, shared(styledLines(lines)));
    Conversion conversion(plugIn, u"$$t");
    const auto evaluateEach = [&](const std::u16string& prefix, const std::u16string& suffix) {
        for (std::uint32_t line = 1; line <= lines; ++line) {
            std::u16string calculation = prefix;
            calculation += host::fromUtf8(std::to_string(line));
            calculation += suffix;
            keep(session.evaluate(calculation));
        }
    };
    row(
        "Kestrel_GetAsHTML, 2000 lines of a variable", [&] { keep(conversion.run()); }, "the host's GetValue",
        [&] {
            evaluateEach(u"GetAsCSS(GetValue($$t;", u"))");
            evaluateEach(u"GetValue($$t;", u")");
        },
        lines, "line");
}

/// The value of a line of /proc/self/status, in bytes.
double memory(const std::string& wanted) {
    std::ifstream status("/proc/self/status");
    for (std::string name; status >> name;) {
        double kilobytes = 0;
        if (name == wanted && status >> kilobytes) return kilobytes * 1024;
        std::getline(status, name);
    }
    return 0;
}

} // namespace

void benchHtml() {
    const Loaded plugIn(solutionWithFonts());
    const host::Text text = ordinaryText(kMega);
    Conversion conversion(plugIn, text);
    row(
        "Kestrel_GetAsHTML, styled text", [&] { keep(conversion.run()); }, "reading it",
        [&] { keep(read(out<fmx::Text>(text))); }, kMega, "char");
    benchVariable(plugIn);
}

/// Measures in a separate process, in which large blocks always return to the system.
void benchHtmlMemory() {
    const Loaded plugIn(solutionWithFonts());
    for (const std::uint32_t size : {kMega, 2 * kMega, 4 * kMega}) {
        const pid_t process = ::fork();
        if (process != 0) {
            ::waitpid(process, nullptr, 0);
            continue;
        }
        ::mallopt(M_MMAP_THRESHOLD, 64 * 1024);
        Conversion conversion(plugIn, ordinaryText(size));
        ::malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // resets the peak
        const double before = memory("VmRSS:");
        const std::uint32_t html = conversion.run();
        const double above = memory("VmHWM:") - before - 2.0 * html;
        std::printf(
            "  Kestrel_GetAsHTML, %u characters, %.1f units of HTML each: at the peak %.1f bytes each above "
            "both texts\n",
            size, static_cast<double>(html) / size, above / size);
        std::fflush(stdout);
        ::_exit(0);
    }
}

} // namespace bench
