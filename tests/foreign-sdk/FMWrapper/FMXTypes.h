#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class QuadChar {
public:
    uchar operator[](int);
    uchar operator[](int) const;
    bool operator==(const QuadChar&) const;
    bool operator!=(const QuadChar&) const;
    bool operator<(const QuadChar&) const;
    bool operator<=(const QuadChar&) const;
    bool operator>(const QuadChar&) const;
    bool operator>=(const QuadChar&) const;
    const QuadChar& operator=(const QuadChar&);
    uint32 GetMacType() const;
    void SetMacType(uint32);
    QuadChar() = delete;
    QuadChar(const QuadChar&) = delete;
    ~QuadChar() = default;
    static void operator delete(void*);
};

class Locale {
public:
    enum Type {
        kType_None = 0,
        kType_System = 1,
        kType_UnicodeRaw = 2,
        kType_UnicodeStandard = 3,
        kType_ENG = 21,
        kType_Invalid = 0xFFFF
    };
    const Locale& operator=(const Locale&);
    Locale() = delete;
    Locale(const Locale&) = delete;
    ~Locale() = default;
    static void operator delete(void*);
};

class QuadCharUniquePtr : public std::unique_ptr<QuadChar> {
public:
    QuadCharUniquePtr();
    QuadCharUniquePtr(char, char, char, char);
    QuadCharUniquePtr(const QuadChar&);
};
class LocaleUniquePtr : public std::unique_ptr<Locale> {
public:
    LocaleUniquePtr(Locale::Type = Locale::kType_System);
    LocaleUniquePtr(const Locale&);
};

} // namespace fmx
