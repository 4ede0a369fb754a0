#pragma once

#include "host/html/Formatting.h"
#include "host/values/Text.h"

#include <cstddef>
#include <string_view>

/// Reads an HTML document as rich text: bold, coloured and centred parts keep their formatting.
///
/// - Elements: `b strong i em u s strike del mark sup sub small span font p div h1`–`h6` `br blockquote pre`
///   and the other common ones; their `style`, and the classes of `style` blocks. Unknown elements have no
///   formatting, but their content is read. Scripts, titles and hidden elements are left out.
/// - Block elements make paragraphs, with a return between two. An empty block that can hold text
///   (`p div h1`–`h6` `blockquote pre`) is an empty paragraph. `br` is a soft line break (U+2028), as is a
///   line feed in `pre`.
/// - Blanks are joined and dropped as in browsers; a no-break space is kept.
/// - Sizes are in pixels, as `GetAsCSS` writes them, so 12pt is 16.
/// - Any background is a highlight, except white and the background of the whole page. Rich text has only one
///   kind of highlight.
/// - Superscript, subscript, lines and highlights of a block apply to its characters, even where a browser
///   ignores them on a block.

namespace host {

/// The limits of a document. A larger one is refused with std::runtime_error, whose text names the limit.
struct HtmlLimits {
    static constexpr std::size_t bytes = std::size_t{64} << 20;
    static constexpr int depth = 250; ///< elements within each other
};

/// Reads a document. Bytes that are not UTF-8 are read in the encoding that the document declares, or else as
/// windows-1252. Broken HTML is read as far as possible. `fonts` gives the identifiers of fonts. The time is
/// linear in the bytes. Throws std::runtime_error for a document beyond the limits, and std::bad_alloc.
Text readHtml(std::string_view bytes, const html::FontIds& fonts);

} // namespace host
