#pragma once

#include <string>
#include <string_view>

/// Texts as the line editor has them: a unit a character.

namespace host::cli {

std::wstring wide(std::string_view utf8);
std::string narrow(std::wstring_view characters);

} // namespace host::cli
