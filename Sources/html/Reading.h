#pragma once

/// What the host knows of a styled text: the look of its characters, where its lines end, how they are
/// aligned. A failing host call travels as an exception.

#include "bridge/HostInterface.h"
#include "html/Fragment.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

/// The style's colour as #rrggbb; empty when the style leaves it to the field.
std::string getFontColor(const fmx::CharacterStyle& style);

/// The name of the style's font; empty when the file knows no such font. Names with
/// characters of three bytes may be cut, as StringFromFmText says.
std::string getFontName(const fmx::CharacterStyle& style, const fmx::ExprEnv& env);

/// The formattings of one character. Word underline counts for blanks alone; a surrogate is a character.
Formattings formattingsFromFMCharacter(const fmx::Text& text, std::uint64_t index, const fmx::ExprEnv& env);

/// A new run with one character's formattings and their CSS, and nothing else.
cFragment formattedFragmentFromFMCharacter(const fmx::Text& text, std::uint64_t index,
                                           const fmx::ExprEnv& env);

/// Appends the runs of a text: cut wherever the CSS of the characters changes, each with the formattings of
/// its first character. Asks the host once for the characters, and for each character once for its style.
void extractFragments(const fmx::Text& text, const fmx::ExprEnv& env, std::vector<cFragment>& fragments);

/// The same for all texts of one conversion. It caches the host's answers, so it must not outlive the call
/// that it serves.
class TextReader {
public:
    explicit TextReader(const fmx::ExprEnv& env) : env_(env) {}

    /// The formattings of a character and their CSS.
    struct Look {
        cFragment run; ///< as formattedFragmentFromFMCharacter gives it
        std::string css;
    };
    const Look& lookOf(const fmx::CharacterStyle& style, bool isBlank);
    void extractFragments(const fmx::Text& text, std::vector<cFragment>& fragments);

private:
    /// All that a character's formattings depend on.
    struct Traits {
        fmx::CharacterStyle::Face face;
        std::string color, font, size; ///< as formattings have them, empty without any

        auto operator<=>(const Traits&) const = default;
    };

    Traits traitsOf(const fmx::CharacterStyle& style, bool isBlank);
    static Formattings formattingsOf(const Traits& traits);
    std::size_t endOfLook(const fmx::Text& text, const Units& units, std::size_t start);

    const fmx::ExprEnv& env_;
    bool keepsNarrowText_ = logsMerges();
    fmx::CharacterStyleUniquePtr style_, next_; ///< of the character that is read, and of the next
    std::map<fmx::CharacterStyle::FontID, std::string> fontNames_;
    std::map<Traits, Look> looks_;
};

/// Evaluates prefix, text and suffix as one calculation. `result` becomes its value as text, with styles;
/// what it gives is the evaluation's error code.
fmx::errcode evaluateOnFM(const std::string& prefix, const fmx::Text& text, const std::string& suffix,
                          const fmx::ExprEnv& env, fmx::TextAutoPtr& result);

/// One unit for every line of the expression's value: what ends it, U+2028 or a return, or 0 for a last line
/// without an end.
Units getLineEndings(const fmx::Text& expression, const fmx::ExprEnv& env);

/// The alignment of every value (lines between returns) of the expression's value, of `most` at most: a text
/// such as "$a ) * 1000000000 + ( 0" makes the host say any number. Throws std::logic_error when the host
/// says none.
std::vector<std::string> getLineAligns(const fmx::Text& expression, const fmx::ExprEnv& env,
                                       std::size_t most = std::numeric_limits<std::size_t>::max());

/// "left", "center", "right" or "full", from the first tag of a text that the host has marked with CSS.
/// "left" also when the tag does not say, or says something else.
std::string parseAlignmentFromGetAsCSS(const std::string& css);
