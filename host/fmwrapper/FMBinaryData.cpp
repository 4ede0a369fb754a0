#include "FMWrapper/FMXBinaryData.h"

#include "host/calc/Engine.h"
#include "host/fmwrapper/Gate.h"
#include "host/fmwrapper/Versions.h"
#include "host/values/Binary.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

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
    return in<Binary>(self).at(static_cast<std::size_t>(index));
}

/// The error of a call with a stream's number, or with a stream that is missing.
int codeOf(bool isDone) { return isDone ? host::calc::error::none : host::calc::error::outOfRange; }

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
        data.addFile(bytesOf(buffer, amount));
        return data;
    });
}
fmx::BinaryData* FM_BinaryData_Constructor4(const fmx::Text& name, fmx::uint32* context, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_BinaryData_Constructor4">();
    return gate::construct<fmx::BinaryData, ObjectClass::binaryData>(_x, [&] {
        Binary data;
        data.setFileName(in<host::Text>(&name));
        if (context != nullptr) *context = data.begin(std::nullopt);
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
    return gate::number<fmx::int32>(_x, [&] { return in<Binary>(_self).count(); });
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
        const Binary& data = in<Binary>(_self);
        if (index < 0 || static_cast<std::size_t>(index) >= data.count())
            return host::calc::error::outOfRange;
        const auto& bytes = data.at(static_cast<std::size_t>(index)).bytes;
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
fmx::errcode FM_BinaryData_GetSIZEData(const void* _self, short& width, short& height, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_BinaryData_GetSIZEData">();
    return gate::code(_x, [&]() -> int {
        constexpr std::size_t sizeBytes = 4;
        const Binary& data = in<Binary>(_self);
        short* const results[] = {checked(&width), checked(&height)};
        const int index = data.indexOf(host::kSizeStream);
        if (index < 0 || streamAt(_self, index).bytes.size() != sizeBytes) return codeOf(false);
        const auto& bytes = streamAt(_self, index).bytes;
        for (std::size_t i = 0; i < std::size(results); ++i)
            *results[i] = static_cast<short>(std::to_integer<unsigned>(bytes[2 * i]) << 8U |
                                             std::to_integer<unsigned>(bytes[2 * i + 1]));
        return codeOf(true);
    });
}
fmx::errcode FM_BinaryData_AddSIZEData(void* _self, short width, short height, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_BinaryData_AddSIZEData">();
    return gate::code(_x, [&]() -> int {
        std::vector<std::byte> bytes;
        for (const short number : {width, height})
            for (const unsigned shift : {8U, 0U})
                bytes.push_back(static_cast<std::byte>(static_cast<unsigned short>(number) >> shift & 0xFFU));
        in<Binary>(_self).add(host::kSizeStream, bytes);
        return codeOf(true);
    });
}
fmx::errcode FM_BinaryData_AddBegin(void* _self, const fmx::QuadChar& dataType, fmx::uint32* context,
                                    fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_BinaryData_AddBegin">();
    return gate::code(_x, [&]() -> int {
        *checked(context) = in<Binary>(_self).begin(in<host::QuadChar>(&dataType));
        return codeOf(true);
    });
}
fmx::errcode FM_BinaryData_AddAppend(void* _self, fmx::uint32 context, fmx::uint32 amount, void* buffer,
                                     fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_BinaryData_AddAppend">();
    return gate::code(
        _x, [&]() -> int { return codeOf(in<Binary>(_self).append(context, bytesOf(buffer, amount))); });
}
fmx::errcode FM_BinaryData_AddFinish(void* _self, fmx::uint32 context, fmx::_fmxcpt& _x) {
    host::checkVersion<"FM_BinaryData_AddFinish">();
    return gate::code(_x, [&]() -> int { return codeOf(in<Binary>(_self).finish(context)); });
}

} // extern "C"
