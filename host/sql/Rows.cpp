#include "host/sql/Rows.h"

#include "host/sql/Values.h"

namespace host {

namespace {

constexpr std::size_t kMostValues = 1'000'000, kMostBytes = std::size_t{256} << 20U;

} // namespace

bool bindAll(sqlite3_stmt* statement, const DataVect& parameters) {
    const int wanted = sqlite3_bind_parameter_count(statement);
    if (static_cast<std::size_t>(wanted) > parameters.size()) return false;
    for (int place = 1; place <= wanted; ++place) {
        const DataRef& value = parameters[static_cast<std::size_t>(place) - 1];
        if (!value || bindValue(statement, place, *value) != SQLITE_OK) return false;
    }
    return true;
}

std::vector<DataType> declaredTypes(sqlite3_stmt* statement) {
    std::vector<DataType> types(static_cast<std::size_t>(sqlite3_column_count(statement)));
    for (std::size_t column = 0; column < types.size(); ++column)
        types[column] = declaredType(sqlite3_column_decltype(statement, static_cast<int>(column)));
    return types;
}

int collectRows(sqlite3_stmt* statement, const std::vector<DataType>& types, ValueForm form, RowVect& rows) {
    std::size_t values = 0, bytes = 0;
    int code = SQLITE_OK;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
        DataVect& row = rows.emplace_back();
        row.reserve(types.size());
        for (std::size_t column = 0; column < types.size(); ++column)
            row.push_back(columnValue(statement, static_cast<int>(column), types[column], form, bytes));
        values += types.size();
        if (values > kMostValues || bytes > kMostBytes) return SQLITE_TOOBIG;
    }
    return code;
}

} // namespace host
