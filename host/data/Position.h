#pragma once

#include "host/calc/Fields.h"
#include "host/data/FoundSet.h"
#include "host/data/Records.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

/// A request of a find: its criteria, all of which a record must meet.
struct FindRequest {
    struct Criterion {
        calc::FieldPlace place;
        int repetition;
        std::u16string text; ///< with the operators of finds
    };
    std::vector<Criterion> criteria;
    bool omits = false; ///< records that meet it are taken out of those that were found before
};

/// Where a session stands in a file: its layout, the found set, the current record, and what is not committed
/// yet. Operations answer an error code: 0, or that of the script step of the same name. An operation that
/// fails changes nothing.
class Position {
public:
    enum class Mode : std::uint8_t { browse, find };
    enum class Step : std::uint8_t { first, last, previous, next };

    /// At the first layout, with all records found and the first one current.
    explicit Position(Records& records);

    [[nodiscard]] Mode mode() const { return mode_; }
    /// Places in Schema::layouts and Schema::occurrences; nothing in a file without layouts.
    [[nodiscard]] std::optional<std::size_t> layout() const { return layout_; }
    [[nodiscard]] std::optional<std::size_t> occurrence() const;
    /// ID of the current record; 0 where there is none.
    [[nodiscard]] std::int64_t record();
    /// The current record, or request in Find mode, from 1; 0 where there is none.
    [[nodiscard]] std::size_t recordNumber();
    /// IDs of the found records, in their order.
    [[nodiscard]] const std::vector<std::int64_t>& found();
    /// The found set of an occurrence.
    [[nodiscard]] FoundSet& foundSet(std::size_t occurrence);
    [[nodiscard]] const std::vector<FindRequest>& requests() const { return requests_; }
    [[nodiscard]] std::size_t request() const { return request_; } ///< the current one, from 0

    /// Commits. 105: no such layout.
    int goToLayout(std::u16string_view name);
    int goToLayout(std::size_t layout); ///< from 0
    /// Commits. In Find mode among the requests. 101: no such record.
    int goToRecord(std::int64_t number); ///< from 1
    int goToRecord(Step step);

    /// At the end of the found set, with its automatic values; it becomes current. In Find mode a new
    /// request. Commits the record that was open.
    int newRecord();
    /// 101: no record.
    int duplicateRecord();
    int deleteRecord();
    int deleteAllRecords(); ///< of the found set
    /// Deletes the records of a table and nothing that is related to them. 106: no such occurrence.
    int truncateTable(std::u16string_view occurrence);

    /// Sets a field of the current record, of the first related one, or a global. A related record is created
    /// where there is none and the relationship allows it. In Find mode it sets a criterion. 101: no record;
    /// 102: no such field; 110: not related; 111: no such repetition; 201: the field cannot be changed.
    int setField(calc::FieldPlace place, int repetition, const DataRef& value);
    /// By the name `Occurrence::Field`, `Field`, each with `[n]` or without.
    int setField(std::u16string_view name, const DataRef& value);
    /// Sets a field in each record of the found set, of which each is the current one in turn.
    int replaceFieldContents(calc::FieldPlace place, const std::function<DataRef()>& valueOfCurrentRecord);
    /// The criterion of a field in the current request, in Find mode; empty text where nothing is set.
    [[nodiscard]] DataRef criterion(calc::FieldPlace place, int repetition) const;

    /// The code of the first field whose validation refuses its value: 500 to 511. Nothing is committed then.
    /// In a transaction records stay open until its end.
    int commit();
    int commitUnchecked(); ///< without validation
    int revert();          ///< 3 in a transaction

    /// A transaction: all changes until its end are kept or taken back together. Another one within it only
    /// counts. 3: none is open.
    int openTransaction();
    int commitTransaction();
    int revertTransaction();
    /// Ends the latest transactions that are open without their commit. Those within another one only count;
    /// the outermost one is taken back.
    void leaveTransactions(std::size_t count);
    [[nodiscard]] bool hasTransaction() const { return transaction_.has_value(); }
    /// Whether an error of a step takes the transaction back.
    [[nodiscard]] bool revertsOnError() const { return !transaction_ || transaction_->revertsOnError; }
    int setRevertsOnError(bool reverts);

    int showAllRecords();
    int showOmittedOnly();
    /// The current record leaves the found set. In Find mode the current request becomes an omitting one, or
    /// a usual one again.
    int omitRecord();
    int omitRecords(std::int64_t count); ///< the current record and those after it

    int enterFindMode(); ///< with one empty request
    int enterBrowseMode();
    /// 400: no criteria; 401: no record meets them, and the found set is empty. They end Find mode.
    int performFind();
    int constrainFoundSet();
    int extendFoundSet();

    /// Sorts the found set. 102: a field that the schema lacks, or that no relationship leads to.
    int sort(std::vector<SortKey> keys);
    /// The value that a record of an occurrence is sorted by; empty when the schema no longer has the place.
    DataRef sortValue(std::size_t from, std::int64_t record, calc::FieldPlace place);
    int unsort();
    /// Goes to a layout of the related occurrence, with the related records or all records found, and the
    /// first related one current. 101: no related record; 103: no relationship; 105: no such layout.
    int goToRelatedRecord(std::u16string_view occurrence, std::u16string_view layout, bool onlyRelated);

private:
    [[nodiscard]] FoundSet* current();
    void add(FoundSet& set, std::int64_t made, std::uint64_t before);
    [[nodiscard]] std::size_t table() const;
    [[nodiscard]] std::int64_t recordToChange(calc::FieldPlace place, int& error);
    int setCriterion(calc::FieldPlace place, int repetition, const DataRef& value);
    int find(const std::vector<std::int64_t>& candidates, const std::vector<std::int64_t>& kept);
    void show(std::vector<std::int64_t> records, bool isAll);
    int leave();

    struct Transaction {
        std::map<std::size_t, FoundSet> foundSets; ///< as they were before it
        bool revertsOnError = true;
        std::size_t inner = 0; ///< transactions within it that are open
    };

    Records& records_;
    std::optional<Transaction> transaction_;
    Mode mode_ = Mode::browse;
    std::optional<std::size_t> layout_;
    std::map<std::size_t, FoundSet> foundSets_; ///< by occurrence
    std::vector<FindRequest> requests_;
    std::size_t request_ = 0;
};

} // namespace host
