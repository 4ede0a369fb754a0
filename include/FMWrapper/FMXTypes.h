#pragma once

/// Four-character codes and locales.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXClient.h"
#include "FMWrapper/FMXExtern.h"

#include <memory>

namespace fmx {

/// Four bytes that name a plug-in's creator or a stream's kind.
class QuadChar {
public:
    /// The byte at index 0 to 3. Any other index raises error 2.
    uchar operator[](int i);
    uchar operator[](int i) const;
    /// Comparisons use the bytes, beginning with the first.
    bool operator==(const QuadChar& that) const;
    bool operator!=(const QuadChar& that) const;
    bool operator<(const QuadChar& that) const;
    bool operator<=(const QuadChar& that) const;
    bool operator>(const QuadChar& that) const;
    bool operator>=(const QuadChar& that) const;
    const QuadChar& operator=(const QuadChar& that);
    /// The four bytes as one number, the first byte in the highest place.
    uint32 GetMacType() const;
    void SetMacType(uint32 macType);

    static void operator delete(void* _self);

private:
    friend class QuadCharUniquePtr;
    QuadChar();
    QuadChar(const QuadChar&);
};

/// The rules by which a value is read and compared.
class Locale {
public:
    enum Type {
        kType_None = 0,
        kType_System = 1,
        kType_UnicodeRaw = 2,
        kType_UnicodeStandard = 3,
        kType_CAT = 16,
        kType_HRV = 17,
        kType_CES = 18,
        kType_DAN = 19,
        kType_NLD = 20,
        kType_ENG = 21,
        kType_FIN = 22,
        kType_FIN_fmi = 23,
        kType_FRA = 24,
        kType_DEU = 25,
        kType_DEU_dictionary = 26,
        kType_ELL = 27,
        kType_HUN = 28,
        kType_ISL = 29,
        kType_ITA = 30,
        kType_JPN = 31,
        kType_NOR = 32,
        kType_POL = 33,
        kType_POR = 34,
        kType_RON = 35,
        kType_RUS = 36,
        kType_SLK = 37,
        kType_SLV = 38,
        kType_SPA = 39,
        kType_SPA_traditional = 40,
        kType_SWE = 41,
        kType_SWE_fmi = 42,
        kType_TUR = 43,
        kType_UKR = 44,
        kType_CHI = 45,
        kType_CHI_stroke = 46,
        kType_KOR = 76,
        kType_Invalid = 0xFFFF
    };

    const Locale& operator=(const Locale& that);

    static void operator delete(void* _self);

private:
    friend class LocaleUniquePtr;
    Locale();
    Locale(const Locale&);
};

/// Owns a QuadChar and gives it back to the host.
class QuadCharUniquePtr : public std::unique_ptr<QuadChar> {
public:
    QuadCharUniquePtr();
    QuadCharUniquePtr(char c0, char c1, char c2, char c3);
    explicit QuadCharUniquePtr(const QuadChar& that);
};

/// Owns a Locale and gives it back to the host.
class LocaleUniquePtr : public std::unique_ptr<Locale> {
public:
    explicit LocaleUniquePtr(Locale::Type type = Locale::kType_System);
    explicit LocaleUniquePtr(const Locale& that);
};

} // namespace fmx

