#pragma once

#include "host/sql/Syntax.h"
#include "host/sql/Tokens.h"

#include <initializer_list>
#include <string_view>
#include <vector>

namespace host::sql {

/// Reads one statement. Everything that it cannot read throws Problem.
class Parser {
public:
    explicit Parser(std::u16string_view statement) : tokens_(tokensOf(statement)) {}

    StatementTree statement();

private:
    // Tokens
    [[nodiscard]] const Token& token(std::size_t ahead = 0) const;
    [[nodiscard]] bool isNext(std::string_view word, std::size_t ahead = 0) const;
    bool take(std::string_view word);
    bool takeAll(std::initializer_list<std::string_view> words);
    void expect(std::string_view word);
    [[noreturn]] void fail() const;
    /// The next part of a list; throws where there are more than the store takes.
    [[nodiscard]] bool takeNext(std::size_t parts);
    [[nodiscard]] bool isName(std::size_t ahead = 0) const;
    std::u16string name();
    std::u16string text();
    /// An unsigned number; `most` is the largest that is allowed.
    double number(double most);

    // Expressions, from the loosest binding to the tightest
    ExpressionRef condition();
    ExpressionRef conjunction(std::string_view word);
    ExpressionRef negation();
    ExpressionRef predicate();
    ExpressionRef likeTail(ExpressionRef value);
    ExpressionRef inTail(ExpressionRef value);
    ExpressionRef comparisonTail(ExpressionRef value);
    ExpressionRef sum();
    ExpressionRef product();
    ExpressionRef power();
    ExpressionRef sign();
    ExpressionRef primary();
    ExpressionRef parenthesized();
    ExpressionRef wordPrimary();
    ExpressionRef choice();
    ExpressionRef cast();
    ExpressionRef interval();
    ExpressionRef moment(DataType type);
    ExpressionRef call();
    ExpressionRef column();
    ExpressionRef parameter();
    std::unique_ptr<Select> subselect();
    void list(std::vector<ExpressionRef>& expressions);
    int repetition();

    // Queries
    std::unique_ptr<Select> select(bool isSubquery);
    Query query();
    Item item();
    void tables(std::vector<TableReference>& tables);
    TableReference table(Join join);
    void orders(Select& select);
    void window(Select& select);

    // Changes
    void insert(StatementTree& tree);
    void update(StatementTree& tree);
    void createTable(StatementTree& tree);
    void alterTable(StatementTree& tree);
    void tableName(StatementTree& tree);
    void indexColumn(StatementTree& tree, bool isMade);
    Target target(bool isSet);
    ExpressionRef value();
    ColumnDefinition columnDefinition();
    void columnOption(ColumnDefinition& column);
    std::u16string initialValue();
    /// A type's name; its length, if any, goes to `length`.
    DataType type(int& length);

    std::vector<Token> tokens_;
    std::size_t place_ = 0;
    int parameters_ = 0, depth_ = 0;
};

} // namespace host::sql
