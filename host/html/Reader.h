#pragma once

#include "host/html/Look.h"
#include "host/values/Text.h"

#include <cstddef>
#include <string_view>

/// Reads rich text from an HTML document: what is bold, coloured, centred there is so in the text.
///
/// - Elements: `b strong i em u s strike del mark sup sub small span font p div h1`–`h6` `br blockquote pre`
///   and the other common ones; their `style`, and the classes of `style` blocks. Those that are not known
///   say nothing, what is inside them is read all the same. Scripts, titles and what is not displayed are
///   left out.
/// - Elements that are blocks make paragraphs, with a return between two; an empty one of those that hold
///   text (`p div h1`–`h6` `blockquote pre`) is an empty paragraph. `br` is a soft line break (U+2028), as is
///   a line feed in `pre`.
/// - Blanks are joined and dropped as browsers do it; a no-break space stays.
/// - A size is counted in pixels, which is what `GetAsCSS` writes for points; so 12pt is 16.
/// - Any background is a highlight, except white and that of the whole page: there is but one.
/// - Raised and lowered text, lines and highlights of a paragraph are those of its characters, also where a
///   browser has no use for them on a block.

namespace host {

/// What a document may be at most. One that is more is refused with std::runtime_error, whose text says so.
struct HtmlLimits {
    static constexpr std::size_t bytes = std::size_t{64} << 20;
    static constexpr int depth = 250; ///< elements within each other
};

/// Bytes that are UTF-8, or else what the document says of itself (windows-1252 when it says nothing). Broken
/// HTML is read as well as may be. Fonts are numbered by `fonts`. Linear in the bytes; throws
/// std::runtime_error for a document beyond the limits and nothing else but std::bad_alloc.
Text readHtml(std::string_view bytes, const html::FontIds& fonts);

} // namespace host
