#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class QuadChar : public Opaque {
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
};

class Locale : public Opaque {
public:
    enum Type { kType_System = 1 };
    const Locale& operator=(const Locale&);
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
