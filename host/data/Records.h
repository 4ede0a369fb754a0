#pragma once

#include "host/calc/Engine.h"
#include "host/calc/Environment.h"
#include "host/calc/Fields.h"
#include "host/data/KeyIndex.h"
#include "host/sql/Schema.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace host {

class Database;
enum class Change : std::uint8_t;

/// A record of a base table.
struct RecordPlace {
    std::size_t table = 0;
    std::int64_t record = 0; ///< its ID; 0: none
    auto operator<=>(const RecordPlace&) const = default;
};

/// How far a record is from what was committed last; the numbers that Get ( RecordOpenState ) answers.
enum class OpenState : std::uint8_t { committed, isNew, changed };

/// The records of a file: their values, written and calculated, and what relates them. Changes are in the
/// store at once, so that statements see them; those of open records can be taken back until `commit`.
class Records {
public:
    /// Evaluates the calculation of a field for a record.
    using Evaluate = std::function<calc::Result(const calc::Expression&, const calc::RecordScope&)>;
    using Parse = std::function<calc::Parsed(std::u16string_view, const calc::RecordScope&)>;

    Records(Database& database, Parse parse, Evaluate evaluate);
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;
    ~Records() = default;

    [[nodiscard]] const Schema& schema() const;
    /// A number that changes with the schema.
    [[nodiscard]] std::uint64_t version() const { return schema().version; }
    /// A number that changes when records of a table are made or deleted.
    [[nodiscard]] std::uint64_t membership(std::size_t table) const;

    /// IDs of all records, in the order in which they were made.
    [[nodiscard]] std::vector<std::int64_t> all(std::size_t table);
    [[nodiscard]] std::size_t count(std::size_t table);
    [[nodiscard]] bool exists(RecordPlace place);
    [[nodiscard]] std::int64_t modifications(RecordPlace place);

    /// Null when the schema has no such place.
    [[nodiscard]] const Field* field(calc::FieldPlace place) const;
    /// The value of a field; that of a summary is of all records. A calculation that fails gives "?", whose
    /// code `takeFailure` then gives. A repetition out of range is "?". Never null.
    DataRef value(RecordPlace place, std::size_t field, int repetition);
    /// A "?" with a code.
    DataRef failed(int code);
    /// The code of the latest "?"; it is forgotten then.
    int takeFailure() { return std::exchange(failure_, 0); }
    /// A summary over records; never null.
    DataRef summary(std::size_t table, std::size_t field, const std::vector<std::int64_t>& records);

    /// Occurrences from one to another, without the first; nothing where no relationships lead there.
    struct Hop {
        std::size_t relationship;
        int side; ///< of the occurrence that it leads to
    };
    [[nodiscard]] std::optional<std::vector<Hop>> path(std::size_t from, std::size_t to) const;
    /// IDs of the records of `to` that are related to a record of `from`, in their order. Nothing where no
    /// relationships lead there.
    std::optional<std::vector<std::int64_t>> related(std::size_t from, std::int64_t record, std::size_t to);
    /// The record of the last hop whose key is next to the one that is looked for; 0 where there is none.
    std::int64_t nextKey(std::size_t from, std::int64_t record, std::size_t to, bool isHigher);
    /// A new record of `to` whose keys relate it to a record of `from`; 0 where the relationship does not
    /// allow it.
    std::int64_t createRelated(std::size_t from, std::int64_t record, std::size_t to);

    /// A new, open record with its automatic values.
    std::int64_t create(std::size_t table);
    std::int64_t duplicate(RecordPlace place);
    /// Deletes a record, and those that relationships delete with it. This is not taken back.
    void remove(RecordPlace place);
    /// Deletes all records of a table, and nothing with them.
    void clear(std::size_t table);
    /// Gives 0, or 102, 111 (repetition), 201 (not to be written), 101 (no record). A global takes any
    /// record.
    int set(RecordPlace place, std::size_t field, int repetition, const DataRef& value);

    [[nodiscard]] OpenState state(RecordPlace place) const;
    [[nodiscard]] std::size_t openCount() const { return open_.size(); }
    [[nodiscard]] bool isOpen(RecordPlace place) const { return open_.contains(place); }
    /// Names of the fields changed since the last commit.
    [[nodiscard]] std::vector<std::u16string> modifiedFields(RecordPlace place) const;
    void commit();
    void revert();
    /// Begins a transaction, in which committed changes can be taken back as well.
    void beginTransaction();
    bool endTransaction(bool keepsChanges); ///< false where the changes are taken back
    /// The error code of the first field of an open record that its validation refuses; 0 for none.
    int violation();
    void skipValidation() { unchecked_.clear(); } ///< of what was changed until now

