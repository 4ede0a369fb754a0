#pragma once

/// The classes of one conversion. Equal declarations share a class. A name has one set of declarations.

#include "html/Css.h"
#include "html/ParamVector.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// From a class's name to its declarations, in name order.
class ClassMap {
public:
    using Classes = std::map<std::string, std::string, std::less<>>;

    ClassMap() = default;
    // Copies are not possible: the index points into the map.
    ClassMap(const ClassMap&) = delete;
    ClassMap& operator=(const ClassMap&) = delete;
    ~ClassMap() = default;

    [[nodiscard]] bool empty() const { return classes_.empty(); }
    [[nodiscard]] Classes::const_iterator begin() const { return classes_.begin(); }
    [[nodiscard]] Classes::const_iterator end() const { return classes_.end(); }

    /// The elements, classes and declarations that formattings become.
    struct Outcome {
        std::vector<std::string> tags, cssClasses;
        InlineStyles inlineStyles;
    };
    /// The cache of fragmentsPostProcessing. It is kept here because outcomes contain names of this map's
    /// classes.
    struct Outcomes {
        ParamVector tagParams, classParams, styleParams; ///< the outcomes' parameters
        std::map<Formattings, Outcome> ofFormattings;
    } outcomes;

private:
    friend std::string get_or_create_class(const std::string& declarations, const std::string& wantedName,
                                           ClassMap& classMap);

    Classes classes_;
    /// The keys are views of the map's declarations, which never move or change.
    std::unordered_map<std::string_view, const std::string*> nameOfDeclarations_;
    /// The next number to try after a name. Names are never removed, so lower numbers stay taken.
    std::unordered_map<std::string, std::uint64_t> nextNumber_;
};

/// The name of the class with these declarations. A new class gets the wanted name. When that name has other
/// declarations, the first free number of 1, 2, 3, … is added to it. The time does not grow with the number
/// of classes.
std::string get_or_create_class(const std::string& declarations, const std::string& wantedName,
                                ClassMap& classMap);
