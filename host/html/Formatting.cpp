#include "host/html/Formatting.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace host::html {

namespace {

template<class Value>
using Words = std::pair<std::string_view, Value>;

template<class Value, std::size_t count>
const Value* lookUp(const std::array<Words<Value>, count>& table, std::string_view word) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [word](const Words<Value>& known) { return known.first == word; });
    return row == table.end() ? nullptr : &row->second;
}

constexpr std::array<Words<std::string_view>, 26> elements{{
    {"b", "font-weight:bold"},
    {"strong", "font-weight:bold"},
    {"i", "font-style:italic"},
    {"em", "font-style:italic"},
    {"cite", "font-style:italic"},
    {"u", "text-decoration:underline"},
    {"ins", "text-decoration:underline"},
    {"s", "text-decoration:line-through"},
    {"strike", "text-decoration:line-through"},
    {"del", "text-decoration:line-through"},
    {"mark", "background-color:#ffff00"},
    {"sup", "vertical-align:super"},
    {"sub", "vertical-align:sub"},
    {"small", "font-size:smaller"},
    {"big", "font-size:larger"},
    {"center", "text-align:center"},
    {"th", "font-weight:bold"},
    {"h1", "font-weight:bold;font-size:32px"},
    {"h2", "font-weight:bold;font-size:24px"},
    {"h3", "font-weight:bold;font-size:19px"},
    {"h4", "font-weight:bold;font-size:16px"},
    {"h5", "font-weight:bold;font-size:13px"},
    {"h6", "font-weight:bold;font-size:11px"},
    {"pre", "white-space:pre;font-family:monospace"},
    {"code", "font-family:monospace"},
    {"textarea", "display:none"},
}};

constexpr Color rgb(std::uint32_t number) {
    return {.red = static_cast<std::uint8_t>(number >> 16),
            .green = static_cast<std::uint8_t>(number >> 8),
            .blue = static_cast<std::uint8_t>(number)};
}

constexpr std::array<Words<std::uint32_t>, 36> colorNames{{
    {"aqua", 0x00FFFF},      {"black", 0x000000},     {"blue", 0x0000FF},     {"brown", 0xA52A2A},
    {"crimson", 0xDC143C},   {"cyan", 0x00FFFF},      {"darkblue", 0x00008B}, {"darkgray", 0xA9A9A9},
    {"darkgreen", 0x006400}, {"darkgrey", 0xA9A9A9},  {"darkred", 0x8B0000},  {"dimgray", 0x696969},
    {"dimgrey", 0x696969},   {"firebrick", 0xB22222}, {"fuchsia", 0xFF00FF},  {"gold", 0xFFD700},
    {"gray", 0x808080},      {"green", 0x008000},     {"grey", 0x808080},     {"indigo", 0x4B0082},
    {"lightgray", 0xD3D3D3}, {"lightgrey", 0xD3D3D3}, {"lime", 0x00FF00},     {"magenta", 0xFF00FF},
    {"maroon", 0x800000},    {"navy", 0x000080},      {"olive", 0x808000},    {"orange", 0xFFA500},
    {"pink", 0xFFC0CB},      {"purple", 0x800080},    {"red", 0xFF0000},      {"silver", 0xC0C0C0},
    {"teal", 0x008080},      {"violet", 0xEE82EE},    {"white", 0xFFFFFF},    {"yellow", 0xFFFF00},
}};

int digitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// Reads the digits of #rgb, #rgba, #rrggbb or #rrggbbaa.
std::optional<Color> parseHexadecimal(std::string_view digits) {
    const bool isShort = digits.size() == 3 || digits.size() == 4;
    if (!isShort && digits.size() != 6 && digits.size() != 8) return std::nullopt;
    std::array<std::uint8_t, 4> channels{0, 0, 0, 255};
    const std::size_t width = isShort ? 1 : 2;
    for (std::size_t i = 0; i < digits.size() / width; ++i) {
        const int high = digitOf(digits[i * width]), low = digitOf(digits[i * width + width - 1]);
        if (high < 0 || low < 0) return std::nullopt;
        channels.at(i) = static_cast<std::uint8_t>(high * 16 + low);
    }
    if (channels[3] == 0) return std::nullopt;
    return Color{.red = channels[0], .green = channels[1], .blue = channels[2]};
}

/// Reads the arguments of rgb( ) and rgba( ): numbers or percentages, separated by commas or blanks.
std::optional<Color> parseChannels(std::string list) {
    for (char& c : list)
        if (c == ',' || c == '/' || c == ')') c = ' ';
    std::array<double, 4> channels{0, 0, 0, 255};
    std::string_view rest = list;
    std::size_t count = 0;
    for (std::string_view word = nextWord(rest); !word.empty(); word = nextWord(rest)) {
        const std::optional<Length> channel = parseLength(word);
        if (!channel || count == channels.size()) return std::nullopt;
        const double scale = channel->unit == "%" ? 2.55 : count == 3 ? 255 : 1;
        channels.at(count++) = std::clamp(std::round(channel->number * scale), 0.0, 255.0);
    }
    if (count < 3 || channels[3] == 0) return std::nullopt;
    return Color{.red = static_cast<std::uint8_t>(channels[0]),
                 .green = static_cast<std::uint8_t>(channels[1]),
                 .blue = static_cast<std::uint8_t>(channels[2])};
}

