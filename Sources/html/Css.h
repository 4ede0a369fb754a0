#pragma once

/// Formattings, in words, and the CSS that shows them.

#include <map>
#include <string>
#include <string_view>

/// From a formatting's name to its value. Flags (bold, italic, …) have an empty value; "color" has #rrggbb,
/// "font" the font's name, "size" a number with "px".
using Formattings = std::map<std::string, std::string, std::less<>>;

/// From a CSS property to its value.
using InlineStyles = std::map<std::string, std::string, std::less<>>;

/// The declarations that show these formattings. Of two formattings with the same property one wins, but
/// underline and strike-through stand together. Unknown formattings show nothing.
InlineStyles CSSFromFormattings(const Formattings& formattings);

/// Every declaration as property, colon, value, semicolon and the separator, ordered by property.
std::string serialize_CSS(const InlineStyles& styles, std::string_view separator);
