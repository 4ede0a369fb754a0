#include "host/sql/Store.h"

#include "host/calc/Environment.h"
#include "host/sql/Connection.h"
#include "host/sql/Values.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <stdexcept>

namespace host {

namespace {

std::string_view storedType(DataType type) {
    switch (type) {
    case DataType::number: return "NUMERIC";
    case DataType::date: return "DATE";
    case DataType::time: return "TIME";
    case DataType::timestamp: return "TIMESTAMP";
    case DataType::binary: return "BLOB";
    default: return "TEXT";
    }
}

/// `X[2]` after a field X of one repetition is that field's second, and so on.
bool isNextRepetition(const std::u16string& column, const Field& field) {
    const std::string place = "[" + std::to_string(field.repetitions + 1) + "]";
    return calc::foldName(column) == calc::foldName(field.name + std::u16string(place.begin(), place.end()));
}

std::vector<Field> fieldsOf(sqlite3_stmt* columns) {
    std::vector<Field> fields;
    for (int i = 0; i < sqlite3_column_count(columns); ++i) {
        const std::u16string name = fromUtf8(sqlite3_column_name(columns, i));
        const DataType type = declaredType(sqlite3_column_decltype(columns, i));
        if (!fields.empty() && isNextRepetition(name, fields.back())) {
            ++fields.back().repetitions;
            continue;
        }
        Field& field = fields.emplace_back();
        field.name = name;
        if (type != DataType::invalid) field.type = type;
    }
    return fields;
}

bool isKnown(const Schema& schema, const std::u16string& table) {
    return std::any_of(schema.tables.begin(), schema.tables.end(), [&](const BaseTable& known) {
        return calc::foldName(known.name) == calc::foldName(table);
    });
}

void emptyToNull(Connection& connection, const BaseTable& table) {
    for (const Field& field : table.fields)
        for (int repetition = 1; field.type == DataType::text && repetition <= field.repetitions;
             ++repetition) {
            const std::string column = columnName(field, repetition);
            std::string statement = "UPDATE OR IGNORE ";
            statement.append(quotedName(table.name)).append(" SET ").append(column);
            statement.append(" = NULL WHERE ").append(column).append(" = ''");
            connection.run(statement);
        }
}

} // namespace

std::string quotedName(std::u16string_view name) {
    std::string quoted = "\"";
    for (const char letter : toUtf8(name)) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + '"';
}

std::string columnName(const Field& field, int repetition) {
    if (repetition == 1) return quotedName(field.name);
    const std::string place = "[" + std::to_string(repetition) + "]";
    return quotedName(field.name + std::u16string(place.begin(), place.end()));
}

std::string columnDeclaration(const Field& field, int repetition) {
    return columnName(field, repetition) + " " + std::string(storedType(field.type));
}

std::string tableStatement(std::u16string_view name, const std::string& columns) {
    return "CREATE TABLE " + quotedName(name) +
           " (kestrel_id INTEGER PRIMARY KEY AUTOINCREMENT, kestrel_modifications INTEGER NOT NULL DEFAULT "
           "0" +
           columns + ")";
}

void makeTables(Connection& connection, const Schema& schema) {
    const Connection::Work work(connection);
    for (const BaseTable& table : schema.tables) {
        std::string columns;
        for (const Field& field : table.fields)
            for (int repetition = 1; field.hasColumns() && repetition <= field.repetitions; ++repetition)
                columns += ", " + columnDeclaration(field, repetition);
        if (connection.run(tableStatement(table.name, columns)) != SQLITE_OK)
            throw std::runtime_error("table " + toUtf8(table.name) + ": " +
                                     sqlite3_errmsg(connection.handle()));
    }
}

void addStoredTables(Connection& connection, Schema& schema) {
    const Connection::Work work(connection);
    int code = SQLITE_OK;
    const char* listing = "SELECT name, type FROM sqlite_schema WHERE type IN ('table', 'view') "
                          "AND name NOT LIKE 'sqlite%' ORDER BY rowid";
    const Statement names = connection.prepare(listing, code);
    while (names && sqlite3_step(names.get()) == SQLITE_ROW) {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 0));
        const auto* type = reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 1));
        if (bytes == nullptr || type == nullptr) continue;
        BaseTable table{.name = fromUtf8(bytes), .fields = {}, .keys = RecordKeys::none};
        if (isKnown(schema, table.name)) continue;
        const std::string from = " FROM " + quotedName(table.name);
        const std::string all = "SELECT *" + from, ids = "SELECT rowid" + from;
        const char* select = all.c_str();
        const Statement columns = connection.prepare(select, code);
        if (columns) table.fields = fieldsOf(columns.get());
        const char* idSelect = ids.c_str();
        if (std::string_view(type) == "table" && connection.prepare(idSelect, code))
            table.keys = RecordKeys::id;
        const std::size_t place = schema.tables.size(), occurrence = schema.occurrences.size();
        schema.occurrences.push_back({.name = table.name, .table = place});
        schema.layouts.push_back({.name = table.name, .occurrence = occurrence});
        if (table.keys == RecordKeys::id) emptyToNull(connection, table);
        schema.tables.push_back(std::move(table));
    }
}

} // namespace host
