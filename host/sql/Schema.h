#pragma once

#include "host/values/Data.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The description of a file's tables: what a solution declares, and what SQL statements change.

namespace host {

enum class FieldKind : std::uint8_t { normal, global, storedCalculation, unstoredCalculation, summary };

/// The result that a summary field makes of another field of its table.
enum class SummaryKind : std::uint8_t { total, average, count, minimum, maximum, standardDeviation, list };

/// Conditions that the value of a field meets when its record is committed.
struct Validation {
    bool isRequired = false, isUnique = false;
    bool isStrict = false;      ///< of the field's type
    std::size_t longest = 0;    ///< UTF-16 units of its text; 0 for any
    DataRef least, most;        ///< null for any
    std::u16string valueList;   ///< the name of the list that has the value; empty for none
    std::u16string calculation; ///< it must be true; empty for none

    [[nodiscard]] bool isAny() const {
        return isRequired || isUnique || isStrict || longest > 0 || least || !valueList.empty() ||
               !calculation.empty();
    }
};

struct Field {
    std::u16string name; ///< as it was defined; matched in any case
    DataType type = DataType::text;
    FieldKind kind = FieldKind::normal;
    int repetitions = 1;
    std::u16string comment;
    bool isIndexed = false;

    std::u16string calculation; ///< of a calculation field
    std::size_t line = 0;       ///< of its calculation in the description, from 1; 0 where it has none
    SummaryKind summary = SummaryKind::total;
    std::u16string summarized; ///< the field that a summary field reads
    /// The next serial number; nothing for a field without one.
    std::optional<std::u16string> nextSerial;
    std::int64_t serialStep = 1;
    std::u16string autoEnter; ///< a calculation for new records; empty for none
    Validation validation;

    /// Whether the store has a column for each repetition: `Name`, then `Name[2]` and so on.
    [[nodiscard]] bool hasColumns() const {
        return kind == FieldKind::normal || kind == FieldKind::storedCalculation;
    }
    [[nodiscard]] bool isWritable() const { return kind == FieldKind::normal || kind == FieldKind::global; }
};

/// The data of a record that the store has beside its fields: nothing in a view, the record's ID in a table
/// that schema.sql made, and the count of modifications as well in a declared table.
enum class RecordKeys : std::uint8_t { none, id, idAndCount };

/// A base table. The store keeps its records under the same name; a record's ID is the row's ID there.
struct BaseTable {
    std::u16string name;
    std::u16string comment = {};
    std::vector<Field> fields; ///< in the order of their definition; the place from 1 is the field's ID
    RecordKeys keys = RecordKeys::idAndCount;
};

/// A table occurrence: a name under which calculations, scripts and statements reach a base table.
struct Occurrence {
    std::u16string name;
    std::size_t table; ///< place in Schema::tables
};

enum class KeyComparison : std::uint8_t { equal, notEqual, less, lessOrEqual, greater, greaterOrEqual, any };

/// A relationship between two occurrences. Side 0 is the left one, side 1 the right one.
struct Relationship {
    struct Predicate {
        std::size_t fields[2]; ///< place in the base table's fields, of each side
        KeyComparison comparison;
    };
    struct Side {
        std::size_t occurrence; ///< place in Schema::occurrences
        bool mayCreate = false; ///< writing to this side creates a record where there is none
        bool deletes = false;   ///< deleting a record of the other side deletes the related ones of this side
        std::optional<std::size_t> sortField; ///< of this side's records
        bool isDescending = false;
    };
    Side sides[2];
    std::vector<Predicate> predicates; ///< all of them must hold
};

struct Layout {
    std::u16string name;
    std::size_t occurrence;
};

/// Values of its own, or those of a field.
struct ValueList {
    std::u16string name;
    std::vector<std::u16string> values;
    std::optional<std::size_t> occurrence; ///< of the field; nothing where values are its own
    std::size_t field = 0;
};

/// Identifiers of occurrences and base tables are stable and start at these numbers.
constexpr std::size_t kFirstOccurrenceId = 1'065'089, kFirstTableId = 129;

struct Schema {
    std::uint64_t version = 0; ///< changes with each change of the description
    std::vector<BaseTable> tables;
    std::vector<Occurrence> occurrences;
    std::vector<Relationship> relationships;
    std::vector<Layout> layouts;
    std::vector<ValueList> valueLists;

    /// Places by name, in any case; nothing where there is none.
    [[nodiscard]] std::optional<std::size_t> occurrence(std::u16string_view name) const;
    [[nodiscard]] std::optional<std::size_t> layout(std::u16string_view name) const;
    /// Place in the fields of the occurrence's base table.
    [[nodiscard]] std::optional<std::size_t> valueList(std::u16string_view name) const;
    [[nodiscard]] std::optional<std::size_t> field(std::size_t occurrence, std::u16string_view name) const;
    [[nodiscard]] const BaseTable& tableOf(std::size_t occurrence) const {
        return tables[occurrences[occurrence].table];
    }
};

} // namespace host
