#include "host/app/TableReader.h"

#include "host/app/RecordReader.h"
#include "host/calc/Environment.h"
#include "host/calc/Fields.h"
#include "host/data/Records.h"
#include "host/values/Encoding.h"
#include "host/values/Formats.h"

#include <algorithm>
#include <array>
#include <set>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t longestName = 100;
constexpr int mostRepetitions = 1'000;

struct TypeWord {
    std::u16string_view word;
    DataType type;
};
constexpr std::array typeWords{
    TypeWord{u"text", DataType::text},           TypeWord{u"number", DataType::number},
    TypeWord{u"date", DataType::date},           TypeWord{u"time", DataType::time},
    TypeWord{u"timestamp", DataType::timestamp}, TypeWord{u"container", DataType::binary},
};

struct SummaryWord {
    std::u16string_view words;
    SummaryKind kind;
};
constexpr std::array summaryWords{
    SummaryWord{u"total of ", SummaryKind::total},
    SummaryWord{u"average of ", SummaryKind::average},
    SummaryWord{u"count of ", SummaryKind::count},
    SummaryWord{u"minimum of ", SummaryKind::minimum},
    SummaryWord{u"maximum of ", SummaryKind::maximum},
    SummaryWord{u"standard deviation of ", SummaryKind::standardDeviation},
    SummaryWord{u"list of ", SummaryKind::list},
};

struct ComparisonSign {
    std::u16string_view sign;
    KeyComparison comparison;
};
/// The signs of two characters come before those of one.
constexpr std::array comparisonSigns{
    ComparisonSign{u"<>", KeyComparison::notEqual},
    ComparisonSign{u"<=", KeyComparison::lessOrEqual},
    ComparisonSign{u">=", KeyComparison::greaterOrEqual},
    ComparisonSign{u"≠", KeyComparison::notEqual},
    ComparisonSign{u"≤", KeyComparison::lessOrEqual},
    ComparisonSign{u"≥", KeyComparison::greaterOrEqual},
    ComparisonSign{u"×", KeyComparison::any},
    ComparisonSign{u"=", KeyComparison::equal},
    ComparisonSign{u"<", KeyComparison::less},
    ComparisonSign{u">", KeyComparison::greater},
};

class TableReader {
public:
    TableReader(const DescriptionReader& reader, fs::path folder, Solution& solution)
        : reader_(reader), folder_(std::move(folder)), solution_(solution), schema_(solution.tables) {}

    void read(const toml::table& description) {
        eachPart(description, "table", &TableReader::table);
        eachPart(description, "occurrence", &TableReader::occurrence);
        for (const Occurrence& made : schema_.occurrences)
            schema_.layouts.push_back(
                {.name = made.name,
                 .occurrence = static_cast<std::size_t>(&made - schema_.occurrences.data())});
        eachPart(description, "layout", &TableReader::layout);
        eachPart(description, "relationship", &TableReader::relationship);
        eachPart(description, "value_list", &TableReader::valueList);
        checkUsedLists();
    }

private:
    using Part = void (TableReader::*)(const toml::table&);
    void eachPart(const toml::table& description, const std::string& key, Part part) {
        if (const toml::node* node = description.get(key))
            reader_.each(*node, key, [&](const toml::node& element) {
                (this->*part)(reader_.table(element, key + " must be a table, [[" + key + "]]"));
            });
    }

    [[nodiscard]] bool hasTable(std::u16string_view name) const {
        return std::any_of(schema_.tables.begin(), schema_.tables.end(), [&](const BaseTable& known) {
            return calc::foldName(known.name) == calc::foldName(name);
        });
    }

