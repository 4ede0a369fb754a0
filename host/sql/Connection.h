#pragma once

#include "host/calc/Environment.h"

#include <chrono>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace host {

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// A connection to a store in memory, with limits on time, sizes and what statements may do.
class Connection {
public:
    /// Throws std::runtime_error where no store can be opened.
    explicit Connection(std::chrono::milliseconds budget);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Starts the time limit, unless within another work.
    class Work {
    public:
        explicit Work(Connection& connection);
        ~Work() { --connection_.depth_; }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

    private:
        Connection& connection_;
    };

    [[nodiscard]] sqlite3* handle() const { return handle_; }
    /// The first statement of a script; null for a comment or nothing. `script` is zero-terminated and moves
    /// to the end of the statement.
    Statement prepare(const char*& script, int& code) const;
    /// Runs all statements of a script; `file` stands in messages. Throws std::runtime_error with the line
    /// and the engine's message.
    void runScript(const std::string& script, std::string_view file);
    /// Runs one statement that takes and gives nothing. Gives the engine's result code.
    int run(const std::string& statement);

    /// The moment at which the current work must end. The next work has a later one.
    [[nodiscard]] const std::chrono::steady_clock::time_point& deadline() const { return deadline_; }

    /// A prepared statement, kept for the next time. It is reset and free again when it goes out of scope.
    class Prepared {
    public:
        Prepared(Connection& connection, const std::string& statement);
        ~Prepared();
        Prepared(const Prepared&) = delete;
        Prepared& operator=(const Prepared&) = delete;

        /// Null where the statement cannot be read; `code` says why.
        [[nodiscard]] sqlite3_stmt* get() const { return statement_.get(); }
        [[nodiscard]] int code() const { return code_; }

    private:
        Connection& connection_;
        const std::string& text_;
        Statement statement_;
        int code_ = SQLITE_OK;
    };

private:
    static int authorize(void* self, int action, const char* first, const char* second, const char* database,
                         const char* trigger);

    sqlite3* handle_ = nullptr;
    std::chrono::milliseconds budget_;
    std::chrono::steady_clock::time_point deadline_;
    int depth_ = 0; ///< of works
    std::map<std::string, Statement, std::less<>> kept_;
};

} // namespace host
