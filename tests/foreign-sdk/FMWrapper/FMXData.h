#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"
#include "FMWrapper/FMXTextStyle.h"

#include <memory>

namespace fmx {

class Text;
class FixPt;
class DateTime;
class BinaryData;
class Locale;
class ExprEnv;
class Data : public Opaque {
public:
    enum DataType {
        kDTText = 1,
        kDTNumber = 2,
        kDTDate = 3,
        kDTTime = 4,
        kDTTimeStamp = 5,
        kDTBinary = 6,
        kDTBoolean = 7
    };
    bool IsEmpty() const;
    bool GetFontInfo(CharacterStyle::FontID, Text&, CharacterStyle::FontScript&, const ExprEnv&) const;
    bool GetFontInfo(CharacterStyle::FontID, Text&, const ExprEnv&) const;
    const Text& GetAsText() const;
    const FixPt& GetAsNumber() const;
    const DateTime& GetAsDate() const;
    const DateTime& GetAsTime() const;
    const DateTime& GetAsTimeStamp() const;
    const BinaryData& GetBinaryData() const;
    const Locale& GetLocale() const;
    DataType GetNativeType() const;
    errcode SetAsText(const Text&, const Locale&, DataType = kDTText);
    void SetAsNumber(const FixPt&, DataType = kDTNumber);
    void SetAsDate(const DateTime&, DataType = kDTDate);
    void SetAsTime(const DateTime&, DataType = kDTTime);
    void SetAsTimeStamp(const DateTime&, DataType = kDTTimeStamp);
    void SetBinaryData(const BinaryData&, bool = true);
};

class DataUniquePtr : public std::unique_ptr<Data> {
public:
    DataUniquePtr();
};

} // namespace fmx
