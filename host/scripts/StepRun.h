#pragma once

#include "host/calc/Fields.h"
#include "host/scripts/Machine.h"
#include "host/scripts/Targets.h"

#include <string>
#include <string_view>

namespace host {
class Position;
}

namespace host::scripts {

/// A calculation of a step that failed. The step is then not done.
struct CalculationFailure {
    std::size_t line; ///< of the script, at which the calculation begins
    std::u16string source;
    calc::Result result;
};

/// A step that runs, as its function sees it: its options, and the script that it belongs to. Options are
/// named as in the step's row.
class StepRun {
public:
    StepRun(Machine& machine, const Step& step) : machine_(machine), step_(step) {}

    [[nodiscard]] Machine& machine() { return machine_; }
    [[nodiscard]] const Step& step() const { return step_; }
    [[nodiscard]] Frame& frame() { return machine_.top(); }
    [[nodiscard]] StageFile& file() { return *frame().file; }

    /// Null where it is not given.
    [[nodiscard]] const Option* option(std::u16string_view name) const;
    [[nodiscard]] bool has(std::u16string_view name) const { return option(name) != nullptr; }
    /// Whether an option is given and is this word.
    [[nodiscard]] bool says(std::u16string_view name, std::u16string_view word) const;
    /// The value of a calculation; empty text where the option is not given. Throws CalculationFailure.
    DataRef value(std::u16string_view name);
    /// Whether a condition holds. One that fails is false, and is reported.
    bool isTrue(std::u16string_view name);
    /// The name in quotation marks; empty where the option is not given.
    [[nodiscard]] QuotedName quotedName(std::u16string_view name) const;

    /// Where the session stands in the script's file.
    [[nodiscard]] Position& position();
    /// Throws calc::Error, 102 or 106, where there is no such field.
    [[nodiscard]] calc::FieldPlace field(const Target& target);

    /// The repetition of a target, 1 where it names none; `line` is that of the target.
    int repetition(const Target& target, std::size_t line);
    /// The value of a text in the script's place. Throws CalculationFailure, with the line.
    DataRef evaluate(std::u16string_view text, std::size_t line);
    /// Sets a variable of the script, or of its file.
    void setVariable(const Target& target, std::size_t line, DataRef value);
    /// Sets a field or a variable. Throws calc::Error.
    void set(const Target& target, std::size_t line, DataRef value);
    void jumpTo(std::size_t place) { frame().at = place; }
    /// Goes on after the loop around the step; false where it stands in none.
    bool leaveLoop();

private:
    Machine& machine_;
    const Step& step_;
};

/// The target that a text names. Throws calc::Error, 102, where it names none.
Target targetOf(std::u16string_view text);

/// Throws calc::Error for a code other than 0.
void check(int code, const std::string& message = {});

} // namespace host::scripts
