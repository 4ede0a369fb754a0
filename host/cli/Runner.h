#pragma once

#include "host/app/LoadedPlugIn.h"
#include "host/cli/Commands.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host::cli {

struct SessionOptions {
    /// The plug-ins' libraries: those of the option, else the one that the environment variable
    /// KESTREL_PLUGIN names. Throws std::runtime_error when there is none.
    [[nodiscard]] std::vector<std::filesystem::path> libraries() const;

    std::vector<std::filesystem::path> plugIns;
    Announcement announcement;
    std::vector<std::filesystem::path> solutions; ///< the first one calculates
    bool json = false, trace = false;
    std::optional<std::int64_t> clockSeconds; ///< since 1970; held still
    std::string nativeEncoding;
    std::string layout;                 ///< at which the first file is opened; empty: its first one
    std::optional<std::int64_t> record; ///< the current record's number, from 1
};

/// Adds the options about plug-ins alone, or all options of a session.
void addPlugInOption(CLI::App& command, SessionOptions& options);
void addSessionOptions(CLI::App& command, SessionOptions& options);

/// Sets the clock and the native encoding as the options say.
void prepareMachine(const SessionOptions& options);
std::vector<Solution> loadSolutions(const SessionOptions& options);
/// Goes to a layout, unless its name is empty, and a record of the first file. Throws std::runtime_error
/// where there is none.
void goTo(Session& session, const std::string& layout, std::optional<std::int64_t> record);

/// A session that prints results and what scripts report, and turns the host's loop.
class Runner {
public:
    /// Throws std::runtime_error when a solution or a plug-in cannot be opened.
    explicit Runner(const SessionOptions& options);

    [[nodiscard]] LoadedPlugIn& loaded() { return *loaded_; }
    [[nodiscard]] Session& session() { return loaded_->session(); }

    /// A calculation, UTF-8, and the file it was read from ("" for none).
    struct Calculation {
        std::string text, file;
    };
    /// Evaluates and writes the result, or the error to standard error; true when it evaluated.
    bool evaluateAndPrint(const Calculation& calculation);
    /// A script step of a plug-in with its parameters: calculations, which may begin with a parameter's label
    /// and a colon.
    struct Step {
        std::string name;
        std::vector<std::string> parameters;
    };
    /// Runs a step and writes its result, or its error to standard error; true when it went well.
    bool runAndPrint(const Step& step);
    /// Writes a result of a calculation in the same way.
    bool print(const calc::Result& result, const Calculation& calculation);
    /// Whether results are shown with their type.
    void showTypes(bool areShown) { showsTypes_ = areShown; }
    /// How many calculations and steps of scripts have failed so far, without those whose errors were
    /// captured.
    [[nodiscard]] std::size_t scriptErrors() const { return scriptErrors_; }

    /// One turn of the host's loop (Session::turn); true when the next one has work to do at once.
    bool turn();
    /// The same, with a report of the scripts that start and end.
    void turnTraced();
    /// How long the loop may rest before its next turn: not at all when it has work to do, otherwise until
    /// the next delay ends, a quarter of a second at most.
    [[nodiscard]] std::chrono::milliseconds rest() const;
    /// Turns of the loop until no more work can come of what has been started, or time is up. Before the
    /// first idle message the user stays busy for `idleAfter`, in which delays end all the same.
    void serve(std::chrono::duration<double> most, std::chrono::duration<double> idleAfter);

private:
    void watchScripts();
    void printValue(const Data& value, const calc::ExternalError& external);
    void reportScriptError(const ScriptError& failure);

    bool json_, isTraced_, showsTypes_ = false;
    std::size_t scriptErrors_ = 0;
    std::size_t idleMessagesOwed_ = 0;
    bool isBusy_ = false;
    std::unique_ptr<LoadedPlugIn> loaded_; ///< null only while the machine is prepared
};

} // namespace host::cli
