#include "host/sql/Problems.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace host::sql {

namespace {

constexpr int kSqlRefused = 8309, kSqlSyntax = 8310;

/// The messages by code, from 1. A `@` stands for the name.
constexpr std::array<std::u16string_view, 29> messages{
    u"There is an error in the syntax of the query.",
    u"The table named \"@\" does not exist.",
    u"The table named \"@\" is used more than once in the query.",
    u"There are too many tables in the query.",
    u"Expressions involving aggregations are not supported.",
    u"The column named \"@\" exists in more than one table in the column reference's scope.",
    u"The column named \"@\" does not exist in any table in the column reference's scope.",
    u"The column reference's table qualifier \"@\" does not exist in the scope.",
    u"The column named \"@\" does not exist in the table that qualifies it.",
    u"The literal value \"@\" is not a valid date, time or timestamp.",
    u"The predicate must be a logical operation.",
    u"The column number in the ORDER BY clause is invalid.",
    u"The type of the value does not fit the column \"@\", or the column cannot be written.",
    u"The number of values does not match the number of columns.",
    u"The number of columns of the SELECT does not match the number of columns of the INSERT.",
    u"A subquery cannot refer to the table of the INSERT statement.",
    u"The types of the values cannot be compared.",
    u"The expression contains data of incompatible types.",
    u"At least one result of the CASE expression must not be NULL.",
    u"The function \"@\" has a wrong number of arguments.",
    u"An argument of the function \"@\" has a wrong type.",
    u"The subquery must give one column.",
    u"The CAST is invalid.",
    u"The column \"@\" must be qualified, because the query has several tables.",
    u"All non-aggregated column references in the SELECT list and HAVING clause must be in the GROUP BY "
    u"clause.",
    u"The queries of a UNION must have the same number of columns.",
    u"The columns of the queries of a UNION must have the same types.",
    u"The repetition must be a number that the column has.",
    u"The repetition of a column that is set must be constant.",
};

bool endsLine(char16_t unit) { return unit == u'\r' || unit == u'\n'; }

} // namespace

int errorCode(Fql code) { return code == Fql::syntax ? kSqlSyntax : kSqlRefused; }

std::u16string describe(const Problem& problem, std::u16string_view statement) {
    if (problem.code == Fql::refused) return {};
    const std::u16string_view before = statement.substr(0, problem.position);
    const auto lineEnd = std::find_if(before.rbegin(), before.rend(), endsLine);
    const auto line = 1 + std::count_if(before.begin(), before.end(), endsLine) -
                      // A return and a line feed end one line.
                      [&] {
                          std::ptrdiff_t pairs = 0;
                          for (std::size_t i = 1; i < before.size(); ++i)
                              pairs += before[i - 1] == u'\r' && before[i] == u'\n' ? 1 : 0;
                          return pairs;
                      }();
    std::array<char, 80> head{};
    const int size =
        std::snprintf(head.data(), head.size(), "FQL%04d/(%lld:%lld): ", static_cast<int>(problem.code),
                      static_cast<long long>(line), static_cast<long long>(lineEnd - before.rbegin()));
    std::u16string text = fromUtf8({head.data(), static_cast<std::size_t>(size)});
    std::u16string message(messages.at(static_cast<std::size_t>(problem.code) - 1));
    if (const std::size_t place = message.find(u'@'); place != std::u16string::npos)
        message.replace(place, 1, problem.name);
    return text + message;
}

} // namespace host::sql
