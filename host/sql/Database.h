#pragma once

#include "host/calc/Environment.h"
#include "host/sql/Schema.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

enum class ValueForm;
namespace sql {
struct Translation;
}

enum class Change : std::uint8_t { inserted, updated, deleted };

/// The calls that statements make to the owner of records. Each may be empty. They may use Database::query.
struct RecordCalls {
    /// The value of a field without columns, for a record ID; 0 where there is no record. Places are those
    /// of the schema; repetitions count from 1.
    std::function<DataRef(std::size_t occurrence, std::size_t field, int repetition, std::int64_t record)>
        fieldValue;
    /// A base table's record that a statement has changed; called for each record after the statement.
    std::function<void(std::size_t table, std::int64_t record, Change change)> changed;
};

/// The tables of one file, in memory. Statements cannot reach the disk, load code or change the engine's
/// settings, and they run for a bounded time.
class Database {
public:
    /// The time limit of one statement, and of a script as a whole.
    static constexpr std::chrono::milliseconds usualBudget{10'000};

    /// Makes the declared tables, then runs a script of the store's own statements. Tables and views that
    /// the script makes join the schema: each with an occurrence and a layout of its name. Throws
    /// std::runtime_error with the line and the engine's message.
    explicit Database(const std::string& script, Schema declared = {},
                      std::chrono::milliseconds budget = usualBudget);
    /// The file's name and the account's that statements see.
    void setNames(std::u16string file, std::u16string_view account);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    [[nodiscard]] Schema& schema();
    [[nodiscard]] const Schema& schema() const;
    void setRecordCalls(RecordCalls calls);

    /// Runs exactly one statement of the store's own dialect and keeps it prepared. Each `?` takes the
    /// parameter at its position, by type: text as text, numbers without loss, dates and times in ISO form, a
    /// container as its bytes, an invalid or empty value as NULL. A value of the answer has the declared type
    /// of its column where it can be converted, otherwise the type in which it is stored. No call of
    /// RecordCalls follows.
    calc::SqlAnswer query(std::string_view statement, const DataVect& parameters);
    /// The ID of the record that was inserted last.
    [[nodiscard]] std::int64_t lastRecord() const;

    /// Begins a transaction: changes of records and of the schema that can be taken back together. One at a
    /// time.
    void beginTransaction();
    /// IDs of records and serial numbers that were given are not given again. False where the changes are
    /// taken back: as they were to be, or because a statement has reached a limit meanwhile.
    bool endTransaction(bool keepsChanges);

    /// Runs exactly one statement of the app's dialect: a query, a change of records, or a definition, which
    /// changes the schema. Tables are named by their occurrences. Each `?` takes the parameter at its
    /// position, with its type.
    calc::SqlAnswer execute(std::u16string_view statement, const DataVect& parameters);
    /// Runs one SELECT; the values of the answer are texts as SQL writes them.
    calc::SqlAnswer select(std::u16string_view statement, const DataVect& parameters);

private:
    struct Statements;
    struct ChangedRecord;
    void report(const std::vector<ChangedRecord>& changed) const;
    void resumeTransaction();
    calc::SqlAnswer run(std::u16string_view statement, const DataVect& parameters, bool isQueryOnly);
    /// Null for a definition, which has been carried out. Throws sql::Problem, as does `answer`.
    std::shared_ptr<const sql::Translation> translated(std::u16string_view statement,
                                                       const DataVect& parameters, bool isQueryOnly);
    calc::SqlAnswer answer(const sql::Translation& translation, const DataVect& parameters, ValueForm form);

    std::unique_ptr<Statements> statements_;
    Schema schema_;
    Schema schemaBefore_; ///< as it was when the open transaction began
    bool inTransaction_ = false;
    bool isTransactionLost_ = false; ///< the store has taken it back because of a limit
    RecordCalls calls_;
    std::pair<Schema*, RecordCalls*> fieldSource_; ///< of the function that reads fields without columns
};

} // namespace host
