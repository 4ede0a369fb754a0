#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

/// The output of commands. Output that cannot be written throws std::runtime_error, so no result is lost
/// silently.

namespace host::cli {

/// Writes bytes to standard output at once.
void write(std::string_view bytes);
/// The same with a line feed after them.
void writeLine(std::string text);
/// One object on a line of its own. Text that is not UTF-8 is repaired.
void writeJson(const nlohmann::ordered_json& object);
/// Writes to a file, which is replaced.
void writeFile(const std::string& file, std::string_view bytes);

/// A line on standard error, with the program's name before it. A failure to write is ignored.
void report(std::string_view sentence);
/// Writes to standard error as it stands.
void reportRaw(std::string_view bytes);

/// A result for people: on a terminal its returns are shown as line breaks, otherwise bytes are exact.
std::string shown(std::string text);

/// The text with line feeds in place of returns.
std::string withLineFeeds(std::string text);

/// Call this once, before anything is opened or written. Learns whether standard output is a terminal.
/// Opens streams that the caller has closed as ones that fail: otherwise the first file would take their
/// place.
void prepareStandardStreams();

} // namespace host::cli
