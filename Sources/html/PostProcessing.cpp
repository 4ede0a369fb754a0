#include "html/PostProcessing.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

/// How a formatting becomes a declaration.
enum class Declares {
    value, ///< the value beside it
    also,  ///< the value beside it, behind what the property has already
    own    ///< the formatting's own value
};

/// In this order: a later row overwrites what an earlier one says of the same property.
const struct {
    std::string_view formatting, property, value;
    Declares how = Declares::value;
} kDeclarations[] = {
    {"bold", "font-weight", "bold"},
    {"italic", "font-style", "italic"},
    {"highlight", "background-color", "#FFFF00"},
    {"underline", "text-decoration", "underline"},
    {"doubleunderline", "text-decoration", "underline"},
    {"doubleunderline", "text-decoration-style", "double"},
    {"doubleunderline", "-webkit-text-decoration-style", "double"},
    {"strikethrough", "text-decoration", "line-through", Declares::also},
    {"condense", "letter-spacing", "-2px"},
    {"extend", "letter-spacing", "2px"},
    {"superscript", "vertical-align", "super"},
    {"subscript", "vertical-align", "sub"},
    {"smallcaps", "font-variant", "small-caps"},
    {"uppercase", "text-transform", "uppercase"},
    {"lowercase", "text-transform", "lowercase"},
    {"titlecase", "text-transform", "capitalize"},
    {"color", "color", "", Declares::own},
    {"font", "font-family", "", Declares::own},
    {"size", "font-size", "", Declares::own},
};

constexpr std::string_view kBlockElements[] = {"h1", "h2",  "h3",  "h4",       "h5",         "h6",
                                               "p",  "pre", "div", "noscript", "blockquote", "address"};

/// Formattings whose end is remembered. A text with ever new colours must not fill the memory with them.
constexpr std::size_t kMostSeen = 4096;

bool isBlockElement(std::string_view tag) {
    return std::find(std::begin(kBlockElements), std::end(kBlockElements), tag) != std::end(kBlockElements);
}

/// A run without characters that has found its elements, classes and declarations.
cFragment processed(const Formattings& formattings, Conversion& conversion) {
    cFragment run;
    run.formattings = formattings;
    for (const auto& [combination, element] : conversion.tagParams)
        run.extractFormattingCombinationToCreateTag(combination, element);
    for (auto [combination, className] : conversion.classParams) {
        run.extractFormattingCombinationToCreateClass(combination, className, conversion.classMap);
        if (combination == "all") break;
    }
    if (!paramVectorHasKey(conversion.styleParams, "all")) run.filterFormattings(conversion.styleParams);
    run.inlineStyles = CSSFromFormattings(run.formattings);
    run.formattings.clear();
    return run;
}

void logMerge(const std::string& first, const std::string& both) {
    std::cout << "Merging 2 fragments: '" << first << "' + '" << both << "' \n" << std::flush;
}

/// Moves the text of all runs from `first` up to `last` into `last`.
void mergeChain(cFragment* first, cFragment* last, bool isLogged) {
    std::vector<fmx::uint16> characters = std::exchange(first->characters, {});
    for (cFragment* next = first + 1; next <= last; ++next) {
        characters.insert(characters.end(), next->characters.begin(), next->characters.end());
        std::exchange(next->characters, {}); // its memory goes too
        next->start = first->start;
        next->length += std::exchange((next - 1)->length, 0);
        if (!isLogged) continue;
        next->narrowText.insert(0, (next - 1)->narrowText);
        logMerge((next - 1)->narrowText, next->narrowText);
    }
    last->characters = std::move(characters);
}

} // namespace

InlineStyles CSSFromFormattings(const Formattings& formattings) {
    InlineStyles styles;
    for (const auto& [name, property, value, how] : kDeclarations) {
        const auto formatting = formattings.find(name);
        if (formatting == formattings.end()) continue;
        std::string& declared = styles[std::string(property)];
        if (how == Declares::own)
            declared = formatting->second;
        else if (how == Declares::also && !declared.empty())
            declared.append(" ").append(value);
        else
            declared = value;
    }
    return styles;
}

