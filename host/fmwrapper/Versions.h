#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

/// The version of the interface that brought each function, and the version that this host announces.

namespace host {

struct NewerFunction {
    std::string_view name;
    int since; ///< the first version that has it
};
/// The functions that are newer than version 50. All others are in every version.
inline constexpr std::array kNewerFunctions{
    NewerFunction{"FM_BinaryData_GetSIZEData", 51},
    NewerFunction{"FM_BinaryData_AddSIZEData", 51},
    NewerFunction{"FM_BinaryData_Constructor4", 54},
    NewerFunction{"FM_BinaryData_AddBegin", 54},
    NewerFunction{"FM_BinaryData_AddAppend", 54},
    NewerFunction{"FM_BinaryData_AddFinish", 54},
    NewerFunction{"FM_ExprEnv_ExecuteFileSQLTextResult", 54},
    NewerFunction{"FM_ExprEnv_SessionID", 56},
    NewerFunction{"FM_ExprEnv_FileID", 56},
    NewerFunction{"FM_ExprEnv_RegisterExternalFunctionEx", 56},
    NewerFunction{"FM_Text_GetBytesEx", 57},
    NewerFunction{"FM_ExprEnv_RegisterScriptStep", 57},
    NewerFunction{"FM_ExprEnv_UnRegisterScriptStep", 57},
    NewerFunction{"FM_ExprEnv_EvaluateGetFunction", 60},
    NewerFunction{"FM_ExprEnv_EvaluateConvertToFileMakerPath", 62},
    NewerFunction{"FM_ExprEnv_EvaluateConvertFromFileMakerPath", 62},
};
/// The row of a function; null for one that every version has.
constexpr const NewerFunction* newerFunction(std::string_view name) {
    const auto* row = std::find_if(kNewerFunctions.begin(), kNewerFunctions.end(),
                                   [name](const NewerFunction& function) { return function.name == name; });
    return row == kNewerFunctions.end() ? nullptr : row;
}

/// The version last announced to plug-ins.
int announcedVersion();
void announceVersion(int version);
/// Takes note of a call of a function that the announced version lacks, by its row in kNewerFunctions. A
/// pointer would not do: each library has a table of its own.
void noteCallBeyondVersion(std::size_t row);
/// The functions that were called so, once each.
std::vector<const NewerFunction*> callsBeyondVersion();

/// A function's name as a template's argument.
template<std::size_t size>
struct FunctionName {
    consteval FunctionName(const char (&name)[size]) { std::copy_n(name, size, text); }
    char text[size]{};
};
/// Call this first in a function that older versions lack.
template<FunctionName name>
void checkVersion() {
    constexpr const NewerFunction* function = newerFunction(name.text);
    static_assert(function != nullptr);
    constexpr auto row = static_cast<std::size_t>(function - kNewerFunctions.data());
    if (announcedVersion() < function->since) noteCallBeyondVersion(row);
}

} // namespace host
