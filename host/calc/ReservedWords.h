#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace host::calc {

/// The number that a reserved word stands for (`Bold`, `Higher`); `name` is folded. Nothing for a word that
/// is not reserved. A function of the same name goes first where parentheses follow.
std::optional<std::int64_t> reservedWord(std::u16string_view name);

} // namespace host::calc
