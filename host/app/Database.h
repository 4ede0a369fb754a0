#pragma once

#include "host/calc/Environment.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

namespace host {

/// The tables of one file, in memory. Statements cannot reach the disk, load code or change the engine's
/// settings, and work for a bounded time.
class Database {
public:
    /// The longest that one statement, and the schema as a whole, may work.
    static constexpr std::chrono::milliseconds usualBudget{10'000};

    /// Runs a script of statements; throws std::runtime_error with the line and the engine's words.
    explicit Database(const std::string& schema, std::chrono::milliseconds budget = usualBudget);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Runs exactly one statement. Each `?` takes the parameter of its place, by type: text, numbers without
    /// loss, dates and times in ISO form, a container as its bytes, an invalid value or an empty number as
    /// NULL. A value of the answer is of its column's declared type where it can be read so, otherwise of
    /// the type it is stored in.
    calc::SqlAnswer execute(std::u16string_view statement, const DataVect& parameters);

private:
    struct Connection;
    std::unique_ptr<Connection> connection_;
};

} // namespace host
