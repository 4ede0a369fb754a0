#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class Text;
class QuadChar;
class BinaryData : public Opaque {
public:
    const BinaryData& operator=(const BinaryData&);
    bool operator==(const BinaryData&) const;
    bool operator!=(const BinaryData&) const;
    int32 GetCount() const;
    uint32 GetSize(int32) const;
    bool Remove(const QuadChar&);
};

class BinaryDataUniquePtr : public std::unique_ptr<BinaryData> {
public:
    BinaryDataUniquePtr();
    BinaryDataUniquePtr(const BinaryData&);
    BinaryDataUniquePtr(const Text&, uint32, void*);
    BinaryDataUniquePtr(const Text&, uint32*);
};

} // namespace fmx
