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

/// A plug-in in this process: loading, messages, registered functions, unloading.
class PlugIn final : public WorkOwner {
public:
    /// A breach of the contract by the plug-in.
    enum class Violation : std::uint8_t { threwFromMessage, threwFromHandler, threwFromBlock };

    /// Loads a library and finds its entry point. Throws std::runtime_error with the loader's message. No
    /// message is sent to the plug-in yet.
    PlugIn(Session& session, const std::filesystem::path& library);
    /// Sends the shutdown message if init was accepted, withdraws the functions that are still registered,
    /// drops the plug-in's work on the main queue and unloads the library.
    ~PlugIn();
    PlugIn(const PlugIn&) = delete;
    PlugIn& operator=(const PlugIn&) = delete;

    /// Sends init with a host version (by default the newest one known). Gives the plug-in's answer: the
    /// version that it implements, or a negative number when it refuses.
    std::int64_t init(std::int16_t hostVersion = currentHostVersion);
    void shutdown();
    void idle(unsigned char level);
    void preferences();
    void fileShutdown(std::uint64_t fileId);
    void sessionShutdown();
    /// Sends any message. The caller's fields are sent unchanged; the host fills in its own fields (entry
    /// point, instance, call-backs). `block` then holds the plug-in's answer. An exception that leaves the
    /// plug-in is recorded as a violation.
    void send(FMX_ExternCallStruct& block);

    /// The answer to a string request. The buffer has `units` units. `overrun` says whether the plug-in wrote
    /// outside of it; guard zones before and after the buffer make that harmless.
    struct StringAnswer {
        std::u16string text;
        bool answered = false; ///< the plug-in wrote into the buffer
        bool overrun = false;
    };
    StringAnswer readString(int request, std::uint32_t units = 1024);

    /// The plug-in's name, requested once; empty when the plug-in gives none.
    const std::u16string& name();

    [[nodiscard]] bool isEnabled() const { return enabled_; }
    [[nodiscard]] const std::vector<RegisteredFunction>& functions() const { return functions_; }
    [[nodiscard]] const std::vector<Violation>& violations() const { return violations_; }
    [[nodiscard]] const std::vector<std::int16_t>& refusedRegistrations() const { return refusals_; }

    /// Calls a registered function directly, without a calculation. Counts are not checked.
    /// An exception that leaves the handler is recorded as a violation; the result is then 1200.
    fmx::errcode call(const RegisteredFunction& function, const fmx::ExprEnv& environment,
                      const fmx::DataVect& arguments, fmx::Data& result);

    static constexpr std::int16_t currentHostVersion = 71;

    /// Application::registerFunction for this plug-in.
    std::int16_t registerFunction(RegisteredFunction function);
    /// False when this plug-in has no such function.
    bool unregisterFunction(const QuadChar& creator, std::int16_t id);

private:
    struct Link; ///< leads from a row of the function table to its plug-in

    void workThrew() override { violations_.push_back(Violation::threwFromBlock); }
    FMX_ExternCallStruct message(FMX_ExternCallSwitch which) const;
    fmx::errcode callHandler(std::int16_t id, fmx::ExtPluginType handler, const fmx::ExprEnv& environment,
                             const fmx::DataVect& arguments, fmx::Data& result);
    [[nodiscard]] std::int16_t problemWith(const RegisteredFunction& function) const;
    void withdraw(std::size_t index);

    Session& session_;
    void* library_ = nullptr;
    FMX_ExternCallProc entryPoint_ = nullptr;
    /// The block of every message. It lives as long as the plug-in: plug-ins keep its address and use its
    /// call-backs between messages.
    FMX_ExternCallStruct block_{};
    std::int16_t hostVersion_ = currentHostVersion;
    bool enabled_ = false;
    std::optional<std::u16string> name_;
    std::vector<RegisteredFunction> functions_;
    std::vector<std::shared_ptr<Link>> links_; ///< one for each of functions_, in the same order
    std::vector<std::int16_t> refusals_;
    std::vector<Violation> violations_;
};

} // namespace host
