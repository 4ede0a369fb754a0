#pragma once

/// Formattings and their CSS.

#include <map>
#include <string>
#include <string_view>

/// From a formatting's name to its value. Flags (bold, italic, …) have an empty value; "color" has #rrggbb,
/// "font" the font's name, "size" a number with "px".
using Formattings = std::map<std::string, std::string, std::less<>>;

/// From a CSS property to its value.
using InlineStyles = std::map<std::string, std::string, std::less<>>;

/// The declarations of these formattings. Of two formattings with the same property one wins, but underline
/// and strike-through are combined. Unknown formattings have no declaration.
InlineStyles CSSFromFormattings(const Formattings& formattings);

/// Every declaration as property, colon, value, semicolon and the separator, ordered by property.
std::string serialize_CSS(const InlineStyles& styles, std::string_view separator);
