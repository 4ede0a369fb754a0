#pragma once

/// The runs that a styled text is cut into, and what belongs to a run on its way to HTML.
///
/// A run is read with its formattings: what the characters look like, in words. Each formatting then goes to
/// exactly one place: an element around the run, a class, a declaration of the run's own, or nowhere.

#include "bridge/HostInterface.h"
#include "bridge/Unicode.h"
#include "html/Css.h"
#include "html/ParamVector.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class ClassMap;

/// One run. A value like any other: it owns everything in it.
class cFragment {
public:
    cFragment() = default;
    cFragment(const cFragment&) = default;
    cFragment(cFragment&& other) noexcept = default;
    cFragment& operator=(const cFragment&) = default;
    /// Leaves the strings, arrays and maps of `other` empty.
    cFragment& operator=(cFragment&& other) noexcept;
    ~cFragment() = default;

    Units characters;              ///< UTF-16 units
    std::string narrowText;        ///< what the log of merges shows of the run
    std::uint64_t start = 0;       ///< the first character's index in its text, in UTF-16 units
    std::uint64_t length = 0;      ///< characters, in UTF-16 units
    Formattings formattings;       ///< as read; empty after post-processing
    std::vector<std::string> tags; ///< elements around the run, the outermost first
    std::vector<std::string> cssClasses;
    InlineStyles inlineStyles;

    /// Adds a unit to the characters and its low byte, no more, to the narrow text. The length stays.
    void addChar(fmx::uint16 unit);
    /// The text becomes the characters, without any style.
    void getText(fmx::Text& text) const;

    /// The declarations of the style attribute, each with its semicolon.
    [[nodiscard]] std::string getInlineCSS() const;
    /// The class attribute: names with a blank between.
    [[nodiscard]] std::string getInlineCSSClasses() const;

    [[nodiscard]] bool containsTag(std::string_view tag) const;
    [[nodiscard]] bool containsCssClassName(std::string_view name) const;
    /// Remove every entry that equals the name.
    void removeTag(std::string_view tag);
    void removeCssClassName(std::string_view name);

    /// Trades formattings for an element. A combination is one or more formattings joined by "+". False, and
    /// nothing changed, when a piece is missing or either argument is empty.
    bool extractFormattingCombinationToCreateTag(std::string_view combination, const std::string& element);
    /// Trades formattings for a class with their declarations. The combination "all" takes whatever there is.
    /// An empty class name becomes "kst", for the caller too. False, and nothing changed, when the
    /// combination is empty, a piece is missing or there is nothing to declare.
    bool extractFormattingCombinationToCreateClass(std::string_view combination, std::string& className,
                                                   ClassMap& classMap);
    /// Keeps the formattings that are keys of the style parameters; gives how many went.
    std::uint32_t filterFormattings(const ParamVector& styleParams);
};

/// True when merges of runs are logged and narrow texts kept: when the environment variable KESTREL_LOG is
/// set and not empty. The log has the users' own text in it.
bool logsMerges();
