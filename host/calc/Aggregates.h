#pragma once

#include "host/values/Data.h"

#include <span>
#include <string_view>

namespace host::calc {

/// Makes one value of several, of which the empty ones do not count.
using Aggregate = DataRef (*)(std::span<const DataRef>);

/// The aggregate with the name of a calculation's function ("Sum", "List"); null for any other name.
Aggregate aggregateNamed(std::u16string_view name);

} // namespace host::calc
