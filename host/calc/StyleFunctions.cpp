#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

using Arguments = std::span<const DataRef>;

struct StyleWord {
    std::u16string_view name; ///< folded
    std::uint16_t faces;
};
constexpr std::array styleWords{
    StyleWord{u"plain", face::plain},
    StyleWord{u"bold", face::bold},
    StyleWord{u"italic", face::italic},
    StyleWord{u"underline", face::underline},
    StyleWord{u"highlightyellow", face::highlight},
    StyleWord{u"condense", face::condense},
    StyleWord{u"extend", face::extend},
    StyleWord{u"strikethrough", face::strikethrough},
    StyleWord{u"smallcaps", face::smallCaps},
    StyleWord{u"superscript", face::superscript},
    StyleWord{u"subscript", face::subscript},
    StyleWord{u"uppercase", face::uppercase},
    StyleWord{u"lowercase", face::lowercase},
    StyleWord{u"titlecase", face::titlecase},
    StyleWord{u"wordunderline", face::wordUnderline},
    StyleWord{u"doubleunderline", face::doubleUnderline},
    StyleWord{u"allstyles", face::all},
};

/// The faces that words stand for together; plain when there is nothing but Plain. A word that is no style
/// is taken for a field, as bare names are.
std::uint16_t facesOf(const Node& words) {
    std::uint16_t faces = face::plain;
    for (const std::u16string& word : words.words) {
        const auto row = std::find_if(styleWords.begin(), styleWords.end(),
                                      [&](const StyleWord& candidate) { return candidate.name == word; });
        if (row == styleWords.end()) throw Error{error::missingField};
        faces |= row->faces;
    }
    return faces;
}

CharacterStyle everyFace() {
    CharacterStyle style;
    style.enableFace(face::all);
    return style;
}

DataRef textStyleAdd(Evaluation& evaluation, std::span<const Node* const> arguments) {
    const std::uint16_t faces = facesOf(*arguments[1]);
    Text text = evaluation.evaluate(*arguments[0])->asText();
    if (faces == face::plain) {
        text.removeStyle(everyFace());
    } else {
        CharacterStyle style;
        style.setFaces(faces);
        text.applyStyle(style);
    }
    return textResult(std::move(text));
}

DataRef textStyleRemove(Evaluation& evaluation, std::span<const Node* const> arguments) {
    const std::uint16_t faces = facesOf(*arguments[1]);
    Text text = evaluation.evaluate(*arguments[0])->asText();
    CharacterStyle style;
    style.enableFace(faces == face::plain ? face::all : faces);
    text.removeStyle(style);
    return textResult(std::move(text));
}

/// Colours are numbers: red, green and blue in a byte each, blue the lowest.
DataRef rgb(Arguments arguments) {
    std::int64_t color = 0;
    for (const DataRef& argument : arguments)
        color = color * 256 + std::clamp(argument->asNumber().toInt32(), 0, 255);
    return numberResult(color);
}

Color colorOf(const Data& value) {
    const std::int64_t number = value.asNumber().toInt64();
    const auto byte = [number](unsigned shift) {
        return static_cast<std::uint8_t>((number >> shift) & 0xFF);
    };
    return {.red = byte(16), .green = byte(8), .blue = byte(0)};
}

/// 0 for what is no size.
std::uint16_t sizeOf(const Data& value) {
    const std::int64_t size = value.asNumber().toInt64();
    return size < 1 || size > 0xFFFF ? 0 : static_cast<std::uint16_t>(size);
}

/// A trait that a function sets by its second argument; a value that is none leaves the style empty.
using Trait = CharacterStyle (*)(Evaluation& evaluation, const Data& value);

CharacterStyle colorTrait(Evaluation&, const Data& value) {
    CharacterStyle style;
    style.setColor(colorOf(value));
    return style;
}
CharacterStyle fontTrait(Evaluation& evaluation, const Data& value) {
    CharacterStyle style;
    const std::uint16_t font = evaluation.file().fontId(value.asText().units());
    if (font != invalidFont) style.setFont(font);
    return style;
}
CharacterStyle sizeTrait(Evaluation&, const Data& value) {
    CharacterStyle style;
    if (const std::uint16_t size = sizeOf(value); size != 0) style.setSize(size);
    return style;
}

template<Trait trait>
DataRef addTrait(Evaluation& evaluation, Arguments arguments) {
    Text text = arguments[0]->asText();
    text.applyStyle(trait(evaluation, *arguments[1]));
    return textResult(std::move(text));
}

/// Whether a look has the one trait that is enabled in `wanted`.
bool hasTrait(const CharacterStyle& look, const CharacterStyle& wanted) {
    CharacterStyle with = look;
    with.apply(wanted);
    return with == look;
}

