#pragma once

/// The host's data of a styled text: the styles of its characters, its line ends and its alignments. A
/// failing host call throws.

#include "bridge/HostInterface.h"
#include "html/Fragment.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

/// The style's colour as #rrggbb; empty when the style has the field's colour.
std::string getFontColor(const fmx::CharacterStyle& style);

/// The name of the style's font; empty when the file has no such font. StringFromFmText may cut a name with
/// characters of three bytes.
std::string getFontName(const fmx::CharacterStyle& style, const fmx::ExprEnv& env);

/// The formattings of one character. Word underline counts for blanks only. A surrogate counts as a
/// character.
Formattings formattingsFromFMCharacter(const fmx::Text& text, std::uint64_t index, const fmx::ExprEnv& env);

/// A new run with one character's formattings and their CSS, and nothing else.
cFragment formattedFragmentFromFMCharacter(const fmx::Text& text, std::uint64_t index,
                                           const fmx::ExprEnv& env);

/// Appends the runs of a text, each with the formattings of its first character. A new run begins where the
/// CSS of the characters changes. There is one host call for the characters, and one for the style of each
/// character.
void extractFragments(const fmx::Text& text, const fmx::ExprEnv& env, std::vector<cFragment>& fragments);

/// The same for all texts of one conversion. It caches values of the host, so it must not outlive the
/// handler's call.
class TextReader {
public:
    explicit TextReader(const fmx::ExprEnv& env) : env_(env) {}

    /// The formattings of a character and their CSS.
    struct Appearance {
        cFragment run; ///< as formattedFragmentFromFMCharacter gives it
        std::string css;
    };
    const Appearance& appearanceOf(const fmx::CharacterStyle& style, bool isBlank);
    void extractFragments(const fmx::Text& text, std::vector<cFragment>& fragments);

private:
    /// The input of a character's formattings.
    struct Traits {
        fmx::CharacterStyle::Face face;
        std::string color, font, size; ///< the formattings' values, or empty

        auto operator<=>(const Traits&) const = default;
    };

    Traits traitsOf(const fmx::CharacterStyle& style, bool isBlank);
    static Formattings formattingsOf(const Traits& traits);
    std::size_t endOfStyle(const fmx::Text& text, const Units& units, std::size_t start);

    const fmx::ExprEnv& env_;
    bool keepsNarrowText_ = logsMerges();
    fmx::CharacterStyleUniquePtr style_, next_; ///< of the current run, and of the next
    std::map<fmx::CharacterStyle::FontID, std::string> fontNames_;
    std::map<Traits, Appearance> appearances_;
};

/// Evaluates prefix, text and suffix as one calculation. `result` becomes its value as text, with styles.
/// Returns the evaluation's error code.
fmx::errcode evaluateOnFM(const std::string& prefix, const fmx::Text& text, const std::string& suffix,
                          const fmx::ExprEnv& env, fmx::TextAutoPtr& result);

/// The line end of every line of the expression's value: U+2028 or a return, or 0 for a last line without
/// one.
Units getLineEndings(const fmx::Text& expression, const fmx::ExprEnv& env);

/// The alignments of the values (lines between returns) of the expression's value, `most` at the most. The
/// limit is needed because a text such as "$a ) * 1000000000 + ( 0" gives any number of values. Throws
/// std::logic_error when the host gives no number.
std::vector<std::string> getLineAligns(const fmx::Text& expression, const fmx::ExprEnv& env,
                                       std::size_t most = std::numeric_limits<std::size_t>::max());

/// "left", "center", "right" or "full", from the first tag of the host's CSS of a text. "left" also when the
/// tag has no alignment or another one.
std::string parseAlignmentFromGetAsCSS(const std::string& css);
