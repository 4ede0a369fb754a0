#include "CommandOutput.h"
#include "StyledTexts.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <unistd.h>

/// Compares the style that a browser computes for each character of the HTML with the styled text. Runs when
/// KESTREL_BROWSER names a Chromium.

namespace {

using host::Text;

/// The computed style of a character by field. The expected style may allow more than one value for a field.
using Computed = std::map<std::string, std::string>;
using Expected = std::map<std::string, std::vector<std::string>>;

/// Collects the characters and breaks of every frame with their computed styles. CSS does not inherit lines,
/// highlights and superscript, but inner elements show them, so they are collected from the outer elements.
constexpr const char* script = R"js(
function formatting(element) {
    const frame = element.ownerDocument, view = frame.defaultView;
    const style = view.getComputedStyle(element), lines = new Set();
    let position = "baseline", background = "", aligned = style.textAlign;
    for (let e = element; e !== frame.body; e = e.parentElement) {
        const own = view.getComputedStyle(e);
        for (const line of own.textDecorationLine.split(" "))
            if (line !== "none") lines.add(own.textDecorationStyle === "double" && line === "underline"
                                           ? "double" : line);
        if (position === "baseline") position = own.verticalAlign;
        if (own.backgroundColor !== "rgba(0, 0, 0, 0)") background = own.backgroundColor;
    }
    return { weight: style.fontWeight, slant: style.fontStyle, caps: style.fontVariantCaps,
             letters: style.textTransform, spacing: style.letterSpacing, color: style.color,
             font: style.fontFamily.replaceAll('"', ""), size: style.fontSize, aligned, position, background,
             lines: [...lines].sort().join(" ") };
}
function collect(node, runs) {
    for (const child of node.childNodes) {
        if (child.nodeType === Node.TEXT_NODE) {
            const text = child.data.replaceAll("\n", "");
            if (text !== "") runs.push([text, formatting(node)]);
        } else if (child.nodeName === "BR") {
            runs.push(["\u2028", formatting(node)]);
        } else if (child.nodeName !== "STYLE") {
            if ((child.nodeName === "P" || child.nodeName === "DIV") && child.previousElementSibling)
                runs.push(["\r", {}]);
            collect(child, runs);
        }
    }
}
onload = () => {
    const all = [...document.querySelectorAll("iframe")].map(frame => {
        const runs = [];
        collect(frame.contentDocument.body, runs);
        return runs;
    });
    document.getElementById("formattings").textContent = JSON.stringify(all).replace(/[^ -~]|[&<>]/g,
        c => "\\u" + c.charCodeAt(0).toString(16).padStart(4, "0"));
};
)js";

constexpr const char* base = "<!DOCTYPE html><html lang=en><head>"
                             "<style>body { color: #123456; font-family: Base; font-size: 17px }</style>";

std::string escapedForAttribute(const std::string& html) {
    std::string escaped;
    for (const char c : html)
        escaped += c == '&' ? "&amp;" : c == '"' ? "&quot;" : std::string(1, c);
    return escaped;
}

class HtmlInBrowser : public LoadedPlugIn {
protected:
    const char* browser = std::getenv("KESTREL_BROWSER");
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("kestrel-browser-" + std::to_string(::getpid()));

    void SetUp() override {
        if (browser == nullptr || *browser == '\0') GTEST_SKIP() << "KESTREL_BROWSER names no browser";
        std::filesystem::create_directory(folder);
    }
    void TearDown() override {
        LoadedPlugIn::TearDown();
        std::filesystem::remove_all(folder);
    }

