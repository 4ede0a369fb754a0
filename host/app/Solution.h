#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

struct Script {
    std::u16string name;
    std::vector<std::u16string> calculations; ///< evaluated in order in one variable scope
};

/// A file as stored on disk: a folder with `solution.toml` and, if it has tables, `schema.sql`.
///
///     name = "Contacts"            # the file's name, without extension
///     user = "Ada"                 # Get ( UserName ); optional, as is account
///     fonts = ["Helvetica", "Times New Roman"]
///     [[script]]
///     name = "Greet"
///     calculations = ['Let ( $$greeting = "Hello" ; "" )', 'Get ( ScriptParameter )']
struct Solution {
    std::u16string name = u"Untitled", user = u"User", account = u"Admin", path;
    std::vector<std::u16string> fonts;
    std::vector<Script> scripts;
    std::string schema; ///< SQL statements

    /// Throws std::runtime_error with the file's name, the line where it is known, and the problem.
    static Solution load(const std::filesystem::path& folder);
};

} // namespace host
