#include "host/sql/Database.h"

#include "host/calc/Environment.h"
#include "host/sql/Connection.h"
#include "host/sql/Definitions.h"
#include "host/sql/Functions.h"
#include "host/sql/Parser.h"
#include "host/sql/Rows.h"
#include "host/sql/Store.h"
#include "host/sql/Translator.h"
#include "host/sql/Values.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

using sql::Fql;
using sql::Problem;

constexpr std::size_t kLongestStatement = std::size_t{1} << 20U; ///< UTF-16 units
constexpr std::size_t kMostKept = 200, kLongestKept = 10'000;    ///< translations, and units of one
constexpr int kSqlRefused = 8309;
constexpr const char* kBegin = "SAVEPOINT kestrel_transaction";

Change changeOf(int operation) {
    if (operation == SQLITE_INSERT) return Change::inserted;
    return operation == SQLITE_UPDATE ? Change::updated : Change::deleted;
}

/// Functions that find their arguments wrong name the message.
Problem problemOf(sqlite3* connection, int code) {
    constexpr std::string_view mark = "FQL";
    const std::string_view words = sqlite3_errmsg(connection);
    if (code == SQLITE_ERROR && words.starts_with(mark))
        return {.code = static_cast<Fql>(std::atoi(words.data() + mark.size()))};
    return {.code = Fql::refused};
}

/// Cuts the rows to a part of them and the rows that are equal to its last one.
void cutRows(RowVect& rows, const sql::Translation& translation, const sql::Fetch& fetch) {
    const auto all = static_cast<double>(rows.size());
    const double wanted = fetch.isPercent ? std::ceil(all * fetch.count / 100) : fetch.count;
    const auto first = static_cast<std::size_t>(std::min(static_cast<double>(translation.offset), all));
    auto end = static_cast<std::size_t>(std::min(static_cast<double>(first) + wanted, all));
    const auto isEqual = [&](const DataVect& a, const DataVect& b) {
        return std::all_of(translation.ties.begin(), translation.ties.end(),
                           [&](std::size_t column) { return a[column]->isIdenticalTo(*b[column]); });
    };
    while (fetch.hasTies && end > first && end < rows.size() && isEqual(rows[end - 1], rows[end]))
        ++end;
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(end), rows.end());
    rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(first));
    for (DataVect& row : rows)
        row.resize(translation.visible);
}

/// A statement with the types of its parameters, which decide on its translation.
std::u16string keyOf(std::u16string_view statement, const DataVect& parameters) {
    std::u16string key(statement);
    for (const DataRef& value : parameters) {
        const bool isNull = !value || value->isEmpty();
        key += isNull ? u'\0' : static_cast<char16_t>(value->nativeType());
    }
    return key + static_cast<char16_t>(parameters.size());
}

/// Gives the fields of a schema the next serial numbers that fields of the same name have in another one.
void keepSerials(const Schema& from, Schema& to) {
    std::map<std::pair<std::u16string_view, std::u16string_view>, std::u16string_view> serials;
    for (const BaseTable& table : from.tables)
        for (const Field& field : table.fields)
            if (field.nextSerial) serials[{table.name, field.name}] = *field.nextSerial;
    for (BaseTable& table : to.tables)
        for (Field& field : table.fields)
            if (const auto found = serials.find({table.name, field.name}); found != serials.end())
                field.nextSerial = found->second;
}

} // namespace

struct Database::ChangedRecord {
    std::string table;
    std::int64_t record;
    Change change;
};

struct Database::Statements {
    explicit Statements(std::chrono::milliseconds budget)
        : connection(budget), functions{.deadline = connection.deadline(), .account = {}} {}

    Connection connection;
    sql::FunctionContext functions;
    std::u16string file;
    std::map<std::u16string, std::shared_ptr<const sql::Translation>, std::less<>> kept;
    std::vector<ChangedRecord>* changed = nullptr; ///< of the statement that runs
};

