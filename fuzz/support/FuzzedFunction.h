#pragma once

#include "EndOfDay.h"
#include "host/app/File.h"
#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Encoding.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// Checks a condition of a fuzzer, which reports an input that breaks it.
inline void require(bool holds) {
    if (!holds) std::abort();
}

/// A function of the loaded plug-in, called repeatedly. Any result is right, but no exception may leave it,
/// and it may keep no object after the call. A function that evaluates calculations may store globals; it may
/// keep no object after the plug-in's shutdown.
class FuzzedFunction {
public:
    enum class Evaluates : std::uint8_t { nothing, calculations };

    explicit FuzzedFunction(std::u16string_view name, Evaluates evaluates = Evaluates::nothing)
        : name_(name), isRestarted_(evaluates == Evaluates::calculations) {}

    [[nodiscard]] host::File& file() const { return *loaded_.session().front(); }
    [[nodiscard]] static host::DataRef value(host::Text text) {
        return std::make_shared<const host::Data>(std::move(text));
    }

    using Judge = std::function<void(fmx::errcode error, const host::Data& result)>;
    void call(const host::DataVect& arguments, const Judge& judge = {}) const {
        const host::ObjectCounts before = host::objectCounts();
        {
            host::Data result;
            const fmx::errcode error = loaded_.call(loaded_.function(name_), arguments, result);
            if (judge) judge(error, result);
        }
        file().fileVariables().clear();
        if (isRestarted_) {
            endDay(loaded_);
            loaded_.start();
        }
        require(host::objectCounts() == before && loaded_.plugIn().violations().empty());
    }

private:
    std::u16string name_;
    bool isRestarted_;
    mutable host::LoadedPlugIn loaded_{KESTREL_PLUGIN_PATH};
};
