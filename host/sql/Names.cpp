#include "host/calc/Environment.h"
#include "host/sql/Store.h"
#include "host/sql/Translator.h"

#include <optional>

/// Where names are looked up.

namespace host::sql {

Translator::Place Translator::findQualified(const Expression& column) {
    const std::u16string alias = calc::foldName(column.qualifier), name = calc::foldName(column.name);
    for (Scope* scope = scope_; scope != nullptr; scope = scope->outer)
        for (const ScopeTable& table : scope->tables) {
            if (table.alias != alias) continue;
            if (const auto field = table.fields.find(name); field != table.fields.end())
                return {scope, &table, field->second};
            throw Problem{.code = Fql::noColumnInTable, .position = column.position, .name = column.name};
        }
    throw Problem{.code = Fql::noQualifier, .position = column.position, .name = column.qualifier};
}

Translator::Place Translator::find(const Expression& column) {
    if (!column.qualifier.empty()) return findQualified(column);
    const std::u16string name = calc::foldName(column.name);
    for (Scope* scope = scope_; scope != nullptr; scope = scope->outer) {
        std::optional<Place> found;
        for (const ScopeTable& table : scope->tables)
            if (const auto field = table.fields.find(name); field != table.fields.end()) {
                if (found)
                    throw Problem{
                        .code = Fql::ambiguousColumn, .position = column.position, .name = column.name};
                found = Place{scope, &table, field->second};
            }
        if (found) return *found;
    }
    throw Problem{.code = Fql::noColumn, .position = column.position, .name = column.name};
}

std::string Translator::columnOf(const ScopeTable& table, std::size_t field, int repetition,
                                 std::size_t position) const {
    const Field& described = table.table->fields[field];
    if (repetition > described.repetitions) throw Problem{.code = Fql::badRepetition, .position = position};
    if (table.isSystem) return table.name + ".column" + std::to_string(field + 1);
    if (described.hasColumns()) return table.name + "." + columnName(described, repetition);
    const std::string record = table.table->keys == RecordKeys::none ? "0" : table.name + ".rowid";
    return "kestrel_field(" + std::to_string(table.occurrence) + ", " + std::to_string(field) + ", " +
           std::to_string(repetition) + ", " + record + ")";
}

void Translator::noteBare(Scope& scope, const Expression& column) const {
    if (!scope.isInAggregate) scope.bare.push_back({column.position, column.name});
}

Translator::Piece Translator::column(const Expression& expression) {
    const std::u16string name = calc::foldName(expression.name);
    if (name == u"rowid" || name == u"rowmodid") return recordKey(expression, name == u"rowid");
    const Place place = find(expression);
    noteBare(*place.scope, expression);
    const Field& field = place.table->table->fields[place.field];
    return {columnOf(*place.table, place.field, expression.number, expression.position), field.type};
}

Translator::Piece Translator::recordKey(const Expression& expression, bool isId) {
    const std::u16string alias = calc::foldName(expression.qualifier);
    if (alias.empty() && scope_ != nullptr && scope_->tables.size() > 1)
        throw Problem{
            .code = Fql::unqualifiedRowId, .position = expression.position, .name = expression.name};
    for (Scope* scope = scope_; scope != nullptr; scope = scope->outer)
        for (const ScopeTable& table : scope->tables) {
            if (!alias.empty() && table.alias != alias) continue;
            if (table.table->keys == RecordKeys::none)
                throw Problem{
                    .code = Fql::noColumn, .position = expression.position, .name = expression.name};
            noteBare(*scope, expression);
            if (isId) return {table.name + ".rowid", DataType::number};
            const bool isCounted = table.table->keys == RecordKeys::idAndCount;
            return {isCounted ? table.name + ".kestrel_modifications" : "0", DataType::number};
        }
    throw Problem{.code = Fql::noQualifier, .position = expression.position, .name = expression.qualifier};
}

} // namespace host::sql
