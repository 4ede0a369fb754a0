#include "html/Output.h"

#include "bridge/StringUtils.h"
#include "html/PostProcessing.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>

namespace {

/// Enough units for most paragraphs.
constexpr std::size_t kOrdinaryParagraph = 256;

/// The alignments with a declaration. Left, the default, has none.
const struct {
    std::string_view alignment, css;
} kAlignments[] = {{"right", "right"}, {"center", "center"}, {"full", "justify"}};

constexpr struct Escape {
    fmx::uint16 unit;
    std::string_view replacement;
} kEscapes[] = {
    {0x000A, "<br/>\r"}, {'&', "&amp;"},     {'<', "&lt;"},
    {'>', "&gt;"},       {0x00A0, "&nbsp;"}, {0x2028, "<br/>\r"},
};

/// By a unit's low byte: false for most units, for which the table need not be searched.
constexpr auto kMayNeedEscape = [] {
    std::array<bool, 256> low{};
    for (const Escape& escape : kEscapes)
        low[escape.unit & 0xFFU] = true;
    return low;
}();

const Escape* escapeOf(fmx::uint16 unit) {
    if (!kMayNeedEscape[unit & 0xFFU]) return std::end(kEscapes);
    return std::find_if(std::begin(kEscapes), std::end(kEscapes),
                        [unit](const Escape& escape) { return escape.unit == unit; });
}

void appendEscaped(Units& html, std::span<const fmx::uint16> units) {
    for (auto at = units.begin(); at != units.end(); ++at) {
        const auto plain = at;
        const Escape* escape = std::end(kEscapes);
        at = std::find_if(at, units.end(), [&](fmx::uint16 unit) {
            escape = escapeOf(unit);
            return escape != std::end(kEscapes);
        });
        html.insert(html.end(), plain, at);
        if (at == units.end()) return;
        html.insert(html.end(), escape->replacement.begin(), escape->replacement.end());
    }
}

void appendRun(Units& html, const cFragment& run) {
    const std::string css = run.getInlineCSS();
    const std::string classes = run.getInlineCSSClasses();
    static const std::vector<std::string> span{"span"};
    const bool hasAttributes = !css.empty() || !classes.empty();
    const std::vector<std::string>& tags = run.tags.empty() && hasAttributes ? span : run.tags;
    // The innermost element carries the attributes.
    for (const std::string& tag : tags)
        appendUtf16(html, &tag == &tags.back() ? createTag(tag, classes, css) : createTag(tag, "", ""));
    appendEscaped(html, run.characters);
    for (auto tag = tags.rbegin(); tag != tags.rend(); ++tag)
        appendUtf16(html, "</" + *tag + ">");
}

void appendTo(fmx::TextAutoPtr& output, const Units& html) {
    if (html.empty()) return;
    const fmx::TextUniquePtr text;
    assignUnits(*text, html);
    output->AppendText(*text);
}

} // namespace

cFragment createParagraphFragment(const std::string& alignment, const ParamVector& tagParams,
                                  const ParamVector& classParams, const ParamVector& styleParams,
                                  ClassMap& classMap) {
    cFragment paragraph;
    if (alignment == "none") return paragraph;
    if (paramVectorHasKey(tagParams, alignment)) {
        paragraph.tags.push_back(paramVectorGetValue(tagParams, alignment));
        return paragraph;
    }
    paragraph.tags.emplace_back("p");
    const auto* const row = std::find_if(std::begin(kAlignments), std::end(kAlignments),
                                         [&](const auto& known) { return known.alignment == alignment; });
    if (row == std::end(kAlignments)) return paragraph;
    const std::string css(row->css);
    for (const std::string& key : {alignment, std::string("all")}) {
        if (!paramVectorHasKey(classParams, key)) continue;
        const std::string name = paramVectorGetValue(classParams, key);
        if (!name.empty())
            paragraph.cssClasses.push_back(get_or_create_class("text-align:" + css + ";", name, classMap));
        return paragraph;
    }
    if (paramVectorHasKey(styleParams, alignment) || paramVectorHasKey(styleParams, "all"))
        paragraph.inlineStyles["text-align"] = css;
    return paragraph;
}

void produceHTMLfromFragments(const fmx::Text&, cFragment& paragraph, std::vector<cFragment>& fragments,
                              const ClassMap&, fmx::TextAutoPtr& output) {
    Units html;
    html.reserve(kOrdinaryParagraph);
    if (!paragraph.tags.empty()) {
        escalateSharedBlockElement(paragraph, fragments);
        escalateSharedCssClasses(paragraph, fragments);
        escalateSharedCssStyles(paragraph, fragments);
        appendUtf16(html, createTag(paragraph.tags.front(), paragraph.getInlineCSSClasses(),
                                    paragraph.getInlineCSS()));
    }
    for (const cFragment& fragment : fragments)
        if (!fragment.characters.empty()) appendRun(html, fragment);
    if (!paragraph.tags.empty()) appendUtf16(html, "</" + paragraph.tags.front() + ">\r");
    appendTo(output, html);
}

std::string createTag(std::string_view name, std::string_view classes, std::string_view style) {
    std::string tag = "<";
    tag.append(name);
    if (!classes.empty()) tag.append(" class=\"").append(classes).append("\"");
    if (!style.empty()) tag.append(" style=\"").append(style).append("\"");
    return tag.append(">");
}

void addEntitiesAndFixEndlines(fmx::Text& text) {
    Units html;
    appendEscaped(html, unitsFromFMText(text));
    assignUnits(text, html);
}

void appendCssClasses(const ClassMap& classMap, std::string_view afterOpen, fmx::TextAutoPtr& output) {
    if (classMap.empty()) return;
    std::string block = "<style type=\"text/css\">";
    block.append(afterOpen).append("\r");
    for (const auto& [name, declarations] : classMap)
        block.append(".").append(name).append(" { ").append(declarations).append(" }\r");
    appendTo(output, utf16FromUtf8(block + "</style>\r"));
}
