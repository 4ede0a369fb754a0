#include "host/sql/Schema.h"

#include "host/calc/Environment.h"

#include <algorithm>

namespace host {

namespace {

/// The place of the element of that name, in any case.
template<typename Elements>
std::optional<std::size_t> placeOf(const Elements& elements, std::u16string_view name) {
    const std::u16string folded = calc::foldName(name);
    const auto found = std::find_if(elements.begin(), elements.end(), [&](const auto& element) {
        return calc::foldName(element.name) == folded;
    });
    if (found == elements.end()) return std::nullopt;
    return static_cast<std::size_t>(found - elements.begin());
}

} // namespace

std::optional<std::size_t> Schema::occurrence(std::u16string_view name) const {
    return placeOf(occurrences, name);
}

std::optional<std::size_t> Schema::layout(std::u16string_view name) const { return placeOf(layouts, name); }

std::optional<std::size_t> Schema::valueList(std::u16string_view name) const {
    return placeOf(valueLists, name);
}

std::optional<std::size_t> Schema::field(std::size_t occurrence, std::u16string_view name) const {
    return placeOf(tableOf(occurrence).fields, name);
}

} // namespace host