/// Without a second argument the trait goes from the whole text, otherwise from where it has that value.
template<Trait trait, auto enable>
DataRef removeTrait(Evaluation& evaluation, Arguments arguments) {
    Text text = arguments[0]->asText();
    CharacterStyle any;
    (any.*enable)();
    if (arguments.size() == 1) {
        text.removeStyle(any);
        return textResult(std::move(text));
    }
    const CharacterStyle wanted = trait(evaluation, *arguments[1]);
    if (wanted.isAllDisabled()) return textResult(std::move(text));
    Text result;
    const auto& runs = text.runs();
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::uint32_t end = i + 1 < runs.size() ? runs[i + 1].start : text.size();
        RunStyle look = runs[i].look;
        if (hasTrait(look.style, wanted)) look.style.remove(any);
        result.append(text.units().substr(runs[i].start, end - runs[i].start), look);
    }
    return textResult(std::move(result));
}

DataRef textFormatRemove(Arguments arguments) {
    Text text = arguments[0]->asText();
    text.removeAllStyles();
    return textResult(std::move(text));
}

/// Faces as CSS says them; those of one property stand together.
struct FaceCss {
    std::uint16_t mask, faces;
    std::u16string_view property, value;
};
constexpr std::array faceCss{
    FaceCss{face::bold, face::bold, u"font-weight", u"bold"},
    FaceCss{face::italic, face::italic, u"font-style", u"italic"},
    FaceCss{face::underline, face::underline, u"text-decoration", u"underline"},
    FaceCss{face::wordUnderline, face::wordUnderline, u"text-decoration", u"underline"},
    FaceCss{face::doubleUnderline, face::doubleUnderline, u"text-decoration", u"underline double"},
    FaceCss{face::strikethrough, face::strikethrough, u"text-decoration", u"line-through"},
    FaceCss{face::highlight, face::highlight, u"background-color", u"#FFFF00"},
    FaceCss{face::condense, face::condense, u"font-stretch", u"condensed"},
    FaceCss{face::extend, face::extend, u"font-stretch", u"expanded"},
    FaceCss{face::smallCaps, face::smallCaps, u"font-variant", u"small-caps"},
    FaceCss{face::superscript, face::superscript, u"vertical-align", u"super"},
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
/// A return and the soft line break become line breaks, so that what comes out shows the lines that went in.
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

std::u16string declarations(FileContext& file, const RunStyle& look) {
    std::u16string css;
    const CharacterStyle& style = look.style;
    if (style.isFontEnabled())
        if (const auto name = file.fontName(style.font())) css += u"font-family: '" + escaped(*name) + u"';";
    if (style.isSizeEnabled()) css += u"font-size: " + decimal(style.size()) + u"px;";
    if (style.isColorEnabled()) css += u"color: " + hexadecimal(style.color()) + u";";
    css += faceDeclarations(style.faces());
    css.append(u"text-align: ").append(alignments.at(static_cast<std::size_t>(look.alignment))).append(u";");
    return css;
}

/// One span for every run of one look. Traits that are left to the field are left out.
DataRef getAsCss(Evaluation& evaluation, Arguments arguments) {
    const Text& text = arguments[0]->asText();
    const auto& runs = text.runs();
    std::u16string html;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const std::uint32_t end = i + 1 < runs.size() ? runs[i + 1].start : text.size();
        html += u"<span style=\"" + declarations(evaluation.file(), runs[i].look) + u"\">" +
                escaped(text.units().substr(runs[i].start, end - runs[i].start)) + u"</span>";
        checkTextSize(html.size());
    }
    return textResult(std::move(html));
}

constexpr std::array lazyRows{
    LazyRow{u"TextStyleAdd", 2, 2, textStyleAdd, 1},
    LazyRow{u"TextStyleRemove", 2, 2, textStyleRemove, 1},
};
/// A font may be followed by a script, which says nothing here.
constexpr std::array evaluationRows{
    EvaluationRow{u"TextColor", 2, 2, addTrait<colorTrait>},
    EvaluationRow{u"TextFont", 2, 3, addTrait<fontTrait>},
    EvaluationRow{u"TextSize", 2, 2, addTrait<sizeTrait>},
    EvaluationRow{u"TextColorRemove", 1, 2, removeTrait<colorTrait, &CharacterStyle::enableColor>},
    EvaluationRow{u"TextFontRemove", 1, 3, removeTrait<fontTrait, &CharacterStyle::enableFont>},
    EvaluationRow{u"TextSizeRemove", 1, 2, removeTrait<sizeTrait, &CharacterStyle::enableSize>},
    EvaluationRow{u"GetAsCSS", 1, 1, getAsCss},
};
constexpr std::array eagerRows{
    EagerRow{u"RGB", 3, 3, rgb},
    EagerRow{u"TextFormatRemove", 1, 1, textFormatRemove},
};

} // namespace

void addStyleFunctions(FunctionTable& table) {
    addRows(table, lazyRows);
    addRows(table, evaluationRows);
    addRows(table, eagerRows);
}

} // namespace host::calc
