#pragma once

#include "FMWrapper/FMXCalcEngine.h"
#include "host/calc/Engine.h"
#include "host/fmwrapper/StepDefinition.h"
#include "host/values/Binary.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// An external function as a plug-in registered it.
struct RegisteredFunction {
    QuadChar creator;
    std::int16_t id;
    std::u16string name, prototype;
    std::int16_t minimum, maximum; ///< counts of parameters; a maximum of -1 is no limit
    std::uint32_t flags;
    fmx::ExtPluginType handler;
    /// Words by which it can be found, and a sentence about it. Without a description the words are those of
    /// the name.
    std::u16string words{}, sentence{};
    void describe(std::u16string_view description);
};

/// A step of scripts as a plug-in registered it. Its handler has the type of a function's.
struct RegisteredStep {
    QuadChar creator;
    std::int16_t id;
    std::u16string name;
    std::u16string definition; ///< XML
    std::u16string description;
    std::uint32_t flags;
    fmx::ExtPluginType handler;
    std::vector<StepParameter> parameters{}; ///< read from the definition, in the order of their identifiers
};

/// The running application, as the functions of the interface need it. Session implements it.
class Application {
public:
    /// The process's application; null when none runs.
    static Application* current();

    /// The functions that calculations may call.
    [[nodiscard]] virtual const std::shared_ptr<calc::FunctionTable>& functions() const = 0;
    /// Registers a function for the calling plug-in. Gives 0, 1210 for a name or identifier that is taken, or
    /// 1200 for an invalid name, prototype or count.
    virtual std::int16_t registerFunction(RegisteredFunction function) = 0;
    /// Withdraws a function. Gives 0, or 1200 for a function that is not registered.
    virtual std::int16_t unregisterFunction(const QuadChar& creator, std::int16_t id) = 0;
    /// The same for steps of scripts; 1200 also for a definition that cannot be read.
    virtual std::int16_t registerStep(RegisteredStep step) = 0;
    virtual std::int16_t unregisterStep(const QuadChar& creator, std::int16_t id) = 0;

protected:
    ~Application() = default;
    static void setCurrent(Application* application);
};

} // namespace host
