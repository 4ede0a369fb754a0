#include "host/cli/Commands.h"

#include "host/fmwrapper/Faults.h"
#include "host/app/File.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/html/Reader.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace host::cli {

namespace {

std::string contentOf(const std::filesystem::path& document) {
    std::ifstream file;
    if (document != "-") {
        file.open(document, std::ios::binary);
        if (!file || std::filesystem::is_directory(document))
            throw std::runtime_error("cannot read " + document.string());
    }
    std::istream& input = document == "-" ? std::cin : file;
    std::string content;
    // One byte more than a document may have is enough to refuse it.
    for (char buffer[65536]; input && content.size() <= HtmlLimits::bytes;) {
        input.read(buffer, sizeof buffer);
        content.append(buffer, static_cast<std::size_t>(input.gcount()));
    }
    if (input.bad()) throw std::runtime_error("cannot read " + document.string());
    return content;
}

Data listOf(std::string lines) {
    std::replace(lines.begin(), lines.end(), '\n', '\r');
    return Data(Text::fromUtf8(lines));
}

bool isAligned(const Text& text) {
    return std::any_of(text.runs().begin(), text.runs().end(),
                       [](const Text::Run& run) { return run.look.alignment != Alignment::left; });
}

/// The function asks a variable for the alignment of its paragraphs, but not a text. In a variable, on the
/// other hand, it takes a soft line break for one more paragraph when it looks for their ends. So a document
/// goes by variable only when it needs to: for its alignment, or because it would itself be taken for one.
bool isBetterInVariable(const Text& text) { return isAligned(text) || text.units().starts_with(u'$'); }

bool writeTo(const std::filesystem::path& output, const std::string& text) {
    std::ofstream file(output, std::ios::binary);
    file << text << '\n';
    file.close();
    if (!file) throw std::runtime_error("cannot write " + output.string());
    return true;
}

bool convert(Desk& desk, const Options& options) {
    const calc::Environment place = desk.session().topLevel();
    const Text document = readHtml(contentOf(options.document),
                                   [&](std::u16string_view name) { return place.file->fontId(name); });
    const auto let = [&](std::u16string_view name, Data value) {
        place.locals->set(name, 1, std::make_shared<const Data>(std::move(value)));
    };
    const bool inVariable = isBetterInVariable(document);
    let(u"document", Data(document));
    let(u"tags", listOf(options.tags));
    let(u"classes", listOf(options.classes));
    let(u"styles", listOf(options.styles));
    const std::u16string argument = inVariable ? u"\"$document\"" : u"$document";
    const calc::Result result =
        desk.session().evaluate(u"Kestrel_GetAsHTML ( " + argument + u" ; $tags ; $classes ; $styles )");
    if (options.output.empty() || result.error != calc::error::none) return desk.print(result);
    return writeTo(options.output, result.value->asText().utf8());
}

} // namespace

int convertHtml(const Options& options) {
    bool isGood = false;
    {
        Desk desk(options);
        if (options.failAt > 0)
            faults().arm(options.failAt, static_cast<Faults::Kind>(options.failWith), options.failFromThenOn);
        isGood = convert(desk, options);
        faults().disarm();
    }
    if (options.reportObjects) {
        const std::string left = objectCounts().describe();
        std::fprintf(stderr, "kestrel: host objects left: %s\n", left.empty() ? "none" : left.c_str());
    }
    return isGood ? succeeded : evaluationFailed;
}

} // namespace host::cli
