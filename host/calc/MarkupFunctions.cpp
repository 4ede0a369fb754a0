#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

/// Texts with their formattings written as markup.

namespace host::calc {

namespace {

using Arguments = std::span<const DataRef>;

/// The CSS of faces: a row counts when exactly `faces` of `mask` are set, so that of faces which CSS cannot
/// combine one is written. The rows of one property stand together.
struct FaceCss {
    std::uint16_t mask, faces;
    std::u16string_view property, value;
};
constexpr std::uint16_t anyUnderline = face::underline | face::wordUnderline | face::doubleUnderline;
constexpr std::array faceCss{
    FaceCss{face::bold, face::bold, u"font-weight", u"bold"},
    FaceCss{face::italic, face::italic, u"font-style", u"italic"},
    FaceCss{anyUnderline, face::underline, u"text-decoration", u"underline"},
    FaceCss{face::wordUnderline | face::doubleUnderline, face::wordUnderline, u"text-decoration",
            u"underline"},
    FaceCss{face::doubleUnderline, face::doubleUnderline, u"text-decoration", u"underline double"},
    FaceCss{face::strikethrough, face::strikethrough, u"text-decoration", u"line-through"},
    FaceCss{face::highlight, face::highlight, u"background-color", u"#FFFF00"},
    FaceCss{face::condense | face::extend, face::condense, u"font-stretch", u"condensed"},
    FaceCss{face::extend, face::extend, u"font-stretch", u"expanded"},
    FaceCss{face::smallCaps, face::smallCaps, u"font-variant", u"small-caps"},
    FaceCss{face::superscript | face::subscript, face::superscript, u"vertical-align", u"super"},
    FaceCss{face::subscript, face::subscript, u"vertical-align", u"sub"},
    FaceCss{face::caseMask, face::uppercase, u"text-transform", u"uppercase"},
    FaceCss{face::caseMask, face::lowercase, u"text-transform", u"lowercase"},
    FaceCss{face::caseMask, face::titlecase, u"text-transform", u"capitalize"},
};
constexpr std::array<std::u16string_view, 4> alignments{u"left", u"center", u"right", u"full"};

std::u16string hexadecimal(const Color& color) {
    constexpr std::u16string_view digits = u"0123456789ABCDEF";
    std::u16string text = u"#";
    for (const std::uint8_t channel : {color.red, color.green, color.blue}) {
        text += digits[channel / 16];
        text += digits[channel % 16];
    }
    return text;
}

std::u16string decimal(std::uint16_t number) { return Decimal(number).text(); }

std::u16string faceDeclarations(std::uint16_t faces) {
    std::u16string css;
    std::u16string_view property;
    for (const FaceCss& row : faceCss) {
        if ((faces & row.mask) != row.faces) continue;
        if (row.property == property) {
            css.insert(css.size() - 1, u" " + std::u16string(row.value));
            continue;
        }
        property = row.property;
        css.append(property).append(u": ").append(row.value).append(u";");
    }
    return css;
}

struct Escape {
    char16_t unit;
    std::u16string_view text;
};
/// A return and the soft line break become line breaks, so that a browser shows the same lines.
constexpr std::array escapes{Escape{u'&', u"&amp;"},  Escape{u'<', u"&lt;"},    Escape{u'>', u"&gt;"},
                             Escape{u'"', u"&quot;"}, Escape{u'\r', u"<br>\n"}, Escape{u'\u2028', u"<br>\n"}};

std::u16string escaped(std::u16string_view units) {
    std::u16string html;
    for (const char16_t unit : units) {
        const auto row = std::find_if(escapes.begin(), escapes.end(),
                                      [unit](const Escape& escape) { return escape.unit == unit; });
        if (row == escapes.end())
            html += unit;
        else
            html += row->text;
    }
    return html;
}

std::u16string declarations(FileContext& file, const RunStyle& formatting) {
    std::u16string css;
    const CharacterStyle& style = formatting.style;
    if (style.isFontEnabled())
        if (const auto name = file.fontName(style.font())) css += u"font-family: '" + escaped(*name) + u"';";
    if (style.isSizeEnabled()) css += u"font-size: " + decimal(style.size()) + u"px;";
    if (style.isColorEnabled()) css += u"color: " + hexadecimal(style.color()) + u";";
    css += faceDeclarations(style.faces());
    css.append(u"text-align: ")
        .append(alignments.at(static_cast<std::size_t>(formatting.alignment)))
        .append(u";");
    return css;
}

/// One span for every run of one formatting. Traits that are left to the field are left out.
DataRef getAsCss(Evaluation& evaluation, Arguments arguments) {
    std::u16string html;
    arguments[0]->asText().forEachRun([&](std::u16string_view units, const RunStyle& formatting) {
        html.append(u"<span style=\"").append(declarations(evaluation.file(), formatting)).append(u"\">");
        html.append(escaped(units)).append(u"</span>");
        checkTextSize(html.size());
    });
    return textResult(std::move(html));
}

/// The formattings of the runs in a list of their own, then the runs, each with its formatting's number.
DataRef getAsSvg(Evaluation& evaluation, Arguments arguments) {
    std::u16string styles = u"<stylelist>\r", data = u"<data>\r";
    std::int64_t number = 0, begin = 1;
    arguments[0]->asText().forEachRun([&](std::u16string_view units, const RunStyle& formatting) {
        const std::u16string name = Decimal(number++).text();
        const std::int64_t end = begin + std::ssize(units);
        styles.append(u"<style#").append(name).append(u">\"");
        styles.append(declarations(evaluation.file(), formatting)).append(u"\", Begin: ");
        styles.append(Decimal(begin).text()).append(u", End: ").append(Decimal(end - 1).text());
        styles.append(u"</style>\r");
        data.append(u"<span style=\"").append(name).append(u"\">");
        data.append(escaped(units)).append(u"</span>\r");
        checkTextSize(styles.size() + data.size());
        begin = end;
    });
    return textResult(styles + u"</stylelist>\r" + data + u"</data>");
}

constexpr std::array rows{
    EvaluationRow{u"GetAsCSS", getAsCss},
    EvaluationRow{u"GetAsSVG", getAsSvg},
};

} // namespace

void addMarkupFunctions(FunctionTable& table) { addRows(table, rows); }

} // namespace host::calc
