#pragma once

#include "host/app/Solution.h"
#include "host/calc/Engine.h"
#include "host/fmwrapper/Application.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host {

/// An open file: its identifier, `$$` variables, fonts, scripts and tables. A file that has been closed stays
/// alive for those who still refer to it, but nothing can be evaluated in it.
class File;
class PlugIn;

/// What a start-script call asked for.
struct ScriptCall {
    std::uint64_t fileId;
    std::u16string fileName, scriptName;
    DataRef parameter;
    int error = 0;
    std::size_t depth = 1; ///< 1 when no script made the call, else one more than the script that did
};

/// A user's session: the open files in the order they were opened, and where calculations run. One at a time
/// in a process; FM_… functions find it through `Session::current`.
class Session final : public Application {
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// The session FM_… functions serve; null when there is none.
    static Session* current();

    [[nodiscard]] std::uint64_t id() const { return id_; }
    /// Functions that calculations may call, built-in and registered.
    [[nodiscard]] const std::shared_ptr<calc::FunctionTable>& functions() const override {
        return functions_;
    }
    std::int16_t registerFunction(RegisteredFunction function) override;
    std::int16_t unregisterFunction(const QuadChar& creator, std::int16_t id) override;

    /// Opens a solution (the first one is the file that calculates); throws std::runtime_error naming the
    /// cause when its tables cannot be made or a file of that name is open.
    std::uint64_t open(Solution solution);
    /// Tells the plug-ins that a file closes, while it can still be asked, and closes it; false when no such
    /// file is open.
    bool close(std::uint64_t fileId);
    /// Closes every file, drops what waits, on the main queue as well, and tells the plug-ins once that the
    /// session is over. The destructor does it, but then most plug-ins have gone.
    void end();
    [[nodiscard]] std::vector<std::shared_ptr<File>> files() const;
    /// The file that calculates: the first one still open; null when none is.
    [[nodiscard]] std::shared_ptr<File> front() const;
    /// An open file by name, with or without extension, any case.
    [[nodiscard]] std::shared_ptr<File> find(std::u16string_view name) const;

    /// A place to evaluate in, in a file, with variables of its own (top level of a calculation).
    [[nodiscard]] calc::Environment environment(const std::shared_ptr<File>& file) const;
    /// The top level of the front file, whose `$` variables live as long as the session.
    [[nodiscard]] calc::Environment topLevel() const;
    /// Evaluates at the top level of the front file; without one the error is 100.
    calc::Result evaluate(std::u16string_view source);

    /// The start-script call: 0, 100 (no such file open), 104 (no such script), or 3 where scripts started
    /// one another kMostScriptDepth times or kMostWaitingScripts wait. An accepted script waits for
    /// `runWaitingScripts`. Every call, accepted or not, is told to `onScriptCall`.
    int startScript(std::u16string_view fileName, std::u16string_view scriptName, DataRef parameter);
    /// Runs what waits and what that starts in turn, in order, each script's calculations in one variable
    /// scope; an error in one does not stop the next. Gives the number run, at most kMostScriptsPerRun; what
    /// is left then waits for the next call. A script whose file has closed meanwhile is dropped. Between the
    /// calculations of a script the plug-ins are told that one runs (idle, kFMXT_ScriptRunning). A call from
    /// within a script does nothing: scripts run one after another, never inside each other.
    std::size_t runWaitingScripts();
    static constexpr std::size_t kMostScriptsPerRun = 10'000, kMostScriptDepth = 1'000,
                                 kMostWaitingScripts = 100'000;
    std::function<void(const ScriptCall&)> onScriptCall;

    /// One turn of the host's loop, as it comes a few times a second while the user does nothing: what is due
    /// on the main queue, an idle message (kFMXT_UserIdle), the scripts that wait.
    struct Turn {
        std::size_t blocks = 0;      ///< run from the main queue
        std::size_t scriptCalls = 0; ///< start-script calls, accepted or not
        std::size_t scripts = 0;     ///< run
    };
    Turn turn();
    /// Sends an idle message of any level to the plug-ins that are enabled.
    void idle(unsigned char level);

    /// Called when a file has closed.
    std::function<void(std::uint64_t fileId)> onFileClosed;

    /// The plug-ins that are loaded; each joins when it is made and leaves when it is gone.
    void join(PlugIn& plugIn) { plugIns_.push_back(&plugIn); }
    void leave(PlugIn& plugIn) { std::erase(plugIns_, &plugIn); }
    [[nodiscard]] const std::vector<PlugIn*>& plugIns() const { return plugIns_; }

private:
    [[nodiscard]] std::vector<PlugIn*> enabledPlugIns() const;
    void run(const Script& script, const ScriptCall& call, const std::shared_ptr<File>& file);

    std::uint64_t id_;
    bool hasEnded_ = false;
    std::size_t runningDepth_ = 0; ///< of the script that runs; 0 while none does
    std::size_t scriptCalls_ = 0;
    std::shared_ptr<calc::FunctionTable> functions_;
    std::vector<std::shared_ptr<File>> files_;
    std::shared_ptr<calc::Variables> topLevel_;
    std::shared_ptr<int> lastError_;
    std::deque<ScriptCall> waiting_;
    std::vector<PlugIn*> plugIns_;
};

} // namespace host
