#pragma once

#include "host/scripts/Script.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

/// The text form of scripts, one step a line: `Step Name [ option ; Label: option ]`. docs/script-steps.md
/// describes it.

namespace host::scripts {

struct ReadError : std::runtime_error {
    ReadError(std::size_t line, const std::string& problem) : std::runtime_error(problem), line(line) {}
    std::size_t line; ///< of the text, from 1
};

/// Throws ReadError.
std::vector<Step> readSteps(std::u16string_view text);

} // namespace host::scripts
