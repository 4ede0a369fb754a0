#pragma once

#include "FMWrapper/FMXExtern.h"
#include "host/app/PlugInOptions.h"
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

/// The version and the application that a host announces.
struct Announcement {
    std::int16_t version = kCurrentExtnVersion;
    FMX_UChar application = kFMXT_Mobile;
};

/// A plug-in in this process: loading, messages, registered functions, unloading.
class PlugIn final : public WorkOwner {
public:
    /// A breach of the contract by the plug-in.
    enum class Violation : std::uint8_t { threwFromMessage, threwFromHandler, threwFromBlock };

    /// Loads a library and finds its entry point. Throws std::runtime_error, which names each function of the
    /// interface that the host lacks. No message is sent to the plug-in yet.
    PlugIn(Session& session, const std::filesystem::path& library);
    /// Sends the shutdown message if the plug-in is enabled, withdraws what is still registered, drops the
    /// plug-in's work on the main queue and unloads the library.
    ~PlugIn();
    PlugIn(const PlugIn&) = delete;
    PlugIn& operator=(const PlugIn&) = delete;

    /// Asks for the plug-in's strings, the first time, and sends init with a host version (by default the
    /// newest one known) and an application. Gives the plug-in's answer: the version that it implements, or a
    /// negative number when it refuses. A plug-in whose options do not ask for init is enabled without it,
    /// and the answer is the host's version; one whose options are wrong is left alone, and the answer is
    /// kDoNotEnable.
    std::int64_t init(std::int16_t hostVersion = currentHostVersion, FMX_UChar application = kFMXT_Mobile);
    /// Why the last init did not enable the plug-in; empty when it did.
    [[nodiscard]] const std::string& refusal() const { return refusal_; }
    /// The messages that the plug-in asked for; everything is off before init.
    [[nodiscard]] const PlugInOptions& options() const { return options_; }
    void shutdown();
    // These are sent also to a plug-in that did not ask for them; a session asks `options` first.
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

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    /// The plug-in's name; empty before init and when the plug-in gives none.
    [[nodiscard]] const std::u16string& name() const { return name_; }

    /// The address of help for a function or script step; empty when the plug-in gives none. An address that
    /// ends in "=" has the identifier appended.
    [[nodiscard]] std::u16string helpAddress(std::int16_t id) const;

    [[nodiscard]] bool isEnabled() const { return enabled_; }
    [[nodiscard]] const std::vector<RegisteredFunction>& functions() const { return functions_; }
    [[nodiscard]] const std::vector<Violation>& violations() const { return violations_; }
    /// A step's place does not change while it is registered.
    [[nodiscard]] const std::vector<std::shared_ptr<const RegisteredStep>>& steps() const { return steps_; }

    /// A function or script step that the host refused to register.
    struct RefusedRegistration {
        std::int16_t id;
        std::u16string name;
        std::string reason;
    };
    [[nodiscard]] const std::vector<RefusedRegistration>& refusedRegistrations() const { return refusals_; }

    /// Calls a registered function directly, without a calculation. Counts are not checked.
    /// An exception that leaves the handler is recorded as a violation; the result is then 1200.
    fmx::errcode call(const RegisteredFunction& function, const fmx::ExprEnv& environment,
                      const fmx::DataVect& arguments, fmx::Data& result);

    /// Calls a step's handler in the same way.
    fmx::errcode call(const RegisteredStep& step, const fmx::ExprEnv& environment,
                      const fmx::DataVect& arguments, fmx::Data& result);

    static constexpr std::int16_t currentHostVersion = kCurrentExtnVersion;

    /// Application::registerFunction for this plug-in.
    std::int16_t registerFunction(RegisteredFunction function);
    /// False when this plug-in has no such function.
    bool unregisterFunction(const QuadChar& creator, std::int16_t id);
    std::int16_t registerStep(RegisteredStep step);
    bool unregisterStep(const QuadChar& creator, std::int16_t id);

private:
    struct Link; ///< leads from a row of the function table to its plug-in

    void workThrew() override { violations_.push_back(Violation::threwFromBlock); }
    FMX_ExternCallStruct message(FMX_ExternCallSwitch which) const;
    fmx::errcode callHandler(std::int16_t id, fmx::ExtPluginType handler, const fmx::ExprEnv& environment,
                             const fmx::DataVect& arguments, fmx::Data& result);
    /// An error code with a sentence about it; the code 0 for none.
    struct Problem {
        std::int16_t code = 0;
        std::string_view words;
    };
    [[nodiscard]] Problem problemWithCreator(const QuadChar& creator) const;
    [[nodiscard]] Problem problemWith(const RegisteredFunction& function) const;
    [[nodiscard]] Problem problemWith(const RegisteredStep& step) const;
    void askForStrings();
    std::string refusalFor(std::int64_t answer) const;
    void withdraw(std::size_t index);
    void withdrawAll();

    Session& session_;
    std::filesystem::path path_;
    void* library_ = nullptr;
    FMX_ExternCallProc entryPoint_ = nullptr;
    /// The block of every message. It lives as long as the plug-in: plug-ins keep its address and use its
    /// call-backs between messages.
    FMX_ExternCallStruct block_{};
    std::int16_t hostVersion_ = currentHostVersion;
    bool enabled_ = false;
    bool hasStrings_ = false;
    std::u16string name_, helpAddress_;
    PlugInOptions options_;
    std::string refusal_;
    std::vector<RegisteredFunction> functions_;
    std::vector<std::shared_ptr<Link>> links_; ///< one for each of functions_, in the same order
    std::vector<std::shared_ptr<const RegisteredStep>> steps_;
    std::vector<RefusedRegistration> refusals_;
    std::vector<Violation> violations_;
};

} // namespace host
