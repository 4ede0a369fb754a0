#include "host/calc/Environment.h"
#include "host/sql/Scopes.h"
#include "host/sql/Store.h"
#include "host/sql/Translator.h"

#include <utility>

/// INSERT, UPDATE and DELETE.

namespace host::sql {

namespace {

/// The table that a statement changes, under its own name.
TableReference changedTable(const StatementTree& tree) {
    return {.name = tree.table,
            .alias = tree.table,
            .join = Join::comma,
            .condition = {},
            .position = tree.tablePosition};
}

} // namespace

Translation Translator::change(const StatementTree& tree) {
    if (const auto* body = std::get_if<Insert>(&tree.body)) return insert(tree, *body);
    if (const auto* body = std::get_if<Update>(&tree.body)) return update(tree, *body);
    return remove(tree, std::get<Delete>(tree.body));
}

const BaseTable& Translator::written(const StatementTree& tree) const {
    const auto occurrence = schema_.occurrence(tree.table);
    if (!occurrence) throw Problem{.code = Fql::noTable, .position = tree.tablePosition, .name = tree.table};
    return schema_.tableOf(*occurrence);
}

Translator::Written Translator::target(const BaseTable& table, const Target& target) const {
    for (const Field& field : table.fields) {
        if (calc::foldName(field.name) != calc::foldName(target.name)) continue;
        if (!field.isWritable() || !field.hasColumns())
            throw Problem{.code = Fql::assignmentTypes, .position = target.position, .name = target.name};
        if (target.repetition > field.repetitions)
            throw Problem{.code = Fql::badRepetition, .position = target.position};
        return {&field, columnName(field, target.repetition)};
    }
    throw Problem{.code = Fql::noColumn, .position = target.position, .name = target.name};
}

std::vector<Translator::Written> Translator::targets(const BaseTable& table,
                                                     const std::vector<Target>& columns) const {
    std::vector<Written> written;
    written.reserve(columns.size());
    for (const Target& each : columns)
        written.push_back(target(table, each));
    if (columns.empty())
        for (const Field& field : table.fields)
            if (field.isWritable() && field.hasColumns()) written.push_back({&field, columnName(field)});
    return written;
}

void Translator::checkAssigned(const Written& target, DataType type, std::size_t position) {
    if (type != DataType::invalid && type != target.field->type)
        throw Problem{.code = Fql::assignmentTypes, .position = position, .name = target.field->name};
}

std::string Translator::assigned(const Written& target, const Expression& value) {
    Piece piece = settled(value);
    checkAssigned(target, piece.type, value.position);
    return std::move(piece.sql);
}

Translation Translator::insert(const StatementTree& tree, const Insert& body) {
    const BaseTable& table = written(tree);
    const std::vector<Written> columns = targets(table, body.columns);
    insertTarget_ = &table;
    std::string names, values;
    for (const Written& column : columns)
        names += (names.empty() ? "" : ", ") + column.column;
    Translation result;
    if (body.select) {
        Translation selected;
        values = selectText(*body.select, selected);
        if (selected.types.size() != columns.size())
            throw Problem{.code = Fql::selectCount, .position = body.select->position};
        for (std::size_t i = 0; i < columns.size(); ++i)
            checkAssigned(columns[i], selected.types[i], body.select->position);
    } else {
        if (body.values.size() != columns.size())
            throw Problem{.code = Fql::valuesCount, .position = body.values.front()->position};
        for (std::size_t i = 0; i < columns.size(); ++i)
            values += (i == 0 ? "VALUES (" : ", ") + assigned(columns[i], *body.values[i]);
        values += ")";
    }
    result.statement = "INSERT INTO " + quotedName(table.name) + " (" + names + ") " + values;
    result.isLasting = isLasting_;
    return result;
}

Translation Translator::update(const StatementTree& tree, const Update& body) {
    const BaseTable& table = written(tree);
    const std::vector<Written> columns = targets(table, body.columns);
    Scope scope;
    const Entered entered(scope_, scope);
    scope.tables.push_back(tableNamed(changedTable(tree)));
    std::string text = "UPDATE " + quotedName(table.name) + " AS " + scope.tables.front().name + " SET ";
    for (std::size_t i = 0; i < columns.size(); ++i)
        text += (i == 0 ? "" : ", ") + columns[i].column + " = " + assigned(columns[i], *body.values[i]);
    if (table.keys == RecordKeys::idAndCount) text += ", kestrel_modifications = kestrel_modifications + 1";
    if (body.condition) text += " WHERE " + condition(*body.condition);
    Translation result;
    result.statement = std::move(text);
    result.isLasting = isLasting_;
    return result;
}

Translation Translator::remove(const StatementTree& tree, const Delete& body) {
    const BaseTable& table = written(tree);
    Scope scope;
    const Entered entered(scope_, scope);
    scope.tables.push_back(tableNamed(changedTable(tree)));
    Translation result;
    // Without a condition the store would not name the records that go.
    result.statement = "DELETE FROM " + quotedName(table.name) + " AS " + scope.tables.front().name +
                       " WHERE " + (body.condition ? condition(*body.condition) : "rowid IS NOT NULL");
    result.isLasting = isLasting_;
    return result;
}

} // namespace host::sql
