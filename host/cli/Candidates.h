#pragma once

#include "host/cli/LineEditor.h"

#include <string>

namespace host::cli {

class Runner;

/// The words that may follow in a line, judged by the text before the cursor: a command of the prompt, a
/// variable, a name that Get asks for; within quotation marks a script, a table or a field; else a function,
/// a table or a field.
Completions candidatesFor(const std::string& before, Runner& runner);

} // namespace host::cli
