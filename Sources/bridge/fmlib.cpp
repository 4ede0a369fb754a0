#include "bridge/fmlib.h"

#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"

namespace fmlib {

std::string StringFromFmText(const fmx::Text& text) { return ::StringFromFmText(text); }

std::wstring WStringFromFMText(const fmx::Text& text) { return cFMUtils::WStringFromFMText(text); }

void copyToFMText(std::string& s, fmx::Text& text) {
    text.DeleteText(0);
    text.AssignWithLength(s.data(), hostLength(s.size()), fmx::Text::kEncoding_Native);
}

void FMErrCode2FMData(short code, fmx::Data& result) {
    const fmx::FixPtUniquePtr number(code, kPrecision);
    result.SetAsNumber(*number, fmx::Data::kDTNumber);
}

void FMData2FMData(const fmx::Data& from, fmx::Data& to) {
    if (&from == &to) return;
    const fmx::Data::DataType type = from.GetNativeType();
    // Only the setting of a text sets the locale; the setting of another type leaves it unchanged.
    to.SetAsText(from.GetAsText(), from.GetLocale(), type);
    switch (type) {
    case fmx::Data::kDTNumber:
    case fmx::Data::kDTBoolean: to.SetAsNumber(from.GetAsNumber(), type); break;
    case fmx::Data::kDTDate: to.SetAsDate(from.GetAsDate(), type); break;
    case fmx::Data::kDTTime: to.SetAsTime(from.GetAsTime(), type); break;
    case fmx::Data::kDTTimeStamp: to.SetAsTimeStamp(from.GetAsTimeStamp(), type); break;
    case fmx::Data::kDTBinary: to.SetBinaryData(from.GetBinaryData()); break;
    default: return;
    }
    // A field's content may be one that its type cannot express: nothing, or letters in a number.
    const bool hasStreams = type == fmx::Data::kDTBinary && from.GetBinaryData().GetCount() > 0;
    if (!hasStreams && to.GetAsText() != from.GetAsText())
        to.SetAsText(from.GetAsText(), from.GetLocale(), type);
}

unsigned FindFMTextInArray(const fmx::Text& text, const char* const table[], unsigned count) {
    return cFMUtils::FindFMTextInArray(text, table, count);
}

} // namespace fmlib
