#include "host/sql/Definitions.h"

#include "host/calc/Environment.h"
#include "host/sql/Connection.h"
#include "host/sql/Problems.h"
#include "host/sql/Store.h"
#include "host/sql/SystemTables.h"

#include <algorithm>
#include <utility>

namespace host::sql {

namespace {

/// A change of a copy of the schema, and of the store.
class Definer {
public:
    Definer(const StatementTree& tree, Connection& connection, Schema schema)
        : tree_(tree), connection_(connection), schema_(std::move(schema)) {}

    Schema take() { return std::move(schema_); }

    void operator()(const CreateTable& body);
    void operator()(const DropTable& body);
    void operator()(const AddColumn& body);
    void operator()(const DropColumn& body);
    void operator()(const SetDefault& body) { field(body.column).autoEnter = body.initial; }
    void operator()(const ChangeIndex& body);
    void operator()(const auto& /*no definition*/) { refuse(); }

private:
    [[noreturn]] void refuse() const { throw Problem{.code = Fql::refused, .position = tree_.tablePosition}; }

    void run(const std::string& statement) {
        if (connection_.run(statement) != SQLITE_OK) refuse();
    }

    [[nodiscard]] std::size_t place() const {
        const auto occurrence = schema_.occurrence(tree_.table);
        if (!occurrence)
            throw Problem{.code = Fql::noTable, .position = tree_.tablePosition, .name = tree_.table};
        return schema_.occurrences[*occurrence].table;
    }

    BaseTable& table() { return schema_.tables[place()]; }

    std::size_t fieldPlace(const std::u16string& name) {
        const std::vector<Field>& fields = table().fields;
        const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& field) {
            return calc::foldName(field.name) == calc::foldName(name);
        });
        if (found == fields.end())
            throw Problem{.code = Fql::noColumn, .position = tree_.tablePosition, .name = name};
        return static_cast<std::size_t>(found - fields.begin());
    }

    Field& field(const std::u16string& name) { return table().fields[fieldPlace(name)]; }

    Field made(const ColumnDefinition& column) const;
    [[nodiscard]] std::string indexName(std::u16string_view kind, const Field& field);
    void makeUnique(const ColumnDefinition& column, const Field& field);
    void checkName(const std::u16string& name) const;

    const StatementTree& tree_;
    Connection& connection_;
    Schema schema_;
};

/// Names stand on one line of a list.
void Definer::checkName(const std::u16string& name) const {
    if (std::any_of(name.begin(), name.end(), [](char16_t unit) { return unit < u' '; })) refuse();
}

Field Definer::made(const ColumnDefinition& column) const {
    checkName(column.name);
    Field field;
    field.name = column.name;
    field.type = column.type;
    field.kind = column.isGlobal ? FieldKind::global : FieldKind::normal;
    field.repetitions = column.repetitions;
    field.isIndexed = column.isUnique;
    field.autoEnter = column.initial.value_or(std::u16string());
    return field;
}

std::string Definer::indexName(std::u16string_view kind, const Field& field) {
    return quotedName(u"kestrel " + std::u16string(kind) + u" " + table().name + u" " + field.name);
}

void Definer::makeUnique(const ColumnDefinition& column, const Field& field) {
    if (column.isUnique && field.hasColumns())
        run("CREATE UNIQUE INDEX " + indexName(u"unique", field) + " ON " + quotedName(table().name) + " (" +
            columnName(field) + ")");
}

std::string declarations(const ColumnDefinition& column, const Field& field, std::string_view before) {
    std::string text;
    for (int repetition = 1; field.hasColumns() && repetition <= field.repetitions; ++repetition) {
        text += std::string(before) + columnDeclaration(field, repetition);
        // A value that the record's owner enters comes after the record.
        if (repetition == 1 && column.isRequired && !column.initial) text += " NOT NULL";
    }
    return text;
}

void Definer::operator()(const CreateTable& body) {
    if (schema_.occurrence(tree_.table) || systemTable(tree_.table) != nullptr) refuse();
    checkName(tree_.table);
    BaseTable table{.name = tree_.table, .fields = {}, .keys = RecordKeys::idAndCount};
    std::string columns;
    for (const ColumnDefinition& column : body.columns) {
        table.fields.push_back(made(column));
        columns += declarations(column, table.fields.back(), ", ");
    }
    run(tableStatement(table.name, columns));
    schema_.occurrences.push_back({.name = tree_.table, .table = schema_.tables.size()});
    schema_.tables.push_back(std::move(table));
    for (std::size_t i = 0; i < body.columns.size(); ++i)
        makeUnique(body.columns[i], schema_.tables.back().fields[i]);
}

template<typename Elements, typename Wanted>
void eraseIf(Elements& elements, Wanted wanted) {
    elements.erase(std::remove_if(elements.begin(), elements.end(), wanted), elements.end());
}

