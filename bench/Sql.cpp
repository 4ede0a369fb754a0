#include "Benchmarks.h"
#include "Inputs.h"
#include "Loaded.h"
#include "Measure.h"

#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXText.h"

#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <utility>

/// Kestrel_ExecuteSQL, per row. The floor is the same query, stepped through SQLite's C interface into one
/// string. Two sizes show that the cost of a row is independent of the number of rows.

namespace bench {

namespace {

constexpr const char* query = "SELECT id, name, city, born FROM people ORDER BY id";

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
    const host::DataVect arguments{shared(host::Text::fromUtf8(query))};
    const auto& statement = host::bridge::out<fmx::Text>(arguments.front()->asText());
    const auto stepped = [&] { keep(connection.answer().size()); };
    const std::string size = std::to_string(count) + " rows of 4 fields";
    row(
        "Kestrel_ExecuteSQL, " + size,
        [&] {
            host::Data result;
            plugIn.call(function, arguments, result);
            keep(result.asText().size());
        },
        "SQLite stepped", stepped, count, "row");
    row(
        "- of it the host's query: values, no text",
        [&] {
            const fmx::TextUniquePtr currentFile;
            const fmx::DataVectUniquePtr noParameters;
            const fmx::RowVectUniquePtr rows;
            keep(plugIn.environment().ExecuteFileSQL(statement, *currentFile, *noParameters, *rows));
        },
        "SQLite stepped", stepped, count, "row");
}

} // namespace

void benchSql() {
    constexpr int few = 1'000, many = 100'000;
    benchRows(few);
    benchRows(many);
}

} // namespace bench
