#include "host/sql/Translator.h"

#include "host/calc/Environment.h"
#include "host/sql/Scopes.h"
#include "host/sql/Store.h"
#include "host/sql/SystemTables.h"

#include <algorithm>
#include <cstdlib>

namespace host::sql {

namespace {

constexpr std::string_view kDescending = " DESC";

} // namespace

Translation Translator::select(const Select& select) {
    Translation result;
    result.statement = selectText(select, result);
    result.isLasting = isLasting_;
    return result;
}

std::string Translator::inner(const Select& select, std::vector<DataType>& types) {
    Translation result;
    std::string text = selectText(select, result);
    types = std::move(result.types);
    return "(" + text + ")";
}

std::string Translator::selectText(const Select& select, Translation& result) {
    std::string text = select.queries.size() == 1 ? queryText(select.queries.front(), select, result)
                                                  : unionText(select, result);
    return text + window(select, result);
}

std::string Translator::unionText(const Select& select, Translation& result) {
    static const Select none;
    std::string text;
    for (const Query& query : select.queries) {
        Translation part;
        const std::string queried = queryText(query, none, part);
        if (text.empty()) {
            result.types = part.types;
            text = queried;
            continue;
        }
        if (part.types.size() != result.types.size())
            throw Problem{.code = Fql::unionCount, .position = query.position};
        for (std::size_t i = 0; i < part.types.size(); ++i) {
            if (result.types[i] == DataType::invalid) result.types[i] = part.types[i];
            if (part.types[i] != result.types[i] && part.types[i] != DataType::invalid)
                throw Problem{.code = Fql::unionTypes, .position = query.position};
        }
        text += (query.isUnionAll ? " UNION ALL " : " UNION ") + queried;
    }
    result.visible = result.types.size();
    for (std::size_t i = 0; i < select.orders.size(); ++i) {
        const std::string ordered = order(select.queries.front(), select.orders[i], result.visible, false);
        text += (i == 0 ? " ORDER BY " : ", ") + ordered;
        if (select.fetch && select.fetch->hasTies) addTie(select.orders[i], ordered, result, nullptr);
    }
    return text;
}

std::string Translator::queryText(const Query& query, const Select& select, Translation& result) {
    Scope scope;
    const Entered entered(scope_, scope);
    const std::string from = tables(query);
    const std::string where = query.condition ? " WHERE " + condition(*query.condition) : "";
    const std::string grouped = groups(query);
    scope.bare.clear();
    const std::string columns = items(query, result.types);
    result.visible = result.types.size();
    const std::string having = query.having ? " HAVING " + condition(*query.having, true) : "";
    std::string hidden;
    const std::string ordered = orders(query, select, result, hidden);
    const bool isGrouped = scope.hasAggregate || !query.groups.empty() || query.having;
    if (isGrouped && !scope.bare.empty())
        throw Problem{.code = Fql::notGrouped,
                      .position = scope.bare.front().position,
                      .name = scope.bare.front().name};
    for (const ExpressionRef& updated : select.updated)
        emit(*updated);
    return (query.isDistinct ? "SELECT DISTINCT " : "SELECT ") + columns + hidden + from + where + grouped +
           having + ordered;
}

Translator::ScopeTable Translator::tableNamed(const TableReference& reference) {
    const std::u16string alias = calc::foldName(reference.alias);
    for (const ScopeTable& other : scope_->tables)
        if (other.alias == alias)
            throw Problem{.code = Fql::tableTwice, .position = reference.position, .name = reference.alias};
    const auto occurrence = schema_.occurrence(reference.name);
    const BaseTable* table = occurrence ? &schema_.tableOf(*occurrence) : systemTable(reference.name);
    if (table == nullptr)
        throw Problem{.code = Fql::noTable, .position = reference.position, .name = reference.name};
    if (table == insertTarget_)
        throw Problem{.code = Fql::subqueryOfTarget, .position = reference.position, .name = reference.name};
    ScopeTable made{.alias = alias,
                    .name = "t" + std::to_string(tables_++),
                    .table = table,
                    .occurrence = occurrence.value_or(0),
                    .isSystem = !occurrence,
                    .fields = {}};
    for (std::size_t i = 0; i < table->fields.size(); ++i)
        made.fields.emplace(calc::foldName(table->fields[i].name), i);
    return made;
}

std::string Translator::tables(const Query& query) {
    static constexpr std::string_view joins[] = {", ", " JOIN ", " LEFT JOIN "};
    std::string text;
    for (const TableReference& reference : query.tables) {
        ScopeTable table = tableNamed(reference);
        text += text.empty() ? std::string_view(" FROM ") : joins[static_cast<std::size_t>(reference.join)];
        text += table.isSystem ? "(" + systemRows(*table.table, schema_, fileName_) + ")"
                               : quotedName(table.table->name);
        text += " AS " + table.name;
        isLasting_ = isLasting_ && !table.isSystem;
        scope_->tables.push_back(std::move(table));
        if (reference.condition) text += " ON " + condition(*reference.condition);
    }
    return text;
}

std::string Translator::groups(const Query& query) {
    std::string text;
    for (const ExpressionRef& group : query.groups) {
        const Piece piece = emit(*group);
        text += text.empty() ? " GROUP BY " : ", ";
        // A number alone would be the number of a column.
        const bool isConstant = group->kind == ExpressionKind::literal || group->kind == ExpressionKind::sign;
        text += isConstant ? "(" + piece.sql + " || '')" : piece.sql;
        scope_->groups.push_back(piece.sql);
    }
    return text;
}

std::string Translator::allColumns(const Item& item, std::vector<DataType>& types) {
    std::string text;
    const std::u16string alias = calc::foldName(item.alias);
    bool isFound = alias.empty();
    for (const ScopeTable& table : scope_->tables) {
        if (!alias.empty() && table.alias != alias) continue;
        isFound = true;
        for (std::size_t i = 0; i < table.table->fields.size(); ++i) {
            const std::string column = columnOf(table, i, 1, item.position);
            if (std::find(scope_->groups.begin(), scope_->groups.end(), column) == scope_->groups.end())
                scope_->bare.push_back({item.position, table.table->fields[i].name});
            text += (text.empty() ? "" : ", ") + column;
            types.push_back(table.table->fields[i].type);
        }
    }
    if (!isFound) throw Problem{.code = Fql::noQualifier, .position = item.position, .name = item.alias};
    if (text.empty()) throw Problem{.code = Fql::noColumn, .position = item.position, .name = u"*"};
    return text;
}

std::string Translator::items(const Query& query, std::vector<DataType>& types) {
    std::string text;
    for (const Item& item : query.items) {
        if (!text.empty()) text += ", ";
        if (!item.expression) {
            text += allColumns(item, types);
            continue;
        }
        allowsAggregate_ = true;
        const Piece piece = settled(*item.expression);
        if (piece.type == DataType::boolean)
            throw Problem{.code = Fql::incompatibleTypes, .position = item.position};
        text += piece.sql;
        types.push_back(piece.type);
    }
    return text;
}

/// The number of a column of the answer, or an expression of the query's tables where it stands alone.
std::string Translator::order(const Query& query, const Order& order, std::size_t columns, bool isAlone) {
    const Expression& wanted = *order.expression;
    const std::string direction(order.isDescending ? kDescending : "");
    if (wanted.kind == ExpressionKind::literal && wanted.type == DataType::number) {
        const double place =
            std::strtod(std::string(wanted.name.begin(), wanted.name.end()).c_str(), nullptr);
        if (!(place >= 1 && place <= static_cast<double>(columns)) || place != static_cast<int>(place))
            throw Problem{.code = Fql::badOrder, .position = wanted.position};
        return std::to_string(static_cast<int>(place)) + direction;
    }
    const bool isName = wanted.kind == ExpressionKind::column && wanted.qualifier.empty();
    const bool hasAll = std::any_of(query.items.begin(), query.items.end(),
                                    [](const Item& item) { return !item.expression; });
    for (std::size_t i = 0; isName && !hasAll && i < query.items.size(); ++i) {
        const Item& item = query.items[i];
        const bool isColumn = !isAlone && item.expression->kind == ExpressionKind::column;
        const std::u16string& name = item.alias.empty() && isColumn ? item.expression->name : item.alias;
        if (!name.empty() && calc::foldName(name) == calc::foldName(wanted.name))
            return std::to_string(i + 1) + direction;
    }
    if (!isAlone) throw Problem{.code = Fql::badOrder, .position = wanted.position};
    allowsAggregate_ = true;
    const Piece piece = emit(wanted);
    // A negative number would be an invalid number of a column.
    return piece.sql + (wanted.kind == ExpressionKind::sign ? " + 0" : "") + direction;
}

void Translator::addTie(const Order& order, std::string ordered, Translation& result,
                        std::string* hidden) const {
    ordered.resize(ordered.size() - (order.isDescending ? kDescending.size() : 0));
    if (ordered.find_first_not_of("0123456789") == std::string::npos) {
        result.ties.push_back(std::stoul(ordered) - 1);
        return;
    }
    if (hidden == nullptr) throw Problem{.code = Fql::badOrder, .position = order.expression->position};
    *hidden += ", " + ordered;
    result.ties.push_back(result.types.size());
    result.types.push_back(DataType::text);
}

std::string Translator::orders(const Query& query, const Select& select, Translation& result,
                               std::string& hidden) {
    std::string text;
    for (const Order& each : select.orders) {
        const std::string ordered = order(query, each, result.visible, true);
        text += (text.empty() ? " ORDER BY " : ", ") + ordered;
        if (select.fetch && select.fetch->hasTies)
            addTie(each, ordered, result, query.isDistinct ? nullptr : &hidden);
    }
    return text;
}

std::string Translator::window(const Select& select, Translation& result) const {
    if (select.fetch && (select.fetch->isPercent || select.fetch->hasTies)) {
        result.fetch = select.fetch;
        result.offset = select.offset;
        return {};
    }
    if (!select.fetch && select.offset == 0) return {};
    const std::string count =
        select.fetch ? std::to_string(static_cast<std::int64_t>(select.fetch->count)) : "-1";
    return " LIMIT " + count + " OFFSET " + std::to_string(select.offset);
}

} // namespace host::sql
