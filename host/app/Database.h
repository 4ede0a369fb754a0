#pragma once

#include "host/calc/Environment.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A table or view by name, with the names of its columns.
struct TableNames {
    std::u16string table;
    std::vector<std::u16string> fields;
};

/// The tables of one file, in memory. Statements cannot reach the disk, load code or change the engine's
/// settings, and they run for a bounded time.
class Database {
public:
    /// The time limit of one statement, and of the schema as a whole.
    static constexpr std::chrono::milliseconds usualBudget{10'000};

    /// Runs a script of statements. Throws std::runtime_error with the line and the engine's message.
    explicit Database(const std::string& schema, std::chrono::milliseconds budget = usualBudget);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs exactly one statement. Each `?` takes the parameter at its position, by type: text as text,
    /// numbers without loss, dates and times in ISO form, a container as its bytes, an invalid value or an
    /// empty number as NULL. A value of the answer has the declared type of its column where it can be
    /// converted, otherwise the type in which it is stored.
    calc::SqlAnswer execute(std::u16string_view statement, const DataVect& parameters);

    /// The tables and views there are now, in the order in which they were made.
    [[nodiscard]] std::vector<TableNames> tables() const;

private:
    struct Connection;
    std::unique_ptr<Connection> connection_;
};

} // namespace host
