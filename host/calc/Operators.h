#pragma once

#include "host/calc/Node.h"

namespace host::calc {

/// What an operator makes of two values; logical ones included, which then have no use for laziness. Numbers
/// keep at least `precision` digits behind the point. What is impossible is a "?".
DataRef applyOperator(Operator op, const Data& left, const Data& right, int precision);

/// The value with its sign turned.
DataRef negated(const Data& value, int precision);

} // namespace host::calc
