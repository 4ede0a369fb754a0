#include "FMWrapper/FMXFixPt.h"

#include "host/calc/Engine.h"
#include "host/fmwrapper/Gate.h"
#include "host/values/Decimal.h"

#include <utility>

using host::Decimal;
using host::ObjectClass;
using host::bridge::in;
namespace gate = host::gate;

namespace {

/// Adds an amount; the number keeps its own precision.
void add(void* self, const Decimal& amount) {
    Decimal& number = in<Decimal>(self);
    number = number.plus(amount);
}

} // namespace

extern "C" {

fmx::FixPt* FM_FixPt_Constructor1(fmx::int32 value, int precision, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::FixPt, ObjectClass::fixPt>(_x, [&] { return Decimal(value, precision); });
}
fmx::FixPt* FM_FixPt_Constructor2(fmx::int32 value, const fmx::FixPt& precisionExample, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::FixPt, ObjectClass::fixPt>(
        _x, [&] { return Decimal(value, in<Decimal>(&precisionExample).precision()); });
}
void FM_FixPt_Delete(void* _self, fmx::_fmxcpt& _x) { gate::destroy<Decimal, ObjectClass::fixPt>(_self, _x); }
void FM_FixPt_AssignInt(void* _self, fmx::int32 value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(_self) = Decimal(value, in<Decimal>(_self).precision()); });
}
void FM_FixPt_AssignInt64(void* _self, fmx::int64 value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(_self) = Decimal(value, in<Decimal>(_self).precision()); });
}
void FM_FixPt_AssignDouble(void* _self, double value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(_self) = Decimal::fromDouble(value, in<Decimal>(_self).precision()); });
}
void FM_FixPt_AssignFixPt(void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(_self) = in<Decimal>(&that); });
}
bool FM_FixPt_operatorEQ(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Decimal>(_self) == in<Decimal>(&that); });
}
bool FM_FixPt_operatorNE(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Decimal>(_self) != in<Decimal>(&that); });
}
bool FM_FixPt_operatorLT(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Decimal>(_self) < in<Decimal>(&that); });
}
bool FM_FixPt_operatorLE(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Decimal>(_self) <= in<Decimal>(&that); });
}
bool FM_FixPt_operatorGT(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Decimal>(_self) > in<Decimal>(&that); });
}
bool FM_FixPt_operatorGE(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Decimal>(_self) >= in<Decimal>(&that); });
}
void FM_FixPt_Increment(void* _self, fmx::int32 value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { add(_self, Decimal(value)); });
}
void FM_FixPt_Decrement(void* _self, fmx::int32 value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { add(_self, Decimal(value).negated()); });
}
void FM_FixPt_Increment64(void* _self, fmx::int64 value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { add(_self, Decimal(value)); });
}
void FM_FixPt_Decrement64(void* _self, fmx::int64 value, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { add(_self, Decimal(value).negated()); });
}
void FM_FixPt_Negate(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(_self) = in<Decimal>(_self).negated(); });
}
int FM_FixPt_GetPrecision(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, 0, [&] { return in<Decimal>(_self).precision(); });
}
void FM_FixPt_SetPrecision(void* _self, int precision, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(_self).setPrecision(precision); });
}
void FM_FixPt_Add(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(&result) = in<Decimal>(_self).plus(in<Decimal>(&arg)); });
}
void FM_FixPt_Subtract(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(&result) = in<Decimal>(_self).minus(in<Decimal>(&arg)); });
}
void FM_FixPt_Multiply(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Decimal>(&result) = in<Decimal>(_self).times(in<Decimal>(&arg)); });
}
fmx::errcode FM_FixPt_Divide(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        auto quotient = in<Decimal>(_self).dividedBy(in<Decimal>(&arg));
        if (!quotient) return host::calc::error::unspecific;
        in<Decimal>(&result) = std::move(*quotient);
        return 0;
    });
}
bool FM_FixPt_AsBool(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return !in<Decimal>(_self).isZero(); });
}
fmx::int32 FM_FixPt_AsLong(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int32>(_x, [&] { return in<Decimal>(_self).toInt32(); });
}
fmx::int64 FM_FixPt_AsLong64(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int64>(_x, [&] { return in<Decimal>(_self).toInt64(); });
}
double FM_FixPt_AsFloat(const void* _self, fmx::_fmxcpt& _x) {
    return gate::call(_x, 0.0, [&] { return in<Decimal>(_self).toDouble(); });
}

} // extern "C"
