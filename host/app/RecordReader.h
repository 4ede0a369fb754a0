#pragma once

#include "host/app/Solution.h"

#include <filesystem>
#include <set>
#include <string>

namespace host {

/// A value of the type, written in the formats that are set; null where it cannot be read so.
DataRef valueFrom(const std::string& written, DataType type);

/// Reads the records of a table from a file: a header of names of fields, then one record a line, its values
/// divided by tabs. `\r` stands for a return, `\t` for a tab, `\\` for a backslash. `rich` are the text
/// fields whose values are written as HTML. Throws std::runtime_error with file and line.
void readRecords(const std::filesystem::path& file, std::size_t table, const std::set<std::size_t>& rich,
                 Solution& solution);

} // namespace host
