#include "Benchmarks.h"
#include "Loaded.h"
#include "Measure.h"

#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTextStyle.h"
#include "host/app/File.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <malloc.h>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

/// The conversion of styled text into HTML: its cost beside the least that reading the text takes, how it
/// grows on texts that are unkind to it, its memory, and other converters on the same content.

namespace {

using host::bridge::out;

constexpr std::uint32_t kMega = 1'000'000;
constexpr std::uint32_t kRun = 20, kParagraph = 400;

/// One of twelve styles.
host::CharacterStyle styleOfRun(std::uint32_t run) {
    constexpr std::array<std::uint16_t, 6> faces{host::face::bold,
                                                 host::face::italic,
                                                 host::face::plain,
                                                 host::face::bold | host::face::italic,
                                                 host::face::underline | host::face::strikethrough,
                                                 host::face::highlight};
    const std::uint32_t which = run % (2 * faces.size());
    host::CharacterStyle style;
    style.setFaces(faces.at(which % faces.size()));
    if (which >= faces.size()) style.setColor({static_cast<std::uint8_t>(which * 20), 0, 128});
    if (which % 4 == 0) style.setSize(static_cast<std::uint16_t>(10 + which));
    if (which % 3 == 0) style.setFont(static_cast<std::uint16_t>(which % 2));
    return style;
}

/// Paragraphs of 400 characters, with a new style every 20.
host::Text ordinaryText(std::uint32_t size) {
    std::u16string units;
    while (units.size() < size)
        units += u"The quick brown fox & co. ";
    units.resize(size);
    for (std::uint32_t end = kParagraph - 1; end < size; end += kParagraph)
        units[end] = u'\r';
    host::Text text;
    for (std::uint32_t start = 0; start < size; start += kRun)
        text.append(units.substr(start, kRun), {.style = styleOfRun(start / kRun)});
    return text;
}

host::Text newStyleEachCharacter(std::uint32_t size) {
    host::Text text;
    for (std::uint32_t i = 0; i < size; ++i)
        text.append(u"x", {.style = styleOfRun(i)});
    return text;
}

host::Text newDeclarationsEachCharacter(std::uint32_t size) {
    host::Text text;
    for (std::uint32_t i = 0; i < size; ++i) {
        host::CharacterStyle style;
        style.setColor({static_cast<std::uint8_t>(i >> 16U), static_cast<std::uint8_t>(i >> 8U),
                        static_cast<std::uint8_t>(i)});
        text.append(u"x", {.style = style});
    }
    return text;
}

/// Without what no parameter asks for, all runs look alike.
host::Text runsThatBecomeEqual(std::uint32_t size) {
    host::Text text;
    for (std::uint32_t i = 0; i < size; ++i) {
        host::CharacterStyle style;
        style.setFaces(host::face::bold);
        style.setSize(static_cast<std::uint16_t>(10 + i % 2));
        text.append(u"x", {.style = style});
    }
    return text;
}

host::Solution solution() {
    host::Solution solution;
    solution.fonts = {u"Helvetica", u"Times New Roman"};
    return solution;
}

/// The function with its arguments made ready.
class Conversion {
public:
    Conversion(const bench::Loaded& plugIn, const host::Text& text, std::u16string_view styles = u"all",
               std::u16string_view classes = u"all=kst")
        : plugIn_(plugIn),
          arguments_{argument(text), argument(u"all"), argument(host::Text(std::u16string(classes))),
                     argument(host::Text(std::u16string(styles)))} {}

    /// Gives the size of the HTML.
    std::uint32_t run() {
        plugIn_.call(function_, arguments_, result_);
        return result_.asText().size();
    }

private:
    static host::DataRef argument(const host::Text& text) { return std::make_shared<const host::Data>(text); }

