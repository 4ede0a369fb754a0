#include "FMWrapper/FMXData.h"

#include "host/calc/Engine.h"
#include "host/fmwrapper/Gate.h"
#include "host/values/Data.h"

#include <optional>
#include <string>

using host::Binary;
using host::Data;
using host::DataType;
using host::DateTime;
using host::Decimal;
using host::Locale;
using host::ObjectClass;
using host::Text;
using host::bridge::in;
namespace gate = host::gate;

namespace {

DataType typeOf(fmx::int32 number) {
    return number < 0 || number > static_cast<fmx::int32>(DataType::boolean) ? DataType::invalid
                                                                             : static_cast<DataType>(number);
}

/// A date keeps no time of day, and a time keeps no day.
void setDateTime(void* self, const fmx::DateTime& given, DataType type, fmx::int32 nativeType) {
    DateTime value = in<DateTime>(&given);
    if (type == DataType::date) value.micros = 0;
    if (type == DataType::time) value.days = 0;
    in<Data>(self).setDateTime(value, type, typeOf(nativeType));
}

/// The file of an environment, which knows the fonts; null when there is none.
host::calc::FileContext* fileOf(const fmx::ExprEnv& env) {
    return in<host::calc::Environment>(&env).file.get();
}

fmx::CharacterStyle::FontID fontId(const fmx::ExprEnv& env, const fmx::Text& name) {
    const auto units = in<Text>(&name).units();
    host::calc::FileContext* file = fileOf(env);
    return file == nullptr ? host::invalidFont : file->fontId(units);
}

bool fontName(const fmx::ExprEnv& env, fmx::CharacterStyle::FontID font, fmx::Text& name) {
    host::calc::FileContext* file = fileOf(env);
    const auto found = file == nullptr ? std::nullopt : file->fontName(font);
    Text& answer = in<Text>(&name);
    if (found) answer = Text(*found);
    return found.has_value();
}

} // namespace

extern "C" {

fmx::Data* FM_Data_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::Data, ObjectClass::data>(_x, [&] { return Data{}; });
}
void FM_Data_Delete(void* _self, fmx::_fmxcpt& _x) { gate::destroy<Data, ObjectClass::data>(_self, _x); }
bool FM_Data_IsEmpty(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Data>(_self).isEmpty(); });
}
bool FM_Data_IsValid(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Data>(_self).isValid(); });
}
bool FM_Data_IsFindRequest(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&]() -> bool {
        in<Data>(_self);
        return false;
    });
}
void FM_Data_Clear(void* _self, fmx::int32 newType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Data>(_self).clear(typeOf(newType)); });
}
void FM_Data_ConvertData(void* _self, fmx::int32 dataType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Data>(_self).convert(typeOf(dataType)); });
}
fmx::CharacterStyle::FontID FM_Data_GetFontID(const void* _self, const fmx::Text& displayName,
                                              fmx::CharacterStyle::FontScript script, const fmx::ExprEnv& env,
                                              fmx::_fmxcpt& _x) {
    return gate::call(_x, host::invalidFont, [&]() -> fmx::CharacterStyle::FontID {
        static_cast<void>(script);
        in<Data>(_self);
        return fontId(env, displayName);
    });
}
fmx::CharacterStyle::FontID FM_Data_GetPostscriptFontID(const void* _self, const fmx::Text& postscriptName,
                                                        const fmx::ExprEnv& env, fmx::_fmxcpt& _x) {
    return gate::call(_x, host::invalidFont, [&]() -> fmx::CharacterStyle::FontID {
        in<Data>(_self);
        return fontId(env, postscriptName);
    });
}
bool FM_Data_GetFontInfo(const void* _self, fmx::CharacterStyle::FontID font, fmx::Text& displayName,
                         fmx::CharacterStyle::FontScript& script, const fmx::ExprEnv& env, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&]() -> bool {
        in<Data>(_self);
        auto& scriptOut = in<fmx::CharacterStyle::FontScript>(&script);
        if (!fontName(env, font, displayName)) return false;
        scriptOut = fmx::CharacterStyle::kRoman;
        return true;
    });
}
bool FM_Data_GetPostscriptFontInfo(const void* _self, fmx::CharacterStyle::FontID font,
                                   fmx::Text& postscriptName, const fmx::ExprEnv& env, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&]() -> bool {
        in<Data>(_self);
        return fontName(env, font, postscriptName);
    });
}
const fmx::Text* FM_Data_GetAsText(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::Text, Text>(_x, [&]() -> const Text& { return in<Data>(_self).asText(); });
}
const fmx::FixPt* FM_Data_GetAsNumber(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::FixPt, Decimal>(_x,
                                            [&]() -> const Decimal& { return in<Data>(_self).asNumber(); });
}
const fmx::DateTime* FM_Data_GetAsDate(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DateTime, DateTime>(
        _x, [&]() -> const DateTime& { return in<Data>(_self).asDate(); });
}
const fmx::DateTime* FM_Data_GetAsTime(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DateTime, DateTime>(
        _x, [&]() -> const DateTime& { return in<Data>(_self).asTime(); });
}
const fmx::DateTime* FM_Data_GetAsTimeStamp(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::DateTime, DateTime>(
        _x, [&]() -> const DateTime& { return in<Data>(_self).asTimestamp(); });
}
bool FM_Data_GetAsBoolean(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Data>(_self).asBoolean(); });
}
const fmx::BinaryData* FM_Data_GetBinaryData(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::BinaryData, Binary>(
        _x, [&]() -> const Binary& { return in<Data>(_self).asBinary(); });
}
const fmx::Locale* FM_Data_GetLocale(const void* _self, fmx::_fmxcpt& _x) {
    return gate::refer<fmx::Locale, Locale>(_x, [&]() -> const Locale& { return in<Data>(_self).locale(); });
}
fmx::int32 FM_Data_GetNativeType(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int32>(_x, [&] { return in<Data>(_self).nativeType(); });
}
fmx::errcode FM_Data_SetAsText(void* _self, const fmx::Text& text, const fmx::Locale& locale,
                               fmx::int32 nativeType, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        Data& data = in<Data>(_self);
        const Locale given = in<Locale>(&locale);
        data.setText(in<Text>(&text), typeOf(nativeType));
        data.setLocale(given);
        return 0;
    });
}
void FM_Data_SetAsNumber(void* _self, const fmx::FixPt& number, fmx::int32 nativeType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Data>(_self).setNumber(in<Decimal>(&number), typeOf(nativeType)); });
}
void FM_Data_SetAsDate(void* _self, const fmx::DateTime& date, fmx::int32 nativeType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { setDateTime(_self, date, DataType::date, nativeType); });
}
void FM_Data_SetAsTime(void* _self, const fmx::DateTime& time, fmx::int32 nativeType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { setDateTime(_self, time, DataType::time, nativeType); });
}
void FM_Data_SetAsTimeStamp(void* _self, const fmx::DateTime& timeStamp, fmx::int32 nativeType,
                            fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { setDateTime(_self, timeStamp, DataType::timestamp, nativeType); });
}
void FM_Data_SetDateTime(void* _self, const fmx::DateTime& value, fmx::int32 dateTimeType,
                         fmx::int32 nativeType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { setDateTime(_self, value, typeOf(dateTimeType), nativeType); });
}
void FM_Data_SetBinaryData(void* _self, const fmx::BinaryData& value, bool forceBinaryNativeType,
                           fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Data>(_self).setBinary(in<Binary>(&value), forceBinaryNativeType); });
}

} // extern "C"
