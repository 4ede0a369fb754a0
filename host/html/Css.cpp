#include "host/html/Css.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace host::html {

namespace {

struct PropertyName {
    std::string_view name;
    Property property;
};
constexpr std::array propertyNames{
    PropertyName{"font-weight", Property::fontWeight},
    PropertyName{"font-style", Property::fontStyle},
    PropertyName{"font-family", Property::fontFamily},
    PropertyName{"font-size", Property::fontSize},
    PropertyName{"font-variant", Property::fontVariant},
    PropertyName{"font-variant-caps", Property::fontVariant},
    PropertyName{"color", Property::color},
    PropertyName{"background", Property::background},
    PropertyName{"background-color", Property::background},
    PropertyName{"text-decoration", Property::decoration},
    PropertyName{"text-decoration-line", Property::decoration},
    PropertyName{"text-decoration-style", Property::decorationStyle},
    PropertyName{"-webkit-text-decoration-style", Property::decorationStyle},
    PropertyName{"letter-spacing", Property::letterSpacing},
    PropertyName{"vertical-align", Property::verticalAlign},
    PropertyName{"text-transform", Property::textTransform},
    PropertyName{"text-align", Property::textAlign},
    PropertyName{"white-space", Property::whiteSpace},
    PropertyName{"display", Property::display},
};

constexpr std::string_view blanks = " \t\r\n\f";

/// The weight of a selector stands in the bits above the order of the rules.
constexpr unsigned weightShift = 32;

std::string withoutComments(std::string_view css) {
    std::string clean;
    clean.reserve(css.size());
    while (true) {
        const std::size_t open = css.find("/*");
        clean.append(css.substr(0, open));
        if (open == std::string_view::npos) return clean;
        const std::size_t close = css.find("*/", open + 2);
        if (close == std::string_view::npos) return clean;
        clean += ' ';
        css.remove_prefix(close + 2);
    }
}

/// The end of an open block: its own closing brace, or the end of the text.
std::size_t endOfBlock(std::string_view css, std::size_t position) {
    std::size_t depth = 1;
    for (; position < css.size(); ++position) {
        if (css[position] == '{') ++depth;
        if (css[position] == '}' && --depth == 0) return position;
    }
    return css.size();
}

/// Removes the part up to the next separator outside quotation marks, and gives it.
std::string_view cut(std::string_view& list, char separator) {
    char quote = 0;
    std::size_t end = 0;
    for (; end < list.size(); ++end) {
        const char c = list[end];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == separator) {
            break;
        }
    }
    const std::string_view piece = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    return piece;
}

/// The selector as "element", ".class" or "element.class", with the element in lower case; empty for every
/// other selector.
std::string simpleSelector(std::string_view selector) {
    selector = trimmed(selector);
    if (selector.empty() || selector.find_first_of(" \t\r\n\f>+~:[#*()\\") != std::string_view::npos)
        return {};
    const std::size_t dot = std::min(selector.find('.'), selector.size());
    if (dot < selector.size() &&
        (dot + 1 == selector.size() || selector.find('.', dot + 1) != std::string_view::npos))
        return {};
    return lowered(selector.substr(0, dot)) + std::string(selector.substr(dot));
}

std::uint64_t weightOf(std::string_view selector) {
    const std::size_t dot = selector.find('.');
    return dot == std::string_view::npos ? 1 : dot == 0 ? 2 : 3;
}

} // namespace

