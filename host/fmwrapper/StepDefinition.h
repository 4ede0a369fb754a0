#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A parameter of a script step.
struct StepParameter {
    enum class Type : std::uint8_t {
        calculation,
        boolean,
        list,  ///< one of `values`
        target ///< where the result goes; it is not handed to the step
    };

    Type type = Type::calculation;
    int id = 0;
    std::u16string label;
    std::u16string dataType;     ///< as it is written: text, number, …; empty: any
    std::u16string defaultValue; ///< for a parameter that a script leaves out
    bool showsInline = false;
    std::vector<std::u16string> values; ///< of a list
};

/// Reads the definition of a script step: XML with the root PluginStep and up to ten elements Parameter.
/// Gives the parameters in the order of their identifiers. Throws std::runtime_error with a sentence that
/// says what is wrong with the definition.
std::vector<StepParameter> readStepDefinition(std::u16string_view xml);

} // namespace host
