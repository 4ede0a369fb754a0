#pragma once

#include "host/app/PlugIn.h"
#include "host/app/Session.h"

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace host {

/// A session with open files and with plug-ins in it: where commands, checks, benchmarks, fuzzers and tests
/// begin. A process has one at a time.
class LoadedPlugIn {
public:
    enum class Start : bool { now, later };

    /// Opens the solutions (the first one calculates; without any, an empty file named Untitled), loads the
    /// libraries and, unless that is left for later, enables the plug-ins. Throws std::runtime_error where a
    /// solution cannot be opened, a library cannot be loaded or a plug-in refuses.
    explicit LoadedPlugIn(const std::vector<std::filesystem::path>& libraries,
                          std::vector<Solution> solutions = {}, Start start = Start::now,
                          const Announcement& announcement = {});
    explicit LoadedPlugIn(const std::filesystem::path& library, std::vector<Solution> solutions = {},
                          Start start = Start::now, const Announcement& announcement = {})
        : LoadedPlugIn(std::vector{library}, std::move(solutions), start, announcement) {}
    /// Closes the files and ends the session while the plug-ins can still get messages, then unloads them,
    /// the last one first.
    ~LoadedPlugIn();
    LoadedPlugIn(const LoadedPlugIn&) = delete;
    LoadedPlugIn& operator=(const LoadedPlugIn&) = delete;

    /// Sends init to every plug-in; throws std::runtime_error when one is not enabled, with what it says and
    /// the registrations that were refused.
    void start();

    [[nodiscard]] Session& session() { return session_; }
    /// The plug-ins in the order of their libraries; never empty.
    [[nodiscard]] const std::vector<std::unique_ptr<PlugIn>>& plugIns() const { return plugIns_; }
    /// The first of them.
    [[nodiscard]] PlugIn& plugIn() { return *plugIns_.front(); }
    /// A function that one of them has registered; throws std::runtime_error when there is none of this name.
    [[nodiscard]] const RegisteredFunction& function(std::u16string_view name) const;
    /// The same; null when there is none.
    [[nodiscard]] const RegisteredFunction* findFunction(std::u16string_view name) const;
    /// The plug-in that has registered under an identifier's four characters; null when none has.
    [[nodiscard]] const PlugIn* ownerOf(const QuadChar& creator) const;
    /// The functions of the first plug-in.
    [[nodiscard]] const std::vector<RegisteredFunction>& functions() const {
        return plugIns_.front()->functions();
    }
    /// Calls a function in the first file, without a calculation, as PlugIn::call does.
    fmx::errcode call(const RegisteredFunction& function, const DataVect& arguments, Data& result);

private:
    Announcement announcement_;
    Session session_;
    std::vector<std::unique_ptr<PlugIn>> plugIns_;
};

/// A sentence for each registration that the host refused.
std::vector<std::string> refusedRegistrations(const PlugIn& plugIn);

} // namespace host
