#pragma once

#include "host/scripts/Script.h"
#include "host/sql/Schema.h"

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

/// The records of a declared table.
struct SolutionRecords {
    std::size_t table;
    std::vector<std::pair<std::size_t, int>> columns; ///< fields and their repetitions, from 1
    RowVect rows;
};

/// The value of a declared global field.
struct SolutionGlobal {
    std::size_t table, field;
    int repetition;
    DataRef value;
};

/// A file as stored on disk: a folder with `solution.toml`, which may declare tables, and, if it has others,
/// `schema.sql`. A script is a list of calculations, or steps: here, or in a file `scripts/NAME.txt`.
///
///     name = "Contacts"            # the file's name, without extension
///     user = "Ada"                 # Get ( UserName ); optional, as is account
///     locale = "de_DE"             # how numbers, dates and times are written; en_US when absent
///     fonts = ["Helvetica", "Times New Roman"]
///     record = 2                   # which record of the first layout is current at first; 1 when absent
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
///     [[table]]                    # an occurrence and a layout of its name come with it
///     name = "Contacts"
///     comment = "people"
///     records = "Contacts.tsv"     # names of fields in the first line, then one record a line
///     fields = [
///       { name = "ID", type = "number", serial = "9", step = 1, indexed = true, comment = "key" },
///       { name = "Name", required = true, longest = 40 },   # conditions of its values
///       { name = "Phones", repetitions = 3 },         # text, since nothing else is said
///       { name = "Letter", rich = true },             # a text that the records write as HTML
///       { name = "gRate", type = "number", global = "0.2" },
///       { name = "Since", type = "date", auto = 'Get ( CurrentDate )' },
///       { name = "Label", calculation = 'Name & " (" & City & ")"' },
///       { name = "Count", type = "number", calculation = 'Count ( Invoices::ID )', stored = false },
///       { name = "sAmount", type = "number", summary = "total of Amount" },
///     ]
///     [[occurrence]]               # another name for a table
///     name = "Contacts 2"
///     table = "Contacts"
///     [[relationship]]
///     match = "Contacts::ID = Invoices::Contact ID"   # or a list, of which all must hold
///     create = ["Contacts", "Invoices"]               # occurrences in which records are created
///     delete = ["Invoices"]                           # whose records are deleted with the other side's
///     sort = ["Invoices::Issued descending"]
///     [[layout]]
///     name = "Overview"
///     occurrence = "Contacts"
///     [[value_list]]
///     name = "Cities"
///     field = "Contacts::City"     # or values = ["open", "paid"]
struct Solution {
    std::u16string name = u"Untitled", user = u"User", account = u"Admin", path;
    std::vector<std::u16string> fonts;
    std::vector<Script> scripts;
    std::string schema = {}; ///< SQL statements
    std::vector<FunctionDefinition> functions = {};
    std::string locale = {}; ///< one that `formatsOf` knows, or empty: US English
    Schema tables = {};      ///< the declared ones
    std::vector<SolutionRecords> records = {};
    std::vector<SolutionGlobal> globals = {};
    std::int64_t record = 1; ///< the current one at first

    /// Throws std::runtime_error with the file's name, the line where it is known, and the problem.
    static Solution load(const std::filesystem::path& folder);
};

} // namespace host
