#include "host/app/File.h"

#include "host/app/DescriptionReader.h"
#include "host/app/Design.h"
#include "host/app/GetNames.h"
#include "host/app/Session.h"
#include "host/calc/CustomFunction.h"
#include "host/calc/ReservedWords.h"
#include "host/data/FileFields.h"
#include "host/data/Position.h"
#include "host/data/Records.h"
#include "host/sql/Database.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

constexpr std::string_view kUsualLocale = "en_US";
constexpr std::size_t mostFonts = 65'000, longestFontName = 1'000;

calc::FunctionRows rowsOf(const std::vector<FunctionDefinition>& definitions,
                          const calc::FunctionTable& functions) {
    calc::FunctionRows rows;
    for (const FunctionDefinition& definition : definitions) {
        const std::u16string name = calc::foldName(definition.name);
        auto row = calc::rowOf({definition.name, definition.parameters, definition.calculation});
        const bool isTaken = functions.find(name) != nullptr || calc::reservedWord(name);
        if (isTaken || !rows.emplace(name, std::move(row)).second)
            throw std::runtime_error("function " + toUtf8(definition.name) + ": the name is taken");
    }
    return rows;
}

} // namespace

File::File(Session& session, std::uint64_t id, Solution solution)
    : session_(&session), id_(id), solution_(std::move(solution)),
      functions_(rowsOf(solution_.functions, *session.functions())),
      formats_(formatsOf(solution_.locale.empty() ? kUsualLocale : solution_.locale)),
      database_(std::make_unique<Database>(solution_.schema, solution_.tables)),
      records_(std::make_unique<Records>(
          *database_,
          [this](std::u16string_view source, const calc::RecordScope& scope) {
              return calc::parse(source, session_->functions(), this, &scope);
          },
          [this](const calc::Expression& expression, const calc::RecordScope& scope) {
              return evaluateFor(expression, scope);
          })) {
    database_->setNames(solution_.name, solution_.account);
    for (const std::u16string& font : solution_.fonts)
        fontId(font);
    loadRecords();
    position_ = std::make_unique<Position>(*records_);
    if (solution_.record != 1 && position_->goToRecord(solution_.record) != calc::error::none)
        throw std::runtime_error("the first layout has no record " + std::to_string(solution_.record));
    fields_ = std::make_unique<FileFields>(*records_, *position_);
    checkCalculations();
}

/// Refuses a field's calculation that cannot be read. Functions of plug-ins are not known yet, so names may
/// be theirs.
void File::checkCalculations() {
    constexpr std::array names{calc::error::none, calc::error::functionNotFound, calc::error::missingField,
                               calc::error::operatorExpected, calc::error::notSupported};
    const Schema& schema = database_->schema();
    for (std::size_t i = 0; i < schema.occurrences.size(); ++i)
        for (const Field& field : schema.tableOf(i).fields) {
            const std::u16string& source = field.autoEnter.empty() ? field.calculation : field.autoEnter;
            if (source.empty()) continue;
            const calc::RecordScope scope{.occurrence = i, .record = 0, .repetition = 1, .self = {}};
            const calc::Parsed parsed = calc::parse(source, session_->functions(), this, &scope);
            if (std::find(names.begin(), names.end(), parsed.error) == names.end())
                failAt(toUtf8(solution_.path + u"/solution.toml"), field.line,
                       "field " + toUtf8(schema.occurrences[i].name + u"::" + field.name) + ": " +
                           parsed.problem.message);
        }
}

/// The database gets its call-backs after the records are loaded, so that loading triggers none.
void File::loadRecords() {
    for (const SolutionGlobal& global : solution_.globals)
        records_->set({global.table, 0}, global.field, global.repetition, global.value);
    for (const SolutionRecords& part : solution_.records)
        for (const DataVect& row : part.rows)
            records_->load(part.table, part.columns, row);
    solution_.records.clear();
    database_->setRecordCalls(
        {.fieldValue =
             [this](std::size_t occurrence, std::size_t field, int repetition, std::int64_t record) {
                 return records_->value({database_->schema().occurrences.at(occurrence).table, record}, field,
                                        repetition);
             },
         .changed = [this](std::size_t table, std::int64_t record,
                           Change change) { records_->changed({table, record}, change); }});
}

/// The calculation of a field has variables of its own.
calc::Result File::evaluateFor(const calc::Expression& expression, const calc::RecordScope& scope) {
    calc::Environment environment;
    if (open_) environment = session_->environment(shared_from_this());
    environment.record = std::make_shared<const calc::RecordScope>(scope);
    return calc::evaluateInside(expression, environment);
}

File::~File() {
    for (const auto& [name, function] : functions_)
        function->custom->dropExpression();
}

const Script* File::script(std::u16string_view name) const {
    const std::u16string wanted = calc::foldName(name);
    for (const Script& script : solution_.scripts)
        if (calc::foldName(script.name) == wanted) return &script;
    return nullptr;
}

const Schema* File::schema() const { return open_ ? &database_->schema() : nullptr; }

void File::markClosed() {
    open_ = false;
    session_ = nullptr;
}

calc::FieldContext& File::fields() { return *fields_; }

bool File::knowsGet(std::u16string_view name) const { return isGetName(name); }

DataRef File::get(std::u16string_view name, const calc::Environment& environment) {
    return getValue(name, *this, session_, environment);
}

std::int64_t File::localMicros() { return clock().localSinceYearOne().count(); }

std::optional<std::u16string> File::design(std::u16string_view function, std::span<const DataRef> arguments) {
    return open_ ? designAnswer(function, arguments, *this, *session_) : u"";
}

calc::SqlAnswer File::executeSql(std::u16string_view statement, std::u16string_view fileName,
                                 const DataVect& parameters) {
    if (!open_) return {.error = calc::error::missingFile, .rows = {}};
    const std::shared_ptr<File> other = fileName.empty() ? nullptr : session_->find(fileName);
    if (!fileName.empty() && !other) return {.error = calc::error::missingFile, .rows = {}};
    File& file = other ? *other : *this;
    file.records_->finishLoading();
    return file.database_->execute(statement, parameters);
}

calc::SqlAnswer File::selectSql(std::u16string_view statement, const DataVect& parameters) {
    if (!open_) return {.error = calc::error::missingFile, .rows = {}};
    records_->finishLoading();
    return database_->select(statement, parameters);
}

std::uint16_t File::fontId(std::u16string_view name) {
    if (name.empty() || name.size() > longestFontName) return invalidFont;
    if (const auto found = fontIds_.find(name); found != fontIds_.end()) return found->second;
    if (fonts_.size() >= mostFonts) return invalidFont;
    const auto id = static_cast<std::uint16_t>(fonts_.size());
    fonts_.emplace_back(name);
    fontIds_.emplace(name, id);
    return id;
}

std::optional<std::u16string> File::fontName(std::uint16_t id) {
    if (id >= fonts_.size()) return std::nullopt;
    return fonts_[id];
}

} // namespace host
