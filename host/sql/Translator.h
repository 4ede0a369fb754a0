#pragma once

#include "host/sql/Problems.h"
#include "host/sql/Schema.h"
#include "host/sql/Syntax.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::sql {

/// A statement in the store's own dialect. Parameters keep their positions.
struct Translation {
    std::string statement;
    std::vector<DataType> types; ///< of the columns of its answer, hidden ones as well
    /// The cut that the store cannot make: a percentage of rows, or rows equal to the last one.
    std::optional<Fetch> fetch;
    std::int64_t offset = 0;       ///< with `fetch`
    std::size_t visible = 0;       ///< columns of the answer; hidden ones follow
    std::vector<std::size_t> ties; ///< columns that are equal in rows of the same rank
    bool isLasting = true;         ///< the same until the schema changes
};

/// Translates statements over a schema's occurrences. Everything that cannot be translated throws Problem.
class Translator {
public:
    /// The parameters give the types of `?`.
    Translator(const Schema& schema, std::u16string_view fileName, const DataVect& parameters)
        : schema_(schema), fileName_(fileName), parameters_(parameters) {}

    Translation select(const Select& select);
    /// INSERT, UPDATE and DELETE.
    Translation change(const StatementTree& tree);

private:
    /// A translated expression.
    struct Piece {
        std::string sql;
        DataType type;        ///< invalid for NULL
        bool isNoisy = false; ///< a number that binary fractions may have blurred
    };
    struct ScopeTable {
        std::u16string alias; ///< folded
        std::string name;     ///< in the statement that is made
        const BaseTable* table;
        std::size_t occurrence; ///< none for a system table
        bool isSystem;
        std::map<std::u16string, std::size_t> fields; ///< places by folded name
    };
    struct BareColumn {
        std::size_t position;
        std::u16string name;
    };
    /// The tables that names are looked up in; those of the surrounding query follow.
    struct Scope {
        std::vector<ScopeTable> tables;
        Scope* outer = nullptr;
        std::vector<std::string> groups;
        std::vector<BareColumn> bare; ///< outside of aggregates and groups
        bool hasAggregate = false, isInAggregate = false;
    };
    class Entered;
    struct Place {
        Scope* scope;
        const ScopeTable* table;
        std::size_t field;
    };

    // Expressions
    Piece emit(const Expression& expression);
    Piece emitKind(const Expression& expression, bool allowsAggregate);
    Piece settled(const Expression& expression);
    Piece literal(const Expression& expression);
    Piece parameter(const Expression& expression);
    Piece column(const Expression& expression);
    Piece recordKey(const Expression& expression, bool isId);
    Piece sign(const Expression& expression);
    Piece arithmetic(const Expression& expression);
    Piece plusInterval(const Expression& expression, const Piece& left);
    Piece conjunction(const Expression& expression, bool allowsAggregate);
    Piece comparison(const Expression& expression, bool allowsAggregate);
    Piece quantified(const Expression& expression);
    Piece like(const Expression& expression, bool allowsAggregate);
    Piece isNull(const Expression& expression, bool allowsAggregate);
    Piece between(const Expression& expression, bool allowsAggregate);
    Piece inList(const Expression& expression, bool allowsAggregate);
    Piece inSelect(const Expression& expression);
    Piece subquery(const Expression& expression);
    Piece call(const Expression& expression);
    Piece common(const Expression& expression, std::string_view function);
    Piece strval(const Expression& expression);
    Piece aggregate(const Expression& expression);
    Piece choice(const Expression& expression);
    Piece cast(const Expression& expression);
    std::string condition(const Expression& expression, bool allowsAggregate = false);
    /// An operand of a predicate, which must have the same type as `other`.
    Piece operand(const Expression& expression, bool allowsAggregate, DataType other, std::size_t position);

    // Names
    Place find(const Expression& column);
    Place findQualified(const Expression& column);
    std::string columnOf(const ScopeTable& table, std::size_t field, int repetition,
                         std::size_t position) const;
    void noteBare(Scope& scope, const Expression& column) const;
    ScopeTable tableNamed(const TableReference& reference);

    // Queries
    std::string selectText(const Select& select, Translation& result);
    std::string unionText(const Select& select, Translation& result);
    std::string queryText(const Query& query, const Select& select, Translation& result);
    std::string items(const Query& query, std::vector<DataType>& types);
    std::string allColumns(const Item& item, std::vector<DataType>& types);
    std::string tables(const Query& query);
    std::string groups(const Query& query);
    std::string orders(const Query& query, const Select& select, Translation& result, std::string& hidden);
    /// Notes the column that ORDER BY sorts by; makes a hidden one where `hidden` is there to take it.
    void addTie(const Order& order, std::string ordered, Translation& result, std::string* hidden) const;
    std::string order(const Query& query, const Order& order, std::size_t columns, bool isAlone);
    std::string window(const Select& select, Translation& result) const;
    std::string inner(const Select& select, std::vector<DataType>& types);

    // Changes
    struct Written {
        const Field* field;
        std::string column;
    };
    Translation insert(const StatementTree& tree, const Insert& body);
    Translation update(const StatementTree& tree, const Update& body);
    Translation remove(const StatementTree& tree, const Delete& body);
    const BaseTable& written(const StatementTree& tree) const;
    Written target(const BaseTable& table, const Target& target) const;
    std::vector<Written> targets(const BaseTable& table, const std::vector<Target>& columns) const;
    static void checkAssigned(const Written& target, DataType type, std::size_t position);
    std::string assigned(const Written& target, const Expression& value);

    const Schema& schema_;
    std::u16string_view fileName_;
    const DataVect& parameters_;
    Scope* scope_ = nullptr;
    bool allowsAggregate_ = false; ///< for the expression that is emitted next
    bool isLasting_ = true;
    const BaseTable* insertTarget_ = nullptr;
    int tables_ = 0; ///< counts names
};

} // namespace host::sql
