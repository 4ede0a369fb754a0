#pragma once

#include "host/scripts/Script.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// A function that calculations of the file may call.
struct FunctionDefinition {
    std::u16string name;
    std::vector<std::u16string> parameters;
    std::u16string calculation; ///< sees the parameters as names
};

/// A file as stored on disk: a folder with `solution.toml` and, if it has tables, `schema.sql`. A script is a
/// list of calculations, or steps: here, or in a file `scripts/NAME.txt`.
///
///     name = "Contacts"            # the file's name, without extension
///     user = "Ada"                 # Get ( UserName ); optional, as is account
///     locale = "de_DE"             # how numbers, dates and times are written; en_US when absent
///     fonts = ["Helvetica", "Times New Roman"]
///     [[function]]
///     name = "Twice"
///     parameters = ["n"]
///     calculation = "n * 2"
///     [[script]]
///     name = "Greet"
///     calculations = ['Let ( $$greeting = "Hello" ; "" )', 'Get ( ScriptParameter )']
///     [[script]]
///     name = "Double"
///     steps = '''
///         Exit Script [ Text Result: 2 * Get ( ScriptParameter ) ]
///     '''
struct Solution {
    std::u16string name = u"Untitled", user = u"User", account = u"Admin", path;
    std::vector<std::u16string> fonts;
    std::vector<Script> scripts;
    std::string schema = {}; ///< SQL statements
    std::vector<FunctionDefinition> functions = {};
    std::string locale = {}; ///< one that `formatsOf` knows, or empty: US English

    /// Throws std::runtime_error with the file's name, the line where it is known, and the problem.
    static Solution load(const std::filesystem::path& folder);
};

} // namespace host
