#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"

#include <memory>

namespace fmx {

class Text;
class QuadChar;
class BinaryData {
public:
    const BinaryData& operator=(const BinaryData&);
    bool operator==(const BinaryData&) const;
    bool operator!=(const BinaryData&) const;
    int32 GetCount() const;
    int32 GetIndex(const QuadChar&) const;
    uint32 GetTotalSize() const;
    void GetType(int32, QuadChar&) const;
    uint32 GetSize(int32) const;
    errcode GetData(int32, uint32, uint32, void*) const;
    errcode Add(const QuadChar&, uint32, void*);
    bool Remove(const QuadChar&);
    void RemoveAll();
    errcode GetFNAMData(Text&) const;
    errcode AddFNAMData(const Text&);
    BinaryData() = delete;
    BinaryData(const BinaryData&) = delete;
    ~BinaryData() = default;
    static void operator delete(void*);
};

class BinaryDataUniquePtr : public std::unique_ptr<BinaryData> {
public:
    BinaryDataUniquePtr();
    BinaryDataUniquePtr(const BinaryData&);
    BinaryDataUniquePtr(const Text&, uint32, void*);
    BinaryDataUniquePtr(const Text&, uint32*);
};

} // namespace fmx
