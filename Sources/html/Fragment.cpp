#include "html/Fragment.h"

#include "bridge/StringUtils.h"
#include "html/ClassMap.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace {

bool contains(const std::vector<std::string>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The formattings of a combination, with their values. Empty when one of them is missing.
Formattings taken(const Formattings& formattings, std::string_view combination) {
    Formattings found;
    while (!combination.empty()) {
        const auto formatting = formattings.find(takePiece(combination, "+"));
        if (formatting == formattings.end()) return {};
        found.insert(*formatting);
    }
    return found;
}

void erase(Formattings& formattings, const Formattings& names) {
    for (const auto& [name, value] : names)
        formattings.erase(name);
}

} // namespace

cFragment& cFragment::operator=(cFragment&& other) noexcept {
    if (this == &other) return *this;
    characters = std::exchange(other.characters, {});
    narrowText = std::exchange(other.narrowText, {});
    start = other.start;
    length = other.length;
    formattings = std::exchange(other.formattings, {});
    tags = std::exchange(other.tags, {});
    cssClasses = std::exchange(other.cssClasses, {});
    inlineStyles = std::exchange(other.inlineStyles, {});
    return *this;
}

void cFragment::addChar(fmx::uint16 unit) {
    characters.push_back(unit);
    narrowText.push_back(static_cast<char>(unit & 0xFFU));
}

void cFragment::getText(fmx::Text& text) const {
    std::vector<fmx::uint16> terminated(characters);
    terminated.push_back(0);
    text.AssignUnicodeWithLength(terminated.data(), hostLength(characters.size()));
}

std::string cFragment::getInlineCSS() const { return serialize_CSS(inlineStyles, ""); }

std::string cFragment::getInlineCSSClasses() const {
    std::string joined;
    for (const std::string& name : cssClasses)
        joined.append(&name == &cssClasses.front() ? "" : " ").append(name);
    return joined;
}

bool cFragment::containsTag(std::string_view tag) const { return contains(tags, tag); }

bool cFragment::containsCssClassName(std::string_view name) const { return contains(cssClasses, name); }

void cFragment::removeTag(std::string_view tag) { std::erase(tags, tag); }

void cFragment::removeCssClassName(std::string_view name) { std::erase(cssClasses, name); }

bool cFragment::extractFormattingCombinationToCreateTag(std::string_view combination,
                                                        const std::string& element) {
    if (combination.empty() || element.empty()) return false;
    const Formattings pieces = taken(formattings, combination);
    if (pieces.empty()) return false;
    erase(formattings, pieces);
    tags.push_back(element);
    return true;
}

bool cFragment::extractFormattingCombinationToCreateClass(std::string_view combination,
                                                          std::string& className, ClassMap& classMap) {
    if (combination.empty()) return false;
    if (className.empty()) className = "kst";
    const Formattings pieces = combination == "all" ? formattings : taken(formattings, combination);
    const std::string declarations = serialize_CSS(CSSFromFormattings(pieces), "");
    if (declarations.empty()) return false;
    cssClasses.push_back(get_or_create_class(declarations, className, classMap));
    erase(formattings, pieces);
    return true;
}

std::uint32_t cFragment::filterFormattings(const ParamVector& styleParams) {
    return static_cast<std::uint32_t>(std::erase_if(formattings, [&](const auto& formatting) {
        return !paramVectorHasKey(styleParams, formatting.first);
    }));
}

bool logsMerges() {
    const char* const log = std::getenv("KESTREL_LOG");
    return log != nullptr && *log != '\0';
}
