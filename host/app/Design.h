#pragma once

#include "host/values/Data.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host {

class File;
class Session;

/// The answer of a design function of calculations, by its name, for a calculation of `file`: names one a
/// line, or empty text where the part of the file is not there. Nothing where the file that the first
/// argument names is not open.
std::optional<std::u16string> designAnswer(std::u16string_view function, std::span<const DataRef> arguments,
                                           File& file, const Session& session);

} // namespace host