    const bench::Loaded& plugIn_;
    const host::RegisteredFunction& function_ = plugIn_.function(u"Kestrel_GetAsHTML");
    host::DataVect arguments_;
    host::Data result_;
};

/// The least that reading takes: the characters, and for each its style and a comparison.
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

/// The least of three and more rounds, as the processor counts, so that other processes hardly show.
double processorSeconds(const std::function<void()>& action) {
    constexpr double enough = 0.3;
    double least = 0, all = 0;
    for (int round = 0; round < 3 || all < enough; ++round) {
        const std::clock_t start = std::clock();
        action();
        const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        least = round == 0 ? taken : std::min(least, taken);
        all += taken;
    }
    return least;
}

void benchUnkindTexts(const bench::Loaded& plugIn) {
    const struct {
        const char* what;
        std::uint32_t size;
        std::function<host::Text(std::uint32_t)> text;
        std::u16string_view styles = u"all", classes = u"all=kst";
    } rows[] = {
        {"a new style at each character", kMega, newStyleEachCharacter},
        {"one run", kMega, [](std::uint32_t size) { return host::Text(std::u16string(size, u'x')); }},
        {"empty paragraphs", 100'000,
         [](std::uint32_t size) { return host::Text(std::u16string(size, u'\r')); }},
        {"declarations for one class name", 10'000, newDeclarationsEachCharacter},
        {"declarations for one class name", 200'000, newDeclarationsEachCharacter},
        {"runs that become equal", 100'000, runsThatBecomeEqual, u"bold", u""},
        {"a paragraph of &", kMega,
         [](std::uint32_t size) { return host::Text(std::u16string(size, u'&')); }},
    };
    for (const auto& row : rows) {
        const auto secondsFor = [&](std::uint32_t size) {
            Conversion conversion(plugIn, row.text(size), row.styles, row.classes);
            return processorSeconds([&] { bench::keep(conversion.run()); });
        };
        const double half = secondsFor(row.size / 2), whole = secondsFor(row.size);
        std::printf("to HTML: %7u %-34s %7.3f s, %.2f x those of half as many\n", row.size, row.what, whole,
                    whole / half);
        std::fflush(stdout);
    }
}

/// Every line of a variable is asked of the host, which looks for it from the start each time: that grows
/// with the square. What the plug-in adds does not.
void benchVariable(const bench::Loaded& plugIn) {
    host::Session& session = *host::Session::current();
    Conversion conversion(plugIn, u"$$t");
    double wholeBefore = 0, hostBefore = 0;
    for (const std::uint32_t lines : {10'000U, 20'000U}) {
        host::Text text;
        for (std::uint32_t line = 0; line < lines; ++line)
            text.append(u"a line\r", {.style = styleOfRun(line)});
        session.front()->fileVariables().set(u"t", 1, std::make_shared<const host::Data>(text));
        const auto evaluateEach = [&](const std::u16string& prefix, const std::u16string& suffix) {
            for (std::uint32_t line = 1; line <= lines; ++line) {
                std::u16string calculation = prefix;
                calculation += host::fromUtf8(std::to_string(line));
                calculation += suffix;
                bench::keep(session.evaluate(calculation));
            }
        };
        const double whole = processorSeconds([&] { bench::keep(conversion.run()); });
        const double hosts = processorSeconds([&] {
            evaluateEach(u"GetAsCSS(GetValue($$t;", u"))");
            evaluateEach(u"GetValue($$t;", u")");
        });
        std::printf("to HTML: %7u %-34s %7.3f s, %.3f s of them the host's GetValue", lines,
                    "lines of a variable", whole, hosts);
        if (wholeBefore > 0)
            std::printf("; %.2f and %.2f x those of half as many", whole / wholeBefore, hosts / hostBefore);
        std::printf("\n");
        std::fflush(stdout);
        wholeBefore = whole;
        hostBefore = hosts;
    }
}

/// A line of /proc/self/status in bytes.
double memory(const std::string& wanted) {
    std::ifstream status("/proc/self/status");
    for (std::string name; status >> name;) {
        double kilobytes = 0;
        if (name == wanted && status >> kilobytes) return kilobytes * 1024;
        std::getline(status, name);
    }
    return 0;
}

/// In a process of its own, where large blocks always go back to the system.
void benchMemory(const bench::Loaded& plugIn) {
    for (const std::uint32_t size : {kMega, 2 * kMega, 4 * kMega}) {
        const pid_t process = ::fork();
        if (process != 0) {
            ::waitpid(process, nullptr, 0);
            continue;
        }
        ::mallopt(M_MMAP_THRESHOLD, 64 * 1024);
        Conversion conversion(plugIn, ordinaryText(size));
        ::malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5"; // the peak is counted anew
        const double before = memory("VmRSS:");
        const std::uint32_t html = conversion.run();
        const double above = memory("VmHWM:") - before - 2.0 * html;
        std::printf(
            "to HTML: %7u characters, %.1f units of HTML each: at the peak %.1f bytes each above both "
            "texts\n",
            size, static_cast<double>(html) / size, above / size);
        std::fflush(stdout);
        ::_exit(0);
    }
}

/// The same content for another converter, a run at a time.
using Writer = std::string (*)(const std::string& characters, const host::CharacterStyle& style);

std::string asRtf(const std::string& characters, const host::CharacterStyle& style) {
    std::string run = "{";
    const std::pair<std::uint16_t, const char*> words[] = {{host::face::bold, "\\b"},
                                                           {host::face::italic, "\\i"},
                                                           {host::face::underline, "\\ul"},
                                                           {host::face::strikethrough, "\\strike"},
                                                           {host::face::highlight, "\\highlight1"}};
    for (const auto& [face, word] : words)
        if ((style.faces() & face) != 0) run += word;
    if (style.isColorEnabled()) run += "\\cf" + std::to_string(style.color().red / 20 - 5);
    if (style.isSizeEnabled()) run += "\\fs" + std::to_string(2 * style.size());
    if (style.isFontEnabled()) run += "\\f" + std::to_string(style.font());
    return run + " " + characters + "}";
}

/// Markdown has no words for the other looks; HTML may stand in it.
std::string asMarkdown(const std::string& characters, const host::CharacterStyle& style) {
    std::string mark;
    if ((style.faces() & host::face::bold) != 0) mark += "**";
    if ((style.faces() & host::face::italic) != 0) mark += "*";
    if ((style.faces() & host::face::strikethrough) != 0) return "<s>" + characters + "</s>";
    if ((style.faces() & host::face::highlight) != 0) return "<mark>" + characters + "</mark>";
    return mark + characters + mark;
}

std::string contentFor(Writer write, const std::string& paragraphEnd) {
    const host::Text text = ordinaryText(kMega);
    std::string content;
    for (std::uint32_t start = 0; start < kMega; start += kRun) {
        std::string characters = text.substring(start, kRun).utf8();
        const bool endsParagraph = characters.back() == '\r';
        if (endsParagraph) characters.pop_back();
        content += write(characters, text.lookAt(start).style);
        if (endsParagraph) content += paragraphEnd;
    }
    return content;
}

/// Runs a program on a file, its output dropped; false when there is no such program or it fails.
bool runs(std::vector<std::string> command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = -1;
    const int error =
        ::posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), ::environ);
    ::posix_spawn_file_actions_destroy(&actions);
    return error == 0 && ::waitpid(process, &status, 0) == process && status == 0;
}

void benchOthers(Conversion& conversion) {
    const struct {
        std::string name;
        std::vector<std::string> options;
        std::string content;
    } others[] = {
        {"unrtf",
         {"--html"},
         "{\\rtf1\\ansi{\\fonttbl{\\f0 Helvetica;}{\\f1 Times New Roman;}}{\\colortbl;\\red120\\blue128;"
         "\\red140\\blue128;\\red160\\blue128;\\red180\\blue128;\\red200\\blue128;\\red220\\blue128;}\n" +
             contentFor(asRtf, "\\par\n") + "}\n"},
        {"cmark", {"--unsafe"}, contentFor(asMarkdown, "\n\n")},
    };
    for (const auto& other : others) {
        const std::filesystem::path file = std::filesystem::temp_directory_path() /
                                           ("kestrel-bench-" + std::to_string(::getpid()) + "." + other.name);
        std::ofstream(file) << other.content;
        std::vector<std::string> command{other.name};
        command.insert(command.end(), other.options.begin(), other.options.end());
        command.push_back(file);
        if (runs(command)) {
            constexpr std::size_t rounds = 3;
            const double ours = bench::nanosecondsPerCall([&] { bench::keep(conversion.run()); }, rounds);
            const double theirs = bench::nanosecondsPerCall([&] { bench::keep(runs(command)); }, rounds);
            std::printf("%-44s %10.2f ns/char  %7.2f x of styled text to HTML (%.2f ns)\n",
                        (other.name + " on the same content, as a process").c_str(), theirs / kMega,
                        theirs / ours, ours / kMega);
            std::fflush(stdout);
        } else {
            std::printf("%s is not installed (Debian: apt install %s): not compared\n", other.name.c_str(),
                        other.name.c_str());
        }
        std::filesystem::remove(file);
    }
}

} // namespace

namespace bench {

void benchHtml() {
    const Loaded plugIn(solution());
    benchMemory(plugIn);
    const host::Text text = ordinaryText(kMega);
    Conversion conversion(plugIn, text);
    row(
        "styled text to HTML", [&] { keep(conversion.run()); }, "reading it",
        [&] { keep(read(out<fmx::Text>(text))); }, kMega, "char");
    benchOthers(conversion);
    benchUnkindTexts(plugIn);
    benchVariable(plugIn);
}

} // namespace bench
