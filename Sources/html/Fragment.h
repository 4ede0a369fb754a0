#pragma once

/// The runs of a styled text, with their data on the way to HTML.
///
/// A run is read with its formattings, which name the styles of its characters. Each formatting then becomes
/// exactly one thing: an element around the run, a class, the run's own declaration, or nothing.

#include "bridge/HostInterface.h"
#include "bridge/Unicode.h"
#include "html/Css.h"
#include "html/ParamVector.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class ClassMap;

/// One run. It can be copied and owns all its data.
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
    std::string narrowText;        ///< the run's text in the log of merges
    std::uint64_t start = 0;       ///< the first character's index in its text, in UTF-16 units
    std::uint64_t length = 0;      ///< characters, in UTF-16 units
    Formattings formattings;       ///< as read; empty after post-processing
    std::vector<std::string> tags; ///< elements around the run, the outermost first
    std::vector<std::string> cssClasses;
    InlineStyles inlineStyles;

    /// Adds a unit to the characters, and its low byte to the narrow text. The length does not change.
    void addChar(fmx::uint16 unit);
    /// The text becomes the characters, without any style.
    void getText(fmx::Text& text) const;

    /// The declarations of the style attribute, each with its semicolon.
    [[nodiscard]] std::string getInlineCSS() const;
    /// The class attribute: names separated by a blank.
    [[nodiscard]] std::string getInlineCSSClasses() const;

    [[nodiscard]] bool containsTag(std::string_view tag) const;
    [[nodiscard]] bool containsCssClassName(std::string_view name) const;
    /// Remove every entry that equals the name.
    void removeTag(std::string_view tag);
    void removeCssClassName(std::string_view name);

    /// Replaces formattings by an element. A combination is one or more formattings joined by "+". When one
    /// of them is missing or an argument is empty, returns false and changes nothing.
    bool extractFormattingCombinationToCreateTag(std::string_view combination, const std::string& element);
    /// Replaces formattings by a class with their declarations. The combination "all" means all formattings
    /// of the run. An empty class name becomes "kst", also in the caller's variable. When the combination is
    /// empty, one of its formattings is missing, or there are no declarations, returns false and changes no
    /// formatting.
    bool extractFormattingCombinationToCreateClass(std::string_view combination, std::string& className,
                                                   ClassMap& classMap);
    /// Keeps only the formattings that are keys of the style parameters. Returns the number removed.
    std::uint32_t filterFormattings(const ParamVector& styleParams);
};

/// True when merges of runs are logged and narrow texts are kept: the environment variable KESTREL_LOG is set
/// and not empty. The log contains the users' text.
bool logsMerges();