extern "C" {

fmx::QuadChar* FM_QuadChar_Constructor1(fmx::_fmxcpt& _x);
fmx::QuadChar* FM_QuadChar_Constructor2(char c0, char c1, char c2, char c3, fmx::_fmxcpt& _x);
fmx::QuadChar* FM_QuadChar_Constructor3(const fmx::QuadChar& that, fmx::_fmxcpt& _x);
void FM_QuadChar_Delete(void* _self, fmx::_fmxcpt& _x);
fmx::uchar FM_QuadChar_operatorAR(void* _self, int i, fmx::_fmxcpt& _x);
fmx::uchar FM_QuadChar_operatorCAR(const void* _self, int i, fmx::_fmxcpt& _x);
bool FM_QuadChar_operatorEQ(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
bool FM_QuadChar_operatorNE(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
bool FM_QuadChar_operatorLT(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
bool FM_QuadChar_operatorLE(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
bool FM_QuadChar_operatorGT(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
bool FM_QuadChar_operatorGE(const void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
const fmx::QuadChar* FM_QuadChar_operatorAS(void* _self, const fmx::QuadChar& that, fmx::_fmxcpt& _x);
fmx::uint32 FM_QuadChar_GetMacType(const void* _self, fmx::_fmxcpt& _x);
void FM_QuadChar_SetMacType(void* _self, fmx::uint32 macType, fmx::_fmxcpt& _x);

fmx::Locale* FM_Locale_Constructor1(fmx::int32 type, fmx::_fmxcpt& _x);
fmx::Locale* FM_Locale_Constructor2(const fmx::Locale& that, fmx::_fmxcpt& _x);
void FM_Locale_Delete(void* _self, fmx::_fmxcpt& _x);
const fmx::Locale* FM_Locale_operatorAS(void* _self, const fmx::Locale& that, fmx::_fmxcpt& _x);
}

namespace fmx {

inline uchar QuadChar::operator[](int i) {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorAR(this, i, _x);
    _x.Check();
    return _rtn;
}
inline uchar QuadChar::operator[](int i) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorCAR(this, i, _x);
    _x.Check();
    return _rtn;
}
inline bool QuadChar::operator==(const QuadChar& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool QuadChar::operator!=(const QuadChar& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool QuadChar::operator<(const QuadChar& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorLT(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool QuadChar::operator<=(const QuadChar& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorLE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool QuadChar::operator>(const QuadChar& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorGT(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool QuadChar::operator>=(const QuadChar& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_operatorGE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline const QuadChar& QuadChar::operator=(const QuadChar& that) {
    _fmxcpt _x;
    FM_QuadChar_operatorAS(this, that, _x);
    _x.Check();
    return *this;
}
inline uint32 QuadChar::GetMacType() const {
    _fmxcpt _x;
    const auto _rtn = FM_QuadChar_GetMacType(this, _x);
    _x.Check();
    return _rtn;
}
inline void QuadChar::SetMacType(uint32 macType) {
    _fmxcpt _x;
    FM_QuadChar_SetMacType(this, macType, _x);
    _x.Check();
}
inline void QuadChar::operator delete(void* _self) {
    _fmxcpt _x;
    FM_QuadChar_Delete(_self, _x);
}
inline QuadCharUniquePtr::QuadCharUniquePtr() {
    _fmxcpt _x;
    reset(FM_QuadChar_Constructor1(_x));
    _x.Check();
}
inline QuadCharUniquePtr::QuadCharUniquePtr(char c0, char c1, char c2, char c3) {
    _fmxcpt _x;
    reset(FM_QuadChar_Constructor2(c0, c1, c2, c3, _x));
    _x.Check();
}
inline QuadCharUniquePtr::QuadCharUniquePtr(const QuadChar& that) {
    _fmxcpt _x;
    reset(FM_QuadChar_Constructor3(that, _x));
    _x.Check();
}

inline const Locale& Locale::operator=(const Locale& that) {
    _fmxcpt _x;
    FM_Locale_operatorAS(this, that, _x);
    _x.Check();
    return *this;
}
inline void Locale::operator delete(void* _self) {
    _fmxcpt _x;
    FM_Locale_Delete(_self, _x);
}
inline LocaleUniquePtr::LocaleUniquePtr(Locale::Type type) {
    _fmxcpt _x;
    reset(FM_Locale_Constructor1(static_cast<int32>(type), _x));
    _x.Check();
}
inline LocaleUniquePtr::LocaleUniquePtr(const Locale& that) {
    _fmxcpt _x;
    reset(FM_Locale_Constructor2(that, _x));
    _x.Check();
}

} // namespace fmx
