#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Options that are names rather than calculations.

namespace host::scripts {

/// `"Name"`, `"Name" (Table)` or `"Name" from file: "File"`, in straight or curly quotation marks.
struct QuotedName {
    std::u16string name, file; ///< file: empty when none is named
};
/// The name in quotation marks; nothing where the text has another form.
std::optional<QuotedName> quotedName(std::u16string_view text);

/// Where a step puts a value.
struct Target {
    enum class Kind { variable, fileVariable, field };
    Kind kind;
    std::u16string name;       ///< of a variable, without its dollar signs
    std::u16string occurrence; ///< of a field; empty when none is named
    std::u16string repetition; ///< a calculation; empty when none is written
};
/// The target; nothing where the text has another form.
std::optional<Target> targetIn(std::u16string_view text);

} // namespace host::scripts
