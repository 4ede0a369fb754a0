#include "host/app/LoadedPlugIn.h"

#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace host {

namespace {

/// Files are open before the plug-in is loaded, as in the app.
Session& opened(Session& session, std::vector<Solution> solutions) {
    if (solutions.empty()) solutions.emplace_back();
    for (Solution& solution : solutions)
        session.open(std::move(solution));
    return session;
}

} // namespace

LoadedPlugIn::LoadedPlugIn(const std::filesystem::path& library, std::vector<Solution> solutions, Start start)
    : plugIn_(opened(session_, std::move(solutions)), library) {
    if (start == Start::now) this->start();
}

void LoadedPlugIn::start() {
    const std::int64_t answer = plugIn_.init();
    if (!plugIn_.isEnabled())
        throw std::runtime_error("the plug-in does not want to be enabled: it answered init with " +
                                 std::to_string(answer));
}

const RegisteredFunction& LoadedPlugIn::function(std::u16string_view name) const {
    const auto& functions = plugIn_.functions();
    const auto found = std::find_if(functions.begin(), functions.end(),
                                    [name](const RegisteredFunction& row) { return row.name == name; });
    if (found == functions.end()) throw std::runtime_error(toUtf8(name) + " is not registered");
    return *found;
}

fmx::errcode LoadedPlugIn::call(const RegisteredFunction& function, const DataVect& arguments, Data& result) {
    const calc::Environment environment = session_.environment(session_.front());
    return plugIn_.call(function, bridge::out<fmx::ExprEnv>(environment),
                        bridge::out<fmx::DataVect>(arguments), bridge::out<fmx::Data>(result));
}

} // namespace host
