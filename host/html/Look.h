#pragma once

#include "host/html/Css.h"
#include "host/values/Text.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

/// How an element makes its characters look, from its own declarations and from where it stands.

namespace host::html {

/// The identifier of a font by its name.
using FontIds = std::function<std::uint16_t(std::u16string_view name)>;

/// The look within an element. Weight, colour and the like are handed down to what is inside; lines, raised
/// and lowered text, and what is highlighted stay so inside, whatever is said there.
struct Look {
    bool isBold = false, isItalic = false, isSmallCaps = false;
    bool isUnderlined = false, isDoublyUnderlined = false, isStruckThrough = false, isHighlighted = false;
    std::uint16_t position = 0; ///< face::superscript, face::subscript or neither
    std::uint16_t spacing = 0;  ///< face::condense, face::extend or neither
    std::uint16_t letterCase = 0;
    std::uint16_t font = invalidFont;
    std::optional<Color> color;
    std::optional<double> size; ///< pixels
    Alignment alignment = Alignment::left;
    bool keepsBlanks = false; ///< white space stands as it is written
    bool isHidden = false;

    [[nodiscard]] RunStyle runStyle() const;
};

/// What elements are by themselves, as declarations; empty for those that say nothing.
std::string_view defaultDeclarations(std::string_view element);

/// The look inside an element that declares `own` and is one of those with `defaults` (see above). A line
/// under or through the text that belongs to the element itself is kept beside another that is declared, so
/// that <s> stays struck through with an underline declared for it; "none" takes it away.
Look lookWithin(const Look& around, std::string_view defaults, const Declarations& own, const FontIds& fonts);

/// "#f00", "#ff0000", "rgb(255, 0, 0)", or one of the common names; nothing for everything else and for what
/// is fully transparent.
std::optional<Color> parseColor(std::string_view value);

} // namespace host::html
