#include "host/calc/Environment.h"

#include "host/calc/BuiltIns.h"
#include "host/values/CaseFolding.h"

namespace host::calc {

std::u16string foldName(std::u16string_view name) { return foldCase(name); }

DataRef Variables::value(std::u16string_view name, int repetition) const {
    static const DataRef empty = std::make_shared<const Data>();
    const auto variable = values_.find(foldName(name));
    if (variable == values_.end()) return empty;
    const auto& repetitions = variable->second.repetitions;
    const auto value = repetitions.find(repetition);
    return value == repetitions.end() ? empty : value->second;
}

DataVect Variables::values(std::u16string_view name) const {
    const auto variable = values_.find(foldName(name));
    if (variable == values_.end() || variable->second.repetitions.empty()) return {};
    const auto& repetitions = variable->second.repetitions;
    DataVect values(static_cast<std::size_t>(repetitions.rbegin()->first), std::make_shared<const Data>());
    for (const auto& [repetition, value] : repetitions)
        values[static_cast<std::size_t>(repetition - 1)] = value;
    return values;
}

DataRef Variables::lastValue(std::u16string_view name) const {
    const auto variable = values_.find(foldName(name));
    if (variable != values_.end()) {
        const auto& repetitions = variable->second.repetitions;
        for (auto value = repetitions.rbegin(); value != repetitions.rend(); ++value)
            if (!value->second->isEmpty()) return value->second;
    }
    return std::make_shared<const Data>();
}

bool Variables::set(std::u16string_view name, int repetition, DataRef value) {
    if (repetition < 1 || repetition > maximumRepetition) return false;
    Variable& variable = values_[foldName(name)];
    if (variable.name.empty()) variable.name = name;
    variable.repetitions[repetition] = std::move(value);
    return true;
}

Text SqlAnswer::joined(const Text& betweenColumns, const Text& betweenRows) const {
    Text result;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (row > 0) result.append(betweenRows);
        for (std::size_t column = 0; column < rows[row].size(); ++column) {
            if (column > 0) result.append(betweenColumns);
            rows[row][column]->appendTextTo(result);
            checkTextSize(result.size());
        }
    }
    return result;
}

} // namespace host::calc
