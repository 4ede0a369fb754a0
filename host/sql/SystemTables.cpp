#include "host/sql/SystemTables.h"

#include "host/calc/Environment.h"
#include "host/values/Encoding.h"

#include <array>
#include <cstdio>
#include <initializer_list>

namespace host::sql {

namespace {

using Rows = std::string (*)(const Schema&, std::u16string_view);

struct SystemTable {
    BaseTable table;
    Rows rows;
};

std::string number(std::size_t value) { return std::to_string(value); }

/// Adds a row; the last column of every system table is ModCount, which this store does not count.
void add(std::string& rows, std::initializer_list<std::string> values) {
    rows += rows.empty() ? "VALUES (" : ", (";
    for (const std::string& value : values)
        rows += value + ", ";
    rows += "0)";
}

std::string fieldType(const Field& field) {
    static constexpr std::array<std::string_view, 8> words{"varchar", "varchar",   "decimal", "date",
                                                           "time",    "timestamp", "binary",  "decimal"};
    const std::string word(words.at(static_cast<std::size_t>(field.type)));
    return field.kind == FieldKind::global ? "'global " + word + "'" : "'" + word + "'";
}

std::string fieldClass(const Field& field) {
    switch (field.kind) {
    case FieldKind::storedCalculation:
    case FieldKind::unstoredCalculation: return "'Calculated'";
    case FieldKind::summary: return "'Summary'";
    default: return "'Normal'";
    }
}

void addFields(std::string& rows, const std::u16string& name, const BaseTable& table) {
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        const Field& field = table.fields[i];
        add(rows, {quotedText(name), quotedText(field.name), fieldType(field), number(i + 1),
                   fieldClass(field), std::to_string(field.repetitions)});
    }
}

std::string occurrences(const Schema& schema, std::u16string_view fileName) {
    std::string rows;
    for (std::size_t i = 0; i < schema.occurrences.size(); ++i)
        add(rows, {quotedText(schema.occurrences[i].name), number(kFirstOccurrenceId + i),
                   quotedText(schema.tableOf(i).name), quotedText(fileName)});
    return rows;
}

std::string fields(const Schema& schema, std::u16string_view /*fileName*/) {
    std::string rows;
    for (std::size_t i = 0; i < schema.occurrences.size(); ++i)
        addFields(rows, schema.occurrences[i].name, schema.tableOf(i));
    return rows;
}

std::string baseTables(const Schema& schema, std::u16string_view /*fileName*/) {
    std::string rows;
    for (std::size_t i = 0; i < schema.tables.size(); ++i)
        add(rows, {quotedText(schema.tables[i].name), number(kFirstTableId + i), "'<Internal>'"});
    return rows;
}

std::string baseFields(const Schema& schema, std::u16string_view /*fileName*/) {
    std::string rows;
    for (const BaseTable& table : schema.tables)
        addFields(rows, table.name, table);
    return rows;
}

Field column(std::u16string name) {
    Field field;
    const bool isNumber = name.ends_with(u"Id") || name.ends_with(u"Count") || name.ends_with(u"Reps");
    field.type = isNumber ? DataType::number : DataType::text;
    field.name = std::move(name);
    return field;
}

SystemTable made(std::u16string name, std::initializer_list<std::u16string_view> columns, Rows rows) {
    SystemTable table{.table = {.name = std::move(name), .fields = {}, .keys = RecordKeys::none},
                      .rows = rows};
    for (const std::u16string_view each : columns)
        table.table.fields.push_back(column(std::u16string(each)));
    return table;
}

const std::array<SystemTable, 4>& systemTables() {
    static const std::array<SystemTable, 4> tables{
        made(u"FileMaker_Tables", {u"TableName", u"TableId", u"BaseTableName", u"BaseFileName", u"ModCount"},
             occurrences),
        made(u"FileMaker_Fields",
             {u"TableName", u"FieldName", u"FieldType", u"FieldId", u"FieldClass", u"FieldReps", u"ModCount"},
             fields),
        made(u"FileMaker_BaseTables", {u"BaseTableName", u"BaseTableId", u"Source", u"ModCount"}, baseTables),
        made(u"FileMaker_BaseTableFields",
             {u"BaseTableName", u"FieldName", u"FieldType", u"FieldId", u"FieldClass", u"FieldReps",
              u"ModCount"},
             baseFields)};
    return tables;
}

} // namespace

const BaseTable* systemTable(std::u16string_view name) {
    for (const SystemTable& system : systemTables())
        if (calc::foldName(system.table.name) == calc::foldName(name)) return &system.table;
    return nullptr;
}

std::string systemRows(const BaseTable& table, const Schema& schema, std::u16string_view fileName) {
    for (const SystemTable& system : systemTables()) {
        if (&system.table != &table) continue;
        if (std::string rows = system.rows(schema, fileName); !rows.empty()) return rows;
    }
    std::string none = "SELECT ";
    for (std::size_t i = 1; i <= table.fields.size(); ++i)
        none += (i == 1 ? "NULL AS column" : ", NULL AS column") + std::to_string(i);
    return none + " WHERE 0";
}

std::string quotedText(std::u16string_view text) {
    const std::string bytes = toUtf8(text);
    if (bytes.find('\0') != std::string::npos) {
        // A zero byte would end the statement.
        std::string hex = "CAST(x'";
        for (const char byte : bytes) {
            std::array<char, 3> digits{};
            std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(byte));
            hex += digits.data();
        }
        return hex + "' AS TEXT)";
    }
    std::string quoted = "'";
    for (const char letter : bytes) {
        if (letter == '\'') quoted += '\'';
        quoted += letter;
    }
    return quoted + '\'';
}

} // namespace host::sql
