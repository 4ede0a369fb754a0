#pragma once

#include "host/calc/Node.h"

namespace host::calc {

/// The result of an operator. The logical ones take values that are evaluated already. Numbers keep at least
/// `precision` digits after the point. An impossible operation gives "?".
DataRef applyOperator(Operator op, const Data& left, const Data& right, int precision);

/// The value with its sign turned.
DataRef negated(const Data& value, int precision);

} // namespace host::calc
