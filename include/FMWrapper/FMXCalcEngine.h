#pragma once

/// The calculation engine: argument vectors, environments, external functions.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXData.h"

#include <memory>

namespace fmx {

class ExprEnv;
class DataVect;

/// A function's handler. The host calls it when a calculation evaluates the function. It throws nothing. It
/// returns 0, or an error code. With an error from kPluginErrResult1 to 8 the result is a text about it.
FMX_PROCPTR(errcode, ExtPluginType)(short functionId, const ExprEnv& env, const DataVect& dataVect,
                                    Data& result);

/// Values in order, from 0. A position out of range raises error 2.
class DataVect {
public:
    uint32 Size() const;
    void Clear();
    bool IsEmpty() const;
    /// Adds a copy.
    void PushBack(const Data& value);
    /// Removes the last value; the caller owns it and deletes it.
    Data* PopBack();
    /// References stay valid as long as neither the vector nor the value is changed.
    const Data& At(uint32 position) const;
    const Text& AtAsText(uint32 position) const;
    const FixPt& AtAsNumber(uint32 position) const;
    const DateTime& AtAsDate(uint32 position) const;
    const DateTime& AtAsTime(uint32 position) const;
    const DateTime& AtAsTimeStamp(uint32 position) const;
    bool AtAsBoolean(uint32 position) const;
    const BinaryData& AtAsBinaryData(uint32 position) const;

    static void operator delete(void* _self);

private:
    friend class DataVectUniquePtr;
    DataVect();
    DataVect(const DataVect&);
    DataVect& operator=(const DataVect&);
};

/// The rows of an SQL answer, from 0. A position out of range raises error 2.
class RowVect {
public:
    uint32 Size() const;
    bool IsEmpty() const;
    /// Valid as long as the rows are.
    const DataVect& At(uint32 position) const;

    static void operator delete(void* _self);

private:
    friend class RowVectUniquePtr;
    RowVect();
    RowVect(const RowVect&);
    RowVect& operator=(const RowVect&);
};

/// The context of an evaluation: session, file and variables of the caller.
class ExprEnv {
public:
    /// Compatibility flags.
    enum : uint32 { kMayEvaluateOnServer = 0x0001, kDisplayInAllDialogs = 0xFF00 };
    /// Forms of a system path.
    enum { kConvert_PosixPath = 1, kConvert_WinPath = 2, kConvert_URLPath = 3 };

    /// The evaluation's error code; `result` is set when it is 0.
    errcode Evaluate(const Text& expression, Data& result) const;
    /// An empty file name means the calling file.
    errcode ExecuteFileSQL(const Text& expression, const Text& filename, const DataVect& parameters,
                           RowVect& result) const;
    /// Hosts of version 56 and later, as is FileID.
    ptrtype SessionID() const;
    ptrtype FileID() const;
    /// Plug-ins call it between init and shutdown. `maxArgs` -1 means no limit.
    static errcode RegisterExternalFunction(const QuadChar& pluginId, short functionId,
                                            const Text& functionName, const Text& functionPrototype,
                                            short minArgs, short maxArgs, uint32 compatibleFlags,
                                            ExtPluginType funcPtr);
    /// The same with a description: "words for completion|sentence". Hosts of version 56 and later.
    static errcode RegisterExternalFunctionEx(const QuadChar& pluginId, short functionId,
                                              const Text& functionName, const Text& functionPrototype,
                                              const Text& functionDescription, short minArgs, short maxArgs,
                                              uint32 compatibleFlags, ExtPluginType funcPtr);
    static errcode UnRegisterExternalFunction(const QuadChar& pluginId, short functionId);
    /// Registers a step of scripts; `scriptStepDefinition` is XML with the root PluginStep. Both: hosts of
    /// version 57 and later.
    static errcode RegisterScriptStep(const QuadChar& pluginId, short scriptStepId,
                                      const Text& scriptStepName, const Text& scriptStepDefinition,
                                      const Text& scriptStepDescription, uint32 compatibleFlags,
                                      ExtPluginType funcPtr);
    static errcode UnRegisterScriptStep(const QuadChar& pluginId, short scriptStepId);
    /// As ExecuteFileSQL; the values of the answer become a text with these characters between columns and
    /// rows. Hosts of version 54 and later.
    errcode ExecuteFileSQLTextResult(const Text& expression, const Text& filename, const DataVect& parameters,
                                     Data& result, uint16 columnSeparator, uint16 rowSeparator) const;
    /// The value of a Get function by its number. Hosts of version 60 and later.
    errcode EvaluateGetFunction(short getFunctionId, Data& result) const;
    /// A system path of a form (kConvert_…) as a path of the host, and the other way round. Hosts of version
    /// 62 and later.
    errcode EvaluateConvertToFileMakerPath(const Text& inPath, int32 format, Text& outPath) const;
    errcode EvaluateConvertFromFileMakerPath(const Text& inPath, int32 format, Text& outPath) const;

