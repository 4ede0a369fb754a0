#include "host/calc/BuiltIns.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

using Arguments = std::span<const DataRef>;

/// Styles are numbers, the sums of the faces' bits.
std::uint16_t facesOf(const Data& value) {
    return static_cast<std::uint16_t>(std::clamp<std::int64_t>(value.asNumber().toInt64(), 0, face::all));
}

CharacterStyle everyFace() {
    CharacterStyle style;
    style.enableFace(face::all);
    return style;
}

/// Plain takes every face away.
DataRef textStyleAdd(Arguments arguments) {
    const std::uint16_t faces = facesOf(*arguments[1]);
    Text text = arguments[0]->asText();
    if (faces == face::plain) {
        text.removeStyle(everyFace());
    } else {
        CharacterStyle style;
        style.setFaces(faces);
        text.applyStyle(style);
    }
    return textResult(std::move(text));
}

DataRef textStyleRemove(Arguments arguments) {
    const std::uint16_t faces = facesOf(*arguments[1]);
    Text text = arguments[0]->asText();
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

/// A size in points; 0 for a number that cannot be one.
std::uint16_t sizeOf(const Data& value) {
    const std::int64_t size = value.asNumber().toInt64();
    return size < 1 || size > 0xFFFF ? 0 : static_cast<std::uint16_t>(size);
}

/// A trait that a function sets by its second argument. An unusable value leaves the style empty.
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

/// Whether a formatting has the one trait that is enabled in `wanted`.
bool hasTrait(const CharacterStyle& formatting, const CharacterStyle& wanted) {
    CharacterStyle with = formatting;
    with.apply(wanted);
    return with == formatting;
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
    text.forEachRun([&](std::u16string_view units, RunStyle formatting) {
        if (hasTrait(formatting.style, wanted)) formatting.style.remove(any);
        result.append(units, formatting);
    });
    return textResult(std::move(result));
}

DataRef textFormatRemove(Arguments arguments) {
    Text text = arguments[0]->asText();
    text.removeAllStyles();
    return textResult(std::move(text));
}

/// The script that may follow a font changes nothing.
constexpr std::array evaluationRows{
    EvaluationRow{u"TextColor", addTrait<colorTrait>},
    EvaluationRow{u"TextFont", addTrait<fontTrait>},
    EvaluationRow{u"TextSize", addTrait<sizeTrait>},
    EvaluationRow{u"TextColorRemove", removeTrait<colorTrait, &CharacterStyle::enableColor>},
    EvaluationRow{u"TextFontRemove", removeTrait<fontTrait, &CharacterStyle::enableFont>},
    EvaluationRow{u"TextSizeRemove", removeTrait<sizeTrait, &CharacterStyle::enableSize>},
};
constexpr std::array eagerRows{
    EagerRow{u"RGB", rgb},
    EagerRow{u"TextFormatRemove", textFormatRemove},
    EagerRow{u"TextStyleAdd", textStyleAdd},
    EagerRow{u"TextStyleRemove", textStyleRemove},
};

} // namespace

void addStyleFunctions(FunctionTable& table) {
    addRows(table, evaluationRows);
    addRows(table, eagerRows);
}

} // namespace host::calc
