#pragma once

#include "host/app/Solution.h"
#include "host/calc/Engine.h"
#include "host/fmwrapper/Application.h"
#include "host/scripts/Machine.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// An open file: its identifier, `$$` variables, fonts, scripts and tables. A closed file stays alive as long
/// as something refers to it, but nothing can be evaluated in it.
class File;
class PlugIn;
struct PlugInOptions;

/// A user's session: the open files, in the order in which they were opened, and the calculations in them. A
/// process has one session at a time; FM_… functions find it through `Session::current`.
class Session final : public Application, public scripts::Stage {
public:
    Session();
    ~Session() override;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The session of the FM_… functions; null when there is none.
    static Session* current();

    [[nodiscard]] std::uint64_t id() const { return id_; }
    /// Functions that calculations may call, built-in and registered.
    [[nodiscard]] const std::shared_ptr<calc::FunctionTable>& functions() const override {
        return functions_;
    }
    std::int16_t registerFunction(RegisteredFunction function) override;
    std::int16_t unregisterFunction(const QuadChar& creator, std::int16_t id) override;
    std::int16_t registerStep(RegisteredStep step) override;
    std::int16_t unregisterStep(const QuadChar& creator, std::int16_t id) override;

    [[nodiscard]] std::shared_ptr<const RegisteredStep>
    registeredStep(std::u16string_view name) const override;
    StepOutcome runStep(const RegisteredStep& step, const std::vector<StepArgument>& arguments,
                        const calc::Environment& environment) override;
    /// Throws std::runtime_error for a step of a script that neither the app nor a plug-in has.
    void requireSteps() const;

    /// Opens a solution and gives the file's identifier. Calculations run in the first open file. Throws
    /// std::runtime_error with the cause when the tables cannot be made or a file of that name is open.
    std::uint64_t open(Solution solution);
    /// Closes a file; false when no such file is open. The plug-ins get the file-shutdown message first,
    /// while the file can still be used.
    bool close(std::uint64_t fileId);
    /// Closes every file, drops waiting scripts and the work on the main queue, and sends the plug-ins the
    /// session-shutdown message once. The destructor calls it too, but most plug-ins are unloaded by then.
    void end();
    [[nodiscard]] std::vector<std::shared_ptr<File>> files() const;
    /// The file in which calculations run: the first open one; null when none is open.
    [[nodiscard]] std::shared_ptr<File> front() const;
    /// An open file by name, with or without extension, any case.
    [[nodiscard]] std::shared_ptr<File> find(std::u16string_view name) const;
    [[nodiscard]] std::shared_ptr<scripts::StageFile> fileNamed(std::u16string_view name) const override;

    /// An environment in a file, with new `$` variables (the top level of a calculation).
    [[nodiscard]] calc::Environment environment(const std::shared_ptr<File>& file) const;
    [[nodiscard]] calc::Environment scopeIn(const std::shared_ptr<scripts::StageFile>& file) const override;
    /// The top level of the first file, whose `$` variables live as long as the session.
    [[nodiscard]] calc::Environment topLevel() const;
    /// Evaluates at the top level of the first file; the error is 100 when no file is open.
    calc::Result evaluate(std::u16string_view source);

    /// The start-script call. Gives 0, 100 (no such file is open), 104 (no such script), or 3 when scripts
    /// started one another kMostScriptDepth times or kMostWaitingScripts wait. An accepted script waits for
    /// `runWaitingScripts`. Every call, accepted or not, is reported to `onScriptCall`. `control`
    /// (FMX_ScriptControl) says what becomes of the script that runs at the call, or pauses then.
    int startScript(std::u16string_view fileName, std::u16string_view scriptName, DataRef parameter,
                    unsigned char control = 0);
    /// Goes on with the script that has paused, runs the waiting scripts in order, and then the scripts that
    /// these start. Gives the number begun, at most kMostScriptsPerRun; the rest waits for the next call, and
    /// so does a script that pauses. Between steps the plug-ins get an idle message (kFMXT_ScriptRunning). A
    /// script ends when its file has closed. A call from within a script does nothing.
    std::size_t runWaitingScripts();
    /// Runs a script to its end, past its pauses, and gives its result: empty when it was halted or has none.
    /// Error 100: no such file is open; 104: no such script; 3: called from within a script. Plug-ins
    /// do not call it.
    calc::Result runScript(std::u16string_view fileName, std::u16string_view scriptName, DataRef parameter);
    /// The time until a script that pauses goes on; nothing when none pauses.
    [[nodiscard]] std::optional<Clock::Micros> untilScriptGoesOn() const;
    static constexpr std::size_t kMostScriptsPerRun = 10'000, kMostScriptDepth = 1'000,
                                 kMostWaitingScripts = 100'000;
    std::function<void(const ScriptCall&)> onScriptCall;

    /// One turn of the host's loop: the due work of the main queue, an idle message (kFMXT_UserIdle, or
    /// kFMXT_ScriptPaused while a script pauses), the waiting scripts. The app makes a few turns a second
    /// while the user does nothing.
    struct Turn {
        std::size_t blocks = 0;      ///< blocks run from the main queue
        std::size_t scriptCalls = 0; ///< start-script calls, accepted or not
        std::size_t scripts = 0;     ///< scripts run
    };
    Turn turn();
    void turnLoop() override { turn(); }
    void idle(unsigned char level) override;
    /// Sends the preferences message to the plug-ins that asked for it; gives their number.
    std::size_t preferences();
    void setLastError(const calc::LastError& error) override { *lastError_ = error; }

    /// Called when a file has closed.
    std::function<void(std::uint64_t fileId)> onFileClosed;

    /// The loaded plug-ins. A plug-in joins in its constructor and leaves in its destructor.
    void join(PlugIn& plugIn) { plugIns_.push_back(&plugIn); }
    void leave(PlugIn& plugIn) { std::erase(plugIns_, &plugIn); }
    [[nodiscard]] const std::vector<PlugIn*>& plugIns() const { return plugIns_; }

private:
    /// The enabled plug-ins that asked for a kind of message.
    [[nodiscard]] std::vector<PlugIn*> plugInsThatWant(bool PlugInOptions::* message) const;
    /// The plug-in whose code runs; where none does, the only one that is loaded; else null.
    [[nodiscard]] PlugIn* callingPlugIn() const;
    void useFrontFormats() const;
    /// A call made now; its error is 100 or 104 when there is no such file or script.
    [[nodiscard]] ScriptCall callOf(std::u16string_view fileName, std::u16string_view scriptName,
                                    DataRef parameter) const;

    std::uint64_t id_;
    bool hasEnded_ = false;
    std::size_t scriptCalls_ = 0;
    std::shared_ptr<calc::FunctionTable> functions_;
    std::vector<std::shared_ptr<File>> files_;
    std::shared_ptr<calc::Variables> topLevel_;
    std::shared_ptr<calc::LastError> lastError_;
    scripts::Machine machine_{*this};
    std::vector<PlugIn*> plugIns_;
};

} // namespace host
