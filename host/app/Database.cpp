#include "host/app/Database.h"

#include "host/app/SqlFunctions.h"
#include "host/app/SqlValues.h"
#include "host/calc/Engine.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <sqlite3.h>
#include <stdexcept>

namespace host {

namespace {

using WorkClock = std::chrono::steady_clock;

constexpr int sqlRefused = 8309, sqlSyntax = 8310;

constexpr int stepsBetweenLooks = 100; // few, because one step may handle a value of 16 MiB
constexpr std::int64_t memoryForAllTables = std::int64_t{512} << 20;
constexpr std::size_t mostValues = 1'000'000, mostBytes = 256U << 20U;

struct Limit {
    int which, value;
};
constexpr std::array limits{Limit{SQLITE_LIMIT_LENGTH, 16 << 20},
                            Limit{SQLITE_LIMIT_SQL_LENGTH, 1 << 20},
                            Limit{SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1'000},
                            Limit{SQLITE_LIMIT_EXPR_DEPTH, 200},
                            Limit{SQLITE_LIMIT_TRIGGER_DEPTH, 50},
                            Limit{SQLITE_LIMIT_VARIABLE_NUMBER, 10'000},
                            Limit{SQLITE_LIMIT_ATTACHED, 0},
                            Limit{SQLITE_LIMIT_WORKER_THREADS, 0}};

struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

/// Whether a character may follow the end of a statement.
bool mayFollow(char letter) { return letter == ' ' || letter == ';' || (letter >= '\t' && letter <= '\r'); }

/// Whether an SQL error is a syntax error. The message decides, because the engine has one code for all.
bool isSyntaxError(int code, std::string_view words) {
    return (code & 0xFF) == SQLITE_ERROR &&
           ((words.starts_with("near \"") && words.ends_with(": syntax error")) ||
            words == "incomplete input" || words.starts_with("unrecognized token: "));
}

} // namespace

struct Database::Connection {
    explicit Connection(std::chrono::milliseconds budget);
    ~Connection() { sqlite3_close(handle); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void startWork() { deadline = WorkClock::now() + budget; }
    /// The next statement of a script; null for a comment or nothing. `script` is zero-terminated and moves
    /// to the end of the statement.
    Statement prepare(const char*& script, int& code) const;
    [[nodiscard]] calc::SqlAnswer failure(int code) const;

    static int authorize(void* self, int action, const char* first, const char* second, const char* database,
                         const char* trigger);

    sqlite3* handle = nullptr;
    std::chrono::milliseconds budget;
    WorkClock::time_point deadline;
    bool mayUseTransactions = true; ///< true while the schema is read
};

int Database::Connection::authorize(void* self, int action, const char* /*first*/, const char* second,
                                    const char* /*database*/, const char* /*trigger*/) {
    switch (action) {
    case SQLITE_ATTACH: // refuses VACUUM as well
    case SQLITE_DETACH:
    case SQLITE_PRAGMA:
    case SQLITE_CREATE_VTABLE:
    case SQLITE_DROP_VTABLE: return SQLITE_DENY;
    case SQLITE_TRANSACTION:
    case SQLITE_SAVEPOINT:
        return static_cast<Connection*>(self)->mayUseTransactions ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_FUNCTION: {
        // json_patch takes hours for two large objects, in a single step.
        const auto is = [second](const char* name) { return sqlite3_stricmp(second, name) == 0; };
        return second != nullptr && (is("load_extension") || is("json_patch")) ? SQLITE_DENY : SQLITE_OK;
    }
    default: return SQLITE_OK;
    }
}

Database::Connection::Connection(std::chrono::milliseconds budget) : budget(budget) {
    sqlite3_hard_heap_limit64(memoryForAllTables);
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY;
    if (sqlite3_open_v2(":memory:", &handle, flags, nullptr) != SQLITE_OK ||
        sqlite3_exec(handle, "PRAGMA temp_store = MEMORY; PRAGMA max_page_count = 65536", nullptr, nullptr,
                     nullptr) != SQLITE_OK ||
        boundFunctions(handle, deadline) != SQLITE_OK) {
        sqlite3_close(handle);
        throw std::runtime_error("no database could be opened in memory");
    }
    for (const Limit& limit : limits)
        sqlite3_limit(handle, limit.which, limit.value);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // An unknown name in double quotes is an error, not a text.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_set_authorizer(handle, authorize, this);
    sqlite3_progress_handler(
        handle, stepsBetweenLooks,
        [](void* self) {
            const bool isLate = WorkClock::now() > static_cast<Connection*>(self)->deadline;
            return isLate || calc::areCalculationsStopped() ? 1 : 0;
        },
        this);
}

Statement Database::Connection::prepare(const char*& script, int& code) const {
    sqlite3_stmt* statement = nullptr;
    // With a length, the engine would apply the limit of one statement to the whole script.
    code = sqlite3_prepare_v2(handle, script, -1, &statement, &script);
    return Statement(statement);
}

calc::SqlAnswer Database::Connection::failure(int code) const {
    const bool syntax = isSyntaxError(code, sqlite3_errmsg(handle));
    return {.error = syntax ? sqlSyntax : sqlRefused, .rows = {}};
}

Database::Database(const std::string& schema, std::chrono::milliseconds budget)
    : connection_(std::make_unique<Connection>(budget)) {
    connection_->startWork();
    const char* const end = schema.c_str() + schema.size();
    for (const char* rest = schema.c_str(); rest != end;) {
        const char* const start = rest;
        int code = SQLITE_OK;
        const Statement statement = connection_->prepare(rest, code);
        while (statement && (code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        }
        const bool isStuck = rest == start; // at a zero byte
        if ((code == SQLITE_OK || code == SQLITE_DONE) && !isStuck) continue;
        // The statement's beginning stands for errors without a known position.
        const int inside = sqlite3_error_offset(connection_->handle);
        const char* const place = inside > 0 ? start + inside : std::find_if_not(start, end, mayFollow);
        const auto line = 1 + std::count(schema.c_str(), place, '\n');
        throw std::runtime_error("schema.sql, line " + std::to_string(line) + ": " +
                                 (code == SQLITE_OK ? "a zero byte" : sqlite3_errmsg(connection_->handle)));
    }
    if (sqlite3_get_autocommit(connection_->handle) == 0)
        throw std::runtime_error("schema.sql: a transaction is begun and not ended");
    connection_->mayUseTransactions = false;
}

Database::~Database() = default;

std::vector<TableNames> Database::tables() const {
    constexpr const char* listing = "SELECT name FROM sqlite_schema WHERE type IN ('table', 'view') "
                                    "AND name NOT LIKE 'sqlite%' ORDER BY rowid";
    std::vector<TableNames> tables;
    connection_->startWork();
    int code = SQLITE_OK;
    const char* script = listing;
    const Statement names = connection_->prepare(script, code);
    while (names && sqlite3_step(names.get()) == SQLITE_ROW) {
        const auto* name = reinterpret_cast<const char*>(sqlite3_column_text(names.get(), 0));
        if (name == nullptr) continue;
        TableNames& table = tables.emplace_back(TableNames{.table = fromUtf8(name), .fields = {}});
        const std::unique_ptr<char, void (*)(void*)> select(sqlite3_mprintf("SELECT * FROM \"%w\"", name),
                                                            sqlite3_free);
        const char* rest = select.get();
        const Statement columns = connection_->prepare(rest, code);
        for (int i = 0; columns && i < sqlite3_column_count(columns.get()); ++i)
            table.fields.push_back(fromUtf8(sqlite3_column_name(columns.get(), i)));
    }
    return tables;
}

calc::SqlAnswer Database::execute(std::u16string_view source, const DataVect& parameters) {
    const auto refused = [] { return calc::SqlAnswer{.error = sqlRefused, .rows = {}}; };
    const std::string script = toUtf8(source);
    const char* rest = script.c_str();
    connection_->startWork();
    int code = SQLITE_OK;
    const Statement statement = connection_->prepare(rest, code);
    if (code != SQLITE_OK) return connection_->failure(code);
    if (!statement || !std::all_of(rest, script.c_str() + script.size(), mayFollow))
        return {.error = sqlSyntax, .rows = {}};
    if (static_cast<std::size_t>(sqlite3_bind_parameter_count(statement.get())) != parameters.size())
        return refused();
    for (std::size_t i = 0; i < parameters.size(); ++i)
        if (!parameters[i] ||
            bindValue(statement.get(), static_cast<int>(i) + 1, *parameters[i]) != SQLITE_OK)
            return refused();

    std::vector<DataType> declared(static_cast<std::size_t>(sqlite3_column_count(statement.get())));
    for (std::size_t column = 0; column < declared.size(); ++column)
        declared[column] = declaredType(sqlite3_column_decltype(statement.get(), static_cast<int>(column)));
    calc::SqlAnswer answer;
    std::size_t values = 0, bytes = 0;
    while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        DataVect& row = answer.rows.emplace_back();
        row.reserve(declared.size());
        for (std::size_t column = 0; column < declared.size(); ++column) {
            row.push_back(columnValue(statement.get(), static_cast<int>(column), declared[column]));
            bytes +=
                static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), static_cast<int>(column)));
        }
        values += declared.size();
        if (values > mostValues || bytes > mostBytes) return refused();
    }
    if (code != SQLITE_DONE) return connection_->failure(code);
    return answer;
}

} // namespace host
