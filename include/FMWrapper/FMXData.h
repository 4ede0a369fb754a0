#pragma once

/// Typed values.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXBinaryData.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTypes.h"

#include <memory>

namespace fmx {

class ExprEnv;

/// A typed value with its locale. The host converts on reading. A reference that was read stays valid until
/// the value is changed.
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
    void Clear(DataType newType = kDTInvalid);
    void ConvertData(DataType dataType);
    /// Fonts are those of the environment's file; kInvalidFont when it has no such font.
    CharacterStyle::FontID GetFontID(const Text& displayName, CharacterStyle::FontScript script,
                                     const ExprEnv& env) const;
    CharacterStyle::FontID GetFontID(const Text& postscriptName, const ExprEnv& env) const;
    /// False when the file has no such font; the name then stays as it was. Current hosts mark the form with
    /// the script as deprecated, but still have it.
    bool GetFontInfo(CharacterStyle::FontID font, Text& displayName, CharacterStyle::FontScript& script,
                     const ExprEnv& env) const;
    bool GetFontInfo(CharacterStyle::FontID font, Text& postscriptName, const ExprEnv& env) const;
    /// A value that cannot be read as a type gives that type's empty value.
    const Text& GetAsText() const;
    const FixPt& GetAsNumber() const;
    const DateTime& GetAsDate() const;
    const DateTime& GetAsTime() const;
    const DateTime& GetAsTimeStamp() const;
    bool GetAsBoolean() const;
    const BinaryData& GetBinaryData() const;
    const Locale& GetLocale() const;
    DataType GetNativeType() const;
    /// The value is copied. `nativeType` becomes this value's native type.
    errcode SetAsText(const Text& text, const Locale& locale, DataType nativeType = kDTText);
    void SetAsNumber(const FixPt& number, DataType nativeType = kDTNumber);
    void SetAsDate(const DateTime& date, DataType nativeType = kDTDate);
    void SetAsTime(const DateTime& time, DataType nativeType = kDTTime);
    void SetAsTimeStamp(const DateTime& timeStamp, DataType nativeType = kDTTimeStamp);
    void SetDateTime(const DateTime& value, DataType dateTimeType, DataType nativeType);
    void SetBinaryData(const BinaryData& value, bool forceBinaryNativeType = true);

    static void operator delete(void* _self);

private:
    friend class DataUniquePtr;
    Data();
    Data(const Data&);
    Data& operator=(const Data&);
};

/// Owns a Data and gives it back to the host.
class DataUniquePtr : public std::unique_ptr<Data> {
public:
    DataUniquePtr();
};

} // namespace fmx

