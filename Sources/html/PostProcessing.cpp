#include "html/PostProcessing.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string_view>
#include <utility>

namespace {

constexpr std::string_view kBlockElements[] = {"h1", "h2",  "h3",  "h4",       "h5",         "h6",
                                               "p",  "pre", "div", "noscript", "blockquote", "address"};

/// The largest number of cached outcomes. Without a limit, a text with many colours would fill the memory.
constexpr std::size_t kMostOutcomes = 4096;

bool isBlockElement(std::string_view tag) {
    return std::find(std::begin(kBlockElements), std::end(kBlockElements), tag) != std::end(kBlockElements);
}

ClassMap::Outcome processed(const Formattings& formattings, ClassMap& classMap) {
    const auto& [tagParams, classParams, styleParams, cached] = classMap.outcomes;
    cFragment run;
    run.formattings = formattings;
    for (const auto& [combination, element] : tagParams)
        run.extractFormattingCombinationToCreateTag(combination, element);
    for (auto [combination, className] : classParams) {
        run.extractFormattingCombinationToCreateClass(combination, className, classMap);
        if (combination == "all") break;
    }
    if (!paramVectorHasKey(styleParams, "all")) run.filterFormattings(styleParams);
    return {std::move(run.tags), std::move(run.cssClasses), CSSFromFormattings(run.formattings)};
}

/// The outcome from the cache, which this function fills. Equal formattings always have the same outcome,
/// because classes with equal declarations are the same class.
const ClassMap::Outcome& outcomeOf(Formattings&& formattings, ClassMap& classMap) {
    auto& cached = classMap.outcomes.ofFormattings;
    const auto known = cached.find(formattings);
    if (known != cached.end()) return known->second;
    ClassMap::Outcome outcome = processed(formattings, classMap);
    if (cached.size() == kMostOutcomes) cached.clear();
    return cached.emplace(std::move(formattings), std::move(outcome)).first->second;
}

/// Moves the text of a run in front of the next run's text. One array collects the characters of a chain of
/// runs, so the time is linear in the characters.
void mergeIntoNext(cFragment& run, cFragment& next, bool isLogged) {
    next.start = run.start;
    next.length += std::exchange(run.length, 0);
    run.characters.insert(run.characters.end(), next.characters.begin(), next.characters.end());
    next.characters = std::exchange(run.characters, {});
    if (!isLogged) return;
    next.narrowText.insert(0, run.narrowText);
    std::cout << "Merging 2 fragments: '" << run.narrowText << "' + '" << next.narrowText << "' \n"
              << std::flush;
}

} // namespace

void fragmentsPostProcessing(std::vector<cFragment>& fragments, ClassMap& classMap,
                             const ParamVector& tagParams, const ParamVector& classParams,
                             const ParamVector& styleParams) {
    if (fragments.empty()) return;
    ClassMap::Outcomes& outcomes = classMap.outcomes;
    if (outcomes.tagParams != tagParams || outcomes.classParams != classParams ||
        outcomes.styleParams != styleParams)
        outcomes = {tagParams, classParams, styleParams, {}};
    for (cFragment& fragment : fragments) {
        const auto& [tags, cssClasses, inlineStyles] = outcomeOf(std::move(fragment.formattings), classMap);
        fragment.tags.insert(fragment.tags.end(), tags.begin(), tags.end());
        fragment.cssClasses.insert(fragment.cssClasses.end(), cssClasses.begin(), cssClasses.end());
        fragment.inlineStyles = inlineStyles;
        fragment.formattings.clear();
    }
}

bool fragmentsHaveEqualAppearance(const cFragment& a, const cFragment& b) {
    return a.tags == b.tags && a.cssClasses == b.cssClasses && a.inlineStyles == b.inlineStyles;
}

std::int64_t mergeFragments(std::vector<cFragment>& fragments) {
    const bool isLogged = fragments.size() > 1 && logsMerges();
    std::int64_t merges = 0;
    for (std::size_t i = 1; i < fragments.size(); ++i) {
        if (!fragmentsHaveEqualAppearance(fragments[i - 1], fragments[i])) continue;
        mergeIntoNext(fragments[i - 1], fragments[i], isLogged);
        ++merges;
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
