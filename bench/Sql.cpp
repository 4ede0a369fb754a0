#include "Benchmarks.h"
#include "Loaded.h"
#include "Measure.h"

#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <utility>

/// Kestrel_ExecuteSQL, per row, beside the same query stepped through SQLite's C interface into one string.
/// Two sizes show that the cost of a row does not grow with their number.

namespace bench {

namespace {

constexpr const char* query = "SELECT id, name, city, born FROM people ORDER BY id";

std::string peopleInTable(int count) {
    return "CREATE TABLE people (id INTEGER PRIMARY KEY, name TEXT, city TEXT, born DATE);"
           "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " +
           std::to_string(count) +
           ") INSERT INTO people SELECT i, 'Ada Brandström ' || i, 'Stockholm', "
           "date('1950-01-01', i % 20000 || ' days') FROM n;";
}

class Connection {
public:
    explicit Connection(const std::string& schema) {
        if (sqlite3_open(":memory:", &handle_) != SQLITE_OK ||
            sqlite3_exec(handle_, schema.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            sqlite3_close(handle_);
            throw std::runtime_error("no tables to measure with");
        }
    }
    ~Connection() { sqlite3_close(handle_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] std::string answer() const {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(handle_, query, -1, &statement, nullptr);
        std::string rows;
        const int columns = sqlite3_column_count(statement);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            if (!rows.empty()) rows += '\r';
            for (int column = 0; column < columns; ++column) {
                if (column > 0) rows += '\t';
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
                rows.append(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
            }
        }
        sqlite3_finalize(statement);
        return rows;
    }

private:
    sqlite3* handle_ = nullptr;
};

void benchRows(int count) {
    host::Solution solution;
    solution.schema = peopleInTable(count);
    const Connection connection(solution.schema);
    const Loaded plugIn(std::move(solution));
    const host::RegisteredFunction& function = plugIn.function(u"Kestrel_ExecuteSQL");
    const host::DataVect arguments{std::make_shared<const host::Data>(host::Text::fromUtf8(query))};
    row(
        "ExecuteSQL, " + std::to_string(count) + " rows of 4 fields",
        [&] {
            host::Data result;
            plugIn.call(function, arguments, result);
            keep(result.asText().size());
        },
        "SQLite stepped", [&] { keep(connection.answer().size()); }, count, "row");
}

} // namespace

void benchSql() {
    constexpr int few = 1'000, many = 100'000;
    benchRows(few);
    benchRows(many);
}

} // namespace bench
