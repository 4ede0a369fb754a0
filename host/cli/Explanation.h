#pragma once

#include "host/calc/Engine.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace host::cli {

/// The fault of a calculation and its place, for people.
struct Explanation {
    int code = 0;
    std::string message; ///< one sentence without its point
    std::string hint;    ///< how to mend it; may be empty
    struct Place {
        std::size_t line = 1, column = 1; ///< from 1; columns count characters
        std::string near;                 ///< the offending word; empty at the end of the calculation
        std::string excerpt;              ///< the line and, below it, a caret under the word
    };
    std::optional<Place> place; ///< nothing where the error has no place in the calculation
};

/// Explains a result that is an error. `source` is the calculation as it was evaluated; `functions` are those
/// that it could call.
Explanation explain(const calc::Result& result, std::u16string_view source,
                    const std::shared_ptr<const calc::FunctionTable>& functions);

/// "error 1204: …", the hint, and the excerpt below; each line ends in a line feed. `where` stands before it
/// and may be empty.
std::string textOf(const Explanation& explanation, std::string_view where);
/// Adds `error` and `message`, and where there is a place `line`, `column` and `near`.
void addTo(nlohmann::ordered_json& object, const Explanation& explanation);

} // namespace host::cli
