#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class FixPt {
public:
    void AssignInt(int32);
    void AssignInt64(int64);
    void AssignDouble(double);
    void AssignFixPt(const FixPt&);
    bool operator==(const FixPt&) const;
    bool operator!=(const FixPt&) const;
    bool operator<(const FixPt&) const;
    bool operator<=(const FixPt&) const;
    bool operator>(const FixPt&) const;
    bool operator>=(const FixPt&) const;
    void Increment(int32);
    void Decrement(int32);
    void Increment64(int64);
    void Decrement64(int64);
    void Negate();
    int GetPrecision() const;
    void SetPrecision(int);
    void Add(const FixPt&, FixPt&) const;
    void Subtract(const FixPt&, FixPt&) const;
    void Multiply(const FixPt&, FixPt&) const;
    errcode Divide(const FixPt&, FixPt&) const;
    bool AsBool() const;
    int32 AsLong() const;
    int64 AsLong64() const;
    double AsFloat() const;
    FixPt() = delete;
    FixPt(const FixPt&) = delete;
    void operator=(const FixPt&) = delete;
    ~FixPt() = default;
    static void operator delete(void*);
};

class FixPtUniquePtr : public std::unique_ptr<FixPt> {
public:
    FixPtUniquePtr(int32 = 0, int = 16);
    FixPtUniquePtr(int32, const FixPt&);
};

} // namespace fmx
