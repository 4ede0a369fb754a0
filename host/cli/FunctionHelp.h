#pragma once

#include <string>
#include <string_view>

namespace host {
class LoadedPlugIn;
}

namespace host::cli {

/// Help for a function, built-in or a plug-in's: its page where the documents have one, else its prototype
/// and parameter counts. Empty when there is no such function. Ends in a line feed.
std::string helpFor(std::u16string_view name, LoadedPlugIn& loaded);

/// The names of the functions that contain a word, in alphabetical order, one a line; all of them for an
/// empty word.
std::string functionList(std::u16string_view word, LoadedPlugIn& loaded);

} // namespace host::cli
