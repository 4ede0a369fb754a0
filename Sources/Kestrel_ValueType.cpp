#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/cFMUtils.h"

#include <bit>
#include <iterator>

namespace {

/// The names, in the order of the host's type codes.
constexpr const char* DataTypeNames[] = {"",     "Text",      "Number",    "Date",
                                         "Time", "Timestamp", "Container", "Boolean"};

/// The name of a type; empty for a type that a later host adds. The bits are compared, because the compiler
/// may assume that the enumeration has no other values.
const char* nameOf(fmx::Data::DataType type) {
    const auto code = std::bit_cast<fmx::uint32>(type);
    return code < std::size(DataTypeNames) ? DataTypeNames[code] : "";
}

} // namespace

FMX_PROC(fmx::errcode)
Kestrel_ValueType(short, const fmx::ExprEnv& env, const fmx::DataVect& parameters, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        const char* const name = parameters.Size() > 0 ? nameOf(parameters.At(0).GetNativeType()) : "";
        cFMUtils::FMResultFromString(name, result);
        return fmx::errcode{0};
    });
}
