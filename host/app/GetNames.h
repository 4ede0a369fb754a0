#pragma once

#include "host/calc/Environment.h"

#include <string_view>
#include <vector>

/// The names of Get that a file answers: about itself, its session, the current record, the machine, and
/// fixed answers about windows.

namespace host {

class File;
class Session;

/// The names as they are displayed.
std::vector<std::u16string_view> getNames();
/// Whether there is a value for a folded name.
bool isGetName(std::u16string_view name);

/// The value of a name that there is; the session is null once the file is closed.
DataRef getValue(std::u16string_view name, File& file, const Session* session,
                 const calc::Environment& environment);

} // namespace host
