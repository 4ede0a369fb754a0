#pragma once

#include <string_view>

namespace host {

/// The name of the Get function with this number, as in `Get ( AccountName )`; empty for a number that the
/// host does not know.
std::u16string_view getFunctionName(int number);

} // namespace host
