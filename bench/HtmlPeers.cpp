#include "Benchmarks.h"
#include "Conversion.h"
#include "Measure.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

/// The conversion into HTML compared with other converters on the same content, each in its own input format.

namespace bench {

namespace {

constexpr std::uint32_t kMega = 1'000'000;

/// Writes a run of the content in another converter's format.
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

/// Writes a run as Markdown. HTML elements stand for the formattings that Markdown lacks.
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
        content += write(characters, text.formattingAt(start).style);
        if (endsParagraph) content += paragraphEnd;
    }
    return content;
}

/// Runs a program without its output; false when there is no such program or it fails.
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

std::string rtf() {
    return "{\\rtf1\\ansi{\\fonttbl{\\f0 Helvetica;}{\\f1 Times New Roman;}}{\\colortbl;\\red120\\blue128;"
           "\\red140\\blue128;\\red160\\blue128;\\red180\\blue128;\\red200\\blue128;\\red220\\blue128;}\n" +
           contentFor(asRtf, "\\par\n") + "}\n";
}

std::string markdown() { return contentFor(asMarkdown, "\n\n"); }

} // namespace

void benchHtmlBesidePeers() {
    const struct {
        std::string name, option;
        std::string (*content)();
    } peers[] = {{"unrtf", "--html", rtf}, {"cmark", "--unsafe", markdown}};
    const Loaded plugIn(solutionWithFonts());
    Conversion conversion(plugIn, ordinaryText(kMega));
    for (const auto& peer : peers) {
        const std::filesystem::path file = std::filesystem::temp_directory_path() /
                                           ("kestrel-bench-" + std::to_string(::getpid()) + "." + peer.name);
        std::ofstream(file) << peer.content();
        const std::vector<std::string> command{peer.name, peer.option, file};
        if (runs(command))
            row(
                "Kestrel_GetAsHTML", [&] { keep(conversion.run()); }, peer.name + ", a process",
                [&] { keep(runs(command)); }, kMega, "char");
        else
            std::printf("  %s is not installed (Debian: apt install %s): not compared\n", peer.name.c_str(),
                        peer.name.c_str());
        std::filesystem::remove(file);
    }
}

} // namespace bench
