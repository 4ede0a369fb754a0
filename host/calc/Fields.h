#pragma once

#include "host/values/Data.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Fields as calculations see them. The engine knows them through this interface only.

namespace host::calc {

/// A field as an occurrence has it: places in the file's description.
struct FieldPlace {
    std::uint32_t occurrence = 0, field = 0;
    bool operator==(const FieldPlace&) const = default;
};

/// The record that a calculation belongs to, where that is not the session's current record.
struct RecordScope {
    std::size_t occurrence = 0;
    std::int64_t record = 0;        ///< its ID; 0: none
    int repetition = 1;             ///< the one that is calculated
    std::optional<FieldPlace> self; ///< the field whose calculation it is
};

/// A field's name as texts write it: `Field`, `Occurrence::Field`, each with `[n]` or without.
struct FieldName {
    std::u16string occurrence, field; ///< the occurrence is empty where none is written
    std::optional<int> repetition;
};
FieldName fieldNameIn(std::u16string_view text);

/// Reads fields. A scope that is null stands for the session's current layout and record. Values are never
/// null where nothing else is said; where there is no record they are empty. A value that cannot be read is
/// "?".
class FieldContext {
public:
    using Scope = const RecordScope*;

    virtual ~FieldContext() = default;

    /// A number that is the same as long as a name means the same field.
    [[nodiscard]] virtual std::uint64_t names(Scope scope) const = 0;
    struct Found {
        int error = 0; ///< 0, or 102: no such field or occurrence
        FieldPlace place = {};
    };
    /// A field by name, in any case; the name of the occurrence is empty for one of the scope's own.
    [[nodiscard]] virtual Found find(Scope scope, std::u16string_view occurrence,
                                     std::u16string_view field) const = 0;
    /// Calls `visit` with each name that `find` takes, qualified.
    virtual void eachName(const std::function<void(std::u16string_view)>& visit) const = 0;
    /// `Occurrence::Field`, as both were defined.
    [[nodiscard]] virtual std::u16string nameOf(FieldPlace place) const = 0;
    /// The name of the table that the field's occurrence stands for.
    [[nodiscard]] virtual std::u16string tableNameOf(FieldPlace place) const = 0;
    [[nodiscard]] virtual int repetitions(FieldPlace place) const = 0;

    /// The error code of the last "?" that was given, 0 where it has none; it is forgotten then.
    virtual int takeFailure() = 0;
    /// The value in the scope's record, or in the first related one. The failure is 110 where no relationship
    /// leads to the occurrence. A repetition out of range is "?".
    virtual DataRef value(Scope scope, FieldPlace place, int repetition) = 0;
    /// The values of all related records, or of the scope's record; of one repetition, or of all where it is
    /// 0. Empty ones are among them.
    virtual DataVect values(Scope scope, FieldPlace place, int repetition) = 0;
    /// The value in the n-th record of the found set, or in the n-th related one; null where there is none.
    virtual DataRef nthValue(Scope scope, FieldPlace place, int repetition, std::int64_t n) = 0;
    /// The value in the first related record; null where there is none.
    virtual DataRef lookup(Scope scope, FieldPlace place, int repetition) = 0;
    /// The same; without a related record, that of the next lower or higher key.
    virtual DataRef lookupNext(Scope scope, FieldPlace place, int repetition, bool isHigher) = 0;
    /// The summary of the records around the current one that share the value of `breakField`. Throws 1216
    /// where the first is no summary field, 1217 for a break field that cannot be one.
    virtual DataRef summary(Scope scope, FieldPlace summaryField, FieldPlace breakField) = 0;
};

} // namespace host::calc
