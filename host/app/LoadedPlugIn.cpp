#include "host/app/LoadedPlugIn.h"

#include "host/fmwrapper/Bridge.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace host {

LoadedPlugIn::LoadedPlugIn(const std::vector<std::filesystem::path>& libraries,
                           std::vector<Solution> solutions, Start start, const Announcement& announcement)
    : announcement_(announcement) {
    // Files are open before the plug-ins are loaded, as in the app.
    if (solutions.empty()) solutions.emplace_back();
    for (Solution& solution : solutions)
        session_.open(std::move(solution));
    for (const std::filesystem::path& library : libraries)
        plugIns_.push_back(std::make_unique<PlugIn>(session_, library));
    if (start == Start::now) this->start();
}

LoadedPlugIn::~LoadedPlugIn() {
    session_.end();
    while (!plugIns_.empty())
        plugIns_.pop_back();
}

void LoadedPlugIn::start() {
    for (const auto& plugIn : plugIns_) {
        plugIn->init(announcement_.version, announcement_.application);
        if (plugIn->isEnabled()) continue;
        std::string words = plugIn->path().string() + ": " + plugIn->refusal();
        for (const std::string& refused : refusedRegistrations(*plugIn))
            words += "; " + refused;
        throw std::runtime_error(words);
    }
    session_.requireSteps();
}

const RegisteredFunction* LoadedPlugIn::findFunction(std::u16string_view name) const {
    for (const auto& plugIn : plugIns_)
        for (const RegisteredFunction& function : plugIn->functions())
            if (function.name == name) return &function;
    return nullptr;
}

const PlugIn* LoadedPlugIn::ownerOf(const QuadChar& creator) const {
    const auto isOwn = [&](const auto& plugIn) {
        return (!plugIn->functions().empty() && plugIn->functions().front().creator == creator) ||
               (!plugIn->steps().empty() && plugIn->steps().front()->creator == creator);
    };
    const auto found = std::ranges::find_if(plugIns_, isOwn);
    return found == plugIns_.end() ? nullptr : found->get();
}

const RegisteredFunction& LoadedPlugIn::function(std::u16string_view name) const {
    const RegisteredFunction* found = findFunction(name);
    if (found == nullptr) throw std::runtime_error(toUtf8(name) + " is not registered");
    return *found;
}

fmx::errcode LoadedPlugIn::call(const RegisteredFunction& function, const DataVect& arguments, Data& result) {
    const calc::Environment environment = session_.environment(session_.front());
    return plugIn().call(function, bridge::out<fmx::ExprEnv>(environment),
                         bridge::out<fmx::DataVect>(arguments), bridge::out<fmx::Data>(result));
}

std::vector<std::string> refusedRegistrations(const PlugIn& plugIn) {
    std::vector<std::string> sentences;
    for (const PlugIn::RefusedRegistration& refused : plugIn.refusedRegistrations())
        sentences.push_back("the host refused to register " + std::to_string(refused.id) + " \"" +
                            toUtf8(refused.name) + "\": " + refused.reason);
    return sentences;
}

} // namespace host
