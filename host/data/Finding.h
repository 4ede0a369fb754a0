#pragma once

#include "host/data/Position.h"

#include <cstdint>
#include <set>
#include <vector>

namespace host {

/// The candidates, records of an occurrence, that meet the requests: each request adds those that meet all
/// its criteria, or takes them out where it omits. Criteria know `=` (a whole word, or an empty field where
/// nothing follows), `==` (the whole content), `<` `≤` `>` `≥`, `a...b`, `!` (a value that others have too),
/// `//` (today), `?` (a value that does not fit its type), quoted phrases, and the signs `*` (any run), `@`
/// (any character) and `#` (any digit). A word is met by the beginning of a word, in any case; numbers, dates
/// and times are compared by value. A criterion of a related field is met by any related record.
std::set<std::int64_t> findRecords(Records& records, std::size_t occurrence,
                                   const std::vector<FindRequest>& requests,
                                   const std::vector<std::int64_t>& candidates);

} // namespace host
