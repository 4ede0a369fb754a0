#include "host/sql/Parser.h"

#include "host/sql/Problems.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace host::sql {

namespace {

constexpr std::size_t kMostParts = 2'000; ///< columns of a query or a table
constexpr std::size_t kMostTables = 50;   ///< of one SELECT; the store joins at most 64

} // namespace

const Token& Parser::token(std::size_t ahead) const {
    return tokens_[std::min(place_ + ahead, tokens_.size() - 1)];
}

bool Parser::isNext(std::string_view word, std::size_t ahead) const { return token(ahead).word == word; }

bool Parser::take(std::string_view word) {
    if (!isNext(word)) return false;
    ++place_;
    return true;
}

bool Parser::takeAll(std::initializer_list<std::string_view> words) {
    std::size_t ahead = 0;
    for (const std::string_view word : words)
        if (!isNext(word, ahead++)) return false;
    place_ += words.size();
    return true;
}

void Parser::expect(std::string_view word) {
    if (!take(word)) fail();
}

void Parser::fail() const { throw Problem{.code = Fql::syntax, .position = token().position}; }

bool Parser::takeNext(std::size_t parts) {
    if (!take(",")) return false;
    if (parts >= kMostParts) throw Problem{.code = Fql::refused, .position = token().position};
    return true;
}

bool Parser::isName(std::size_t ahead) const {
    const Token& next = token(ahead);
    return next.kind == TokenKind::quotedName || (next.kind == TokenKind::word && !isReserved(next.word));
}

std::u16string Parser::name() {
    if (!isName()) fail();
    return tokens_[place_++].text;
}

std::u16string Parser::text() {
    if (token().kind != TokenKind::text) fail();
    return tokens_[place_++].text;
}

double Parser::number(double most) {
    const Token& next = token();
    if (next.kind != TokenKind::number) fail();
    const double value = std::strtod(std::string(next.text.begin(), next.text.end()).c_str(), nullptr);
    if (!(value <= most)) fail();
    ++place_;
    return value;
}

StatementTree Parser::statement() {
    StatementTree tree;
    if (isNext("SELECT"))
        tree.body = select(false);
    else if (takeAll({"INSERT", "INTO"}))
        insert(tree);
    else if (take("UPDATE"))
        update(tree);
    else if (takeAll({"DELETE", "FROM"})) {
        tableName(tree);
        tree.body = Delete{take("WHERE") ? condition() : nullptr};
    } else if (takeAll({"TRUNCATE", "TABLE"})) {
        tableName(tree);
        tree.body = Delete{};
    } else if (takeAll({"CREATE", "TABLE"}))
        createTable(tree);
    else if (takeAll({"ALTER", "TABLE"}))
        alterTable(tree);
    else if (takeAll({"DROP", "TABLE"})) {
        tableName(tree);
        tree.body = DropTable{};
    } else if (takeAll({"CREATE", "INDEX", "ON"}))
        indexColumn(tree, true);
    else if (takeAll({"DROP", "INDEX", "ON"}))
        indexColumn(tree, false);
    else
        fail();
    take(";");
    if (token().kind != TokenKind::end) fail();
    tree.parameters = parameters_;
    return tree;
}

std::unique_ptr<Select> Parser::select(bool isSubquery) {
    auto made = std::make_unique<Select>();
    made->position = token().position;
    made->queries.push_back(query());
    while (take("UNION")) {
        const bool isAll = take("ALL");
        made->queries.push_back(query());
        made->queries.back().isUnionAll = isAll;
    }
    orders(*made);
    if (isSubquery) return made;
    window(*made);
    if (takeAll({"FOR", "UPDATE"}) && take("OF")) {
        do
            made->updated.push_back(column());
        while (takeNext(made->updated.size()));
    }
    return made;
}

Query Parser::query() {
    Query made;
    made.position = token().position;
    expect("SELECT");
    made.isDistinct = take("DISTINCT");
    do
        made.items.push_back(item());
    while (takeNext(made.items.size()));
    expect("FROM");
    tables(made.tables);
    if (take("WHERE")) made.condition = condition();
    if (takeAll({"GROUP", "BY"})) list(made.groups);
    if (take("HAVING")) made.having = condition();
    return made;
}

Item Parser::item() {
    Item made{.expression = nullptr, .alias = {}, .position = token().position};
    if (take("*")) return made;
    if (isName() && isNext(".", 1) && isNext("*", 2)) {
        made.alias = name();
        place_ += 2;
        return made;
    }
    made.expression = condition();
    if (take("AS") || isName()) made.alias = name();
    return made;
}

void Parser::tables(std::vector<TableReference>& tables) {
    tables.push_back(table(Join::comma));
    for (;;) {
        if (tables.size() > kMostTables)
            throw Problem{.code = Fql::tooManyTables, .position = tables.back().position};
        if (take(","))
            tables.push_back(table(Join::comma));
        else if (take("JOIN") || takeAll({"INNER", "JOIN"}))
            tables.push_back(table(Join::inner));
        else if (takeAll({"LEFT", "JOIN"}) || takeAll({"LEFT", "OUTER", "JOIN"}))
            tables.push_back(table(Join::left));
        else
            return;
    }
}

TableReference Parser::table(Join join) {
    TableReference made{
        .name = {}, .alias = {}, .join = join, .condition = nullptr, .position = token().position};
    made.name = name();
    made.alias = take("AS") || isName() ? name() : made.name;
    if (join != Join::comma) {
        expect("ON");
        made.condition = condition();
    }
    return made;
}

void Parser::orders(Select& select) {
    if (!takeAll({"ORDER", "BY"})) return;
    do {
        Order order{.expression = condition(), .isDescending = false};
        order.isDescending = take("DESC");
        if (!order.isDescending) take("ASC");
        select.orders.push_back(std::move(order));
    } while (takeNext(select.orders.size()));
}

void Parser::window(Select& select) {
    constexpr double most = 9'007'199'254'740'992.0; // whole numbers up to here are exact
    const auto rows = [&] {
        if (!take("ROW")) expect("ROWS");
    };
    const auto whole = [&](double least) {
        const double count = number(most);
        if (count < least || count != std::floor(count)) fail();
        return count;
    };
    if (take("OFFSET")) {
        select.offset = static_cast<std::int64_t>(whole(0));
        rows();
    }
    if (!takeAll({"FETCH", "FIRST"})) return;
    Fetch fetch;
    if (token().kind == TokenKind::number) {
        fetch.isPercent = isNext("PERCENT", 1);
        fetch.count = fetch.isPercent ? number(100) : whole(0);
        take("PERCENT");
    }
    rows();
    fetch.hasTies = takeAll({"WITH", "TIES"});
    if (!fetch.hasTies) expect("ONLY");
    if (fetch.hasTies && select.orders.empty()) fail();
    select.fetch = fetch;
}

} // namespace host::sql