    static void operator delete(void* _self);

private:
    friend class ExprEnvUniquePtr;
    ExprEnv();
    ExprEnv(const ExprEnv&);
    ExprEnv& operator=(const ExprEnv&);
};

/// Owns a DataVect and gives it back to the host.
class DataVectUniquePtr : public std::unique_ptr<DataVect> {
public:
    DataVectUniquePtr();
};

/// Owns a RowVect and gives it back to the host.
class RowVectUniquePtr : public std::unique_ptr<RowVect> {
public:
    RowVectUniquePtr();
};

/// Owns an ExprEnv and gives it back to the host.
class ExprEnvUniquePtr : public std::unique_ptr<ExprEnv> {
public:
    ExprEnvUniquePtr();
};

} // namespace fmx

extern "C" {

fmx::DataVect* FM_DataVect_Constructor1(fmx::_fmxcpt& _x);
void FM_DataVect_Delete(void* _self, fmx::_fmxcpt& _x);
fmx::uint32 FM_DataVect_Size(const void* _self, fmx::_fmxcpt& _x);
void FM_DataVect_Clear(void* _self, fmx::_fmxcpt& _x);
bool FM_DataVect_IsEmpty(const void* _self, fmx::_fmxcpt& _x);
void FM_DataVect_PushBack(void* _self, const fmx::Data& value, fmx::_fmxcpt& _x);
fmx::Data* FM_DataVect_PopBack(void* _self, fmx::_fmxcpt& _x);
const fmx::Data* FM_DataVect_At(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
const fmx::Text* FM_DataVect_AtAsText(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
const fmx::FixPt* FM_DataVect_AtAsNumber(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
const fmx::DateTime* FM_DataVect_AtAsDate(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
const fmx::DateTime* FM_DataVect_AtAsTime(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
const fmx::DateTime* FM_DataVect_AtAsTimeStamp(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
bool FM_DataVect_AtAsBoolean(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);
const fmx::BinaryData* FM_DataVect_AtAsBinaryData(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);

fmx::RowVect* FM_RowVect_Constructor1(fmx::_fmxcpt& _x);
void FM_RowVect_Delete(void* _self, fmx::_fmxcpt& _x);
fmx::uint32 FM_RowVect_Size(const void* _self, fmx::_fmxcpt& _x);
bool FM_RowVect_IsEmpty(const void* _self, fmx::_fmxcpt& _x);
const fmx::DataVect* FM_RowVect_At(const void* _self, fmx::uint32 position, fmx::_fmxcpt& _x);

fmx::ExprEnv* FM_ExprEnv_Constructor1(fmx::_fmxcpt& _x);
void FM_ExprEnv_Delete(void* _self, fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_Evaluate(const void* _self, const fmx::Text& expression, fmx::Data& result,
                                 fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_ExecuteFileSQL(const void* _self, const fmx::Text& expression,
                                       const fmx::Text& filename, const fmx::DataVect& parameters,
                                       fmx::RowVect& result, fmx::_fmxcpt& _x);
fmx::ptrtype FM_ExprEnv_SessionID(const void* _self, fmx::_fmxcpt& _x);
fmx::ptrtype FM_ExprEnv_FileID(const void* _self, fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                 const fmx::Text& functionName,
                                                 const fmx::Text& functionPrototype, short minArgs,
                                                 short maxArgs, fmx::uint32 compatibleFlags,
                                                 fmx::ExtPluginType funcPtr, fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_RegisterExternalFunctionEx(const fmx::QuadChar& pluginId, short functionId,
                                                   const fmx::Text& functionName,
                                                   const fmx::Text& functionPrototype,
                                                   const fmx::Text& functionDescription, short minArgs,
                                                   short maxArgs, fmx::uint32 compatibleFlags,
                                                   fmx::ExtPluginType funcPtr, fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar& pluginId, short functionId,
                                                   fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_RegisterScriptStep(const fmx::QuadChar& pluginId, short scriptStepId,
                                           const fmx::Text& scriptStepName,
                                           const fmx::Text& scriptStepDefinition,
                                           const fmx::Text& scriptStepDescription,
                                           fmx::uint32 compatibleFlags, fmx::ExtPluginType funcPtr,
                                           fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_UnRegisterScriptStep(const fmx::QuadChar& pluginId, short scriptStepId,
                                             fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_ExecuteFileSQLTextResult(const void* _self, const fmx::Text& expression,
                                                 const fmx::Text& filename, const fmx::DataVect& parameters,
                                                 fmx::Data& result, fmx::uint16 columnSeparator,
                                                 fmx::uint16 rowSeparator, fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_EvaluateGetFunction(const void* _self, short getFunctionId, fmx::Data& result,
                                            fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_EvaluateConvertToFileMakerPath(const void* _self, const fmx::Text& inPath,
                                                       fmx::int32 format, fmx::Text& outPath,
                                                       fmx::_fmxcpt& _x);
fmx::errcode FM_ExprEnv_EvaluateConvertFromFileMakerPath(const void* _self, const fmx::Text& inPath,
                                                         fmx::int32 format, fmx::Text& outPath,
                                                         fmx::_fmxcpt& _x);
}

namespace fmx {

inline uint32 DataVect::Size() const {
    _fmxcpt _x;
    const auto _rtn = FM_DataVect_Size(this, _x);
    _x.Check();
    return _rtn;
}
inline void DataVect::Clear() {
    _fmxcpt _x;
    FM_DataVect_Clear(this, _x);
    _x.Check();
}
inline bool DataVect::IsEmpty() const {
    _fmxcpt _x;
    const auto _rtn = FM_DataVect_IsEmpty(this, _x);
    _x.Check();
    return _rtn;
}
inline void DataVect::PushBack(const Data& value) {
    _fmxcpt _x;
    FM_DataVect_PushBack(this, value, _x);
    _x.Check();
}
inline Data* DataVect::PopBack() {
    _fmxcpt _x;
    auto* _rtn = FM_DataVect_PopBack(this, _x);
    _x.Check();
    return _rtn;
}
inline const Data& DataVect::At(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_At(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline const Text& DataVect::AtAsText(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_AtAsText(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline const FixPt& DataVect::AtAsNumber(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_AtAsNumber(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline const DateTime& DataVect::AtAsDate(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_AtAsDate(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline const DateTime& DataVect::AtAsTime(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_AtAsTime(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline const DateTime& DataVect::AtAsTimeStamp(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_AtAsTimeStamp(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline bool DataVect::AtAsBoolean(uint32 position) const {
    _fmxcpt _x;
    const auto _rtn = FM_DataVect_AtAsBoolean(this, position, _x);
    _x.Check();
    return _rtn;
}
inline const BinaryData& DataVect::AtAsBinaryData(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_DataVect_AtAsBinaryData(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline void DataVect::operator delete(void* _self) {
    _fmxcpt _x;
    FM_DataVect_Delete(_self, _x);
}
inline DataVectUniquePtr::DataVectUniquePtr() {
    _fmxcpt _x;
    reset(FM_DataVect_Constructor1(_x));
    _x.Check();
}

inline uint32 RowVect::Size() const {
    _fmxcpt _x;
    const auto _rtn = FM_RowVect_Size(this, _x);
    _x.Check();
    return _rtn;
}
inline bool RowVect::IsEmpty() const {
    _fmxcpt _x;
    const auto _rtn = FM_RowVect_IsEmpty(this, _x);
    _x.Check();
    return _rtn;
}
inline const DataVect& RowVect::At(uint32 position) const {
    _fmxcpt _x;
    const auto* _rtn = FM_RowVect_At(this, position, _x);
    _x.Check();
    return *_rtn;
}
inline void RowVect::operator delete(void* _self) {
    _fmxcpt _x;
    FM_RowVect_Delete(_self, _x);
}
inline RowVectUniquePtr::RowVectUniquePtr() {
    _fmxcpt _x;
    reset(FM_RowVect_Constructor1(_x));
    _x.Check();
}

inline errcode ExprEnv::Evaluate(const Text& expression, Data& result) const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_Evaluate(this, expression, result, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::ExecuteFileSQL(const Text& expression, const Text& filename,
                                       const DataVect& parameters, RowVect& result) const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_ExecuteFileSQL(this, expression, filename, parameters, result, _x);
    _x.Check();
    return _rtn;
}
inline ptrtype ExprEnv::SessionID() const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_SessionID(this, _x);
    _x.Check();
    return _rtn;
}
inline ptrtype ExprEnv::FileID() const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_FileID(this, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::RegisterExternalFunction(const QuadChar& pluginId, short functionId,
                                                 const Text& functionName, const Text& functionPrototype,
                                                 short minArgs, short maxArgs, uint32 compatibleFlags,
                                                 ExtPluginType funcPtr) {
    _fmxcpt _x;
    const auto _rtn =
        FM_ExprEnv_RegisterExternalFunction(pluginId, functionId, functionName, functionPrototype, minArgs,
                                            maxArgs, compatibleFlags, funcPtr, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::RegisterExternalFunctionEx(const QuadChar& pluginId, short functionId,
                                                   const Text& functionName, const Text& functionPrototype,
                                                   const Text& functionDescription, short minArgs,
                                                   short maxArgs, uint32 compatibleFlags,
                                                   ExtPluginType funcPtr) {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_RegisterExternalFunctionEx(pluginId, functionId, functionName,
                                                            functionPrototype, functionDescription, minArgs,
                                                            maxArgs, compatibleFlags, funcPtr, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::RegisterScriptStep(const QuadChar& pluginId, short scriptStepId,
                                           const Text& scriptStepName, const Text& scriptStepDefinition,
                                           const Text& scriptStepDescription, uint32 compatibleFlags,
                                           ExtPluginType funcPtr) {
    _fmxcpt _x;
    const auto _rtn =
        FM_ExprEnv_RegisterScriptStep(pluginId, scriptStepId, scriptStepName, scriptStepDefinition,
                                      scriptStepDescription, compatibleFlags, funcPtr, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::UnRegisterScriptStep(const QuadChar& pluginId, short scriptStepId) {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_UnRegisterScriptStep(pluginId, scriptStepId, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::ExecuteFileSQLTextResult(const Text& expression, const Text& filename,
                                                 const DataVect& parameters, Data& result,
                                                 uint16 columnSeparator, uint16 rowSeparator) const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_ExecuteFileSQLTextResult(this, expression, filename, parameters, result,
                                                          columnSeparator, rowSeparator, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::EvaluateGetFunction(short getFunctionId, Data& result) const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_EvaluateGetFunction(this, getFunctionId, result, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::EvaluateConvertToFileMakerPath(const Text& inPath, int32 format,
                                                       Text& outPath) const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_EvaluateConvertToFileMakerPath(this, inPath, format, outPath, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::EvaluateConvertFromFileMakerPath(const Text& inPath, int32 format,
                                                         Text& outPath) const {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_EvaluateConvertFromFileMakerPath(this, inPath, format, outPath, _x);
    _x.Check();
    return _rtn;
}
inline errcode ExprEnv::UnRegisterExternalFunction(const QuadChar& pluginId, short functionId) {
    _fmxcpt _x;
    const auto _rtn = FM_ExprEnv_UnRegisterExternalFunction(pluginId, functionId, _x);
    _x.Check();
    return _rtn;
}
inline void ExprEnv::operator delete(void* _self) {
    _fmxcpt _x;
    FM_ExprEnv_Delete(_self, _x);
}
inline ExprEnvUniquePtr::ExprEnvUniquePtr() {
    _fmxcpt _x;
    reset(FM_ExprEnv_Constructor1(_x));
    _x.Check();
}

} // namespace fmx
