#pragma once

#include "host/app/DescriptionReader.h"
#include "host/app/Solution.h"

#include <filesystem>

namespace host {

/// Reads the tables, occurrences, relationships, layouts and value lists of a description into the solution,
/// and the records from files of its folder. The solution's locale and fonts are known already; fonts of
/// styled texts are added. Throws std::runtime_error with file and line.
void readTables(const DescriptionReader& reader, const toml::table& description,
                const std::filesystem::path& folder, Solution& solution);

} // namespace host