    /// The computed styles of the characters in each of the pages.
    nlohmann::json computedStyles(const std::vector<std::string>& pages) {
        {
            std::ofstream file(folder / "pages.html", std::ios::binary);
            file << "<!DOCTYPE html><meta charset=utf-8><script>" << script << "</script>";
            for (const std::string& page : pages)
                file << "<iframe srcdoc=\"" << escapedForAttribute(base + page) << "\"></iframe>\n";
            file << "<pre id=formattings></pre>";
        }
        const std::string quoted = "'" + folder.string();
        // The browser runs without the tests' own network, which it does not support.
        const std::string page = outputOf(
            "env -u LD_PRELOAD timeout 120 " + std::string(browser) +
            " --headless --disable-gpu --disable-dev-shm-usage" + (::geteuid() == 0 ? " --no-sandbox" : "") +
            " --host-resolver-rules='MAP * ~NOTFOUND' --user-data-dir=" + quoted + "/profile' --dump-dom " +
            quoted + "/pages.html' 2>/dev/null");
        const std::string mark = "<pre id=\"formattings\">";
        const std::size_t start = page.find(mark);
        if (start == std::string::npos) return {};
        const std::size_t first = start + mark.size();
        return nlohmann::json::parse(page.substr(first, page.find("</pre>", first) - first), nullptr, false);
    }

    /// The expected style of a character. `isWholly` holds the faces that all characters of its paragraph
    /// share.
    Expected expected(const host::RunStyle& formatting, std::uint16_t isWholly,
                      const HtmlParameters& parameters) {
        using namespace host;
        const std::uint16_t faces = formatting.style.faces();
        const auto has = [faces](std::uint16_t bits) { return (faces & bits) == bits; };
        Expected fields{{"weight", {"400"}},     {"slant", {"normal"}}, {"caps", {"normal"}},
                        {"spacing", {"normal"}}, {"background", {""}},  {"position", {"baseline"}},
                        {"letters", {"none"}}};
        // The later of two rows for one field wins.
        constexpr struct {
            std::uint16_t bits;
            const char *field, *value;
        } rows[] = {
            {face::bold, "weight", "700"},
            {face::italic, "slant", "italic"},
            {face::smallCaps, "caps", "small-caps"},
            {face::extend, "spacing", "2px"},
            {face::condense, "spacing", "-2px"},
            {face::highlight, "background", "rgb(255, 255, 0)"},
            {face::subscript, "position", "sub"},
            {face::superscript, "position", "super"},
            {face::lowercase, "letters", "lowercase"},
            {face::uppercase, "letters", "uppercase"},
            {face::titlecase, "letters", "capitalize"},
        };
        for (const auto& [bits, field, value] : rows)
            if (has(bits)) fields[field] = {value};
        constexpr const char* alignments[] = {"start", "center", "right", "justify"};
        fields["aligned"] = {alignments[static_cast<std::size_t>(formatting.alignment)]};
        fields["lines"] = linesOf(faces, isWholly, parameters);
        fields["color"] = {"rgb(18, 52, 86)"};
        if (formatting.style.isColorEnabled()) {
            const Color color = formatting.style.color();
            fields["color"] = {"rgb(" + std::to_string(color.red) + ", " + std::to_string(color.green) +
                               ", " + std::to_string(color.blue) + ")"};
        }
        // <mark> has black text of its own, even in a coloured paragraph.
        if (has(face::highlight) && parameters.hasElements) fields["color"].emplace_back("rgb(0, 0, 0)");
        const auto font = session.front()->fontName(formatting.style.font());
        fields["font"] = {font ? host::toUtf8(*font) : "Base"};
        const int size = formatting.style.isSizeEnabled() ? formatting.style.size() : 17;
        fields["size"] = {std::to_string(size) + "px"};
        if ((faces & (face::superscript | face::subscript)) != 0 && parameters.hasElements)
            fields["size"].push_back(std::to_string(size / 1.2) + "px"); // unless the element declares a size
        return fields;
    }

private:
    static std::vector<std::string> linesOf(std::uint16_t faces, std::uint16_t isWholly,
                                            const HtmlParameters& parameters) {
        using namespace host;
        const std::string under = (faces & face::underline) != 0         ? "underline"
                                  : (faces & face::doubleUnderline) != 0 ? "double"
                                                                         : "";
        if ((faces & face::strikethrough) == 0) {
            // Declarations move to the paragraph one by one, so the double style may be separated from its
            // line.
            if (under == "double" && parameters.hasInlineStyles && (isWholly & face::doubleUnderline) != 0)
                return {under, "underline"};
            return {under};
        }
        std::vector<std::string> lines{under.empty()       ? "line-through"
                                       : under == "double" ? "double line-through"
                                                           : "line-through " + under};
        // A declaration on <s> itself replaces its line, and both lines have the same style.
        if (under == "double" && parameters.hasElements) lines.emplace_back("double");
        if (under == "double" && parameters.hasInlineStyles) lines.emplace_back("line-through underline");
        return lines;
    }
};

