#pragma once

/// Decimal fixed-point numbers.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXClient.h"
#include "FMWrapper/FMXExtern.h"

#include <memory>

namespace fmx {

/// Precision is the number of decimal digits after the point, limited to 16 to 400. A result that is too
/// large raises error 2.
class FixPt {
public:
    void AssignInt(int32 value);
    void AssignInt64(int64 value);
    /// Not-a-number and the infinities raise error 2.
    void AssignDouble(double value);
    void AssignFixPt(const FixPt& that);
    bool operator==(const FixPt& that) const;
    bool operator!=(const FixPt& that) const;
    bool operator<(const FixPt& that) const;
    bool operator<=(const FixPt& that) const;
    bool operator>(const FixPt& that) const;
    bool operator>=(const FixPt& that) const;
    void Increment(int32 value);
    void Decrement(int32 value);
    void Increment64(int64 value);
    void Decrement64(int64 value);
    void Negate();
    int GetPrecision() const;
    /// A smaller precision rounds the value.
    void SetPrecision(int precision);
    /// `result` may be either operand; it takes the larger of their precisions.
    void Add(const FixPt& arg, FixPt& result) const;
    void Subtract(const FixPt& arg, FixPt& result) const;
    void Multiply(const FixPt& arg, FixPt& result) const;
    /// The result is not 0 for a divisor of zero; `result` then stays as it was.
    errcode Divide(const FixPt& arg, FixPt& result) const;
    /// True for anything but zero.
    bool AsBool() const;
    /// Rounded towards zero, and limited to the range of the type.
    int32 AsLong() const;
    int64 AsLong64() const;
    double AsFloat() const;

    static void operator delete(void* _self);

private:
    friend class FixPtUniquePtr;
    FixPt();
    FixPt(const FixPt&);
    FixPt& operator=(const FixPt&);
};

/// Owns a FixPt and gives it back to the host.
class FixPtUniquePtr : public std::unique_ptr<FixPt> {
public:
    explicit FixPtUniquePtr(int32 value = 0, int precision = 16);
    FixPtUniquePtr(int32 value, const FixPt& precisionExample);
};

} // namespace fmx

