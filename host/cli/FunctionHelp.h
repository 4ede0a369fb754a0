#pragma once

#include "host/calc/Engine.h"

#include <string>
#include <string_view>

namespace host {
class LoadedPlugIn;
}

namespace host::cli {

/// Help for a function. A plug-in's has its page where the documents have one, else its prototype and
/// parameter counts; a function of the app has its signature and a sentence, also where the host lacks it.
/// Empty for any other name. Ends in a line feed.
std::string helpFor(std::u16string_view name, LoadedPlugIn& loaded);

/// The names of the functions that contain a word, in alphabetical order, one a line; all of them for an
/// empty word.
std::string functionList(std::u16string_view word, LoadedPlugIn& loaded);

/// A Markdown page of the app's functions by category; those that `functions` lacks have the reason.
std::string functionsPage(const calc::FunctionTable& functions);

} // namespace host::cli
