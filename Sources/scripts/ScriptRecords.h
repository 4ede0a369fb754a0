#pragma once

/// Status and result of a script's run, in the files "status_ID.txt" and "result_ID.txt" of the temporary
/// folder, so that they outlive the process. Nothing deletes the files.
///
/// An identifier may be any string. In the file's name "/" becomes "%2F", a zero byte "%00" and "%" itself
/// "%25". So different identifiers have different files, and all are in the folder. An identifier that makes
/// the name too long for the file system is not stored.

#include <map>
#include <string>

/// The text that is read for a run without a record.
inline constexpr const char* kNoRecord = "<KST_NOT_EXISTS>";

/// These stay empty on this platform. Other parts of the product use these names.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wreserved-identifier"
extern std::map<std::string, std::string> _scriptStatus;
extern std::map<std::string, std::string> _scriptResult;
#pragma clang diagnostic pop

/// Write a text, byte for byte, and replace an earlier one. A failure is not reported.
void setScriptStatus(const std::string& id, const std::string& status);
void setScriptResult(const std::string& id, const std::string& result);

/// The whole text; kNoRecord without a file; empty when the file cannot be read.
std::string getScriptStatus(const std::string& id);
std::string getScriptResult(const std::string& id);
