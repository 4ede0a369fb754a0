#pragma once

/// Conversions between the host's values and plain strings, and calculations that the plug-in evaluates.
///
/// Strings are UTF-8. Texts are made from strings in the host's native encoding unless a helper says
/// otherwise. A failing host call throws std::exception or std::bad_alloc; nothing is caught here.

#include "bridge/HostInterface.h"

#include <string>
#include <vector>

class cFMUtils {
public:
    /// The result of FindFMTextInArray when no entry is equal.
    static constexpr unsigned kNotFound = 0xFFFFFFFF;

    /// The text as UTF-8 in (UTF-16 units + 1) bytes, padded with zeros, the last byte zero. A text with a
    /// character of two bytes or more is cut.
    static std::vector<char> CharsFromFMText(const fmx::Text& text);
    /// CharsFromFMText without any zero byte. The flag is not used.
    static std::string StringFromFmxText(const fmx::Text& text, bool unused = false);
    /// Every UTF-16 unit as one wide character; surrogates stay as they are.
    static std::wstring WStringFromFMText(const fmx::Text& text);

    /// A new text with the string's characters; the native encoding is not used. A malformed sequence becomes
    /// U+FFFD.
    static fmx::TextUniquePtr getUTF16data(const std::string& utf8);
    /// A new text from bytes in the native encoding.
    static fmx::TextUniquePtr FMXTextUniquePtrFromString(const std::string& s);
    /// Stores a text with its styles and with the result's own locale. Every text result is written here.
    static void resultFromText(const fmx::Text& text, fmx::Data& result);
    /// Stores the string's characters as text with the result's own locale.
    static void FMResultFromString(const std::string& s, fmx::Data& result);
    /// Stores the integer in decimal as text with the result's own locale.
    static void FMResultFromInt(int number, fmx::Data& result);

    /// Every value as text, in order.
    static std::vector<std::string> StringVectorFromDataVect(const fmx::DataVect& values);
    /// Appends one text value for each string.
    static void StringVectorToDataVect(fmx::DataVectUniquePtr& values, std::vector<std::string>& strings);
    /// Every value as text, each followed by a carriage return.
    static std::string StringCRFromDataVect(const fmx::DataVect& values);
    /// The index of the first entry that equals the text after the host has lower-cased both, else kNotFound.
    static unsigned FindFMTextInArray(const fmx::Text& text, const char* const table[], unsigned count);

    /// The calculation's value as a string, "?" when it does not evaluate.
    static std::string evaluateCalculation(const std::string& calculation, const fmx::ExprEnv& env);
    /// Evaluates Get ( name ) into `out` and returns the evaluation's error code.
    static fmx::errcode getFromEnvironment(const fmx::ExprEnv& env, const std::string& name, fmx::Data& out);
    /// The value of Get ( name ); empty when it does not evaluate.
    static std::string getFromEnvironmentAsString(const fmx::ExprEnv& env, const std::string& name);
    /// A key for the calling file and its user: the file's path without its extension and without ":", with
    /// "/" as "-", then the user's name.
    static std::string getFileID(const fmx::ExprEnv& env);

    /// These two equal the free functions of scripts/Scripts.h, but search the scripts of the named file.
    static bool IsScriptNameValidInFile(const fmx::Text& scriptName, const fmx::Text& fileName,
                                        const fmx::ExprEnv& env);
    static fmx::errcode runFMScript(const fmx::Text& scriptName, const fmx::Data& parameter,
                                    const fmx::ExprEnv& env);
    /// The host's start-script call, with the host's script control. Strings are in the native encoding;
    /// names are not checked. A null pointer is an empty text. Returns the host's error.
    static fmx::errcode StartFMScript(const fmx::ExprEnv& env, const char* fileName, const char* scriptName,
                                      unsigned char control, const char* parameter);
};
