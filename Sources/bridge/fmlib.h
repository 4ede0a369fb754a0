#pragma once

/// Text and data helpers: conversions, the clock as the host counts it, and the calling file's name.
///
/// Texts are made from strings in the host's native encoding. A failing host call travels as std::exception
/// or std::bad_alloc; nothing is caught here.

#include "bridge/HostInterface.h"

#include <string>

namespace fmlib {

/// The precision of numbers that the plug-in makes, in decimal digits.
inline constexpr int kPrecision = 16;

/// The first 2 × (UTF-16 units) bytes of the text as UTF-8, zero bytes dropped.
std::string StringFromFmText(const fmx::Text& text);
/// Every UTF-16 unit as one wide character; surrogates stay as they are.
std::wstring WStringFromFMText(const fmx::Text& text);
/// The text becomes the string.
void copyToFMText(std::string& s, fmx::Text& text);

/// Stores the code as a number.
void FMErrCode2FMData(short code, fmx::Data& result);
/// Copies a value unchanged: type, content and locale, also an empty one and what its type cannot express.
void FMData2FMData(const fmx::Data& from, fmx::Data& to);

/// Local date and time, to the microsecond as far as a double holds it.
void SetDateTimeToNow(fmx::DateTime& dateTime);

/// The index of the first entry that equals the text when the host has lower-cased both, else
/// cFMUtils::kNotFound.
unsigned FindFMTextInArray(const fmx::Text& text, const char* const table[], unsigned count);

/// The text becomes the calling file's name, without extension. When the host cannot say, throws
/// std::logic_error with the failed check, "err == 0", in its text. This stands in the place of an assertion
/// that would end the app: nobody's app ends because of a plug-in, and the handler's frame reports it.
void FillFMTextWithCurrentDatabaseFileName(fmx::Text& text, const fmx::ExprEnv& env);

/// Adds text to `out`: parameter 0 with the groups of each match of the pattern, parameter 1, replaced by the
/// following parameters, group 1 by the first of them. The pattern is in ECMAScript's grammar, case counts,
/// and a character is a UTF-16 unit. Three parameters or more; fewer are std::logic_error. A pattern that is
/// malformed, or takes too much (patterns/PatternSearch.h), is std::regex_error; `out` may then have grown.
///
/// Of a match, the text before each replaced group is copied and what follows the last of them left out.
/// Groups that have no replacement, and replacements that have no group, do not count. When the last match
/// is done, the pattern's end behind its last ")" is added, also when nothing matched, then the rest of the
/// text. Looking ends at a match without groups or whose group 1 is empty or took no part.
///
/// A pattern whose first character has a style replaces only matches that begin in exactly that style; in
/// other matches each group is copied instead. Whatever is copied or put in keeps its looks.
///
/// - A group that begins before the place that is reached, as one does that lies in another: nothing is
///   copied before its replacement; copying goes on at its end, be that back again.
/// - A later group that took no part: passed over, with its replacement.
/// - A match that is empty, with a group that looks ahead: copying goes on at the match, the search one
///   character further on, so that it ends.
void RegExpPerformSubstitute(fmx::Text& out, const fmx::DataVect& params);
void RegExpPerformSubstitute_Impl(fmx::Text& out, const fmx::DataVect& params);

} // namespace fmlib
