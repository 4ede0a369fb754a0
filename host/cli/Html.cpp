#include "host/cli/Commands.h"

#include "host/app/File.h"
#include "host/cli/Input.h"
#include "host/cli/Output.h"
#include "host/cli/Progress.h"
#include "host/cli/Runner.h"
#include "host/html/Reader.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

namespace host::cli {

namespace {

struct HtmlOptions {
    SessionOptions session;
    std::filesystem::path document; ///< "-" is standard input
    std::string output;             ///< empty: standard output
    /// The lists that Kestrel_GetAsHTML takes; each entry may hold several lines.
    std::vector<std::string> tags{"all"}, classes{"all=kst"}, styles{"all"};
    bool asPage = false;
};

Data listOf(const std::vector<std::string>& entries) {
    std::string list;
    for (const std::string& entry : entries)
        list += (list.empty() ? "" : "\r") + entry;
    std::replace(list.begin(), list.end(), '\n', '\r');
    return Data(Text::fromUtf8(list));
}

bool isAligned(const Text& text) {
    return std::ranges::any_of(
        text.runs(), [](const Text::Run& run) { return run.formatting.alignment != Alignment::left; });
}

/// The function asks a variable for the alignment of its paragraphs, but not a text. In a variable, on the
/// other hand, it takes a soft line break for one more paragraph when it looks for their ends. So a document
/// goes by variable only when it needs to: for its alignment, or because it would itself be taken for one.
bool isBetterInVariable(const Text& text) { return isAligned(text) || text.units().starts_with(u'$'); }

std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        if (letter == '&')
            result += "&amp;";
        else if (letter == '<')
            result += "&lt;";
        else
            result += letter;
    }
    return result;
}

/// A document for a browser: the fragment's style block goes into the head, the rest into the body.
std::string pageOf(const std::string& fragment, const std::string& title) {
    constexpr std::string_view styleBegin = "<style", styleEnd = "</style>";
    std::size_t split = 0;
    if (fragment.starts_with(styleBegin)) {
        const std::size_t end = fragment.find(styleEnd);
        split = end == std::string::npos ? 0 : end + styleEnd.size();
    }
    const std::string styles = fragment.substr(0, split), body = fragment.substr(split);
    return withLineFeeds("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                         escaped(title) + "</title>\n" + styles + (styles.empty() ? "" : "\n") +
                         "</head>\n<body>\n" + body + "\n</body>\n</html>");
}

calc::Result convert(Runner& runner, const HtmlOptions& options, const std::string& calculation,
                     const Text& document) {
    const calc::Environment place = runner.session().topLevel();
    const auto let = [&](std::u16string_view name, Data value) {
        place.locals->set(name, 1, std::make_shared<const Data>(std::move(value)));
    };
    let(u"document", Data(document));
    let(u"tags", listOf(options.tags));
    let(u"classes", listOf(options.classes));
    let(u"styles", listOf(options.styles));
    const Progress progress("converting");
    return runner.session().evaluate(Text::fromUtf8(calculation).units());
}

int convertHtml(const HtmlOptions& options) {
    Runner runner(options.session);
    const calc::Environment place = runner.session().topLevel();
    const Text document = readHtml(contentOf(options.document, HtmlLimits::bytes),
                                   [&](std::u16string_view name) { return place.file->fontId(name); });
    const std::string argument = isBetterInVariable(document) ? "\"$document\"" : "$document";
    const std::string calculation = "Kestrel_GetAsHTML ( " + argument + " ; $tags ; $classes ; $styles )";
    const calc::Result result = convert(runner, options, calculation, document);
    if (result.error != calc::error::none) {
        runner.print(result, {.text = calculation, .file = {}});
        return kFailed;
    }
    const std::string fragment = result.value->asText().utf8();
    const std::string title = options.document == "-" ? "Document" : options.document.stem().string();
    const std::string text = options.asPage ? pageOf(fragment, title) : fragment;
    if (options.output.empty())
        writeLine(shown(text));
    else
        writeFile(options.output, text + '\n');
    return kSucceeded;
}

} // namespace

Command addHtml(CLI::App& application) {
    const auto options = std::make_shared<HtmlOptions>();
    CLI::App& command = *application.add_subcommand(
        "html", "Reads an HTML document into styled text and converts it with Kestrel_GetAsHTML.");
    addSessionOptions(command, options->session);
    command.add_option("file", options->document, "the document; - is standard input")
        ->type_name("FILE")
        ->required();
    command.add_option("-o", options->output, "the file for the result")->type_name("FILE");
    command.add_flag("--page", options->asPage, "write a whole document for a browser, not a fragment");
    const auto addList = [&](const char* name, std::vector<std::string>& list, const char* entry) {
        command.add_option(name, list, std::string(entry) + "; repeat it for each entry")
            ->type_name("ENTRY")
            ->allow_extra_args(false);
    };
    addList("--tags", options->tags, "formatting=element, or all");
    addList("--classes", options->classes, "formatting=class, or all=prefix");
    addList("--styles", options->styles, "a formatting, or all");
    return {.options = &command, .run = [options] { return convertHtml(*options); }, .takeArguments = {}};
}

} // namespace host::cli
