#pragma once

#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/Bridge.h"

#include <utility>

namespace bench {

/// The plug-in in a session with one file, and the environment of all calls.
class Loaded : public host::LoadedPlugIn {
public:
    explicit Loaded(host::Solution solution = {})
        : host::LoadedPlugIn(KESTREL_PLUGIN_PATH, {std::move(solution)}),
          environment_(session().environment(session().front())) {}

    /// Calls the handler of a function directly: nothing but the handler takes time.
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
    host::calc::Environment environment_;
};

} // namespace bench
