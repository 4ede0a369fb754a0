#include "scripts/Scripts.h"

#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"
#include "platform/Platform.h"

#include <string_view>

namespace {

/// True when the text has the line. The host compares without regard to case. The returns around both make
/// sure that whole lines are compared.
bool hasLine(const fmx::Text& lines, const fmx::Text& line) {
    const fmx::TextUniquePtr haystack;
    haystack->Assign("\r\r");
    haystack->InsertText(lines, 1);
    const fmx::TextUniquePtr needle;
    needle->Assign("\r\r");
    needle->InsertText(line, 1);
    return haystack->FindIgnoringCase(*needle, 0) != fmx::Text::kSize_Invalid;
}

/// True when the file has the script. The file's name is written as in a text of a calculation; an empty name
/// means the calling file.
bool isScriptOf(const fmx::Text& fileName, const fmx::Text& scriptName, const fmx::ExprEnv& env) {
    constexpr std::string_view kNamesOfFile = "ScriptNames( \"\" )";
    const fmx::TextUniquePtr expression;
    expression->AssignWithLength(kNamesOfFile.data(), kNamesOfFile.size());
    expression->InsertText(fileName, kNamesOfFile.find('"') + 1);
    const fmx::DataUniquePtr names;
    return env.Evaluate(*expression, *names) == 0 && hasLine(names->GetAsText(), scriptName);
}

/// The text with the escapes that it needs between the quotation marks of a calculation.
fmx::TextUniquePtr quoted(const fmx::Text& text) {
    Units units;
    for (const fmx::uint16 unit : unitsFromFMText(text)) {
        if (unit == '"' || unit == '\\') units.push_back('\\');
        units.push_back(unit);
    }
    fmx::TextUniquePtr result;
    assignUnits(*result, units);
    return result;
}

/// The host's start-script call; kUnexpectedError when the host has none.
fmx::errcode startScript(const fmx::Text& fileName, const fmx::Text& scriptName, FMX_ScriptControl control,
                         const fmx::Data& parameter) {
    if (gFMX_ExternCallPtr == nullptr || gFMX_ExternCallPtr->cStartScript == nullptr)
        return kst::kUnexpectedError;
    return FMX_StartScript(&fileName, &scriptName, control, &parameter);
}

using NameCheck = bool(const fmx::Text&, const fmx::Text&, const fmx::ExprEnv&);

fmx::errcode runChecked(NameCheck& isValid, const fmx::Text& scriptName, const fmx::Data& parameter,
                        const fmx::ExprEnv& env) {
    const fmx::TextUniquePtr fileName;
    fmlib::FillFMTextWithCurrentDatabaseFileName(*fileName, env);
    if (!isValid(scriptName, *fileName, env)) return kst::kWrongParameter;
    startScript(*fileName, scriptName, kFMXT_Halt, parameter);
    return kst::kNoError;
}

fmx::errcode start(const platform::Script& script) {
    const fmx::TextUniquePtr fileName;
    assignUnits(*fileName, script.file);
    const fmx::TextUniquePtr scriptName;
    assignUnits(*scriptName, script.name);
    const fmx::TextUniquePtr text;
    assignUnits(*text, script.parameter);
    const fmx::DataUniquePtr parameter;
    parameter->SetAsText(*text, parameter->GetLocale());
    return startScript(*fileName, *scriptName, kFMXT_Halt, *parameter);
}

} // namespace

bool IsScriptNameValidInFile(const fmx::Text& scriptName, const fmx::Text& /*fileName*/,
                             const fmx::ExprEnv& env) {
    const fmx::TextUniquePtr callingFile;
    return isScriptOf(*callingFile, scriptName, env);
}

fmx::errcode runFMScript(const fmx::Text& scriptName, const fmx::Data& parameter, const fmx::ExprEnv& env) {
    return runChecked(IsScriptNameValidInFile, scriptName, parameter, env);
}

bool cFMUtils::IsScriptNameValidInFile(const fmx::Text& scriptName, const fmx::Text& fileName,
                                       const fmx::ExprEnv& env) {
    return isScriptOf(*quoted(fileName), scriptName, env);
}

fmx::errcode cFMUtils::runFMScript(const fmx::Text& scriptName, const fmx::Data& parameter,
                                   const fmx::ExprEnv& env) {
    return runChecked(cFMUtils::IsScriptNameValidInFile, scriptName, parameter, env);
}

fmx::errcode cFMUtils::StartFMScript(const fmx::ExprEnv& /*env*/, const char* fileName,
                                     const char* scriptName, unsigned char control, const char* parameter) {
    const auto textFrom = [](const char* text) {
        return FMXTextUniquePtrFromString(text == nullptr ? "" : text);
    };
    const fmx::DataUniquePtr value;
    value->SetAsText(*textFrom(parameter), value->GetLocale());
    return startScript(*textFrom(fileName), *textFrom(scriptName), control, *value);
}

void performScheduledScripts() noexcept {
    platform::Script script;
    const platform::Taken taken = platform::takeScript(script);
    if (taken == platform::Taken::nothing) return;
    fmx::errcode error = kst::kUnexpectedError;
    try {
        if (taken == platform::Taken::script) error = start(script);
    } catch (...) {
        error = kst::kUnexpectedError;
    }
    if (error != kst::kNoError) platform::logScriptError(error);
}

void kst::PerformScheduledScripts() noexcept {}