    /// A name that calculations and statements use.
    [[nodiscard]] std::u16string identifier(const toml::table& part, const std::string& what) const {
        std::u16string name = reader_.requiredName(part, "name", what);
        const auto fail = [&](const std::string& why) {
            reader_.fail(part.get("name")->source(), what + "'s name \"" + toUtf8(name) + "\" " + why);
        };
        if (name.size() > longestName) fail("is longer than 100 characters");
        if (name.find(u"::") != std::u16string::npos || name.find_first_of(u"[]{}") != std::u16string::npos)
            fail("holds a sign that has a meaning of its own");
        if (name.front() == u' ' || name.back() == u' ') fail("begins or ends with a blank");
        const std::u16string folded = calc::foldName(name);
        if (folded.starts_with(u"kestrel_") || folded.starts_with(u"sqlite_")) fail("is kept for the host");
        return name;
    }

    void table(const toml::table& part) {
        reader_.checkKeys(part, {"name", "comment", "records", "fields"});
        BaseTable table;
        table.name = identifier(part, "a table");
        if (hasTable(table.name)) reader_.fail(part.source(), "a table of this name stands above");
        if (const toml::node* comment = part.get("comment"))
            table.comment = reader_.text(*comment, "comment");
        const std::size_t place = schema_.tables.size();
        schema_.tables.push_back(std::move(table));
        schema_.occurrences.push_back({.name = schema_.tables.back().name, .table = place});
        std::set<std::size_t> rich;
        if (const toml::node* fields = part.get("fields"))
            reader_.each(*fields, "fields", [&](const toml::node& node) {
                if (field(reader_.table(node, "a field must be a table, { name = … }"), place))
                    rich.insert(schema_.tables[place].fields.size() - 1);
            });
        if (schema_.tables[place].fields.empty()) reader_.fail(part.source(), "a table has no fields");
        if (const toml::node* fields = part.get("fields")) checkSummaries(*fields->as_array(), place);
        if (const toml::node* records = part.get("records")) {
            const std::string name = toUtf8(reader_.name(*records, "records"));
            if (fs::path(name).filename() != name)
                reader_.fail(records->source(), "records must name a file of the solution's folder");
            readRecords(folder_ / name, place, rich, solution_);
        }
    }

    /// Adds a field to a table; true where its records are written as HTML.
    bool field(const toml::table& part, std::size_t table) {
        reader_.checkKeys(part, {"name",    "type",    "repetitions", "comment",     "indexed",
                                 "serial",  "step",    "global",      "calculation", "stored",
                                 "summary", "auto",    "rich",        "required",    "unique",
                                 "strict",  "longest", "range",       "value_list",  "valid"});
        Field field;
        field.name = identifier(part, "a field");
        for (const Field& known : schema_.tables[table].fields)
            if (calc::foldName(known.name) == calc::foldName(field.name))
                reader_.fail(part.source(), "a field of this name stands above");
        if (const toml::node* type = part.get("type")) field.type = typeIn(*type);
        if (const toml::node* node = part.get("repetitions"))
            field.repetitions = static_cast<int>(reader_.number(*node, "repetitions", 1, mostRepetitions));
        if (const toml::node* node = part.get("comment")) field.comment = reader_.text(*node, "comment");
        field.isIndexed = reader_.flag(part, "indexed", false);
        const bool isRich = reader_.flag(part, "rich", false);
        if (isRich && field.type != DataType::text)
            reader_.fail(part.source(), "only a text field can be rich");
        checkKind(part);
        automatic(part, field);
        validation(part, field);
        for (const char* key : {"calculation", "auto"})
            if (const toml::node* node = part.get(key)) field.line = node->source().begin.line;
        if (const toml::node* node = part.get("calculation")) {
            field.calculation = reader_.text(*node, "calculation");
            field.kind = reader_.flag(part, "stored", true) ? FieldKind::storedCalculation
                                                            : FieldKind::unstoredCalculation;
        }
        if (const toml::node* node = part.get("summary")) summary(*node, field);
        const toml::node* global = part.get("global");
        if (global != nullptr) field.kind = FieldKind::global;
        const DataType type = field.type;
        schema_.tables[table].fields.push_back(std::move(field));
        if (global != nullptr) globalValue(*global, table, type);
        return isRich;
    }

