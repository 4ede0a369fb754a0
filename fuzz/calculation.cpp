#include "host/app/File.h"
#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Encoding.h"
#include "support/EndOfDay.h"
#include "support/InputTime.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// Evaluates any text as a calculation, with the plug-in loaded. The first byte chooses a host call that
/// fails. Any result is right, but no exception may leave the plug-in, the next ordinary call must work, and
/// no object may be left after the plug-in's shutdown.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static host::LoadedPlugIn loaded(KESTREL_PLUGIN_PATH, {}, host::LoadedPlugIn::Start::later);
    host::Session& session = loaded.session();
    if (size == 0) return 0;

    const host::ObjectCounts before = host::objectCounts();
    loaded.start();
    constexpr std::uint8_t fromThenOn = 0x80, badAlloc = 0x40, place = 0x3F;
    if ((data[0] & place) != 0)
        host::faults().arm(data[0] & place,
                           (data[0] & badAlloc) != 0 ? host::Faults::Kind::badAlloc
                                                     : host::Faults::Kind::unknown,
                           (data[0] & fromThenOn) != 0);
    const InputTime time;
    session.evaluate(host::fromUtf8({reinterpret_cast<const char*>(data + 1), size - 1}));
    host::faults().disarm();

    if (session.evaluate(u"Kestrel_Version").value->asText().units() != u"3.1") std::abort();
    endDay(loaded);
    if (!(host::objectCounts() == before) || !loaded.plugIn().violations().empty()) std::abort();
    return time.answer();
}
