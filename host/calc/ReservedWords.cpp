#include "host/calc/ReservedWords.h"

#include "host/values/Style.h"

#include <algorithm>
#include <array>

namespace host::calc {

namespace {

struct Word {
    std::u16string_view name; ///< folded
    std::int64_t value;
};

/// The rows are ordered by name, so that a word is found by bisection.
constexpr std::array words{
    Word{u"allstyles", face::all},
    Word{u"bold", face::bold},
    Word{u"centraleurope", 3},
    Word{u"condense", face::condense},
    Word{u"cyrillic", 2},
    Word{u"doubleunderline", face::doubleUnderline},
    Word{u"extend", face::extend},
    Word{u"greek", 1},
    Word{u"higher", 1},
    Word{u"highlightyellow", face::highlight},
    Word{u"italic", face::italic},
    Word{u"jsonarray", 4},
    Word{u"jsonboolean", 5},
    Word{u"jsonnull", 6},
    Word{u"jsonnumber", 2},
    Word{u"jsonobject", 3},
    Word{u"jsonraw", 0},
    Word{u"jsonstring", 1},
    Word{u"lower", 0},
    Word{u"lowercase", face::lowercase},
    Word{u"oem", 7},
    Word{u"other", 10},
    Word{u"plain", face::plain},
    Word{u"roman", 0},
    Word{u"shiftjis", 4},
    Word{u"simplifiedchinese", 6},
    Word{u"smallcaps", face::smallCaps},
    Word{u"strikethrough", face::strikethrough},
    Word{u"subscript", face::subscript},
    Word{u"superscript", face::superscript},
    Word{u"symbol", 8},
    Word{u"titlecase", face::titlecase},
    Word{u"traditionalchinese", 5},
    Word{u"underline", face::underline},
    Word{u"uppercase", face::uppercase},
    Word{u"wordunderline", face::wordUnderline},
};
static_assert(std::is_sorted(words.begin(), words.end(),
                             [](const Word& left, const Word& right) { return left.name < right.name; }));

} // namespace

std::optional<std::int64_t> reservedWord(std::u16string_view name) {
    const auto* word =
        std::lower_bound(words.begin(), words.end(), name,
                         [](const Word& candidate, std::u16string_view key) { return candidate.name < key; });
    return word == words.end() || word->name != name ? std::nullopt : std::optional(word->value);
}

} // namespace host::calc