extern "C" {

fmx::Data* FM_Data_Constructor1(fmx::_fmxcpt& _x);
void FM_Data_Delete(void* _self, fmx::_fmxcpt& _x);
bool FM_Data_IsEmpty(const void* _self, fmx::_fmxcpt& _x);
bool FM_Data_IsValid(const void* _self, fmx::_fmxcpt& _x);
bool FM_Data_IsFindRequest(const void* _self, fmx::_fmxcpt& _x);
void FM_Data_Clear(void* _self, fmx::int32 newType, fmx::_fmxcpt& _x);
void FM_Data_ConvertData(void* _self, fmx::int32 dataType, fmx::_fmxcpt& _x);
fmx::CharacterStyle::FontID FM_Data_GetFontID(const void* _self, const fmx::Text& displayName,
                                              fmx::CharacterStyle::FontScript script, const fmx::ExprEnv& env,
                                              fmx::_fmxcpt& _x);
fmx::CharacterStyle::FontID FM_Data_GetPostscriptFontID(const void* _self, const fmx::Text& postscriptName,
                                                        const fmx::ExprEnv& env, fmx::_fmxcpt& _x);
bool FM_Data_GetFontInfo(const void* _self, fmx::CharacterStyle::FontID font, fmx::Text& displayName,
                         fmx::CharacterStyle::FontScript& script, const fmx::ExprEnv& env, fmx::_fmxcpt& _x);
bool FM_Data_GetPostscriptFontInfo(const void* _self, fmx::CharacterStyle::FontID font,
                                   fmx::Text& postscriptName, const fmx::ExprEnv& env, fmx::_fmxcpt& _x);
const fmx::Text* FM_Data_GetAsText(const void* _self, fmx::_fmxcpt& _x);
const fmx::FixPt* FM_Data_GetAsNumber(const void* _self, fmx::_fmxcpt& _x);
const fmx::DateTime* FM_Data_GetAsDate(const void* _self, fmx::_fmxcpt& _x);
const fmx::DateTime* FM_Data_GetAsTime(const void* _self, fmx::_fmxcpt& _x);
const fmx::DateTime* FM_Data_GetAsTimeStamp(const void* _self, fmx::_fmxcpt& _x);
bool FM_Data_GetAsBoolean(const void* _self, fmx::_fmxcpt& _x);
const fmx::BinaryData* FM_Data_GetBinaryData(const void* _self, fmx::_fmxcpt& _x);
const fmx::Locale* FM_Data_GetLocale(const void* _self, fmx::_fmxcpt& _x);
fmx::int32 FM_Data_GetNativeType(const void* _self, fmx::_fmxcpt& _x);
fmx::errcode FM_Data_SetAsText(void* _self, const fmx::Text& text, const fmx::Locale& locale,
                               fmx::int32 nativeType, fmx::_fmxcpt& _x);
void FM_Data_SetAsNumber(void* _self, const fmx::FixPt& number, fmx::int32 nativeType, fmx::_fmxcpt& _x);
void FM_Data_SetAsDate(void* _self, const fmx::DateTime& date, fmx::int32 nativeType, fmx::_fmxcpt& _x);
void FM_Data_SetAsTime(void* _self, const fmx::DateTime& time, fmx::int32 nativeType, fmx::_fmxcpt& _x);
void FM_Data_SetAsTimeStamp(void* _self, const fmx::DateTime& timeStamp, fmx::int32 nativeType,
                            fmx::_fmxcpt& _x);
void FM_Data_SetDateTime(void* _self, const fmx::DateTime& value, fmx::int32 dateTimeType,
                         fmx::int32 nativeType, fmx::_fmxcpt& _x);
void FM_Data_SetBinaryData(void* _self, const fmx::BinaryData& value, bool forceBinaryNativeType,
                           fmx::_fmxcpt& _x);
}

