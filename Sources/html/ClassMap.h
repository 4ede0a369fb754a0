#pragma once

/// The classes of one conversion. Equal declarations share a class; a name stands for one set of
/// declarations.

#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

/// From a class's name to its declarations, in name order.
class ClassMap {
public:
    using Classes = std::map<std::string, std::string, std::less<>>;

    ClassMap() = default;
    // The index points into the map.
    ClassMap(const ClassMap&) = delete;
    ClassMap& operator=(const ClassMap&) = delete;
    ~ClassMap() = default;

    [[nodiscard]] bool empty() const { return classes_.empty(); }
    [[nodiscard]] Classes::const_iterator begin() const { return classes_.begin(); }
    [[nodiscard]] Classes::const_iterator end() const { return classes_.end(); }

    /// A cache of fragmentsPostProcessing: the outcome for a run, by the formattings that the run was read
    /// with. An outcome names classes of this map, which keep their declarations.
    struct Outcomes {
        ParamVector tagParams, classParams, styleParams; ///< for which the outcomes hold
        std::map<Formattings, cFragment> runs;
    } outcomes;

private:
    friend std::string get_or_create_class(const std::string& declarations, const std::string& wantedName,
                                           ClassMap& classMap);

    Classes classes_;
    /// The keys are the map's own declarations, which never move or change.
    std::unordered_map<std::string_view, const std::string*> nameOfDeclarations_;
    /// The number to try next behind a name. Names are never given back, so lower ones stay taken.
    std::unordered_map<std::string, std::uint64_t> nextNumber_;
};

/// The name of the class with these declarations. A new class gets the wanted name or, when that stands for
/// other declarations, the wanted name with the first free of 1, 2, 3, … behind it. However many classes
/// there are, this takes about the same time.
std::string get_or_create_class(const std::string& declarations, const std::string& wantedName,
                                ClassMap& classMap);
