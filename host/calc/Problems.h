#pragma once

#include "host/calc/Engine.h"
#include "host/calc/Parser.h"

#include <string_view>

/// Failures of calculations in words.

namespace host::calc {

/// Where and why a parser stopped.
Problem problemOf(const Error& error, const Parser& parser, std::u16string_view source,
                  const FunctionTable& functions, FileContext* file);

/// The place of a failed call; `call` may be null, which is the whole calculation.
Problem problemOf(const Error& error, const Node* call, std::u16string_view source);

} // namespace host::calc