    /// A field is of one kind.
    void checkKind(const toml::table& part) const {
        std::string first;
        for (const char* key : {"global", "calculation", "summary", "serial", "auto"}) {
            if (!part.contains(key)) continue;
            if (!first.empty())
                reader_.fail(part.source(), "a field has both " + first + " and " + std::string(key));
            first = key;
        }
        if (part.contains("stored") && !part.contains("calculation"))
            reader_.fail(part.source(), "only a calculation is stored or not");
        if (part.contains("step") && !part.contains("serial"))
            reader_.fail(part.source(), "step belongs to a serial number");
    }

    [[nodiscard]] DataType typeIn(const toml::node& node) const {
        const std::u16string word = reader_.text(node, "type");
        for (const TypeWord& known : typeWords)
            if (known.word == word) return known.type;
        reader_.fail(node.source(), "type must be text, number, date, time, timestamp or container");
    }

    void automatic(const toml::table& part, Field& field) const {
        if (const toml::node* node = part.get("serial")) field.nextSerial = reader_.name(*node, "serial");
        if (const toml::node* node = part.get("step"))
            field.serialStep = reader_.number(*node, "step", 1, 1'000'000);
        if (const toml::node* node = part.get("auto")) field.autoEnter = reader_.text(*node, "auto");
    }

    void validation(const toml::table& part, Field& field) {
        Validation& rules = field.validation;
        rules.isRequired = reader_.flag(part, "required", false);
        rules.isUnique = reader_.flag(part, "unique", false);
        rules.isStrict = reader_.flag(part, "strict", false);
        if (const toml::node* node = part.get("longest"))
            rules.longest = static_cast<std::size_t>(reader_.number(*node, "longest", 1, 1'000'000));
        if (const toml::node* node = part.get("range")) range(*node, field);
        if (const toml::node* node = part.get("value_list")) {
            rules.valueList = reader_.name(*node, "value_list");
            usedLists_.emplace_back(node, rules.valueList);
        }
        if (const toml::node* node = part.get("valid")) rules.calculation = reader_.text(*node, "valid");
        for (const char* key : {"global", "calculation", "summary"})
            if (part.contains(key) && rules.isAny())
                reader_.fail(part.source(), "only a field that records hold is validated");
    }

    void range(const toml::node& node, Field& field) const {
        std::vector<DataRef> bounds;
        reader_.each(node, "range", [&](const toml::node& bound) {
            const std::string written = toUtf8(reader_.text(bound, "a bound"));
            bounds.push_back(valueFrom(written, field.type));
            if (!bounds.back())
                reader_.fail(bound.source(),
                             "\"" + written + "\" is no " + std::string(typeWord(field.type)));
        });
        if (bounds.size() != 2) reader_.fail(node.source(), "range must be the least and the most");
        field.validation.least = bounds.front();
        field.validation.most = bounds.back();
    }

    /// Value lists are described after the fields that name them.
    void checkUsedLists() const {
        for (const auto& [node, name] : usedLists_)
            if (!schema_.valueList(name))
                reader_.fail(node->source(), "there is no value list \"" + toUtf8(name) + "\"");
    }

    void summary(const toml::node& node, Field& field) const {
        const std::u16string words = reader_.text(node, "summary");
        const auto* known =
            std::find_if(summaryWords.begin(), summaryWords.end(), [&](const SummaryWord& row) {
                return words.starts_with(row.words) && words.size() > row.words.size();
            });
        if (known == summaryWords.end())
            reader_.fail(node.source(), "summary must be total, average, count, minimum, maximum, standard "
                                        "deviation or list, \"of\" and a field");
        field.kind = FieldKind::summary;
        field.summary = known->kind;
        field.summarized = words.substr(known->words.size());
    }