constexpr double initialSize = 16;

constexpr std::array<Words<double>, 8> sizeNames{{
    {"xx-small", 9},
    {"x-small", 10},
    {"small", 13},
    {"medium", 16},
    {"large", 18},
    {"x-large", 24},
    {"xx-large", 32},
    {"xxx-large", 48},
}};
/// Units relative to the surrounding font size.
constexpr std::array<Words<double>, 3> relativeUnits{{{"em", 1}, {"%", 0.01}, {"ex", 0.5}}};
/// Absolute units, in pixels.
constexpr std::array<Words<double>, 7> absoluteUnits{{
    {"px", 1},
    {"pt", 4.0 / 3},
    {"pc", 16},
    {"in", 96},
    {"cm", 96 / 2.54},
    {"mm", 96 / 25.4},
    {"rem", initialSize},
}};

std::optional<double> parseSize(const std::string& value, double around) {
    constexpr double step = 1.2;
    if (value == "smaller") return around / step;
    if (value == "larger") return around * step;
    if (const double* named = lookUp(sizeNames, value)) return *named;
    const std::optional<Length> length = parseLength(value);
    if (!length || length->number <= 0) return std::nullopt;
    if (const double* unit = lookUp(relativeUnits, length->unit)) return length->number * *unit * around;
    if (const double* unit = lookUp(absoluteUnits, length->unit)) return length->number * *unit;
    return std::nullopt;
}

/// The first name of a list of fonts, without quotation marks.
std::u16string firstFont(std::string_view list) {
    const bool isQuoted = list.starts_with('"') || list.starts_with('\'');
    if (isQuoted) {
        const char quote = list.front();
        list.remove_prefix(1);
        return fromUtf8(list.substr(0, list.find(quote)));
    }
    return fromUtf8(trimmed(list.substr(0, list.find(','))));
}

constexpr std::array<Words<std::uint16_t>, 4> letterCases{{
    {"uppercase", face::uppercase},
    {"lowercase", face::lowercase},
    {"capitalize", face::titlecase},
    {"none", 0},
}};
constexpr std::array<Words<std::uint16_t>, 2> positions{
    {{"super", face::superscript}, {"sub", face::subscript}}};
constexpr std::array<Words<Alignment>, 6> alignmentNames{{
    {"left", Alignment::left},
    {"start", Alignment::left},
    {"center", Alignment::center},
    {"right", Alignment::right},
    {"end", Alignment::right},
    {"justify", Alignment::full},
}};

bool hasWord(std::string_view list, std::string_view wanted) {
    for (std::string_view word = nextWord(list); !word.empty(); word = nextWord(list))
        if (word == wanted) return true;
    return false;
}

// One function for each inherited property puts a value, in lower case, into the formatting.

void setWeight(Formatting& formatting, const std::string& value) {
    constexpr double bold = 600;
    const std::optional<Length> number = parseLength(value);
    if (value == "bold" || value == "bolder") formatting.isBold = true;
    if (value == "normal" || value == "lighter") formatting.isBold = false;
    if (number) formatting.isBold = number->number >= bold;
}
void setSlant(Formatting& formatting, const std::string& value) {
    if (value != "inherit") formatting.isItalic = value.starts_with("italic") || value.starts_with("oblique");
}
void setSize(Formatting& formatting, const std::string& value) {
    if (const auto size = parseSize(value, formatting.size.value_or(initialSize))) formatting.size = size;
}
void setVariant(Formatting& formatting, const std::string& value) {
    if (value != "inherit") formatting.isSmallCaps = hasWord(value, "small-caps");
}
void setColor(Formatting& formatting, const std::string& value) {
    if (const auto color = parseColor(value)) formatting.color = color;
}
void setBackground(Formatting& formatting, const std::string& value) {
    // A white background is the default, so it is no highlight.
    const auto color = parseColor(value);
    if (color && *color != rgb(0xFFFFFF)) formatting.isHighlighted = true;
}
void setSpacing(Formatting& formatting, const std::string& value) {
    const std::optional<Length> length = parseLength(value);
    if (value == "normal") formatting.spacing = 0;
    if (length)
        formatting.spacing = length->number < 0 ? face::condense : length->number > 0 ? face::extend : 0;
}
void setPosition(Formatting& formatting, const std::string& value) {
    if (const std::uint16_t* position = lookUp(positions, value)) formatting.position = *position;
}
void setLetterCase(Formatting& formatting, const std::string& value) {
    if (const std::uint16_t* letterCase = lookUp(letterCases, value)) formatting.letterCase = *letterCase;
}
void setAlignment(Formatting& formatting, const std::string& value) {
    if (const Alignment* alignment = lookUp(alignmentNames, value)) formatting.alignment = *alignment;
}
void setWhiteSpace(Formatting& formatting, const std::string& value) {
    if (value != "inherit") formatting.keepsBlanks = value.starts_with("pre") || value == "break-spaces";
}
void setDisplay(Formatting& formatting, const std::string& value) {
    formatting.isHidden = formatting.isHidden || value == "none";
}

