#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// The names beginning with `prefix` that a shared library needs from others to be loaded; those that it can
/// do without (weak ones) are left out. Empty for a file that is no shared library of this machine.
std::vector<std::string> importsOf(const std::filesystem::path& library, std::string_view prefix);

} // namespace host
