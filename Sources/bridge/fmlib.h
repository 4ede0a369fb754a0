#pragma once

/// Text and data helpers: conversions, the clock as the host counts it, and the calling file's name.
///
/// Texts are made from strings in the host's native encoding. A failing host call throws std::exception or
/// std::bad_alloc; nothing is caught here.

#include "bridge/HostInterface.h"

#include <string>

namespace fmlib {

/// The precision of numbers that the plug-in makes, in decimal digits.
inline constexpr int kPrecision = 16;

/// The first 2 × (UTF-16 units) bytes of the text as UTF-8, without zero bytes.
std::string StringFromFmText(const fmx::Text& text);
/// Every UTF-16 unit as one wide character; surrogates stay as they are.
std::wstring WStringFromFMText(const fmx::Text& text);
/// The text becomes the string.
void copyToFMText(std::string& s, fmx::Text& text);

/// Stores the code as a number.
void FMErrCode2FMData(short code, fmx::Data& result);
/// Copies a value unchanged: type, content and locale. Also copies empty content, and content that the type
/// cannot express.
void FMData2FMData(const fmx::Data& from, fmx::Data& to);

/// Local date and time in microseconds, as exact as a double is.
void SetDateTimeToNow(fmx::DateTime& dateTime);

/// The index of the first entry that equals the text after the host has lower-cased both, else
/// cFMUtils::kNotFound.
unsigned FindFMTextInArray(const fmx::Text& text, const char* const table[], unsigned count);

/// The text becomes the calling file's name, without extension. When the evaluation fails, throws
/// std::logic_error with the failed check, "err == 0", in its text. An assertion would end the app; the
/// handler's frame reports the exception.
void FillFMTextWithCurrentDatabaseFileName(fmx::Text& text, const fmx::ExprEnv& env);

/// Adds parameter 0, a text, to `out` with the groups of each match of parameter 1, a pattern, replaced.
/// Group 1 is replaced by parameter 2, group 2 by parameter 3, and so on. The pattern is in ECMAScript's
/// grammar. Case counts, and a character is a UTF-16 unit. Fewer than three parameters throw
/// std::logic_error. A pattern that is malformed or exceeds a limit of patterns/PatternSearch.h throws
/// std::regex_error; `out` may then have grown.
///
/// The text of a match before each replaced group is copied. The text of a match after the last replaced
/// group is left out. Groups without a replacement, and replacements without a group, are ignored. After the
/// last match the end of the pattern after its last ")" is added, also when nothing matched, and then the
/// rest of the text. The search ends at a match without groups, or whose group 1 is empty or took no part.
///
/// A pattern whose first character has a style replaces only matches that begin in exactly that style. In
/// other matches each group is copied. All text keeps its styles.
///
/// - A group that begins before the place reached, for example a group in another group: nothing is copied
///   before its replacement. Copying continues at the group's end, even when that lies before the place
///   reached.
/// - A later group that took no part: it is skipped, with its replacement.
/// - An empty match with a group in a lookahead: copying continues at the match, and the search one character
///   later, so that it ends.
void RegExpPerformSubstitute(fmx::Text& out, const fmx::DataVect& params);
void RegExpPerformSubstitute_Impl(fmx::Text& out, const fmx::DataVect& params);

} // namespace fmlib
