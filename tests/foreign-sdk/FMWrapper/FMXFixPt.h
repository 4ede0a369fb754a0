#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class FixPt : public Opaque {
public:
    void AssignDouble(double);
    bool operator==(const FixPt&) const;
    bool operator!=(const FixPt&) const;
    bool operator<(const FixPt&) const;
    bool operator<=(const FixPt&) const;
    bool operator>(const FixPt&) const;
    bool operator>=(const FixPt&) const;
    double AsFloat() const;
};

class FixPtUniquePtr : public std::unique_ptr<FixPt> {
public:
    FixPtUniquePtr(int32 = 0, int = 16);
    FixPtUniquePtr(int32, const FixPt&);
};

} // namespace fmx
