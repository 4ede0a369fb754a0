#include "FMWrapper/FMXTypes.h"

#include "host/fmwrapper/Gate.h"
#include "host/values/Data.h"

using host::Locale;
using host::ObjectClass;
using host::QuadChar;
using host::bridge::in;
namespace gate = host::gate;

extern "C" {

fmx::QuadChar* FM_QuadChar_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::QuadChar, ObjectClass::quadChar>(_x, [&] { return QuadChar{}; });
}
fmx::QuadChar* FM_QuadChar_Constructor2(char c0, char c1, char c2, char c3, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::QuadChar, ObjectClass::quadChar>(_x, [&] {
        return QuadChar{{static_cast<unsigned char>(c0), static_cast<unsigned char>(c1),
                         static_cast<unsigned char>(c2), static_cast<unsigned char>(c3)}};
    });
}
fmx::QuadChar* FM_QuadChar_Constructor3(const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::QuadChar, ObjectClass::quadChar>(
        _x, [&] { return QuadChar(in<QuadChar>(&that)); });
}
void FM_QuadChar_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<QuadChar, ObjectClass::quadChar>(_self, _x);
}
fmx::uchar FM_QuadChar_operatorAR(void* _self, int i, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uchar>(_x, [&] {
        return static_cast<fmx::uchar>(in<QuadChar>(_self).bytes.at(static_cast<std::size_t>(i)));
    });
}
fmx::uchar FM_QuadChar_operatorCAR(const void* _self, int i, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uchar>(_x, [&] {
        return static_cast<fmx::uchar>(in<QuadChar>(_self).bytes.at(static_cast<std::size_t>(i)));
    });
}
bool FM_QuadChar_operatorEQ(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<QuadChar>(_self) == in<QuadChar>(&that); });
}
bool FM_QuadChar_operatorNE(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<QuadChar>(_self) != in<QuadChar>(&that); });
}
bool FM_QuadChar_operatorLT(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<QuadChar>(_self) < in<QuadChar>(&that); });
}
bool FM_QuadChar_operatorLE(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<QuadChar>(_self) <= in<QuadChar>(&that); });
}
bool FM_QuadChar_operatorGT(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<QuadChar>(_self) > in<QuadChar>(&that); });
}
bool FM_QuadChar_operatorGE(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<QuadChar>(_self) >= in<QuadChar>(&that); });
}
const fmx::QuadChar* FM_QuadChar_operatorAS(void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x) {
    return gate::assign<QuadChar>(_x, _self, that);
}
fmx::uint32 FM_QuadChar_GetMacType(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uint32>(_x, [&] {
        fmx::uint32 number = 0;
        for (const unsigned char byte : in<QuadChar>(_self).bytes)
            number = number << 8 | byte;
        return number;
    });
}
void FM_QuadChar_SetMacType(void* _self, fmx::uint32 macType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] {
        for (unsigned shift = 32; unsigned char& byte : in<QuadChar>(_self).bytes)
            byte = static_cast<unsigned char>(macType >> (shift -= 8));
    });
}

fmx::Locale* FM_Locale_Constructor1(fmx::int32 type, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::Locale, ObjectClass::locale>(_x, [&] { return Locale{type}; });
}
fmx::Locale* FM_Locale_Constructor2(const fmx::Locale& that, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::Locale, ObjectClass::locale>(_x, [&] { return Locale(in<Locale>(&that)); });
}
void FM_Locale_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<Locale, ObjectClass::locale>(_self, _x);
}
const fmx::Locale* FM_Locale_operatorAS(void* _self, const fmx::Locale& that, fmx::_fmxcpt& _x) {
    return gate::assign<Locale>(_x, _self, that);
}

} // extern "C"
