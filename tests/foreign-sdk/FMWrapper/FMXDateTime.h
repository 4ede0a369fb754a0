#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class Text;
class FixPt;
class Locale;
class DateTime : public Opaque {
public:
    bool operator==(const DateTime&) const;
    bool operator!=(const DateTime&) const;
    void Now();
    void SetSecondsSinceEpoch(const FixPt&);
    void GetSecondsSinceEpoch(FixPt&) const;
};

class DateTimeUniquePtr : public std::unique_ptr<DateTime> {
public:
    DateTimeUniquePtr();
    DateTimeUniquePtr(const unichar16*, uint32, const Locale&);
    DateTimeUniquePtr(const Text&, const Locale&);
};

} // namespace fmx
