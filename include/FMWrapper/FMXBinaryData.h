#pragma once

/// A container's value: named streams of bytes.
/// Objects live in the host. Code of a plug-in may use them while it handles a message or a function call, on
/// the host's thread. The code that constructs an object owns it; its owner class gives it back. A failing
/// call throws (see FMXClient.h).

#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTypes.h"

#include <memory>

namespace fmx {

/// Streams count from 0. A buffer is read or written during the call alone.
class BinaryData {
public:
    const BinaryData& operator=(const BinaryData& that);
    bool operator==(const BinaryData& that) const;
    bool operator!=(const BinaryData& that) const;
    int32 GetCount() const;
    /// -1 when there is no stream of that kind.
    int32 GetIndex(const QuadChar& dataType) const;
    /// Sizes are in bytes.
    uint32 GetTotalSize() const;
    /// An index out of range raises error 2, here and in GetSize.
    void GetType(int32 index, QuadChar& dataType) const;
    uint32 GetSize(int32 index) const;
    /// The result is not 0 when the range does not lie within the stream.
    errcode GetData(int32 index, uint32 offset, uint32 amount, void* buffer) const;
    /// Copies `amount` bytes; replaces a stream of the same kind.
    errcode Add(const QuadChar& dataType, uint32 amount, void* buffer);
    /// Returns false when there was no stream of that kind.
    bool Remove(const QuadChar& dataType);
    void RemoveAll();
    /// The file name, in the stream "FNAM".
    errcode GetFNAMData(Text& filename) const;
    errcode AddFNAMData(const Text& filename);
    /// A picture's size in pixels, in the stream "SIZE". Hosts of version 51 and later.
    errcode GetSIZEData(short& width, short& height) const;
    errcode AddSIZEData(short width, short height);
    /// A stream in pieces: begin gives a context, finish adds the stream. Hosts of version 54 and later.
    errcode AddBegin(const QuadChar& dataType, uint32* context);
    errcode AddAppend(uint32 context, uint32 amount, void* buffer);
    errcode AddFinish(uint32 context);

    static void operator delete(void* _self);

private:
    friend class BinaryDataUniquePtr;
    BinaryData();
    BinaryData(const BinaryData&);
};

/// Owns a BinaryData and gives it back to the host.
class BinaryDataUniquePtr : public std::unique_ptr<BinaryData> {
public:
    BinaryDataUniquePtr();
    explicit BinaryDataUniquePtr(const BinaryData& that);
    /// A file. Its bytes say what kind the stream is: "PNGf", "JPEG", "GIFf", "PDF " or else "FILE".
    BinaryDataUniquePtr(const Text& name, uint32 amount, void* buffer);
    /// Begins a file whose bytes come in pieces; with a null context the name alone.
    BinaryDataUniquePtr(const Text& name, uint32* context);
};

} // namespace fmx

