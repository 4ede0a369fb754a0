#pragma once

#include "host/app/PlugIn.h"
#include "host/app/Session.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace host {

/// A session with open files and a plug-in in it: where commands, checks, benchmarks, fuzzers and tests
/// begin. A process has one at a time.
class LoadedPlugIn {
public:
    enum class Start : bool { now, later };

    /// Opens the solutions (the first one calculates; without any, an empty file named Untitled), loads the
    /// library and, unless that is left for later, enables the plug-in. Throws std::runtime_error where a
    /// solution cannot be opened, the library cannot be loaded or the plug-in refuses.
    explicit LoadedPlugIn(const std::filesystem::path& library, std::vector<Solution> solutions = {},
                          Start start = Start::now);
    /// Closes the files and ends the session while the plug-in can still be told, then unloads it.
    ~LoadedPlugIn() { session_.end(); }
    LoadedPlugIn(const LoadedPlugIn&) = delete;
    LoadedPlugIn& operator=(const LoadedPlugIn&) = delete;

    /// Sends init; throws std::runtime_error when the plug-in does not want to be enabled.
    void start();

    [[nodiscard]] Session& session() { return session_; }
    [[nodiscard]] PlugIn& plugIn() { return plugIn_; }
    [[nodiscard]] const std::vector<RegisteredFunction>& functions() const { return plugIn_.functions(); }
    /// A function that the plug-in has registered; throws std::runtime_error when there is none of this name.
    [[nodiscard]] const RegisteredFunction& function(std::u16string_view name) const;
    /// Calls a function in the front file, without a calculation, as PlugIn::call does.
    fmx::errcode call(const RegisteredFunction& function, const DataVect& arguments, Data& result);

private:
    Session session_;
    PlugIn plugIn_;
};

} // namespace host
