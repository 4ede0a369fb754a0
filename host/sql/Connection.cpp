#include "host/sql/Connection.h"

#include "host/calc/Engine.h"
#include "host/sql/BoundedFunctions.h"

#include <algorithm>
#include <array>
#if __has_include(<malloc.h>)
#include <malloc.h>
#endif
#include <new>
#include <stdexcept>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kStepsBetweenLooks = 100; // few, because one step may handle a value of 16 MiB
constexpr std::int64_t kMemoryForAllTables = std::int64_t{512} << 20;
constexpr std::size_t kMostKept = 200; ///< prepared statements

struct Limit {
    int which, value;
};
constexpr std::array limits{
    Limit{SQLITE_LIMIT_LENGTH, 16 << 20},           Limit{SQLITE_LIMIT_SQL_LENGTH, 8 << 20},
    Limit{SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1'000}, Limit{SQLITE_LIMIT_TRIGGER_DEPTH, 50},
    Limit{SQLITE_LIMIT_VARIABLE_NUMBER, 10'000},    Limit{SQLITE_LIMIT_ATTACHED, 0},
    Limit{SQLITE_LIMIT_WORKER_THREADS, 0}};

// VACUUM attaches, so it is denied as well.
constexpr std::array deniedActions{SQLITE_ATTACH, SQLITE_DETACH, SQLITE_PRAGMA, SQLITE_CREATE_VTABLE,
                                   SQLITE_DROP_VTABLE};
// json_patch takes hours for two large objects, in a single step.
constexpr std::array deniedFunctions{"load_extension", "json_patch"};

/// Whether a character may follow the end of a statement.
bool mayFollow(char letter) { return letter == ' ' || letter == ';' || (letter >= '\t' && letter <= '\r'); }

} // namespace

Connection::Work::Work(Connection& connection) : connection_(connection) {
    if (connection.depth_++ == 0) connection.deadline_ = Clock::now() + connection.budget_;
}

int Connection::authorize(void* /*self*/, int action, const char* /*first*/, const char* second,
                          const char* /*database*/, const char* /*trigger*/) {
    const bool isDenied =
        std::find(deniedActions.begin(), deniedActions.end(), action) != deniedActions.end() ||
        (action == SQLITE_FUNCTION && second != nullptr &&
         std::any_of(deniedFunctions.begin(), deniedFunctions.end(),
                     [second](const char* name) { return sqlite3_stricmp(second, name) == 0; }));
    return isDenied ? SQLITE_DENY : SQLITE_OK;
}

Connection::Connection(std::chrono::milliseconds budget) : budget_(budget) {
    sqlite3_hard_heap_limit64(kMemoryForAllTables);
#ifdef M_MXFAST
    // The small blocks of a large result are merged as they are freed. The C library would merge them all in
    // its next large request, which takes a tenth of a query's time.
    ::mallopt(M_MXFAST, 0);
#endif
    // A file is used by one thread at a time, so the engine's locks would guard nothing.
    constexpr int flags =
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(":memory:", &handle_, flags, nullptr) != SQLITE_OK ||
        run("PRAGMA temp_store = MEMORY; PRAGMA max_page_count = 65536") != SQLITE_OK ||
        boundFunctions(handle_, deadline_) != SQLITE_OK) {
        sqlite3_close(handle_);
        throw std::runtime_error("no database could be opened in memory");
    }
    for (const Limit& limit : limits)
        sqlite3_limit(handle_, limit.which, limit.value);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    // An unknown name in double quotes is an error, not a text.
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_set_authorizer(handle_, authorize, this);
    sqlite3_progress_handler(
        handle_, kStepsBetweenLooks,
        [](void* self) {
            const bool isLate = Clock::now() > static_cast<Connection*>(self)->deadline_;
            return isLate || calc::areCalculationsStopped() ? 1 : 0;
        },
        this);
}

Connection::~Connection() {
    kept_.clear();
    sqlite3_close(handle_);
}

Statement Connection::prepare(const char*& script, int& code) const {
    sqlite3_stmt* statement = nullptr;
    // With a length, the engine would apply the limit of one statement to the whole script.
    code = sqlite3_prepare_v2(handle_, script, -1, &statement, &script);
    return Statement(statement);
}

void Connection::runScript(const std::string& script, std::string_view file) {
    const Work work(*this);
    const char* const end = script.c_str() + script.size();
    for (const char* rest = script.c_str(); rest != end;) {
        const char* const start = rest;
        int code = SQLITE_OK;
        const Statement statement = prepare(rest, code);
        while (statement && (code = sqlite3_step(statement.get())) == SQLITE_ROW) {
        }
        const bool isStuck = rest == start; // at a zero byte
        if ((code == SQLITE_OK || code == SQLITE_DONE) && !isStuck) continue;
        // The statement's beginning stands for errors without a known position.
        const int inside = sqlite3_error_offset(handle_);
        const char* const place = inside > 0 ? start + inside : std::find_if_not(start, end, mayFollow);
        const auto line = 1 + std::count(script.c_str(), place, '\n');
        throw std::runtime_error(std::string(file) + ", line " + std::to_string(line) + ": " +
                                 (code == SQLITE_OK ? "a zero byte" : sqlite3_errmsg(handle_)));
    }
    if (sqlite3_get_autocommit(handle_) == 0)
        throw std::runtime_error(std::string(file) + ": a transaction is begun and not ended");
}

int Connection::run(const std::string& statement) {
    return sqlite3_exec(handle_, statement.c_str(), nullptr, nullptr, nullptr);
}

Connection::Prepared::Prepared(Connection& connection, const std::string& statement)
    : connection_(connection), text_(statement) {
    if (auto kept = connection.kept_.extract(statement)) {
        statement_ = std::move(kept.mapped());
        return;
    }
    const char* rest = statement.c_str();
    statement_ = connection.prepare(rest, code_);
    const bool isWhole = std::all_of(rest, statement.c_str() + statement.size(), mayFollow);
    if (code_ == SQLITE_OK && (!statement_ || !isWhole)) code_ = SQLITE_ERROR;
    if (code_ != SQLITE_OK) statement_.reset();
}

Connection::Prepared::~Prepared() {
    if (!statement_) return;
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
    try {
        if (connection_.kept_.size() >= kMostKept) connection_.kept_.clear();
        connection_.kept_.emplace(text_, std::move(statement_));
    } catch (const std::bad_alloc&) {
        connection_.kept_.clear();
    }
}

} // namespace host