std::string lowered(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view nextWord(std::string_view& list) {
    list.remove_prefix(std::min(list.find_first_not_of(blanks), list.size()));
    const std::string_view word = list.substr(0, list.find_first_of(blanks));
    list.remove_prefix(word.size());
    return word;
}

std::optional<Length> parseLength(std::string_view value) {
    constexpr double most = 1e6;
    const bool isNegative = value.starts_with('-');
    if (isNegative || value.starts_with('+')) value.remove_prefix(1);
    Length length;
    bool hasDigits = false;
    double place = 0; // value of the next digit after the point; 0 before the point
    for (; !value.empty(); value.remove_prefix(1)) {
        if (value.front() == '.' && place == 0) {
            place = 0.1;
            continue;
        }
        if (value.front() < '0' || value.front() > '9') break;
        const int digit = value.front() - '0';
        hasDigits = true;
        length.number = place == 0 ? length.number * 10 + digit : length.number + place * digit;
        place /= 10;
        if (length.number > most) return std::nullopt;
    }
    if (!hasDigits) return std::nullopt;
    if (isNegative) length.number = -length.number;
    length.unit = value;
    return length;
}

void Declarations::declare(Property property, std::string_view value, std::uint64_t order) {
    Declared& declared = values_[static_cast<std::size_t>(property)];
    if (order < declared.order || value.size() > longestValue) return;
    declared = {std::string(value), order};
}

void Declarations::parse(std::string_view css, std::uint64_t& order) {
    while (!css.empty()) {
        std::string_view declaration = cut(css, ';');
        const std::size_t colon = declaration.find(':');
        if (colon == std::string_view::npos) continue;
        const std::string name = lowered(trimmed(declaration.substr(0, colon)));
        const auto row = std::find_if(propertyNames.begin(), propertyNames.end(),
                                      [&](const PropertyName& known) { return known.name == name; });
        if (row == propertyNames.end()) continue;
        std::string_view value = declaration.substr(colon + 1);
        value = trimmed(value.substr(0, value.find('!')));
        if (!value.empty()) declare(row->property, value, ++order);
    }
}

void Declarations::add(const Declarations& other) {
    for (std::size_t i = 0; i < propertyCount; ++i)
        if (other.values_[i].order > values_[i].order) values_[i] = other.values_[i];
}

void StyleSheet::addRule(std::string_view selectors, std::string_view block) {
    Declarations declarations;
    std::uint64_t first = order_;
    declarations.parse(block, first);
    const std::uint64_t last = std::max(first, order_);
    while (!selectors.empty()) {
        const std::string selector = simpleSelector(cut(selectors, ','));
        if (selector.empty()) continue;
        if (rules_.size() == kMostRules) throw std::runtime_error("more than 100000 style rules");
        const std::uint64_t weight = weightOf(selector) << weightShift;
        Declarations& rule = rules_[selector];
        for (std::size_t i = 0; i < propertyCount; ++i) {
            const auto property = static_cast<Property>(i);
            if (const Declared& declared = declarations[property]; declared.order != 0)
                rule.declare(property, declared.value, weight + declared.order);
        }
    }
    order_ = last;
}

void StyleSheet::parse(std::string_view source) {
    const std::string clean = withoutComments(source);
    const std::string_view css = clean;
    std::size_t position = 0;
    while (position < css.size()) {
        const std::size_t open = css.find_first_of("{;", position);
        if (open == std::string_view::npos) return;
        const std::string_view head = trimmed(css.substr(position, open - position));
        position = open + 1;
        if (css[open] == ';') continue; // "@import …;", or a stray semicolon
        const std::size_t close = endOfBlock(css, position);
        if (!head.starts_with('@')) addRule(head, css.substr(position, close - position));
        position = close + 1;
    }
}

void StyleSheet::applyRule(const std::string& selector, Declarations& declarations) const {
    if (const auto rule = rules_.find(selector); rule != rules_.end()) declarations.add(rule->second);
}

void StyleSheet::apply(std::string_view element, std::string_view classes, Declarations& declarations) const {
    if (rules_.empty()) return;
    const std::string name(element);
    applyRule(name, declarations);
    for (std::string_view word = nextWord(classes); !word.empty(); word = nextWord(classes)) {
        const std::string selector = "." + std::string(word);
        applyRule(selector, declarations);
        applyRule(name + selector, declarations);
    }
}

} // namespace host::html
