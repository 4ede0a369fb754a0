#pragma once

#include "FMWrapper/FMXExtern.h"
#include "host/dispatch/WorkOwner.h"
#include "host/fmwrapper/Application.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

class Session;

/// A plug-in in this process: loading, messages, what it registered, unloading.
class PlugIn final : public WorkOwner {
public:
    /// What a plug-in did that the contract forbids.
    enum class Violation : std::uint8_t { threwFromMessage, threwFromHandler, threwFromBlock };

    /// Loads a library and finds its entry point; throws std::runtime_error with the loader's words. No
    /// message is sent yet.
    PlugIn(Session& session, const std::filesystem::path& library);
    /// Sends the shutdown message if init was accepted, withdraws what is still registered and what it left
    /// for later on the main queue, unloads the library.
    ~PlugIn();
    PlugIn(const PlugIn&) = delete;
    PlugIn& operator=(const PlugIn&) = delete;

    /// Sends init with a host version (the newest known one by default) and gives the plug-in's answer: the
    /// version it implements, or negative when it refuses.
    std::int64_t init(std::int16_t hostVersion = currentHostVersion);
    void shutdown();
    void idle(unsigned char level);
    void preferences();
    void fileShutdown(std::uint64_t fileId);
    void sessionShutdown();
    /// Sends any message: what it asks is sent as it stands, the host's own fields (entry point, instance,
    /// callbacks) are filled in, and what the plug-in wrote is given back. An exception that the plug-in lets
    /// out is recorded as a violation.
    void send(FMX_ExternCallStruct& block);

    /// The answer to a string request. The buffer has `units` units; `overrun` says whether the plug-in wrote
    /// past them (a guard zone behind the buffer bears it).
    struct StringAnswer {
        std::u16string text;
        bool answered = false; ///< something was written
        bool overrun = false;
    };
    StringAnswer readString(int request, std::uint32_t units = 1024);

    /// The name by which the plug-in goes, asked for once; empty when it gives none.
    const std::u16string& name();

    [[nodiscard]] bool isEnabled() const { return enabled_; }
    [[nodiscard]] const std::vector<RegisteredFunction>& functions() const { return functions_; }
    [[nodiscard]] const std::vector<Violation>& violations() const { return violations_; }
    [[nodiscard]] const std::vector<std::int16_t>& refusedRegistrations() const { return refusals_; }

    /// Calls a registered function directly, without a calculation. Counts are not checked.
    /// An exception that leaves the handler is recorded as a violation and answers 1200.
    fmx::errcode call(const RegisteredFunction& function, const fmx::ExprEnv& environment,
                      const fmx::DataVect& arguments, fmx::Data& result);

    static constexpr std::int16_t currentHostVersion = 71;

    /// As in Application, for this plug-in.
    std::int16_t registerFunction(RegisteredFunction function);
    /// False when this plug-in has no such function.
    bool unregisterFunction(const QuadChar& creator, std::int16_t id);

private:
    struct Link; ///< how a row of the function table reaches its plug-in

    void workThrew() override { violations_.push_back(Violation::threwFromBlock); }
    FMX_ExternCallStruct message(FMX_ExternCallSwitch which) const;
    fmx::errcode callHandler(std::int16_t id, fmx::ExtPluginType handler, const fmx::ExprEnv& environment,
                             const fmx::DataVect& arguments, fmx::Data& result);
    [[nodiscard]] std::int16_t problemWith(const RegisteredFunction& function) const;
    void withdraw(std::size_t index);

    Session& session_;
    void* library_ = nullptr;
    FMX_ExternCallProc entryPoint_ = nullptr;
    /// The block every message is sent in. Plug-ins keep its address and use the callbacks in it between
    /// messages, so it lives as long as the plug-in does.
    FMX_ExternCallStruct block_{};
    std::int16_t hostVersion_ = currentHostVersion;
    bool enabled_ = false;
    std::optional<std::u16string> name_;
    std::vector<RegisteredFunction> functions_;
    std::vector<std::shared_ptr<Link>> links_; ///< of functions_, in the same order
    std::vector<std::int16_t> refusals_;
    std::vector<Violation> violations_;
};

} // namespace host
