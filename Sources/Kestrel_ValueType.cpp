#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "bridge/cFMUtils.h"

#include <bit>
#include <iterator>

namespace {

/// By the host's type code.
constexpr const char* DataTypeNames[] = {"",     "Text",      "Number",    "Date",
                                         "Time", "Timestamp", "Container", "Boolean"};

/// A type that the host gains some day is none of the enumeration's and has no name here yet. It is looked at
/// as bits: a compiler may take it that no other value occurs.
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