extern "C" {

fmx::FixPt* FM_FixPt_Constructor1(fmx::int32 value, int precision, fmx::_fmxcpt& _x);
fmx::FixPt* FM_FixPt_Constructor2(fmx::int32 value, const fmx::FixPt& precisionExample, fmx::_fmxcpt& _x);
void FM_FixPt_Delete(void* _self, fmx::_fmxcpt& _x);
void FM_FixPt_AssignInt(void* _self, fmx::int32 value, fmx::_fmxcpt& _x);
void FM_FixPt_AssignInt64(void* _self, fmx::int64 value, fmx::_fmxcpt& _x);
void FM_FixPt_AssignDouble(void* _self, double value, fmx::_fmxcpt& _x);
void FM_FixPt_AssignFixPt(void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
bool FM_FixPt_operatorEQ(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
bool FM_FixPt_operatorNE(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
bool FM_FixPt_operatorLT(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
bool FM_FixPt_operatorLE(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
bool FM_FixPt_operatorGT(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
bool FM_FixPt_operatorGE(const void* _self, const fmx::FixPt& that, fmx::_fmxcpt& _x);
void FM_FixPt_Increment(void* _self, fmx::int32 value, fmx::_fmxcpt& _x);
void FM_FixPt_Decrement(void* _self, fmx::int32 value, fmx::_fmxcpt& _x);
void FM_FixPt_Increment64(void* _self, fmx::int64 value, fmx::_fmxcpt& _x);
void FM_FixPt_Decrement64(void* _self, fmx::int64 value, fmx::_fmxcpt& _x);
void FM_FixPt_Negate(void* _self, fmx::_fmxcpt& _x);
int FM_FixPt_GetPrecision(const void* _self, fmx::_fmxcpt& _x);
void FM_FixPt_SetPrecision(void* _self, int precision, fmx::_fmxcpt& _x);
void FM_FixPt_Add(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x);
void FM_FixPt_Subtract(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x);
void FM_FixPt_Multiply(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x);
fmx::errcode FM_FixPt_Divide(const void* _self, const fmx::FixPt& arg, fmx::FixPt& result, fmx::_fmxcpt& _x);
bool FM_FixPt_AsBool(const void* _self, fmx::_fmxcpt& _x);
fmx::int32 FM_FixPt_AsLong(const void* _self, fmx::_fmxcpt& _x);
fmx::int64 FM_FixPt_AsLong64(const void* _self, fmx::_fmxcpt& _x);
double FM_FixPt_AsFloat(const void* _self, fmx::_fmxcpt& _x);
}

namespace fmx {

inline void FixPt::AssignInt(int32 value) {
    _fmxcpt _x;
    FM_FixPt_AssignInt(this, value, _x);
    _x.Check();
}
inline void FixPt::AssignInt64(int64 value) {
    _fmxcpt _x;
    FM_FixPt_AssignInt64(this, value, _x);
    _x.Check();
}
inline void FixPt::AssignDouble(double value) {
    _fmxcpt _x;
    FM_FixPt_AssignDouble(this, value, _x);
    _x.Check();
}
inline void FixPt::AssignFixPt(const FixPt& that) {
    _fmxcpt _x;
    FM_FixPt_AssignFixPt(this, that, _x);
    _x.Check();
}
inline bool FixPt::operator==(const FixPt& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool FixPt::operator!=(const FixPt& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool FixPt::operator<(const FixPt& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_operatorLT(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool FixPt::operator<=(const FixPt& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_operatorLE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool FixPt::operator>(const FixPt& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_operatorGT(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool FixPt::operator>=(const FixPt& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_operatorGE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline void FixPt::Increment(int32 value) {
    _fmxcpt _x;
    FM_FixPt_Increment(this, value, _x);
    _x.Check();
}
inline void FixPt::Decrement(int32 value) {
    _fmxcpt _x;
    FM_FixPt_Decrement(this, value, _x);
    _x.Check();
}
inline void FixPt::Increment64(int64 value) {
    _fmxcpt _x;
    FM_FixPt_Increment64(this, value, _x);
    _x.Check();
}
inline void FixPt::Decrement64(int64 value) {
    _fmxcpt _x;
    FM_FixPt_Decrement64(this, value, _x);
    _x.Check();
}
inline void FixPt::Negate() {
    _fmxcpt _x;
    FM_FixPt_Negate(this, _x);
    _x.Check();
}
inline int FixPt::GetPrecision() const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_GetPrecision(this, _x);
    _x.Check();
    return _rtn;
}
inline void FixPt::SetPrecision(int precision) {
    _fmxcpt _x;
    FM_FixPt_SetPrecision(this, precision, _x);
    _x.Check();
}
inline void FixPt::Add(const FixPt& arg, FixPt& result) const {
    _fmxcpt _x;
    FM_FixPt_Add(this, arg, result, _x);
    _x.Check();
}
inline void FixPt::Subtract(const FixPt& arg, FixPt& result) const {
    _fmxcpt _x;
    FM_FixPt_Subtract(this, arg, result, _x);
    _x.Check();
}
inline void FixPt::Multiply(const FixPt& arg, FixPt& result) const {
    _fmxcpt _x;
    FM_FixPt_Multiply(this, arg, result, _x);
    _x.Check();
}
inline errcode FixPt::Divide(const FixPt& arg, FixPt& result) const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_Divide(this, arg, result, _x);
    _x.Check();
    return _rtn;
}
inline bool FixPt::AsBool() const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_AsBool(this, _x);
    _x.Check();
    return _rtn;
}
inline int32 FixPt::AsLong() const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_AsLong(this, _x);
    _x.Check();
    return _rtn;
}
inline int64 FixPt::AsLong64() const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_AsLong64(this, _x);
    _x.Check();
    return _rtn;
}
inline double FixPt::AsFloat() const {
    _fmxcpt _x;
    const auto _rtn = FM_FixPt_AsFloat(this, _x);
    _x.Check();
    return _rtn;
}
inline void FixPt::operator delete(void* _self) {
    _fmxcpt _x;
    FM_FixPt_Delete(_self, _x);
}
inline FixPtUniquePtr::FixPtUniquePtr(int32 value, int precision) {
    _fmxcpt _x;
    reset(FM_FixPt_Constructor1(value, precision, _x));
    _x.Check();
}
inline FixPtUniquePtr::FixPtUniquePtr(int32 value, const FixPt& precisionExample) {
    _fmxcpt _x;
    reset(FM_FixPt_Constructor2(value, precisionExample, _x));
    _x.Check();
}

} // namespace fmx
