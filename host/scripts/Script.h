#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace host {

namespace scripts {

struct OptionRow;
struct StepRow;

/// An option of a step as it was written.
struct Option {
    const OptionRow* row;
    std::u16string text;  ///< without its label and without blanks at its ends
    std::size_t line = 0; ///< at which it begins, from 1
};

constexpr std::size_t kNoStep = std::numeric_limits<std::size_t>::max();

/// A step of a script. Places are those of the script's steps.
struct Step {
    const StepRow* row;
    std::u16string name;  ///< its row's, or a plug-in's as it was written
    std::size_t line = 0; ///< from 1
    std::vector<Option> options;
    /// Of a step that continues or closes a block, the step that opens it; of any other step, the Loop around
    /// it.
    std::size_t opener = kNoStep;
    std::size_t nextBranch = kNoStep; ///< of If and Else If: the Else If, Else or End If after it
    std::size_t end = kNoStep;        ///< of If and Loop: the step that closes it
};

} // namespace scripts

/// A script is a list of calculations or a list of steps.
struct Script {
    std::u16string name;
    std::vector<std::u16string> calculations; ///< evaluated in order in one variable scope
    std::vector<scripts::Step> steps = {};
    std::string source = {}; ///< the file that has the steps, for messages
};

} // namespace host