/// The faces that all characters of a paragraph share; a single underline counts as a double one too.
std::vector<std::uint16_t> wholly(const Text& text) {
    std::vector<std::uint16_t> shared(text.size());
    for (std::uint32_t first = 0; first < text.size();) {
        std::uint32_t end = first;
        std::uint16_t common = host::face::all | host::face::caseMask;
        for (; end < text.size() && text.units()[end] != u'\r'; ++end) {
            std::uint16_t faces = text.formattingAt(end).style.faces();
            if ((faces & host::face::underline) != 0) faces |= host::face::doubleUnderline;
            common &= faces;
        }
        std::fill(shared.begin() + first, shared.begin() + end, common);
        first = end + 1;
    }
    return shared;
}

std::string shortened(double number) {
    char text[40];
    std::snprintf(text, sizeof text, "%.2f", number);
    return text;
}

/// Sizes are compared to a hundredth of a pixel.
bool isOneOf(const std::vector<std::string>& wanted, const std::string& field, const std::string& found) {
    return std::any_of(wanted.begin(), wanted.end(), [&](const std::string& value) {
        return value == found || (field == "size" &&
                                  shortened(std::atof(value.c_str())) == shortened(std::atof(found.c_str())));
    });
}

TEST_F(HtmlInBrowser, hasTheFormattingOfTheText) {
    constexpr unsigned count = 180;
    const unsigned first = numberFromEnvironment("KESTREL_SEED", 1);
    std::vector<Text> texts;
    std::vector<std::string> pages;
    for (unsigned seed = first; seed < first + count; ++seed) {
        const HtmlParameters& parameters = htmlParameters()[seed % htmlParameters().size()];
        const bool inVariable = seed / htmlParameters().size() % 2 == 1;
        const Text text = StyledTexts(seed, *session.front()).next(!inVariable);
        texts.push_back(textInHtml(text, parameters, inVariable));
        pages.push_back(htmlOf(session, text, parameters, inVariable).utf8());
    }
    const nlohmann::json computed = computedStyles(pages);
    ASSERT_EQ(computed.size(), count) << "the browser gave no answer";
    for (unsigned i = 0; i < count; ++i) {
        SCOPED_TRACE("KESTREL_SEED=" + std::to_string(first + i) + "\n" + pages[i]);
        const std::vector<std::uint16_t> common = wholly(texts[i]);
        std::uint32_t position = 0;
        for (const auto& run : computed[i]) {
            const auto found = run[1].get<Computed>();
            for (const char16_t unit : host::fromUtf8(run[0].get<std::string>())) {
                ASSERT_LT(position, texts[i].size());
                ASSERT_EQ(unit, texts[i].units()[position]) << "at " << position;
                if (unit != u'\r')
                    for (const auto& [field, values] :
                         expected(texts[i].formattingAt(position), common[position],
                                  htmlParameters()[(first + i) % htmlParameters().size()]))
                        ASSERT_TRUE(isOneOf(values, field, found.at(field)))
                            << "character " << position << ": " << field << " is \"" << found.at(field)
                            << "\", not \"" << values.front() << "\"";
                ++position;
            }
        }
        ASSERT_EQ(position, texts[i].size());
    }
}

} // namespace
