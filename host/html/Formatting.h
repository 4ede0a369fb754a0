#pragma once

#include "host/html/Css.h"
#include "host/values/Text.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

/// The formatting of an element's characters, from its own declarations and from the elements around it.

namespace host::html {

/// Gives the identifier of a font by its name.
using FontIds = std::function<std::uint16_t(std::u16string_view name)>;

/// The formatting inside an element. Inner elements inherit it. They can change weight, colour and similar
/// properties; they cannot take away lines, highlights, superscript or subscript.
struct Formatting {
    bool isBold = false, isItalic = false, isSmallCaps = false;
    bool isUnderlined = false, isDoublyUnderlined = false, isStruckThrough = false, isHighlighted = false;
    std::uint16_t position = 0; ///< face::superscript, face::subscript or neither
    std::uint16_t spacing = 0;  ///< face::condense, face::extend or neither
    std::uint16_t letterCase = 0;
    std::uint16_t font = invalidFont;
    std::optional<Color> color;
    std::optional<double> size; ///< pixels
    Alignment alignment = Alignment::left;
    bool keepsBlanks = false; ///< white space is kept as written
    bool isHidden = false;

    [[nodiscard]] RunStyle runStyle() const;
};

/// The default declarations of an element; empty for an element without default formatting.
std::string_view defaultDeclarations(std::string_view element);

/// The formatting inside an element with the declarations `own` and the default declarations `defaults`. A
/// default line is kept beside a declared line: <s> with a declared underline is still struck through. The
/// value "none" removes the default line.
Formatting formattingWithin(const Formatting& around, std::string_view defaults, const Declarations& own,
                            const FontIds& fonts);

/// Reads a colour such as "#f00", "#ff0000", "rgb(255, 0, 0)" or one of the common names. Gives no value for
/// any other text and for a fully transparent colour.
std::optional<Color> parseColor(std::string_view value);

} // namespace host::html
