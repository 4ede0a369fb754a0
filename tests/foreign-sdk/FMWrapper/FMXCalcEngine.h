#pragma once

// The same interface as another vendor might write it: declarations alone, and no include but those it needs.

#include "FMWrapper/FMXClient.h"
#include "FMWrapper/FMXData.h"

#include <memory>

namespace fmx {

class Text;
class FixPt;
class DateTime;
class BinaryData;
class Data;
class QuadChar;
class ExprEnv;
class DataVect;
FMX_PROCPTR(errcode, ExtPluginType)(short, const ExprEnv&, const DataVect&, Data&);
class DataVect {
public:
    uint32 Size() const;
    void Clear();
    bool IsEmpty() const;
    void PushBack(const Data&);
    Data* PopBack();
    const Data& At(uint32) const;
    const Text& AtAsText(uint32) const;
    const FixPt& AtAsNumber(uint32) const;
    const DateTime& AtAsDate(uint32) const;
    const DateTime& AtAsTime(uint32) const;
    const DateTime& AtAsTimeStamp(uint32) const;
    bool AtAsBoolean(uint32) const;
    const BinaryData& AtAsBinaryData(uint32) const;
    DataVect() = delete;
    DataVect(const DataVect&) = delete;
    void operator=(const DataVect&) = delete;
    ~DataVect() = default;
    static void operator delete(void*);
};

class RowVect {
public:
    uint32 Size() const;
    bool IsEmpty() const;
    const DataVect& At(uint32) const;
    RowVect() = delete;
    RowVect(const RowVect&) = delete;
    void operator=(const RowVect&) = delete;
    ~RowVect() = default;
    static void operator delete(void*);
};

class ExprEnv {
public:
    enum : uint32 { kMayEvaluateOnServer = 0x0001, kDisplayInAllDialogs = 0xFF00 };
    errcode Evaluate(const Text&, Data&) const;
    errcode ExecuteFileSQL(const Text&, const Text&, const DataVect&, RowVect&) const;
    ptrtype SessionID() const;
    ptrtype FileID() const;
    static errcode RegisterExternalFunction(const QuadChar&, short, const Text&, const Text&, short, short,
                                            uint32, ExtPluginType);
    static errcode UnRegisterExternalFunction(const QuadChar&, short);
    ExprEnv() = delete;
    ExprEnv(const ExprEnv&) = delete;
    void operator=(const ExprEnv&) = delete;
    ~ExprEnv() = default;
    static void operator delete(void*);
};

class DataVectUniquePtr : public std::unique_ptr<DataVect> {
public:
    DataVectUniquePtr();
};
class RowVectUniquePtr : public std::unique_ptr<RowVect> {
public:
    RowVectUniquePtr();
};
class ExprEnvUniquePtr : public std::unique_ptr<ExprEnv> {
public:
    ExprEnvUniquePtr();
};

} // namespace fmx
