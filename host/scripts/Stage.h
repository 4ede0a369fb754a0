#pragma once

#include "host/calc/Engine.h"
#include "host/scripts/PlugInStep.h"
#include "host/scripts/Script.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace host {

class Position;
struct Schema;

/// A start-script call and its result.
struct ScriptCall {
    std::uint64_t fileId;
    std::u16string fileName, scriptName;
    DataRef parameter;
    int error = 0;
    std::size_t depth = 1; ///< 1 outside of scripts, otherwise one more than the calling script's
    /// The fate of the scripts that run at the call: FMX_ScriptControl.
    unsigned char control = 0;
    std::uint64_t during = 0; ///< the run that was current at the call; 0 for none
};

/// A calculation of a script, or a step, that failed.
struct ScriptError {
    const ScriptCall& call;
    std::size_t place;          ///< of a calculation in a list of them, from 1; of a step, its line
    std::u16string_view step;   ///< its name; empty in a list of calculations
    std::u16string_view source; ///< the calculation that failed; empty where the step itself did
    const calc::Result& result;
    bool isCaptured; ///< the script has Set Error Capture on
};

namespace scripts {

/// An open file, as its scripts need it.
class StageFile : public calc::FileContext {
public:
    [[nodiscard]] virtual std::uint64_t id() const = 0;
    [[nodiscard]] virtual const std::u16string& name() const = 0;
    /// The script of that name, in any case; null when there is none.
    [[nodiscard]] virtual const Script* script(std::u16string_view name) const = 0;
    /// Tables, fields and their names; null once it is closed.
    [[nodiscard]] virtual const Schema* schema() const = 0;
    /// Where the session stands in the file.
    [[nodiscard]] virtual Position& position() = 0;
};

/// The session, as scripts need it.
class Stage {
public:
    virtual ~Stage() = default;

    [[nodiscard]] virtual const std::shared_ptr<calc::FunctionTable>& functions() const = 0;
    /// An open file by name, with or without extension, any case; null when there is none.
    [[nodiscard]] virtual std::shared_ptr<StageFile> fileNamed(std::u16string_view name) const = 0;
    /// An environment in a file, with new `$` variables.
    [[nodiscard]] virtual calc::Environment scopeIn(const std::shared_ptr<StageFile>& file) const = 0;
    /// A script step that a plug-in has registered, by name in any case; null when there is none.
    [[nodiscard]] virtual std::shared_ptr<const RegisteredStep>
    registeredStep(std::u16string_view name) const = 0;
    /// Runs a step of a plug-in and sets the environment's last error.
    virtual StepOutcome runStep(const RegisteredStep& step, const std::vector<StepArgument>& arguments,
                                const calc::Environment& environment) = 0;
    /// Sends an idle message of the level to the plug-ins that asked for idle messages.
    virtual void idle(unsigned char level) = 0;
    /// One turn of the host's loop.
    virtual void turnLoop() = 0;
    /// The error that Get ( LastError ) answers outside of scripts.
    virtual void setLastError(const calc::LastError& error) = 0;

    /// Called when a script starts, when it ends (with its result), and for each of its calculations and
    /// steps that fails. A sub-script is a script.
    std::function<void(const ScriptCall&)> onScriptStart;
    std::function<void(const ScriptCall&, const calc::Result&)> onScriptEnd;
    std::function<void(const ScriptError&)> onScriptError;
};

} // namespace scripts

} // namespace host
