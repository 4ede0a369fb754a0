#pragma once

#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"

#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

/// A plug-in in a session with one file.
class Loaded {
public:
    explicit Loaded(host::Solution solution = {}) {
        session_.open(std::move(solution));
        plugIn_.init();
        environment_ = session_.environment(session_.front());
    }

    [[nodiscard]] const host::RegisteredFunction& function(std::u16string_view name) const {
        for (const host::RegisteredFunction& candidate : functions())
            if (candidate.name == name) return candidate;
        throw std::runtime_error("a function is not registered");
    }
    [[nodiscard]] const std::vector<host::RegisteredFunction>& functions() const {
        return plugIn_.functions();
    }
    /// Calls a function directly, without a calculation.
    void call(const host::RegisteredFunction& function, const host::DataVect& arguments,
              host::Data& result) const {
        using host::bridge::out;
        function.handler(function.id, environment(), out<fmx::DataVect>(arguments), out<fmx::Data>(result));
    }
    /// The environment of calculations, as the plug-in's interface type.
    [[nodiscard]] const fmx::ExprEnv& environment() const {
        return host::bridge::out<fmx::ExprEnv>(environment_);
    }

private:
    host::Session session_;
    host::PlugIn plugIn_{session_, KESTREL_PLUGIN_PATH};
    host::calc::Environment environment_;
};

} // namespace bench
