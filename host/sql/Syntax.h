#pragma once

#include "host/values/Data.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// A statement as it was read.

namespace host::sql {

struct Select;
struct Expression;
using ExpressionRef = std::unique_ptr<Expression>;

enum class ExpressionKind : std::uint8_t {
    literal,   ///< text, number, date, time or timestamp in `name`; NULL has the type invalid
    parameter, ///< `number` from 1; `name` is the file name of `? AS 'name'`
    column,    ///< `qualifier`, `name`, `number` is the repetition
    sign,      ///< unary: `word` + or -
    arithmetic,
    conjunction, ///< `word` AND or OR
    negation,
    comparison,
    quantified, ///< comparison with ANY or ALL of `select`; isNegated for ALL
    like,       ///< value, pattern and perhaps the escape
    isNull,
    between,
    inList, ///< the value, then the list
    inSelect,
    exists,
    subquery,
    call,
    aggregate, ///< without operands: COUNT ( * )
    choice,    ///< CASE: perhaps the value, pairs of condition and result, perhaps the result otherwise
    cast,      ///< `type` and in `number` the longest text, or 0
    interval   ///< `word` is the unit
};

struct Expression {
    ExpressionKind kind;
    std::size_t position = 0;
    std::string word = {}; ///< operator, function or unit, in upper case
    std::u16string qualifier = {}, name = {};
    DataType type = DataType::invalid;
    int number = 1;
    bool isNegated = false;  ///< NOT LIKE, NOT IN, IS NOT NULL ...
    bool isDistinct = false; ///< of an aggregate
    bool hasValue = false;   ///< CASE x
    bool hasElse = false;
    std::vector<ExpressionRef> operands = {};
    std::unique_ptr<Select> select = {};
    int depth = 1; ///< of the tree from here
};

struct Item {
    ExpressionRef expression; ///< null for `*`
    std::u16string alias;     ///< or the qualifier of `*`
    std::size_t position = 0;
};

enum class Join : std::uint8_t { comma, inner, left };

struct TableReference {
    std::u16string name, alias;
    Join join = Join::comma;
    ExpressionRef condition; ///< of a join
    std::size_t position = 0;
};

/// One SELECT of a union.
struct Query {
    bool isDistinct = false;
    bool isUnionAll = false; ///< how it follows the one before
    std::vector<Item> items;
    std::vector<TableReference> tables;
    ExpressionRef condition;
    std::vector<ExpressionRef> groups;
    ExpressionRef having;
    std::size_t position = 0;
};

struct Order {
    ExpressionRef expression;
    bool isDescending = false;
};

struct Fetch {
    double count = 1;
    bool isPercent = false, hasTies = false;
};

struct Select {
    std::vector<Query> queries;
    std::vector<Order> orders;
    std::int64_t offset = 0;
    std::optional<Fetch> fetch;
    std::vector<ExpressionRef> updated; ///< FOR UPDATE OF
    std::size_t position = 0;
};

/// A column that is written.
struct Target {
    std::u16string name;
    int repetition = 1;
    std::size_t position = 0;
};

struct Insert {
    std::vector<Target> columns;
    std::vector<ExpressionRef> values;
    std::unique_ptr<Select> select; ///< instead of values
};

struct Update {
    std::vector<Target> columns;
    std::vector<ExpressionRef> values;
    ExpressionRef condition;
};

struct Delete {
    ExpressionRef condition;
};

struct ColumnDefinition {
    std::u16string name;
    DataType type = DataType::text;
    int repetitions = 1;
    std::optional<std::u16string> initial; ///< DEFAULT as a calculation
    bool isUnique = false, isRequired = false, isGlobal = false;
    std::size_t position = 0;
};

struct CreateTable {
    std::vector<ColumnDefinition> columns;
};
struct DropTable {};
struct AddColumn {
    ColumnDefinition column;
};
struct DropColumn {
    std::u16string column;
};
struct SetDefault {
    std::u16string column, initial; ///< a calculation; empty for none
};
struct ChangeIndex {
    std::u16string column;
    bool isMade;
};

struct StatementTree {
    std::u16string table; ///< that is changed
    std::size_t tablePosition = 0;
    std::variant<std::unique_ptr<Select>, Insert, Update, Delete, CreateTable, DropTable, AddColumn,
                 DropColumn, SetDefault, ChangeIndex>
        body;
    int parameters = 0; ///< how many `?` it has
};

} // namespace host::sql
