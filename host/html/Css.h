#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

/// The part of CSS that says how characters and paragraphs of rich text look: declarations, and style sheets
/// whose selectors are an element, a class, or an element with a class. Everything else is passed over, as
/// CSS itself wants it. Linear in its input, whatever that is.

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

/// A value as it is written, without blanks around it and without "!important" (which is not heeded).
struct Declared {
    std::string value;
    std::uint64_t order = 0; ///< of two, the one with the higher order holds; 0: not declared
};

/// One value at most for every property.
class Declarations {
public:
    /// Values longer than this are ignored, so that applying them costs little.
    static constexpr std::size_t longestValue = 250;

    /// Takes "property: value; …"; later ones win. Each is given an order, `order` counting on.
    void parse(std::string_view css, std::uint64_t& order);
    /// Takes over what is declared later than here.
    void add(const Declarations& other);
    void declare(Property property, std::string_view value, std::uint64_t order);

    [[nodiscard]] const Declared& operator[](Property property) const {
        return values_[static_cast<std::size_t>(property)];
    }

private:
    std::array<Declared, propertyCount> values_;
};

/// The rules of all style blocks of a document. Rules within @media and the like are left out.
class StyleSheet {
public:
    static constexpr std::size_t kMostRules = 100'000;

    /// Throws std::runtime_error when there are more than `kMostRules` different selectors.
    void parse(std::string_view css);
    /// Lays what the sheet says of an element (lower case) with its classes (separated by blanks) over
    /// `declarations`. Classes count more than elements, both together more than either.
    void apply(std::string_view element, std::string_view classes, Declarations& declarations) const;
    /// An order that is later than every rule's.
    static constexpr std::uint64_t later = std::uint64_t{4} << 32;

private:
    void addRule(std::string_view selectors, std::string_view block);
    void applyRule(const std::string& selector, Declarations& declarations) const;

    std::unordered_map<std::string, Declarations> rules_; ///< by "element", ".class", "element.class"
    std::uint64_t order_ = 0;
};

/// CSS is forgiving about case, except in names of classes and fonts.
std::string lowered(std::string_view text);
std::string_view trimmed(std::string_view text);
/// Cuts the next word of a list off its front; words are separated by blanks. Empty at the end.
std::string_view nextWord(std::string_view& list);
/// A number and what follows it directly ("12pt"); nothing when it starts with no number.
struct Length {
    double number = 0;
    std::string_view unit;
};
std::optional<Length> parseLength(std::string_view value);

} // namespace host::html
