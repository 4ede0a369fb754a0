#include "host/html/Reader.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <libxml/HTMLparser.h>
#include <libxml/HTMLtree.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <unicode/ustring.h>
#include <vector>

namespace host {

namespace {

using html::Declarations;
using html::Formatting;
using html::Property;

constexpr char16_t lineSeparator = 0x2028;

template<std::size_t count>
bool isIn(const std::array<std::string_view, count>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// Block elements. The body is not one of them, because the parser puts an unknown element at the beginning
/// of a document into the head.
constexpr std::array<std::string_view, 34> blocks{
    "p",       "div",        "h1",      "h2",     "h3",       "h4",   "h5",      "h6",    "blockquote",
    "pre",     "ul",         "ol",      "li",     "dl",       "dt",   "dd",      "table", "tr",
    "caption", "section",    "article", "header", "footer",   "main", "nav",     "aside", "address",
    "figure",  "figcaption", "hr",      "center", "fieldset", "form", "noscript"};
/// Blocks that are a paragraph even when they are empty.
constexpr std::array<std::string_view, 10> paragraphs{"p",  "div", "h1", "h2",         "h3",
                                                      "h4", "h5",  "h6", "blockquote", "pre"};
constexpr std::array<std::string_view, 5> unread{"script", "style", "title", "template", "object"};

std::string_view nameOf(const xmlNode* node) {
    return node->name == nullptr ? std::string_view() : reinterpret_cast<const char*>(node->name);
}

std::string_view contentOf(const xmlNode* node) {
    return node->content == nullptr ? std::string_view() : reinterpret_cast<const char*>(node->content);
}

bool isText(const xmlNode* node) {
    return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

/// An attribute's value, which the parser stores as one text node; empty when it is missing.
std::string_view attribute(const xmlNode* element, const char* name) {
    for (const xmlAttr* row = element->properties; row != nullptr; row = row->next)
        if (row->children != nullptr && std::string_view(reinterpret_cast<const char*>(row->name)) == name)
            return contentOf(row->children);
    return {};
}

bool isBlank(char16_t unit) {
    return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\r' || unit == u'\f';
}

/// The next node in document order; the children of `node` are skipped when `isInside` is false. `leave` is
/// called for every element that ends in between.
template<class Leave>
const xmlNode* following(const xmlNode* node, bool isInside, const Leave& leave) {
    if (isInside && node->children != nullptr && node->type == XML_ELEMENT_NODE) return node->children;
    while (true) {
        if (node->type == XML_ELEMENT_NODE) leave(node);
        if (node->next != nullptr) return node->next;
        node = node->parent;
        if (node == nullptr || node->type != XML_ELEMENT_NODE) return nullptr;
    }
}

/// Collects characters into paragraphs, with the blanks that a browser would show.
class Paragraphs {
public:
    void endParagraph() {
        if (isOpen_) isOpen_ = false;
        blank_.reset();
    }

    void addEmpty(Alignment alignment) {
        endParagraph();
        open(alignment);
        endParagraph();
    }

    void addLineBreak(const Formatting& formatting) {
        const RunStyle run = formatting.runStyle();
        open(run.alignment);
        blank_.reset();
        text_.append(std::u16string_view(&lineSeparator, 1), run);
        isAtLineStart_ = true;
    }

    void add(std::u16string_view units, const Formatting& formatting) {
        const RunStyle run = formatting.runStyle();
        std::size_t start = 0;
        for (std::size_t i = 0; i < units.size(); ++i) {
            const bool isBreak = formatting.keepsBlanks && (units[i] == u'\n' || units[i] == u'\r');
            if (!isBreak && (formatting.keepsBlanks || !isBlank(units[i]))) continue;
            addSolid(units.substr(start, i - start), run);
            start = i + 1;
            if (!isBreak)
                addBlank(run);
            else if (units[i] == u'\n' || i + 1 == units.size() || units[i + 1] != u'\n')
                addLineBreak(formatting);
        }
        addSolid(units.substr(start), run);
    }

    Text take() { return std::move(text_); }

private:
    void open(Alignment alignment) {
        if (isOpen_) return;
        if (hasParagraphs_) text_.append(u"\r", {.style = {}, .alignment = alignment_});
        isOpen_ = hasParagraphs_ = isAtLineStart_ = true;
        alignment_ = alignment;
    }

    void addBlank(const RunStyle& run) {
        if (isOpen_ && !isAtLineStart_ && !blank_) blank_ = run;
    }

    void addSolid(std::u16string_view units, const RunStyle& run) {
        if (units.empty()) return;
        open(run.alignment);
        if (blank_) text_.append(u" ", *blank_);
        blank_.reset();
        isAtLineStart_ = false;
        text_.append(units, {.style = run.style, .alignment = alignment_});
    }

    Text text_;
    Alignment alignment_ = Alignment::left; ///< alignment of the last paragraph
    bool hasParagraphs_ = false, isOpen_ = false, isAtLineStart_ = true;
    std::optional<RunStyle> blank_; ///< a blank that is written only if text follows it on its line
};

class Walk {
public:
    Walk(const html::StyleSheet& sheet, const html::FontIds& fonts) : sheet_(sheet), fonts_(fonts) {}

    Text read(const xmlNode* root) {
        formattings_.emplace_back();
        const auto leave = [this](const xmlNode* element) {
            formattings_.pop_back();
            if (isIn(blocks, nameOf(element))) paragraphs_.endParagraph();
        };
        for (const xmlNode* node = root; node != nullptr;) {
            bool isInside = false;
            if (isText(node))
                paragraphs_.add(fromUtf8(shownTextOf(node)), formattings_.back());
            else if (node->type == XML_ELEMENT_NODE)
                isInside = enter(node);
            node = following(node, isInside, leave);
        }
        return paragraphs_.take();
    }

private:
    /// Begins an element. Gives whether its content is read.
    bool enter(const xmlNode* element) {
        const std::string_view name = nameOf(element);
        formattings_.push_back(html::formattingWithin(formattings_.back(), html::defaultDeclarations(name),
                                                      declarationsOf(element, name), fonts_));
        Formatting& formatting = formattings_.back();
        if (formatting.isHidden || isIn(unread, name)) return false;
        if (name == "body" || name == "html") formatting.isHighlighted = false;
        if (isIn(blocks, name)) paragraphs_.endParagraph();
        if (name == "br") paragraphs_.addLineBreak(formatting);
        if (name == "td" || name == "th") paragraphs_.add(u" ", formatting);
        if (isIn(paragraphs, name) && isEmpty(element)) paragraphs_.addEmpty(formatting.alignment);
        return true;
    }

    /// The text without the line feed directly after a <pre> tag, which is not part of the content.
    static std::string_view shownTextOf(const xmlNode* text) {
        std::string_view shown = contentOf(text);
        if (text->prev != nullptr || text->parent == nullptr || nameOf(text->parent) != "pre") return shown;
        if (shown.starts_with('\r')) shown.remove_prefix(1);
        if (shown.starts_with('\n')) shown.remove_prefix(1);
        return shown;
    }

    /// Whether an element holds no elements and no text but blanks.
    static bool isEmpty(const xmlNode* element) {
        for (const xmlNode* child = element->children; child != nullptr; child = child->next)
            if (!isText(child) || !html::trimmed(contentOf(child)).empty()) return false;
        return true;
    }

    /// The element's declarations. Rules win over formatting attributes, and `style` wins over rules.
    [[nodiscard]] Declarations declarationsOf(const xmlNode* element, std::string_view name) const {
        constexpr std::uint64_t ofAttributes = 1000;
        Declarations declarations;
        const auto take = [&](const char* key, Property property) {
            if (const std::string_view value = attribute(element, key); !value.empty())
                declarations.declare(property, html::trimmed(value), ofAttributes);
        };
        take("align", Property::textAlign);
        if (name == "font") {
            take("color", Property::color);
            take("face", Property::fontFamily);
            takeFontSize(attribute(element, "size"), declarations);
        }
        sheet_.apply(name, attribute(element, "class"), declarations);
        std::uint64_t order = html::StyleSheet::later;
        declarations.parse(attribute(element, "style"), order);
        return declarations;
    }

    /// Reads the size of a `font` element: 1 to 7, or with a sign the steps from 3.
    static void takeFontSize(std::string_view value, Declarations& declarations) {
        constexpr std::array<std::string_view, 7> sizes{"10px", "13px", "16px", "18px",
                                                        "24px", "32px", "48px"};
        const std::optional<html::Length> size = html::parseLength(html::trimmed(value));
        if (!size) return;
        const bool isStep = value.find_first_of("+-") != std::string_view::npos;
        const double row = std::clamp(size->number + (isStep ? 3 : 0), 1.0, 7.0) - 1;
        declarations.declare(Property::fontSize, sizes.at(static_cast<std::size_t>(row)), 1);
    }

    const html::StyleSheet& sheet_;
    const html::FontIds& fonts_;
    std::vector<Formatting> formattings_; ///< formatting of the open elements, the innermost last
    Paragraphs paragraphs_;
};

html::StyleSheet styleSheetOf(const xmlNode* root) {
    html::StyleSheet sheet;
    for (const xmlNode* node = root; node != nullptr; node = following(node, true, [](const xmlNode*) {})) {
        if (node->type != XML_ELEMENT_NODE || nameOf(node) != "style") continue;
        std::string css;
        for (const xmlNode* child = node->children; child != nullptr; child = child->next)
            if (isText(child)) css += contentOf(child);
        sheet.parse(css);
    }
    return sheet;
}

bool isUtf8(std::string_view bytes) {
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t units = 0;
    u_strFromUTF8(nullptr, 0, &units, bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
    return U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR;
}

/// Whether a text is HTML without `html`, `head`, `body` and doctype.
bool isFragment(std::string_view bytes) {
    constexpr std::array<std::string_view, 4> frame{"<html", "<head", "<body", "<!doctype"};
    constexpr std::size_t longest = 9;
    for (std::size_t tag = bytes.find('<'); tag != std::string_view::npos; tag = bytes.find('<', tag + 1)) {
        const std::string start = html::lowered(bytes.substr(tag, longest));
        if (std::any_of(frame.begin(), frame.end(),
                        [&](std::string_view name) { return start.starts_with(name); }))
            return false;
    }
    return true;
}

/// The document without input that the parser mishandles: it ends at a zero byte. Without a body tag it puts
/// the content after a style block into the head or into an additional paragraph.
std::string prepared(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    std::string clean = isFragment(bytes) ? "<html><body>" : "";
    clean.append(bytes);
    std::replace(clean.begin(), clean.end(), '\0', ' ');
    return clean;
}

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct FreeParser {
    void operator()(htmlParserCtxt* parser) const { htmlFreeParserCtxt(parser); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

Document parse(const std::string& bytes, const char* encoding) {
    const std::unique_ptr<htmlParserCtxt, FreeParser> parser(htmlNewParserCtxt());
    if (!parser) throw std::bad_alloc();
    // Bytes in an unknown encoding are read as far as possible, without a message on the error output.
    xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
    // By default, the parser drops blanks between unknown elements as indentation.
    parser->sax->ignorableWhitespace = parser->sax->characters;
    Document document(htmlCtxtReadMemory(parser.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                         encoding,
                                         HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                             HTML_PARSE_NONET | HTML_PARSE_NODEFDTD));
    // The parser disables its call-backs when the nesting or a text is beyond its limits.
    if (parser->disableSAX != 0)
        throw std::runtime_error("the document is nested more than " + std::to_string(HtmlLimits::depth) +
                                 " elements deep, or has a text of more than 10 MB without any element");
    return document;
}

} // namespace

Text readHtml(std::string_view bytes, const html::FontIds& fonts) {
    if (bytes.empty()) return {};
    if (bytes.size() > HtmlLimits::bytes)
        throw std::runtime_error("the document has more than " + std::to_string(HtmlLimits::bytes >> 20) +
                                 " MB");
    const bool isKnown = isUtf8(bytes);
    const bool isWide = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
    const Document document =
        parse(isWide ? std::string(bytes) : prepared(bytes), isKnown ? "UTF-8" : nullptr);
    const xmlNode* root = document ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr) return {};
    const html::StyleSheet sheet = styleSheetOf(root);
    return Walk(sheet, fonts).read(root);
}

} // namespace host
