#pragma once

#include "EndOfDay.h"
#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Encoding.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
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
        : name_(name), isRestarted_(evaluates == Evaluates::calculations) {
        session_.open(host::Solution{});
        start();
    }

    [[nodiscard]] host::File& file() const { return *session_.front(); }
    [[nodiscard]] static host::DataRef value(host::Text text) {
        return std::make_shared<const host::Data>(std::move(text));
    }

    using Judge = std::function<void(fmx::errcode error, const host::Data& result)>;
    void call(const host::DataVect& arguments, const Judge& judge = {}) const {
        using host::bridge::out;
        const host::ObjectCounts before = host::objectCounts();
        {
            const host::calc::Environment environment = session_.environment(session_.front());
            host::Data result;
            const fmx::errcode error = plugIn_.call(*function_, out<fmx::ExprEnv>(environment),
                                                    out<fmx::DataVect>(arguments), out<fmx::Data>(result));
            if (judge) judge(error, result);
        }
        file().fileVariables().clear();
        if (isRestarted_) {
            endDay(session_, plugIn_);
            start();
        }
        require(host::objectCounts() == before && plugIn_.violations().empty());
    }

private:
    void start() const {
        if (plugIn_.init() < 0) throw std::runtime_error("the plug-in does not start");
        function_ = nullptr;
        for (const host::RegisteredFunction& function : plugIn_.functions())
            if (function.name == name_) function_ = &function;
        if (function_ == nullptr) throw std::runtime_error("the function is not registered");
    }

    std::u16string name_;
    bool isRestarted_;
    mutable host::Session session_;
    mutable host::PlugIn plugIn_{session_, KESTREL_PLUGIN_PATH};
    mutable const host::RegisteredFunction* function_ = nullptr;
};
