#include "host/app/Design.h"

#include "host/app/File.h"
#include "host/app/Session.h"
#include "host/calc/Fields.h"
#include "host/data/Position.h"
#include "host/data/Records.h"
#include "host/values/Encoding.h"
#include "host/values/Formats.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace host {

namespace {

using Arguments = std::span<const DataRef>;

struct Question {
    File& file; ///< that the first argument names
    const Session& session;
    Arguments arguments;

    [[nodiscard]] const Schema& schema() const { return file.records().schema(); }
    [[nodiscard]] std::u16string_view argument(std::size_t place) const {
        return arguments[place]->asText().units();
    }
};

std::u16string digits(std::size_t number) { return fromUtf8(std::to_string(number)); }

void addLine(std::u16string& list, std::u16string_view line) {
    if (!list.empty()) list += u'\r';
    list += line;
}

template<typename Elements>
std::u16string namesOf(const Elements& elements) {
    std::u16string list;
    for (const auto& element : elements)
        addLine(list, element.name);
    return list;
}

template<typename Elements>
std::u16string idsOf(const Elements& elements, std::size_t first) {
    std::u16string list;
    for (std::size_t i = 0; i < elements.size(); ++i)
        addLine(list, digits(first + i));
    return list;
}

template<typename Elements>
const typename Elements::value_type* elementNamed(const Elements& elements, std::u16string_view name) {
    const auto found = std::find_if(elements.begin(), elements.end(), [&](const auto& element) {
        return calc::foldName(element.name) == calc::foldName(name);
    });
    return found == elements.end() ? nullptr : &*found;
}

/// The fields that an argument stands for: of a layout, of an occurrence, or of the first table.
const BaseTable* tableIn(const Question& question, std::u16string_view name) {
    const Schema& schema = question.schema();
    if (name.empty()) return schema.tables.empty() ? nullptr : schema.tables.data();
    if (const auto layout = schema.layout(name)) return &schema.tableOf(schema.layouts[*layout].occurrence);
    const auto occurrence = schema.occurrence(name);
    return occurrence ? &schema.tableOf(*occurrence) : nullptr;
}

/// `Occurrence::Field`, or a field of a table.
const Field* fieldIn(const Question& question, std::u16string_view text,
                     std::u16string_view usualTable = {}) {
    const calc::FieldName name = calc::fieldNameIn(text);
    const BaseTable* table = tableIn(question, name.occurrence.empty() ? usualTable : name.occurrence);
    return table == nullptr ? nullptr : elementNamed(table->fields, name.field);
}

std::u16string_view kindWord(const Field& field) {
    switch (field.kind) {
    case FieldKind::global: return u"Global";
    case FieldKind::storedCalculation: return u"StoredCalc";
    case FieldKind::unstoredCalculation: return u"UnstoredCalc";
    case FieldKind::summary: return u"Summary";
    case FieldKind::normal: break;
    }
    return u"Standard";
}

std::u16string fieldType(const Question& question) {
    const Field* field = fieldIn(question, question.argument(1));
    if (field == nullptr) return {};
    std::u16string words(kindWord(*field));
    words += u' ' + fromUtf8(typeWord(field->type)) + (field->isIndexed ? u" Indexed " : u" Unindexed ");
    return words + digits(static_cast<std::size_t>(field->repetitions));
}

std::u16string fieldComment(const Question& question) {
    const Field* field = fieldIn(question, question.argument(1));
    return field == nullptr ? std::u16string() : field->comment;
}

std::u16string fieldRepetitions(const Question& question) {
    const Field* field = fieldIn(question, question.argument(2), question.argument(1));
    return field == nullptr ? std::u16string()
                            : digits(static_cast<std::size_t>(field->repetitions)) + u" vertical";
}

std::u16string fieldStyle(const Question& question) {
    return fieldIn(question, question.argument(2), question.argument(1)) == nullptr ? u"" : u"Standard";
}

std::u16string fieldNames(const Question& question) {
    const BaseTable* table = tableIn(question, question.argument(1));
    return table == nullptr ? std::u16string() : namesOf(table->fields);
}

std::u16string fieldIds(const Question& question) {
    const BaseTable* table = tableIn(question, question.argument(1));
    return table == nullptr ? std::u16string() : idsOf(table->fields, 1);
}

std::u16string baseTableComment(const Question& question) {
    const BaseTable* table = elementNamed(question.schema().tables, question.argument(1));
    return table == nullptr ? std::u16string() : table->comment;
}

std::u16string nextSerialValue(const Question& question) {
    const Field* field = fieldIn(question, question.argument(1));
    return field == nullptr ? std::u16string() : field->nextSerial.value_or(u"");
}

/// The sign of a comparison; `isTurned` exchanges the sides.
std::u16string_view signOf(KeyComparison comparison, bool isTurned) {
    switch (comparison) {
    case KeyComparison::notEqual: return u"≠";
    case KeyComparison::less: return isTurned ? u">" : u"<";
    case KeyComparison::lessOrEqual: return isTurned ? u"≥" : u"≤";
    case KeyComparison::greater: return isTurned ? u"<" : u">";
    case KeyComparison::greaterOrEqual: return isTurned ? u"≤" : u"≥";
    case KeyComparison::any: return u"×";
    case KeyComparison::equal: break;
    }
    return u"=";
}

std::u16string relationBlock(const Question& question, const Relationship& relationship, int other) {
    const Schema& schema = question.schema();
    const Relationship::Side &theirs = relationship.sides[other], &mine = relationship.sides[1 - other];
    const auto name = [&](const Relationship::Side& side, std::size_t field) {
        return schema.occurrences[side.occurrence].name + u"::" +
               schema.tableOf(side.occurrence).fields[field].name;
    };
    std::u16string options;
    for (const auto& [isSet, word] :
         {std::pair{theirs.deletes, u" Delete"}, std::pair{theirs.mayCreate, u" Create"},
          std::pair{theirs.sortField.has_value(), u" Sorted"}})
        if (isSet) options += word;
    std::u16string block = u"Source: " + question.file.name() + u"\rTable: " +
                           schema.occurrences[theirs.occurrence].name + u"\rOptions:" +
                           (options.empty() ? u" " : options);
    for (const Relationship::Predicate& predicate : relationship.predicates)
        block += u"\r" + name(theirs, predicate.fields[other]) + u" " +
                 std::u16string(signOf(predicate.comparison, other == 1)) + u" " +
                 name(mine, predicate.fields[1 - other]);
    return block;
}

std::u16string relationInfo(const Question& question) {
    std::u16string blocks;
    const auto occurrence = question.schema().occurrence(question.argument(1));
    if (!occurrence) return blocks;
    for (const Relationship& relationship : question.schema().relationships)
        for (int side = 0; side < 2; ++side)
            if (relationship.sides[side].occurrence == *occurrence)
                blocks += (blocks.empty() ? u"" : u"\r\r") + relationBlock(question, relationship, 1 - side);
    return blocks;
}

/// The values of a list's field: each once, in the order of its type.
std::u16string valueListItems(const Question& question) {
    const ValueList* list = elementNamed(question.schema().valueLists, question.argument(1));
    std::u16string items;
    if (list == nullptr) return items;
    for (const std::u16string& value : list->values)
        addLine(items, value);
    if (!list->occurrence) return items;
    const std::size_t table = question.schema().occurrences[*list->occurrence].table;
    // Texts in a field of numbers differ also where their numbers do not.
    const auto comesFirst = [](const DataRef& left, const DataRef& right) {
        if (isBefore(*left, *right)) return true;
        return !isBefore(*right, *left) &&
               formats().compare(left->asText().units(), right->asText().units()) < 0;
    };
    std::set<DataRef, decltype(comesFirst)> values(comesFirst);
    for (const std::int64_t record : question.file.records().all(table)) {
        const DataRef value = question.file.records().value({table, record}, list->field, 1);
        if (!value->isEmpty() && value->isValid()) values.insert(value);
    }
    for (const DataRef& value : values)
        addLine(items, value->asText().units());
    return items;
}

std::u16string databaseNames(const Question& question) {
    std::u16string list;
    for (const auto& file : question.session.files())
        addLine(list, file->name());
    return list;
}

struct Answer {
    std::u16string_view function;
    std::u16string (*value)(const Question& question);
};
constexpr auto none = [](const Question&) { return std::u16string(); };

constexpr std::array answers{
    Answer{u"BaseTableComment", baseTableComment},
    Answer{u"BaseTableIDs",
           [](const Question& question) { return idsOf(question.schema().tables, kFirstTableId); }},
    Answer{u"BaseTableNames", [](const Question& question) { return namesOf(question.schema().tables); }},
    Answer{u"DatabaseNames", databaseNames},
    Answer{u"FieldAnnotation", none},
    Answer{u"FieldBounds", none},
    Answer{u"FieldComment", fieldComment},
    Answer{u"FieldDisplayNames", none},
    Answer{u"FieldIDs", fieldIds},
    Answer{u"FieldNames", fieldNames},
    Answer{u"FieldRepetitions", fieldRepetitions},
    Answer{u"FieldStyle", fieldStyle},
    Answer{u"FieldType", fieldType},
    Answer{u"GetNextSerialValue", nextSerialValue},
    Answer{u"LayoutIDs", [](const Question& question) { return idsOf(question.schema().layouts, 1); }},
    Answer{u"LayoutNames", [](const Question& question) { return namesOf(question.schema().layouts); }},
    Answer{u"LayoutObjectNames", none},
    Answer{u"RelationInfo", relationInfo},
    Answer{u"ScriptIDs", [](const Question& question) { return idsOf(question.file.solution().scripts, 1); }},
    Answer{u"ScriptNames",
           [](const Question& question) { return namesOf(question.file.solution().scripts); }},
    Answer{u"TableIDs",
           [](const Question& question) { return idsOf(question.schema().occurrences, kFirstOccurrenceId); }},
    Answer{u"TableNames", [](const Question& question) { return namesOf(question.schema().occurrences); }},
    Answer{u"ValueListIDs", [](const Question& question) { return idsOf(question.schema().valueLists, 1); }},
    Answer{u"ValueListItems", valueListItems},
    Answer{u"ValueListNames", [](const Question& question) { return namesOf(question.schema().valueLists); }},
    Answer{u"WindowNames", [](const Question& question) { return question.file.name(); }},
};

} // namespace

std::optional<std::u16string> designAnswer(std::u16string_view function, Arguments arguments, File& file,
                                           const Session& session) {
    const auto* row = std::find_if(answers.begin(), answers.end(),
                                   [function](const Answer& answer) { return answer.function == function; });
    if (row == answers.end()) return u"";
    const std::u16string_view name =
        arguments.empty() ? std::u16string_view() : arguments[0]->asText().units();
    const std::shared_ptr<File> other = name.empty() ? nullptr : session.find(name);
    if (!name.empty() && !other) return std::nullopt;
    return row->value({other ? *other : file, session, arguments});
}

} // namespace host
