#include "Handlers.h"
#include "bridge/HandlerFrame.h"
#include "platform/Platform.h"
#include "platform/Timestamp.h"

#include <stdexcept>

namespace {

constexpr int kPrecision = 16;

} // namespace

double getTimestamp() {
    double seconds = 0;
    if (!platform::readClock(seconds)) throw std::runtime_error("The platform's clock cannot be read");
    return seconds;
}

/// An argument is allowed and not read.
FMX_PROC(fmx::errcode)
Kestrel_GetTimestamp(short, const fmx::ExprEnv& env, const fmx::DataVect&, fmx::Data& result) {
    return kst::runHandler(env, result, [&] {
        const fmx::FixPtUniquePtr seconds(0, kPrecision);
        seconds->AssignDouble(getTimestamp());
        const fmx::DateTimeUniquePtr moment;
        moment->SetSecondsSinceEpoch(*seconds);
        result.SetAsTimeStamp(*moment, fmx::Data::kDTTimeStamp);
        return fmx::errcode{0};
    });
}
