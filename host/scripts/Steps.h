#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

/// The steps that scripts may have, as tables.

namespace host::scripts {

class StepRun;

enum class Takes : std::uint8_t {
    calculation,
    words,    ///< one of a few words
    name,     ///< a name in quotation marks, perhaps with `from file: "File"` or `(Table)` after it
    field,    ///< `Field` or `Occurrence::Field`, perhaps with `[ repetition ]`
    variable, ///< `$name` or `$$name`, perhaps with `[ repetition ]`
    target    ///< a field or a variable
};

/// An option that a step takes.
struct OptionRow {
    std::u16string_view name; ///< its label; of an option without a label, a word for people
    Takes takes = Takes::calculation;
    bool isLabelled = false; ///< written `Label: value`, at any place
    bool isNeeded = false;
    std::u16string_view words = {}; ///< folded, with `|` between them
};

/// The part that a step has in a block.
enum class Block : std::uint8_t {
    none,
    opensIf,
    elseIf,
    otherwise,
    closesIf,
    opensLoop,
    leavesLoop,
    closesLoop
};

inline constexpr std::u16string_view kOnOff = u"on|off";
/// The option has no effect, as nobody answers dialogs.
inline constexpr OptionRow kWithDialog{
    .name = u"With dialog", .takes = Takes::words, .isLabelled = true, .words = kOnOff};

struct StepRow {
    std::u16string_view name;
    /// Does the step. Throws calc::Error, whose code becomes the last error.
    void (*run)(StepRun& run);
    std::array<OptionRow, 5> options = {}; ///< those without a name are none
    Block block = Block::none;
    bool keepsError = false;    ///< it leaves the last error as it is, unless it fails
    bool repeats = false;       ///< its options without labels may come several times
    bool takesAnything = false; ///< its options are not looked at
    bool isOfPlugIn = false;    ///< the plug-in defines the labels, so that its options keep them
};

/// The app's step of a name, in any case; of a name with slashes the part before the first one is enough.
/// The result is null for an unknown step, which may be a plug-in's.
const StepRow* stepNamed(std::u16string_view name);

/// The tables, each of a kind of steps.
std::span<const StepRow> controlSteps();
std::span<const StepRow> fieldSteps();
std::span<const StepRow> recordSteps();
std::span<const StepRow> transactionSteps();
std::span<const StepRow> windowSteps();

} // namespace host::scripts