namespace {

/// `kestrel_field`: the value of a field without columns.
void fieldValue(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
    const auto& [schema, calls] = *static_cast<std::pair<Schema*, RecordCalls*>*>(sqlite3_user_data(context));
    const auto place = [&](int i) { return static_cast<std::size_t>(sqlite3_value_int64(arguments[i])); };
    const std::size_t occurrence = place(0), field = place(1);
    const bool exists =
        occurrence < schema->occurrences.size() && field < schema->tableOf(occurrence).fields.size();
    if (!exists || !calls->fieldValue) return sqlite3_result_null(context);
    const DataType type = schema->tableOf(occurrence).fields[field].type;
    try {
        const DataRef value = calls->fieldValue(occurrence, field, sqlite3_value_int(arguments[2]),
                                                sqlite3_value_int64(arguments[3]));
        if (value) giveValue(context, *value, type);
    } catch (const std::exception&) {
        sqlite3_result_error(context, "the field has no value", -1);
    }
}

} // namespace

Database::Database(const std::string& script, Schema declared, std::chrono::milliseconds budget)
    : statements_(std::make_unique<Statements>(budget)), schema_(std::move(declared)),
      fieldSource_(&schema_, &calls_) {
    Connection& connection = statements_->connection;
    if (sql::registerFunctions(connection.handle(), statements_->functions) != SQLITE_OK ||
        sqlite3_create_function(connection.handle(), "kestrel_field", 4, SQLITE_UTF8, &fieldSource_,
                                fieldValue, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error("no database could be opened in memory");
    sqlite3_update_hook(
        connection.handle(),
        [](void* self, int operation, const char* /*database*/, const char* table, sqlite3_int64 record) {
            auto* const changed = static_cast<Statements*>(self)->changed;
            if (changed != nullptr) changed->push_back({table, record, changeOf(operation)});
        },
        statements_.get());
    makeTables(connection, schema_);
    connection.runScript(script, "schema.sql");
    addStoredTables(connection, schema_);
}

Database::~Database() = default;

void Database::setNames(std::u16string file, std::u16string_view account) {
    statements_->file = std::move(file);
    statements_->functions.account = toUtf8(account);
}

Schema& Database::schema() { return schema_; }
const Schema& Database::schema() const { return schema_; }

void Database::setRecordCalls(RecordCalls calls) { calls_ = std::move(calls); }

std::int64_t Database::lastRecord() const {
    return sqlite3_last_insert_rowid(statements_->connection.handle());
}

calc::SqlAnswer Database::query(std::string_view statement, const DataVect& parameters) {
    const Connection::Work work(statements_->connection);
    resumeTransaction();
    const std::string text(statement);
    const Connection::Prepared prepared(statements_->connection, text);
    calc::SqlAnswer answer;
    if (prepared.get() != nullptr && bindAll(prepared.get(), parameters) &&
        collectRows(prepared.get(), declaredTypes(prepared.get()), ValueForm::typed, answer.rows) ==
            SQLITE_DONE)
        return answer;
    return {.error = kSqlRefused, .rows = {}};
}

void Database::beginTransaction() {
    const Connection::Work work(statements_->connection);
    schemaBefore_ = schema_;
    statements_->connection.run(kBegin);
    inTransaction_ = true;
    isTransactionLost_ = false;
}

/// The store itself takes everything back when a statement runs out of time or memory. Changes after that are
/// taken back at the end.
void Database::resumeTransaction() {
    if (!inTransaction_ || sqlite3_get_autocommit(statements_->connection.handle()) == 0) return;
    isTransactionLost_ = true;
    statements_->connection.run(kBegin);
}

bool Database::endTransaction(bool keepsChanges) {
    const Connection::Work work(statements_->connection);
    Connection& connection = statements_->connection;
    resumeTransaction();
    const bool isKept = keepsChanges && !isTransactionLost_;
    if (!isKept) {
        const calc::SqlAnswer lastIds = query("SELECT name, seq FROM sqlite_sequence", {});
        connection.run("ROLLBACK TO kestrel_transaction");
        query("DELETE FROM sqlite_sequence", {});
        for (const DataVect& row : lastIds.rows)
            query("INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)", row);
        if (schema_.version != schemaBefore_.version) {
            schemaBefore_.version = schema_.version + 1;
            keepSerials(schema_, schemaBefore_);
            schema_ = schemaBefore_;
            statements_->kept.clear();
        }
    }
    connection.run("RELEASE kestrel_transaction");
    inTransaction_ = false;
    return isKept;
}

calc::SqlAnswer Database::execute(std::u16string_view statement, const DataVect& parameters) {
    return run(statement, parameters, false);
}

calc::SqlAnswer Database::select(std::u16string_view statement, const DataVect& parameters) {
    return run(statement, parameters, true);
}

calc::SqlAnswer Database::run(std::u16string_view statement, const DataVect& parameters, bool isQueryOnly) {
    try {
        const Connection::Work work(statements_->connection);
        resumeTransaction();
        const auto translation = translated(statement, parameters, isQueryOnly);
        if (!translation) return {};
        if (isQueryOnly && translation->types.empty()) throw Problem{.code = Fql::syntax};
        return answer(*translation, parameters, isQueryOnly ? ValueForm::sqlText : ValueForm::typed);
    } catch (const Problem& problem) {
        return {
            .error = sql::errorCode(problem.code), .rows = {}, .problem = sql::describe(problem, statement)};
    }
}

std::shared_ptr<const sql::Translation> Database::translated(std::u16string_view statement,
                                                             const DataVect& parameters, bool isQueryOnly) {
    if (statement.size() > kLongestStatement) throw Problem{.code = Fql::refused};
    auto& kept = statements_->kept;
    const std::u16string key = keyOf(statement, parameters);
    if (const auto found = kept.find(key); found != kept.end()) return found->second;
    const sql::StatementTree tree = sql::Parser(statement).statement();
    const auto* const select = std::get_if<std::unique_ptr<sql::Select>>(&tree.body);
    if (isQueryOnly && select == nullptr) throw Problem{.code = Fql::syntax};
    if (static_cast<std::size_t>(tree.parameters) > parameters.size()) throw Problem{.code = Fql::refused};
    if (sql::isDefinition(tree)) {
        kept.clear();
        sql::define(tree, statements_->connection, schema_);
        return nullptr;
    }
    sql::Translator translator(schema_, statements_->file, parameters);
    auto made = std::make_shared<const sql::Translation>(select != nullptr ? translator.select(**select)
                                                                           : translator.change(tree));
    if (kept.size() >= kMostKept) kept.clear();
    if (made->isLasting && key.size() <= kLongestKept) kept.emplace(key, made);
    return made;
}

/// The records of a statement are all of one table, or of few.
void Database::report(const std::vector<ChangedRecord>& changed) const {
    std::map<std::string, std::size_t, std::less<>> places;
    for (std::size_t i = 0; i < schema_.tables.size(); ++i)
        places.emplace(toUtf8(schema_.tables[i].name), i);
    for (const auto& [table, record, change] : changed)
        if (const auto place = places.find(table); place != places.end())
            calls_.changed(place->second, record, change);
}

calc::SqlAnswer Database::answer(const sql::Translation& translation, const DataVect& parameters,
                                 ValueForm form) {
    std::vector<ChangedRecord> changed;
    calc::SqlAnswer answer;
    {
        const Connection::Prepared prepared(statements_->connection, translation.statement);
        int code = prepared.code();
        if (code == SQLITE_OK && !bindAll(prepared.get(), parameters)) code = SQLITE_MISUSE;
        auto* const before = std::exchange(statements_->changed, &changed);
        if (code == SQLITE_OK) code = collectRows(prepared.get(), translation.types, form, answer.rows);
        statements_->changed = before;
        if (code != SQLITE_DONE) throw problemOf(statements_->connection.handle(), code);
    }
    if (translation.fetch) cutRows(answer.rows, translation, *translation.fetch);
    if (calls_.changed && !changed.empty()) report(changed);
    return answer;
}

} // namespace host
