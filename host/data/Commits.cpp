#include "host/data/Position.h"
#include "host/sql/Database.h"
#include "host/sql/Store.h"

#include <algorithm>
#include <utility>

/// Records that are committed or taken back, one by one or in a transaction.

namespace host {

using calc::error::none;

/// A new record begins with the count 0.
void Records::commit() {
    notice();
    for (const auto& [place, open] : open_) {
        const BaseTable& table = schema().tables[place.table];
        if (open.isNew || table.keys != RecordKeys::idAndCount) continue;
        database_.query("UPDATE " + quotedName(table.name) +
                            " SET kestrel_modifications = kestrel_modifications + 1 WHERE rowid = ?",
                        {std::make_shared<const Data>(Decimal(place.record))});
    }
    open_.clear();
    unchecked_.clear();
}

void Records::revert() {
    notice();
    const std::map<RecordPlace, OpenRecord> open = std::exchange(open_, {});
    unchecked_.clear();
    for (const auto& [place, record] : open) {
        if (record.isNew) removeRow(place);
        for (const auto& [cell, value] : record.before)
            writeColumn({place, cell.first, cell.second}, value);
    }
}

void Records::beginTransaction() {
    notice();
    database_.beginTransaction();
    inTransaction_ = true;
}

bool Records::endTransaction(bool keepsChanges) {
    notice();
    if (keepsChanges) commit();
    inTransaction_ = false;
    const std::map<Cell, DataRef> before = std::exchange(besideBefore_, {});
    if (database_.endTransaction(keepsChanges)) return true;
    for (const auto& [cell, value] : before)
        keepBeside(cell, value);
    open_.clear();
    unchecked_.clear();
    indexes_.clear();
    membership_.resize(std::max(membership_.size(), schema().tables.size()));
    for (std::uint64_t& number : membership_)
        ++number;
    notice();
    return false;
}

/// Commits before the current record, or the mode, becomes another.
int Position::leave() { return mode_ == Mode::browse ? commit() : none; }

int Position::commit() {
    if (const int error = records_.violation(); error != none) return error;
    if (!transaction_) records_.commit();
    return none;
}

int Position::revert() {
    if (transaction_) return calc::error::unavailable;
    records_.revert();
    return none;
}

int Position::commitUnchecked() {
    records_.skipValidation();
    return commit();
}

int Position::openTransaction() {
    if (transaction_) {
        ++transaction_->inner;
        return none;
    }
    if (const int error = commit(); error != none) return error;
    Transaction begun{.foundSets = foundSets_};
    records_.beginTransaction();
    transaction_ = std::move(begun);
    return none;
}

int Position::commitTransaction() {
    if (!transaction_) return calc::error::unavailable;
    if (transaction_->inner > 0) {
        --transaction_->inner;
        return none;
    }
    if (const int error = commit(); error != none) return error;
    std::optional<Transaction> ended = std::exchange(transaction_, std::nullopt);
    if (records_.endTransaction(true)) return none;
    if (ended) foundSets_ = std::move(ended->foundSets);
    return calc::error::unspecific;
}

int Position::revertTransaction() {
    if (!transaction_) return calc::error::unavailable;
    foundSets_ = std::move(transaction_->foundSets);
    transaction_.reset();
    records_.endTransaction(false);
    return none;
}

void Position::leaveTransactions(std::size_t count) {
    if (!transaction_ || count == 0) return;
    if (count > transaction_->inner)
        revertTransaction();
    else
        transaction_->inner -= count;
}

int Position::setRevertsOnError(bool reverts) {
    if (!transaction_) return calc::error::unavailable;
    transaction_->revertsOnError = reverts;
    return none;
}

} // namespace host