    void checkSummaries(const toml::array& nodes, std::size_t table) const {
        const std::vector<Field>& fields = schema_.tables[table].fields;
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (fields[i].kind != FieldKind::summary) continue;
            const auto is = [&](const Field& known) {
                return calc::foldName(known.name) == calc::foldName(fields[i].summarized) &&
                       known.kind != FieldKind::summary;
            };
            if (std::none_of(fields.begin(), fields.end(), is))
                reader_.fail(nodes[i].source(),
                             "the table has no field \"" + toUtf8(fields[i].summarized) + "\" to sum up");
        }
    }

    void globalValue(const toml::node& node, std::size_t table, DataType type) {
        const std::size_t field = schema_.tables[table].fields.size() - 1;
        const std::string written = toUtf8(reader_.text(node, "global"));
        const DataRef value = valueFrom(written, type);
        if (!value) reader_.fail(node.source(), "\"" + written + "\" is no " + std::string(typeWord(type)));
        solution_.globals.push_back({.table = table, .field = field, .repetition = 1, .value = value});
    }

    void occurrence(const toml::table& part) {
        reader_.checkKeys(part, {"name", "table"});
        Occurrence made{.name = identifier(part, "an occurrence"), .table = 0};
        const std::u16string table = reader_.requiredName(part, "table", "an occurrence");
        while (made.table < schema_.tables.size() &&
               calc::foldName(schema_.tables[made.table].name) != calc::foldName(table))
            ++made.table;
        if (made.table == schema_.tables.size())
            reader_.fail(part.get("table")->source(), "there is no table \"" + toUtf8(table) + "\"");
        if (const auto known = schema_.occurrence(made.name))
            schema_.occurrences[*known] = made;
        else
            schema_.occurrences.push_back(made);
    }

    [[nodiscard]] std::size_t occurrenceNamed(std::u16string_view name, const toml::node& node) const {
        const auto place = schema_.occurrence(name);
        if (!place) reader_.fail(node.source(), "there is no occurrence \"" + toUtf8(name) + "\"");
        return *place;
    }

    void layout(const toml::table& part) {
        reader_.checkKeys(part, {"name", "occurrence"});
        Layout made{.name = reader_.requiredName(part, "name", "a layout"), .occurrence = 0};
        const std::u16string name = reader_.requiredName(part, "occurrence", "a layout");
        made.occurrence = occurrenceNamed(name, *part.get("occurrence"));
        if (const auto known = schema_.layout(made.name))
            schema_.layouts[*known] = made;
        else
            schema_.layouts.push_back(made);
    }

    struct Place {
        std::size_t occurrence, field;
    };
    [[nodiscard]] Place placeIn(std::u16string_view text, const toml::node& node) const {
        const calc::FieldName name = calc::fieldNameIn(text);
        if (name.occurrence.empty())
            reader_.fail(node.source(), "\"" + toUtf8(text) + "\" must be a field, Occurrence::Field");
        const std::size_t occurrence = occurrenceNamed(name.occurrence, node);
        const auto field = schema_.field(occurrence, name.field);
        if (!field) reader_.fail(node.source(), "there is no field \"" + toUtf8(text) + "\"");
        return {occurrence, *field};
    }

    void relationship(const toml::table& part) {
        reader_.checkKeys(part, {"match", "create", "delete", "sort"});
        const toml::node* match = part.get("match");
        if (match == nullptr) reader_.fail(part.source(), "a relationship has no match");
        Relationship made{};
        if (match->is_array())
            reader_.each(*match, "match", [&](const toml::node& node) { predicate(node, made); });
        else
            predicate(*match, made);
        if (made.predicates.empty()) reader_.fail(match->source(), "a relationship matches nothing");
        eachSide(part, "create", made, [](Relationship::Side& side) { side.mayCreate = true; });
        eachSide(part, "delete", made, [](Relationship::Side& side) { side.deletes = true; });
        if (const toml::node* node = part.get("sort"))
            reader_.each(*node, "sort", [&](const toml::node& field) { sort(field, made); });
        schema_.relationships.push_back(made);
    }

    void predicate(const toml::node& node, Relationship& made) const {
        const std::u16string text = reader_.text(node, "match");
        const ComparisonSign* sign = nullptr;
        std::size_t at = std::u16string::npos;
        for (const ComparisonSign& known : comparisonSigns)
            if (const std::size_t found = text.find(known.sign); found < at) {
                at = found;
                sign = &known;
            }
        if (sign == nullptr) reader_.fail(node.source(), "a match compares two fields");
        const Place left = placeIn(text.substr(0, at), node),
                    right = placeIn(text.substr(at + sign->sign.size()), node);
        if (left.occurrence == right.occurrence)
            reader_.fail(node.source(), "a relationship joins two occurrences");
        const bool isSame = made.predicates.empty() || (made.sides[0].occurrence == left.occurrence &&
                                                        made.sides[1].occurrence == right.occurrence);
        if (!isSame) reader_.fail(node.source(), "a relationship has the same occurrences in each match");
        made.sides[0].occurrence = left.occurrence;
        made.sides[1].occurrence = right.occurrence;
        made.predicates.push_back({.fields = {left.field, right.field}, .comparison = sign->comparison});
    }

    [[nodiscard]] Relationship::Side& sideOf(Relationship& made, std::size_t occurrence,
                                             const toml::node& node) const {
        for (Relationship::Side& side : made.sides)
            if (side.occurrence == occurrence) return side;
        reader_.fail(node.source(), "the relationship does not join this occurrence");
    }

    template<typename Change>
    void eachSide(const toml::table& part, const std::string& key, Relationship& made,
                  const Change& change) const {
        if (const toml::node* node = part.get(key))
            reader_.each(*node, key, [&](const toml::node& name) {
                change(sideOf(made, occurrenceNamed(reader_.text(name, key), name), name));
            });
    }

    void sort(const toml::node& node, Relationship& made) const {
        constexpr std::u16string_view descending = u" descending";
        std::u16string text = reader_.text(node, "sort");
        const bool isDescending = text.ends_with(descending);
        if (isDescending) text.resize(text.size() - descending.size());
        const Place place = placeIn(text, node);
        Relationship::Side& side = sideOf(made, place.occurrence, node);
        side.sortField = place.field;
        side.isDescending = isDescending;
    }

    void valueList(const toml::table& part) {
        reader_.checkKeys(part, {"name", "values", "field"});
        ValueList made;
        made.name = reader_.requiredName(part, "name", "a value list");
        if (part.contains("values") == part.contains("field"))
            reader_.fail(part.source(), "a value list has either values or a field");
        for (const ValueList& known : schema_.valueLists)
            if (calc::foldName(known.name) == calc::foldName(made.name))
                reader_.fail(part.source(), "a value list of this name stands above");
        if (const toml::node* values = part.get("values"))
            reader_.each(*values, "values", [&](const toml::node& value) {
                made.values.push_back(reader_.name(value, "a value"));
            });
        if (const toml::node* field = part.get("field")) {
            const Place place = placeIn(reader_.text(*field, "field"), *field);
            made.occurrence = place.occurrence;
            made.field = place.field;
        }
        schema_.valueLists.push_back(std::move(made));
    }

    const DescriptionReader& reader_;
    fs::path folder_;
    Solution& solution_;
    Schema& schema_;
    std::vector<std::pair<const toml::node*, std::u16string>> usedLists_; ///< that fields name
};

} // namespace

void readTables(const DescriptionReader& reader, const toml::table& description, const fs::path& folder,
                Solution& solution) {
    const Formats* formats = formatsOf(solution.locale.empty() ? "en_US" : solution.locale);
    const FormatsScope scope(*formats);
    TableReader(reader, folder, solution).read(description);
}

} // namespace host