extern "C" {

fmx::BinaryData* FM_BinaryData_Constructor1(fmx::_fmxcpt& _x);
fmx::BinaryData* FM_BinaryData_Constructor2(const fmx::BinaryData& that, fmx::_fmxcpt& _x);
fmx::BinaryData* FM_BinaryData_Constructor3(const fmx::Text& name, fmx::uint32 amount, void* buffer,
                                            fmx::_fmxcpt& _x);
fmx::BinaryData* FM_BinaryData_Constructor4(const fmx::Text& name, fmx::uint32* context, fmx::_fmxcpt& _x);
void FM_BinaryData_Delete(void* _self, fmx::_fmxcpt& _x);
const fmx::BinaryData* FM_BinaryData_operatorAS(void* _self, const fmx::BinaryData& that, fmx::_fmxcpt& _x);
bool FM_BinaryData_operatorEQ(const void* _self, const fmx::BinaryData& that, fmx::_fmxcpt& _x);
bool FM_BinaryData_operatorNE(const void* _self, const fmx::BinaryData& that, fmx::_fmxcpt& _x);
fmx::int32 FM_BinaryData_GetCount(const void* _self, fmx::_fmxcpt& _x);
fmx::int32 FM_BinaryData_GetIndex(const void* _self, const fmx::QuadChar& dataType, fmx::_fmxcpt& _x);
fmx::uint32 FM_BinaryData_GetTotalSize(const void* _self, fmx::_fmxcpt& _x);
void FM_BinaryData_GetType(const void* _self, fmx::int32 index, fmx::QuadChar& dataType, fmx::_fmxcpt& _x);
fmx::uint32 FM_BinaryData_GetSize(const void* _self, fmx::int32 index, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_GetData(const void* _self, fmx::int32 index, fmx::uint32 offset,
                                   fmx::uint32 amount, void* buffer, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_Add(void* _self, const fmx::QuadChar& dataType, fmx::uint32 amount, void* buffer,
                               fmx::_fmxcpt& _x);
bool FM_BinaryData_Remove(void* _self, const fmx::QuadChar& dataType, fmx::_fmxcpt& _x);
void FM_BinaryData_RemoveAll(void* _self, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_GetFNAMData(const void* _self, fmx::Text& filename, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_AddFNAMData(void* _self, const fmx::Text& filename, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_GetSIZEData(const void* _self, short& width, short& height, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_AddSIZEData(void* _self, short width, short height, fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_AddBegin(void* _self, const fmx::QuadChar& dataType, fmx::uint32* context,
                                    fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_AddAppend(void* _self, fmx::uint32 context, fmx::uint32 amount, void* buffer,
                                     fmx::_fmxcpt& _x);
fmx::errcode FM_BinaryData_AddFinish(void* _self, fmx::uint32 context, fmx::_fmxcpt& _x);
}

namespace fmx {

inline const BinaryData& BinaryData::operator=(const BinaryData& that) {
    _fmxcpt _x;
    FM_BinaryData_operatorAS(this, that, _x);
    _x.Check();
    return *this;
}
inline bool BinaryData::operator==(const BinaryData& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_operatorEQ(this, that, _x);
    _x.Check();
    return _rtn;
}
inline bool BinaryData::operator!=(const BinaryData& that) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_operatorNE(this, that, _x);
    _x.Check();
    return _rtn;
}
inline int32 BinaryData::GetCount() const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetCount(this, _x);
    _x.Check();
    return _rtn;
}
inline int32 BinaryData::GetIndex(const QuadChar& dataType) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetIndex(this, dataType, _x);
    _x.Check();
    return _rtn;
}
inline uint32 BinaryData::GetTotalSize() const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetTotalSize(this, _x);
    _x.Check();
    return _rtn;
}
inline void BinaryData::GetType(int32 index, QuadChar& dataType) const {
    _fmxcpt _x;
    FM_BinaryData_GetType(this, index, dataType, _x);
    _x.Check();
}
inline uint32 BinaryData::GetSize(int32 index) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetSize(this, index, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::GetData(int32 index, uint32 offset, uint32 amount, void* buffer) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetData(this, index, offset, amount, buffer, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::Add(const QuadChar& dataType, uint32 amount, void* buffer) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_Add(this, dataType, amount, buffer, _x);
    _x.Check();
    return _rtn;
}
inline bool BinaryData::Remove(const QuadChar& dataType) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_Remove(this, dataType, _x);
    _x.Check();
    return _rtn;
}
inline void BinaryData::RemoveAll() {
    _fmxcpt _x;
    FM_BinaryData_RemoveAll(this, _x);
    _x.Check();
}
inline errcode BinaryData::GetFNAMData(Text& filename) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetFNAMData(this, filename, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::AddFNAMData(const Text& filename) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_AddFNAMData(this, filename, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::GetSIZEData(short& width, short& height) const {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_GetSIZEData(this, width, height, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::AddSIZEData(short width, short height) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_AddSIZEData(this, width, height, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::AddBegin(const QuadChar& dataType, uint32* context) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_AddBegin(this, dataType, context, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::AddAppend(uint32 context, uint32 amount, void* buffer) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_AddAppend(this, context, amount, buffer, _x);
    _x.Check();
    return _rtn;
}
inline errcode BinaryData::AddFinish(uint32 context) {
    _fmxcpt _x;
    const auto _rtn = FM_BinaryData_AddFinish(this, context, _x);
    _x.Check();
    return _rtn;
}
inline void BinaryData::operator delete(void* _self) {
    _fmxcpt _x;
    FM_BinaryData_Delete(_self, _x);
}
inline BinaryDataUniquePtr::BinaryDataUniquePtr() {
    _fmxcpt _x;
    reset(FM_BinaryData_Constructor1(_x));
    _x.Check();
}
inline BinaryDataUniquePtr::BinaryDataUniquePtr(const BinaryData& that) {
    _fmxcpt _x;
    reset(FM_BinaryData_Constructor2(that, _x));
    _x.Check();
}
inline BinaryDataUniquePtr::BinaryDataUniquePtr(const Text& name, uint32 amount, void* buffer) {
    _fmxcpt _x;
    reset(FM_BinaryData_Constructor3(name, amount, buffer, _x));
    _x.Check();
}
inline BinaryDataUniquePtr::BinaryDataUniquePtr(const Text& name, uint32* context) {
    _fmxcpt _x;
    reset(FM_BinaryData_Constructor4(name, context, _x));
    _x.Check();
}

} // namespace fmx
