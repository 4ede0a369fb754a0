#include "FMWrapper/FMXBinaryData.h"

#include "host/calc/Engine.h"
#include "host/fmwrapper/Gate.h"
#include "host/values/Binary.h"

#include <cstddef>
#include <cstring>
#include <span>

using host::Binary;
using host::ObjectClass;
using host::bridge::checked;
using host::bridge::in;
namespace gate = host::gate;

namespace {

std::span<const std::byte> bytesOf(const void* buffer, fmx::uint32 amount) {
    if (amount == 0) return {};
    return {static_cast<const std::byte*>(checked(buffer)), amount};
}

const Binary::Stream& streamAt(const void* self, fmx::int32 index) {
    return in<Binary>(self).streams().at(static_cast<std::size_t>(index));
}

} // namespace

extern "C" {

fmx::BinaryData* FM_BinaryData_Constructor1(fmx::_fmxcpt& _x) {
    return gate::construct<fmx::BinaryData, ObjectClass::binaryData>(_x, [&] { return Binary{}; });
}
fmx::BinaryData* FM_BinaryData_Constructor2(const fmx::BinaryData& that, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::BinaryData, ObjectClass::binaryData>(
        _x, [&] { return Binary(in<Binary>(&that)); });
}
fmx::BinaryData* FM_BinaryData_Constructor3(const fmx::Text& name, fmx::uint32 amount, void* buffer,
                                            fmx::_fmxcpt& _x) {
    return gate::construct<fmx::BinaryData, ObjectClass::binaryData>(_x, [&] {
        Binary data;
        data.setFileName(in<host::Text>(&name));
        data.add(host::kFileStream, bytesOf(buffer, amount));
        return data;
    });
}
fmx::BinaryData* FM_BinaryData_Constructor4(const fmx::Text& name, fmx::uint32* context, fmx::_fmxcpt& _x) {
    return gate::construct<fmx::BinaryData, ObjectClass::binaryData>(_x, [&] {
        static_cast<void>(context);
        Binary data;
        data.setFileName(in<host::Text>(&name));
        return data;
    });
}
void FM_BinaryData_Delete(void* _self, fmx::_fmxcpt& _x) {
    gate::destroy<Binary, ObjectClass::binaryData>(_self, _x);
}
const fmx::BinaryData* FM_BinaryData_operatorAS(void* _self, const fmx::BinaryData& that, fmx::_fmxcpt& _x) {
    return gate::assign<Binary>(_x, _self, that);
}
bool FM_BinaryData_operatorEQ(const void* _self, const fmx::BinaryData& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Binary>(_self) == in<Binary>(&that); });
}
bool FM_BinaryData_operatorNE(const void* _self, const fmx::BinaryData& that, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Binary>(_self) != in<Binary>(&that); });
}
fmx::int32 FM_BinaryData_GetCount(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::int32>(_x, [&] { return in<Binary>(_self).streams().size(); });
}
fmx::int32 FM_BinaryData_GetIndex(const void* _self, const fmx::QuadChar& dataType, fmx::_fmxcpt& _x) {
    return gate::call(_x, -1, [&] {
        return static_cast<fmx::int32>(in<Binary>(_self).indexOf(in<host::QuadChar>(&dataType)));
    });
}
fmx::uint32 FM_BinaryData_GetTotalSize(const void* _self, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uint32>(_x, [&] { return in<Binary>(_self).totalSize(); });
}
void FM_BinaryData_GetType(const void* _self, fmx::int32 index, fmx::QuadChar& dataType, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<host::QuadChar>(&dataType) = streamAt(_self, index).type; });
}
fmx::uint32 FM_BinaryData_GetSize(const void* _self, fmx::int32 index, fmx::_fmxcpt& _x) {
    return gate::number<fmx::uint32>(_x, [&] { return streamAt(_self, index).bytes.size(); });
}
fmx::errcode FM_BinaryData_GetData(const void* _self, fmx::int32 index, fmx::uint32 offset,
                                   fmx::uint32 amount, void* buffer, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        const auto& streams = in<Binary>(_self).streams();
        if (index < 0 || static_cast<std::size_t>(index) >= streams.size())
            return host::calc::error::outOfRange;
        const auto& bytes = streams[static_cast<std::size_t>(index)].bytes;
        if (offset > bytes.size() || amount > bytes.size() - offset) return host::calc::error::outOfRange;
        if (amount > 0) std::memcpy(checked(buffer), bytes.data() + offset, amount);
        return 0;
    });
}
fmx::errcode FM_BinaryData_Add(void* _self, const fmx::QuadChar& dataType, fmx::uint32 amount, void* buffer,
                               fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        in<Binary>(_self).add(in<host::QuadChar>(&dataType), bytesOf(buffer, amount));
        return 0;
    });
}
bool FM_BinaryData_Remove(void* _self, const fmx::QuadChar& dataType, fmx::_fmxcpt& _x) {
    return gate::call(_x, false, [&] { return in<Binary>(_self).remove(in<host::QuadChar>(&dataType)); });
}
void FM_BinaryData_RemoveAll(void* _self, fmx::_fmxcpt& _x) {
    gate::call(_x, [&] { in<Binary>(_self).clear(); });
}
fmx::errcode FM_BinaryData_GetFNAMData(const void* _self, fmx::Text& filename, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        in<host::Text>(&filename) = in<Binary>(_self).fileName();
        return 0;
    });
}
fmx::errcode FM_BinaryData_AddFNAMData(void* _self, const fmx::Text& filename, fmx::_fmxcpt& _x) {
    return gate::code(_x, [&]() -> int {
        in<Binary>(_self).setFileName(in<host::Text>(&filename));
        return 0;
    });
}

} // extern "C"
