#pragma once

/// Status and result of a script's run, kept as files in the temporary folder so that they outlive the
/// process: "status_ID.txt" and "result_ID.txt". Nothing deletes them.
///
/// An identifier may be any string. In the file's name "/" becomes "%2F", a zero byte "%00" and "%" itself
/// "%25", so that different identifiers have different files and none leaves the folder. One that makes a
/// name too long for the file system cannot be kept.

#include <map>
#include <string>

/// What a run that has no record reads as.
inline constexpr const char* kNoRecord = "<KST_NOT_EXISTS>";

/// Nothing fills these on this platform. Other parts of the product know them by these names.
extern std::map<std::string, std::string> _scriptStatus; // NOLINT(bugprone-reserved-identifier)
extern std::map<std::string, std::string> _scriptResult; // NOLINT(bugprone-reserved-identifier)

/// Keep a text, byte for byte, in place of an earlier one. Nothing is said when that fails.
void setScriptStatus(const std::string& id, const std::string& status);
void setScriptResult(const std::string& id, const std::string& result);

/// The whole text; kNoRecord when there is none, nothing when the file is there and cannot be read.
std::string getScriptStatus(const std::string& id);
std::string getScriptResult(const std::string& id);