    /// A field and its repetition, from 1.
    using Column = std::pair<std::size_t, int>;
    /// Adds a record of a solution that is opened, with a value for each column.
    void load(std::size_t table, const std::vector<Column>& columns, const DataVect& values);
    /// Calculates what the records of a solution store, once. It waits for the first use of a field, so that
    /// plug-ins have registered their functions.
    void finishLoading();
    /// Takes notice of a record that a statement has changed.
    void changed(RecordPlace place, Change change);
    /// The next serial number of a field; empty for one without.
    [[nodiscard]] std::u16string nextSerial(std::size_t table, std::size_t field) const;
    /// The index of a field that has columns.
    const KeyIndex& index(std::size_t table, std::size_t field);

private:
    struct Cell {
        RecordPlace place;
        std::size_t field;
        int repetition;
        auto operator<=>(const Cell&) const = default;
    };
    struct OpenRecord {
        bool isNew = false;
        std::map<std::pair<std::size_t, int>, DataRef> before; ///< values to go back to
        std::set<std::size_t> written;                         ///< fields that were set
    };

    void notice(); ///< a schema that has changed
    [[nodiscard]] const Field* field(std::size_t table, std::size_t field) const;
    DataRef stored(const Cell& cell);
    void store(const Cell& cell, const DataRef& value);
    void writeColumn(const Cell& cell, const DataRef& value);
    void keepBeside(const Cell& cell, const DataRef& value);
    DataRef calculated(const Cell& cell);
    DataRef evaluated(const Cell& cell);
    calc::ExpressionRef expression(std::size_t table, std::size_t field, const calc::RecordScope& scope);
    [[nodiscard]] calc::RecordScope scopeOf(const Cell& cell) const;
    /// Whether a field's calculation reads one of these fields of its own record.
    bool reads(const Cell& cell, const std::set<std::size_t>& fields);
    void renew(RecordPlace place, std::set<std::size_t> changed, bool isAll);
    void giveSerials(RecordPlace place);
    bool isTaken(const Cell& cell, const Data& value);
    bool isListed(std::u16string_view listName, const Data& value);
    bool isTrue(const Cell& cell, const std::u16string& calculation);
    int violation(const Cell& cell);
    int violation(const RecordPlace& place, const OpenRecord& open);
    void reindex(RecordPlace place, std::size_t field);
    void forget(RecordPlace place);
    void removeRow(RecordPlace place);
    std::vector<std::int64_t> step(const Hop& hop, std::int64_t record);
    std::set<std::int64_t> matching(const Hop& hop, std::int64_t record);
    void sortRelated(const Relationship::Side& side, std::vector<std::int64_t>& records);

    Database& database_;
    Parse parse_;
    Evaluate evaluate_;
    int failure_ = 0;
    bool isLoading_ = false;    ///< records of the solution wait for finishLoading
    std::uint64_t version_ = 0; ///< of the schema that the places below belong to
    std::vector<std::uint64_t> membership_;
    std::map<std::pair<std::u16string, int>, DataRef> globals_; ///< by table and field, folded
    std::map<Cell, DataRef> beside_; ///< values that the store would not keep whole
    std::map<std::pair<std::size_t, std::size_t>, KeyIndex> indexes_;
    std::map<std::pair<std::size_t, std::size_t>, calc::ExpressionRef> expressions_;
    std::map<RecordPlace, OpenRecord> open_;
    std::set<RecordPlace> unchecked_; ///< open records whose validation is due
    bool inTransaction_ = false;
    std::map<Cell, DataRef> besideBefore_; ///< values that the open transaction changed; null for none
    std::vector<Cell> calculating_;
    std::set<Cell> renewing_; ///< stored calculations that are not renewed yet
};

/// A value as a field of that type keeps it. A text that is no number, date or time stays as it is. A value
/// that failed becomes the text "?", and nothing in a container.
DataRef fitted(const DataRef& value, DataType type);
/// Orders values: empty ones first, numbers and moments by value, texts in the order of the language.
bool isBefore(const Data& left, const Data& right);

} // namespace host
