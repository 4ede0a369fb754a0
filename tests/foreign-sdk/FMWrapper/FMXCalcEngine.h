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
class DataVect : public Opaque {
public:
    uint32 Size() const;
    bool IsEmpty() const;
    void PushBack(const Data&);
    const Data& At(uint32) const;
    const Text& AtAsText(uint32) const;
    const FixPt& AtAsNumber(uint32) const;
};

class RowVect : public Opaque {
public:
    uint32 Size() const;
    bool IsEmpty() const;
    const DataVect& At(uint32) const;
};

class ExprEnv : public Opaque {
public:
    errcode Evaluate(const Text&, Data&) const;
    errcode ExecuteFileSQL(const Text&, const Text&, const DataVect&, RowVect&) const;
    ptrtype SessionID() const;
    static errcode RegisterExternalFunction(const QuadChar&, short, const Text&, const Text&, short, short,
                                            uint32, ExtPluginType);
    static errcode UnRegisterExternalFunction(const QuadChar&, short);
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
