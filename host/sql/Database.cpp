#include "host/sql/Database.h"

#include "host/sql/Connection.h"
#include "host/sql/Rows.h"
#include "host/sql/Store.h"
#include "host/values/Encoding.h"

#include <utility>

namespace host {

namespace {

constexpr int kSqlRefused = 8309, kSqlSyntax = 8310;

/// Whether an SQL error is a syntax error. The message decides, because the engine has one code for all.
bool isSyntaxError(int code, std::string_view words) {
    return (code & 0xFF) == SQLITE_ERROR &&
           ((words.starts_with("near \"") && words.ends_with(": syntax error")) ||
            words == "incomplete input" || words.starts_with("unrecognized token: "));
}

} // namespace

Database::Database(const std::string& script, Schema declared, std::chrono::milliseconds budget)
    : connection_(std::make_unique<Connection>(budget)), schema_(std::move(declared)) {
    makeTables(*connection_, schema_);
    connection_->runScript(script, "schema.sql");
    addStoredTables(*connection_, schema_);
}

Database::~Database() = default;

Schema& Database::schema() { return schema_; }
const Schema& Database::schema() const { return schema_; }

void Database::setRecordCalls(RecordCalls calls) { calls_ = std::move(calls); }

std::int64_t Database::lastRecord() const { return sqlite3_last_insert_rowid(connection_->handle()); }

calc::SqlAnswer Database::query(std::string_view statement, const DataVect& parameters) {
    const Connection::Work work(*connection_);
    const std::string text(statement);
    const Connection::Prepared prepared(*connection_, text);
    calc::SqlAnswer answer;
    int code = prepared.code();
    if (code == SQLITE_OK && bindAll(prepared.get(), parameters))
        code = collectRows(prepared.get(), declaredTypes(prepared.get()), ValueForm::typed, answer.rows);
    if (code == SQLITE_DONE) return answer;
    const bool syntax = isSyntaxError(code, sqlite3_errmsg(connection_->handle()));
    return {.error = syntax ? kSqlSyntax : kSqlRefused, .rows = {}};
}

calc::SqlAnswer Database::execute(std::u16string_view statement, const DataVect& parameters) {
    return query(toUtf8(statement), parameters);
}

} // namespace host