void Definer::operator()(const DropTable& /*body*/) {
    const std::size_t gone = place();
    run("DROP TABLE " + quotedName(schema_.tables[gone].name));
    for (std::size_t i = schema_.occurrences.size(); i-- > 0;) {
        if (schema_.occurrences[i].table == gone) {
            eraseIf(schema_.layouts, [&](const Layout& layout) { return layout.occurrence == i; });
            eraseIf(schema_.valueLists, [&](const ValueList& list) { return list.occurrence == i; });
            eraseIf(schema_.relationships, [&](const Relationship& relationship) {
                return relationship.sides[0].occurrence == i || relationship.sides[1].occurrence == i;
            });
            schema_.occurrences.erase(schema_.occurrences.begin() + static_cast<std::ptrdiff_t>(i));
            const auto move = [&](std::size_t& occurrence) { occurrence -= occurrence > i ? 1 : 0; };
            for (Layout& layout : schema_.layouts)
                move(layout.occurrence);
            for (ValueList& list : schema_.valueLists)
                if (list.occurrence) move(*list.occurrence);
            for (Relationship& relationship : schema_.relationships)
                for (Relationship::Side& side : relationship.sides)
                    move(side.occurrence);
        } else if (schema_.occurrences[i].table > gone) {
            --schema_.occurrences[i].table;
        }
    }
    schema_.tables.erase(schema_.tables.begin() + static_cast<std::ptrdiff_t>(gone));
}

void Definer::operator()(const AddColumn& body) {
    if (calc::foldName(body.column.name).starts_with(u"kestrel_")) refuse();
    Field field = made(body.column);
    for (int repetition = 1; field.hasColumns() && repetition <= field.repetitions; ++repetition)
        run("ALTER TABLE " + quotedName(table().name) + " ADD COLUMN " +
            columnDeclaration(field, repetition) +
            (repetition == 1 && body.column.isRequired && !body.column.initial ? " NOT NULL" : ""));
    makeUnique(body.column, field);
    table().fields.push_back(std::move(field));
}

void Definer::operator()(const DropColumn& body) {
    const std::size_t owner = place(), gone = fieldPlace(body.column);
    const auto isOwners = [&](std::size_t occurrence) {
        return schema_.occurrences[occurrence].table == owner;
    };
    const auto move = [&](std::size_t& field) {
        if (field == gone) refuse(); // a relationship or a value list needs it
        field -= field > gone ? 1 : 0;
    };
    for (Relationship& relationship : schema_.relationships)
        for (std::size_t side = 0; side < 2; ++side) {
            if (!isOwners(relationship.sides[side].occurrence)) continue;
            for (Relationship::Predicate& predicate : relationship.predicates)
                move(predicate.fields[side]);
            if (std::optional<std::size_t>& sortField = relationship.sides[side].sortField) move(*sortField);
        }
    for (ValueList& list : schema_.valueLists)
        if (list.occurrence && isOwners(*list.occurrence)) move(list.field);
    BaseTable& table = schema_.tables[owner];
    const Field& field = table.fields[gone];
    for (const std::u16string_view kind : {u"unique", u"index"})
        run("DROP INDEX IF EXISTS " + indexName(kind, field));
    for (int repetition = 1; field.hasColumns() && repetition <= field.repetitions; ++repetition)
        run("ALTER TABLE " + quotedName(table.name) + " DROP COLUMN " + columnName(field, repetition));
    table.fields.erase(table.fields.begin() + static_cast<std::ptrdiff_t>(gone));
}

void Definer::operator()(const ChangeIndex& body) {
    Field& indexed = field(body.column);
    if (!indexed.hasColumns()) refuse();
    if (body.isMade)
        run("CREATE INDEX IF NOT EXISTS " + indexName(u"index", indexed) + " ON " + quotedName(table().name) +
            " (" + columnName(indexed) + ")");
    else
        run("DROP INDEX IF EXISTS " + indexName(u"index", indexed));
    indexed.isIndexed = body.isMade;
}

} // namespace

bool isDefinition(const StatementTree& tree) {
    return !std::holds_alternative<std::unique_ptr<Select>>(tree.body) &&
           !std::holds_alternative<Insert>(tree.body) && !std::holds_alternative<Update>(tree.body) &&
           !std::holds_alternative<Delete>(tree.body);
}

void define(const StatementTree& tree, Connection& connection, Schema& schema) {
    Definer definer(tree, connection, schema);
    if (connection.run("SAVEPOINT kestrel_definition") != SQLITE_OK) throw Problem{.code = Fql::refused};
    try {
        std::visit(definer, tree.body);
    } catch (...) {
        connection.run("ROLLBACK TO kestrel_definition; RELEASE kestrel_definition");
        throw;
    }
    connection.run("RELEASE kestrel_definition");
    schema = definer.take();
    ++schema.version;
}

} // namespace host::sql