namespace fmx {

inline bool Data::IsEmpty() const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_IsEmpty(this, _x);
    _x.Check();
    return _rtn;
}
inline bool Data::IsValid() const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_IsValid(this, _x);
    _x.Check();
    return _rtn;
}
inline bool Data::IsFindRequest() const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_IsFindRequest(this, _x);
    _x.Check();
    return _rtn;
}
inline void Data::Clear(Data::DataType newType) {
    _fmxcpt _x;
    FM_Data_Clear(this, static_cast<int32>(newType), _x);
    _x.Check();
}
inline void Data::ConvertData(Data::DataType dataType) {
    _fmxcpt _x;
    FM_Data_ConvertData(this, static_cast<int32>(dataType), _x);
    _x.Check();
}
inline CharacterStyle::FontID Data::GetFontID(const Text& displayName, CharacterStyle::FontScript script,
                                              const ExprEnv& env) const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_GetFontID(this, displayName, script, env, _x);
    _x.Check();
    return _rtn;
}
inline CharacterStyle::FontID Data::GetFontID(const Text& postscriptName, const ExprEnv& env) const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_GetPostscriptFontID(this, postscriptName, env, _x);
    _x.Check();
    return _rtn;
}
inline bool Data::GetFontInfo(CharacterStyle::FontID font, Text& displayName,
                              CharacterStyle::FontScript& script, const ExprEnv& env) const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_GetFontInfo(this, font, displayName, script, env, _x);
    _x.Check();
    return _rtn;
}
inline bool Data::GetFontInfo(CharacterStyle::FontID font, Text& postscriptName, const ExprEnv& env) const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_GetPostscriptFontInfo(this, font, postscriptName, env, _x);
    _x.Check();
    return _rtn;
}
inline const Text& Data::GetAsText() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetAsText(this, _x);
    _x.Check();
    return *_rtn;
}
inline const FixPt& Data::GetAsNumber() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetAsNumber(this, _x);
    _x.Check();
    return *_rtn;
}
inline const DateTime& Data::GetAsDate() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetAsDate(this, _x);
    _x.Check();
    return *_rtn;
}
inline const DateTime& Data::GetAsTime() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetAsTime(this, _x);
    _x.Check();
    return *_rtn;
}
inline const DateTime& Data::GetAsTimeStamp() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetAsTimeStamp(this, _x);
    _x.Check();
    return *_rtn;
}
inline bool Data::GetAsBoolean() const {
    _fmxcpt _x;
    const auto _rtn = FM_Data_GetAsBoolean(this, _x);
    _x.Check();
    return _rtn;
}
inline const BinaryData& Data::GetBinaryData() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetBinaryData(this, _x);
    _x.Check();
    return *_rtn;
}
inline const Locale& Data::GetLocale() const {
    _fmxcpt _x;
    const auto* _rtn = FM_Data_GetLocale(this, _x);
    _x.Check();
    return *_rtn;
}
inline Data::DataType Data::GetNativeType() const {
    _fmxcpt _x;
    const int32 _rtn = FM_Data_GetNativeType(this, _x);
    _x.Check();
    return static_cast<DataType>(_rtn);
}
inline errcode Data::SetAsText(const Text& text, const Locale& locale, Data::DataType nativeType) {
    _fmxcpt _x;
    const auto _rtn = FM_Data_SetAsText(this, text, locale, static_cast<int32>(nativeType), _x);
    _x.Check();
    return _rtn;
}
inline void Data::SetAsNumber(const FixPt& number, Data::DataType nativeType) {
    _fmxcpt _x;
    FM_Data_SetAsNumber(this, number, static_cast<int32>(nativeType), _x);
    _x.Check();
}
inline void Data::SetAsDate(const DateTime& date, Data::DataType nativeType) {
    _fmxcpt _x;
    FM_Data_SetAsDate(this, date, static_cast<int32>(nativeType), _x);
    _x.Check();
}
inline void Data::SetAsTime(const DateTime& time, Data::DataType nativeType) {
    _fmxcpt _x;
    FM_Data_SetAsTime(this, time, static_cast<int32>(nativeType), _x);
    _x.Check();
}
inline void Data::SetAsTimeStamp(const DateTime& timeStamp, Data::DataType nativeType) {
    _fmxcpt _x;
    FM_Data_SetAsTimeStamp(this, timeStamp, static_cast<int32>(nativeType), _x);
    _x.Check();
}
inline void Data::SetDateTime(const DateTime& value, Data::DataType dateTimeType, Data::DataType nativeType) {
    _fmxcpt _x;
    FM_Data_SetDateTime(this, value, static_cast<int32>(dateTimeType), static_cast<int32>(nativeType), _x);
    _x.Check();
}
inline void Data::SetBinaryData(const BinaryData& value, bool forceBinaryNativeType) {
    _fmxcpt _x;
    FM_Data_SetBinaryData(this, value, forceBinaryNativeType, _x);
    _x.Check();
}
inline void Data::operator delete(void* _self) {
    _fmxcpt _x;
    FM_Data_Delete(_self, _x);
}
inline DataUniquePtr::DataUniquePtr() {
    _fmxcpt _x;
    reset(FM_Data_Constructor1(_x));
    _x.Check();
}

} // namespace fmx