struct Setter {
    Property property;
    void (*set)(Formatting& formatting, const std::string& value);
};
constexpr std::array setters{
    Setter{Property::fontWeight, setWeight},
    Setter{Property::fontStyle, setSlant},
    Setter{Property::fontSize, setSize},
    Setter{Property::fontVariant, setVariant},
    Setter{Property::color, setColor},
    Setter{Property::background, setBackground},
    Setter{Property::letterSpacing, setSpacing},
    Setter{Property::verticalAlign, setPosition},
    Setter{Property::textTransform, setLetterCase},
    Setter{Property::textAlign, setAlignment},
    Setter{Property::whiteSpace, setWhiteSpace},
    Setter{Property::display, setDisplay},
};

void addLines(Formatting& formatting, const std::string& value, bool isDouble) {
    if (hasWord(value, "underline"))
        (isDouble ? formatting.isDoublyUnderlined : formatting.isUnderlined) = true;
    if (hasWord(value, "line-through")) formatting.isStruckThrough = true;
}

/// Sets the lines of an element; `byItself` holds its default declarations.
void setLines(Formatting& formatting, const Declarations& byItself, const Declarations& own) {
    const Declared& declared = own[Property::decoration];
    const std::string value = lowered(declared.value);
    const Declared& style = own[Property::decorationStyle];
    // The short form sets the style as well, so it overrides a style that was declared before.
    const bool isDouble =
        hasWord(value, "double") || (style.order > declared.order && lowered(style.value) == "double");
    const std::string& ofElement = byItself[Property::decoration].value;
    if (!hasWord(value, "none")) addLines(formatting, ofElement, isDouble && declared.order == 0);
    addLines(formatting, value, isDouble);
}

} // namespace

RunStyle Formatting::runStyle() const {
    std::uint16_t faces = position | spacing | letterCase;
    const std::array<std::pair<bool, std::uint16_t>, 7> flags{{
        {isBold, face::bold},
        {isItalic, face::italic},
        {isSmallCaps, face::smallCaps},
        {isUnderlined && !isDoublyUnderlined, face::underline},
        {isDoublyUnderlined, face::doubleUnderline},
        {isStruckThrough, face::strikethrough},
        {isHighlighted, face::highlight},
    }};
    for (const auto& [isOn, bit] : flags)
        if (isOn) faces |= bit;
    RunStyle run{.style = {}, .alignment = alignment};
    if (faces != 0) run.style.setFaces(faces);
    if (font != invalidFont) run.style.setFont(font);
    if (color) run.style.setColor(*color);
    if (size) run.style.setSize(static_cast<std::uint16_t>(std::clamp(std::round(*size), 1.0, 65535.0)));
    return run;
}

std::string_view defaultDeclarations(std::string_view element) {
    const std::string_view* declarations = lookUp(elements, element);
    return declarations == nullptr ? std::string_view() : *declarations;
}

Formatting formattingWithin(const Formatting& around, std::string_view defaults, const Declarations& own,
                            const FontIds& fonts) {
    Formatting formatting = around;
    Declarations byItself;
    std::uint64_t order = 0;
    byItself.parse(defaults, order);
    Declarations all = own;
    all.add(byItself);
    for (const auto& [property, set] : setters)
        if (all[property].order != 0) set(formatting, lowered(all[property].value));
    if (all[Property::fontFamily].order != 0)
        if (const std::uint16_t font = fonts(firstFont(all[Property::fontFamily].value)); font != invalidFont)
            formatting.font = font;
    setLines(formatting, byItself, own);
    return formatting;
}

std::optional<Color> parseColor(std::string_view value) {
    const std::string color = lowered(trimmed(value));
    if (color.starts_with('#')) return parseHexadecimal(std::string_view(color).substr(1));
    if (const std::size_t bracket = color.find('('); bracket != std::string::npos)
        return color.starts_with("rgb") ? parseChannels(color.substr(bracket + 1)) : std::nullopt;
    const std::uint32_t* named = lookUp(colorNames, color);
    return named == nullptr ? std::nullopt : std::optional(rgb(*named));
}

} // namespace host::html