void fragmentsPostProcessing(std::vector<cFragment>& fragments, Conversion& conversion) {
    // Equal formattings always end alike: classes with equal declarations are one.
    for (cFragment& fragment : fragments) {
        auto known = conversion.seen.find(fragment.formattings);
        if (known == conversion.seen.end()) {
            cFragment run = processed(fragment.formattings, conversion);
            if (conversion.seen.size() == kMostSeen) conversion.seen.clear();
            known = conversion.seen.emplace(std::move(fragment.formattings), std::move(run)).first;
        }
        fragment.tags.insert(fragment.tags.end(), known->second.tags.begin(), known->second.tags.end());
        fragment.cssClasses.insert(fragment.cssClasses.end(), known->second.cssClasses.begin(),
                                   known->second.cssClasses.end());
        fragment.inlineStyles = known->second.inlineStyles;
        fragment.formattings.clear();
    }
}

bool fragmentsHaveEqualAppearance(const cFragment& a, const cFragment& b) {
    return a.tags == b.tags && a.cssClasses == b.cssClasses && a.inlineStyles == b.inlineStyles;
}

bool logsMerges() {
    const char* const log = std::getenv("KESTREL_LOG");
    return log != nullptr && *log != '\0';
}

std::int64_t mergeFragments(std::vector<cFragment>& fragments) {
    const bool isLogged = logsMerges();
    std::int64_t merges = 0;
    for (std::size_t i = 0; i < fragments.size();) {
        std::size_t last = i;
        while (last + 1 < fragments.size() &&
               fragmentsHaveEqualAppearance(fragments[last], fragments[last + 1]))
            ++last;
        if (last > i) mergeChain(&fragments[i], &fragments[last], isLogged);
        merges += static_cast<std::int64_t>(last - i);
        i = last + 1;
    }
    return merges;
}

void escalateSharedBlockElement(cFragment& paragraph, std::vector<cFragment>& fragments) {
    if (fragments.empty() || paragraph.tags.empty() || paragraph.tags.front() != "p") return;
    const std::vector<std::string>& candidates = fragments.front().tags;
    const auto shared = std::find_if(candidates.begin(), candidates.end(), [&](const std::string& tag) {
        return isBlockElement(tag) && std::all_of(fragments.begin(), fragments.end(),
                                                  [&](const cFragment& run) { return run.containsTag(tag); });
    });
    if (shared == candidates.end()) return;
    paragraph.tags.front() = *shared;
    for (cFragment& fragment : fragments)
        fragment.removeTag(paragraph.tags.front());
}

void escalateSharedCssClasses(cFragment& paragraph, std::vector<cFragment>& fragments) {
    if (fragments.empty()) return;
    std::vector<std::string> shared;
    for (const std::string& name : fragments.front().cssClasses)
        if (std::all_of(fragments.begin(), fragments.end(),
                        [&](const cFragment& run) { return run.containsCssClassName(name); }))
            shared.push_back(name);
    for (const std::string& name : shared) {
        paragraph.cssClasses.push_back(name);
        for (cFragment& fragment : fragments)
            fragment.removeCssClassName(name);
    }
}

void escalateSharedCssStyles(cFragment& paragraph, std::vector<cFragment>& fragments) {
    if (fragments.empty()) return;
    InlineStyles shared;
    for (const auto& [property, value] : fragments.front().inlineStyles)
        if (std::all_of(fragments.begin(), fragments.end(), [&](const cFragment& run) {
                const auto found = run.inlineStyles.find(property);
                return found != run.inlineStyles.end() && found->second == value;
            }))
            shared.emplace(property, value);
    for (const auto& [property, value] : shared) {
        paragraph.inlineStyles[property] = value;
        for (cFragment& fragment : fragments)
            fragment.inlineStyles.erase(property);
    }
}
