#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

/// The part of CSS that formats characters and paragraphs of rich text: declarations, and style sheets whose
/// selectors are an element, a class, or an element with a class. Everything else is ignored, as the CSS
/// standard requires. The time is linear in any input.

namespace host::html {

enum class Property : std::uint8_t {
    fontWeight,
    fontStyle,
    fontFamily,
    fontSize,
    fontVariant,
    color,
    background,
    decoration,
    decorationStyle,
    letterSpacing,
    verticalAlign,
    textTransform,
    textAlign,
    whiteSpace,
    display
};
inline constexpr std::size_t propertyCount = static_cast<std::size_t>(Property::display) + 1;

/// A value as written, without surrounding blanks and without "!important", which has no effect here.
struct Declared {
    std::string value;
    std::uint64_t order = 0; ///< the value with the higher order wins; 0 means not declared
};

/// At most one value for each property.
class Declarations {
public:
    /// Longer values are ignored, which bounds the cost of applying them. In bytes.
    static constexpr std::size_t longestValue = 250;

    /// Reads "property: value; …"; later declarations win. Each one gets the next number of `order`.
    void parse(std::string_view css, std::uint64_t& order);
    /// Takes over every value with a higher order than the value here.
    void add(const Declarations& other);
    void declare(Property property, std::string_view value, std::uint64_t order);

    [[nodiscard]] const Declared& operator[](Property property) const {
        return values_[static_cast<std::size_t>(property)];
    }

private:
    std::array<Declared, propertyCount> values_;
};

/// The rules of all style blocks of a document. Rules inside @media and similar blocks are left out.
class StyleSheet {
public:
    static constexpr std::size_t kMostRules = 100'000;

    /// Throws std::runtime_error when there are more than `kMostRules` different selectors.
    void parse(std::string_view css);
    /// Adds the rules for an element (lower case) with its classes (separated by blanks) to `declarations`.
    /// A class selector wins over an element selector, and a selector with both wins over either.
    void apply(std::string_view element, std::string_view classes, Declarations& declarations) const;
    /// An order that is higher than that of every rule.
    static constexpr std::uint64_t later = std::uint64_t{4} << 32;

private:
    void addRule(std::string_view selectors, std::string_view block);
    void applyRule(const std::string& selector, Declarations& declarations) const;

    std::unordered_map<std::string, Declarations> rules_; ///< by "element", ".class", "element.class"
    std::uint64_t order_ = 0;
};

/// The text in lower case (ASCII). CSS ignores case, except in names of classes and fonts.
std::string lowered(std::string_view text);
std::string_view trimmed(std::string_view text);
/// Removes the next word from the front of a list and gives it; empty at the end. Blanks separate words.
std::string_view nextWord(std::string_view& list);
/// A number and the unit directly after it ("12pt"). `parseLength` gives no value for a text that does not
/// begin with a number.
struct Length {
    double number = 0;
    std::string_view unit;
};
std::optional<Length> parseLength(std::string_view value);

} // namespace host::html
