#pragma once

#include <cstddef>
#include <string_view>

/// Finds the ends of the parts of a script's text. A part is a calculation or a name in quotation marks; all
/// characters in its texts, comments and brackets belong to it.

namespace host::scripts {

/// The text without blanks and line ends at its ends.
std::u16string_view trimmed(std::u16string_view text);

/// The position after a text in quotation marks, straight or curly, that begins at `at`; `at` where none
/// begins; npos where it has no end.
std::size_t quotedEnd(std::u16string_view text, std::size_t at);

/// The position of the semicolon or the bracket that ends the option at `at`; npos where there is none.
std::size_t optionEnd(std::u16string_view text, std::size_t at);

/// The length of the label at the beginning of an option, without its colon; 0 where there is none. A label
/// has words alone; `::` belongs to a field's name.
std::size_t labelLength(std::u16string_view option);

} // namespace host::scripts
