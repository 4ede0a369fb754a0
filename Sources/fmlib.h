#pragma once

/// Text and data helpers: conversions, the clock as the host counts it, and the calling file's name.
///
/// Texts are made from strings in the host's native encoding. A failing host call travels as std::exception
/// or std::bad_alloc; nothing is caught here.

#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXText.h"

#include <string>

namespace fmlib {

/// The text as UTF-8, zero bytes dropped, cut at 2 × (UTF-16 units) bytes, the host's terminating zero
/// included.
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

} // namespace fmlib
