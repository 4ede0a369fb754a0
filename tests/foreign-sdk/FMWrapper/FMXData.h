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
class Data {
public:
    enum DataType {
        kDTInvalid = 0,
        kDTText,
        kDTNumber,
        kDTDate,
        kDTTime,
        kDTTimeStamp,
        kDTBinary,
        kDTBoolean
    };
    bool IsEmpty() const;
    bool IsValid() const;
    bool IsFindRequest() const;
    void Clear(DataType = kDTInvalid);
    void ConvertData(DataType);
    CharacterStyle::FontID GetFontID(const Text&, CharacterStyle::FontScript, const ExprEnv&) const;
    CharacterStyle::FontID GetFontID(const Text&, const ExprEnv&) const;
    bool GetFontInfo(CharacterStyle::FontID, Text&, CharacterStyle::FontScript&, const ExprEnv&) const;
    bool GetFontInfo(CharacterStyle::FontID, Text&, const ExprEnv&) const;
    const Text& GetAsText() const;
    const FixPt& GetAsNumber() const;
    const DateTime& GetAsDate() const;
    const DateTime& GetAsTime() const;
    const DateTime& GetAsTimeStamp() const;
    bool GetAsBoolean() const;
    const BinaryData& GetBinaryData() const;
    const Locale& GetLocale() const;
    DataType GetNativeType() const;
    errcode SetAsText(const Text&, const Locale&, DataType = kDTText);
    void SetAsNumber(const FixPt&, DataType = kDTNumber);
    void SetAsDate(const DateTime&, DataType = kDTDate);
    void SetAsTime(const DateTime&, DataType = kDTTime);
    void SetAsTimeStamp(const DateTime&, DataType = kDTTimeStamp);
    void SetDateTime(const DateTime&, DataType, DataType);
    void SetBinaryData(const BinaryData&, bool = true);
    Data() = delete;
    Data(const Data&) = delete;
    void operator=(const Data&) = delete;
    ~Data() = default;
    static void operator delete(void*);
};

class DataUniquePtr : public std::unique_ptr<Data> {
public:
    DataUniquePtr();
};

} // namespace fmx
