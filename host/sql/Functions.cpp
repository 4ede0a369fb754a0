#include "host/sql/Functions.h"

#include "host/sql/FunctionRows.h"

#include <algorithm>
#include <array>

namespace host::sql {

namespace {

constexpr std::array aggregates{"SUM", "AVG", "COUNT", "MAX", "MIN", "STDEV", "STDEVP"};
constexpr std::array typedByArguments{"COALESCE", "NULLIF", "STRVAL", "GETAS", "MAX", "MIN"};

bool isIn(const auto& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

int registerRow(sqlite3* connection, const FunctionRow& row, FunctionContext& context) {
    const std::size_t optional = row.parameters.find('?');
    const auto most = static_cast<int>(row.parameters.size() - (optional == std::string_view::npos ? 0 : 1));
    const int fewest = optional == std::string_view::npos ? most : static_cast<int>(optional);
    const int kind = SQLITE_UTF8 | SQLITE_INNOCUOUS | (most == 0 ? 0 : SQLITE_DETERMINISTIC);
    const std::string name = storeName(row.name);
    for (int count = fewest; count <= most; ++count) {
        const int code = sqlite3_create_function(connection, name.c_str(), count, kind, &context,
                                                 row.implementation, nullptr, nullptr);
        if (code != SQLITE_OK) return code;
    }
    return SQLITE_OK;
}

} // namespace

const FunctionRow* functionRow(std::string_view name) {
    for (const auto rows : functionGroups())
        for (const FunctionRow& row : rows)
            if (row.name == name) return &row;
    return nullptr;
}

bool isFunction(std::string_view name) {
    return isIn(typedByArguments, name) || (!name.starts_with('_') && functionRow(name) != nullptr);
}

bool isAggregate(std::string_view name) { return isIn(aggregates, name); }

bool isMoment(std::string_view name) {
    const FunctionRow* row = functionRow(name);
    return row != nullptr && row->isBare;
}

std::string storeName(std::string_view name) {
    std::string result = "kestrel_";
    for (const char letter : name)
        result += static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
    return result;
}

int registerFunctions(sqlite3* connection, FunctionContext& context) {
    for (const auto rows : functionGroups())
        for (const FunctionRow& row : rows)
            if (const int code = registerRow(connection, row, context); code != SQLITE_OK) return code;
    return registerDeviations(connection);
}

} // namespace host::sql
