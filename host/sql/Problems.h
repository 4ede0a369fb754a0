#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Why a statement is refused.

namespace host::sql {

/// The numbers of the messages. `refused` is for what has no message: a limit, or a failure while it runs.
enum class Fql : std::uint8_t {
    refused = 0,
    syntax,
    noTable,
    tableTwice,
    tooManyTables,
    aggregateInside,
    ambiguousColumn,
    noColumn,
    noQualifier,
    noColumnInTable,
    badMoment,
    noCondition,
    badOrder,
    assignmentTypes,
    valuesCount,
    selectCount,
    subqueryOfTarget,
    comparedTypes,
    incompatibleTypes,
    onlyNulls,
    argumentCount,
    argumentType,
    subqueryColumns,
    badCast,
    unqualifiedRowId,
    notGrouped,
    unionCount,
    unionTypes,
    badRepetition,
    variableRepetition
};

/// Thrown where a statement cannot be translated.
struct Problem {
    Fql code;
    std::size_t position = 0; ///< in the statement, in UTF-16 units
    std::u16string name = {}; ///< that the message quotes
};

/// 8310 for a syntax error, otherwise 8309.
int errorCode(Fql code);

/// "FQL0007/(1:7): " and the message. Lines count from 1, offsets within a line from 0. Empty for `refused`.
std::u16string describe(const Problem& problem, std::u16string_view statement);

} // namespace host::sql
