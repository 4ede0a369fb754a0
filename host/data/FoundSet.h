#pragma once

#include "host/calc/Fields.h"

#include <cstdint>
#include <vector>

namespace host {

/// A field that records are sorted by: one of their own, or of the first related record.
struct SortKey {
    calc::FieldPlace place;
    bool isDescending = false;
};

/// The records of an occurrence that are in view, and the current one.
struct FoundSet {
    std::vector<std::int64_t> records; ///< IDs, in their order
    std::size_t current = 0;           ///< place of the current record; without records 0
    bool isAll = true;                 ///< every record of the table; new ones of others join it
    std::vector<SortKey> sortedBy;     ///< none: as they were made
    bool hasUnsorted = false;          ///< records joined since they were sorted
    std::uint64_t version = 0;         ///< of the table's records (Records::membership) that it knows
};

} // namespace host
