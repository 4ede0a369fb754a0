#include "host/app/File.h"

#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/calc/CustomFunction.h"
#include "host/calc/ReservedWords.h"
#include "host/sql/Database.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

constexpr std::string_view kUsualLocale = "en_US";
constexpr std::size_t mostFonts = 65'000, longestFontName = 1'000;

constexpr int iosPlatform = 3;
constexpr std::u16string_view applicationVersion = u"Kestrel Host 1.0";

template<typename Items, typename NameOf>
std::u16string lines(const Items& items, NameOf nameOf) {
    std::u16string list;
    for (const auto& item : items) {
        if (!list.empty()) list += u'\r';
        list += nameOf(item);
    }
    return list;
}

std::u16string filePath(const Solution& solution) {
    return u"file:" + solution.path + u"/" + solution.name + u".fmp12";
}

/// One line each: name, version (an unpacked library has none) and state.
std::u16string installedPlugIns(const Session* session) {
    if (session == nullptr) return {};
    return lines(session->plugIns(), [](PlugIn* plugIn) {
        return plugIn->name() + (plugIn->isEnabled() ? u";;Enabled" : u";;Disabled");
    });
}

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

struct Answer {
    std::u16string_view name;
    Data (*value)(const Solution& solution, const Session* session);
};

constexpr std::array answers{
    Answer{u"AccountName", [](const Solution& solution, const Session*) { return Data(solution.account); }},
    Answer{u"ApplicationVersion",
           [](const Solution&, const Session*) { return Data(std::u16string(applicationVersion)); }},
    Answer{u"FileName", [](const Solution& solution, const Session*) { return Data(solution.name); }},
    Answer{u"FilePath", [](const Solution& solution, const Session*) { return Data(filePath(solution)); }},
    Answer{u"InstalledFMPlugins",
           [](const Solution&, const Session* session) { return Data(installedPlugIns(session)); }},
    Answer{u"SystemPlatform", [](const Solution&, const Session*) { return Data(Decimal(iosPlatform)); }},
    Answer{u"UserName", [](const Solution& solution, const Session*) { return Data(solution.user); }},
};

} // namespace

File::File(Session& session, std::uint64_t id, Solution solution)
    : session_(&session), id_(id), solution_(std::move(solution)),
      functions_(rowsOf(solution_.functions, *session.functions())),
      formats_(formatsOf(solution_.locale.empty() ? kUsualLocale : solution_.locale)),
      database_(std::make_unique<Database>(solution_.schema)) {
    database_->setNames(solution_.name, solution_.account);
    for (const std::u16string& font : solution_.fonts)
        fontId(font);
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

const Schema* File::schema() const { return database_ ? &database_->schema() : nullptr; }

void File::markClosed() {
    open_ = false;
    session_ = nullptr;
    database_.reset();
}

std::optional<DataRef> File::get(std::u16string_view name) {
    for (const Answer& answer : answers)
        if (calc::foldName(answer.name) == name)
            return std::make_shared<const Data>(answer.value(solution_, session_));
    return std::nullopt;
}

std::int64_t File::localMicros() { return clock().localSinceYearOne().count(); }

std::optional<std::u16string> File::scriptNames(std::u16string_view fileName) {
    if (!open_) return std::nullopt;
    const std::shared_ptr<File> other = fileName.empty() ? nullptr : session_->find(fileName);
    if (!fileName.empty() && !other) return std::nullopt;
    const File& file = other ? *other : *this;
    return lines(file.solution_.scripts, [](const Script& script) { return script.name; });
}

std::u16string File::databaseNames() {
    if (!open_) return {};
    return lines(session_->files(), [](const auto& file) { return file->name(); });
}

calc::SqlAnswer File::executeSql(std::u16string_view statement, std::u16string_view fileName,
                                 const DataVect& parameters) {
    if (!open_) return {.error = calc::error::missingFile, .rows = {}};
    const std::shared_ptr<File> other = fileName.empty() ? nullptr : session_->find(fileName);
    if (!fileName.empty() && !other) return {.error = calc::error::missingFile, .rows = {}};
    return (other ? *other : *this).database_->execute(statement, parameters);
}

calc::SqlAnswer File::selectSql(std::u16string_view statement, const DataVect& parameters) {
    if (!open_) return {.error = calc::error::missingFile, .rows = {}};
    return database_->select(statement, parameters);
}

std::uint16_t File::fontId(std::u16string_view name) {
    if (name.empty() || name.size() > longestFontName) return invalidFont;
    std::u16string folded = calc::foldName(name);
    if (const auto found = fontIds_.find(folded); found != fontIds_.end()) return found->second;
    if (fonts_.size() >= mostFonts) return invalidFont;
    const auto id = static_cast<std::uint16_t>(fonts_.size());
    fonts_.emplace_back(name);
    fontIds_.emplace(std::move(folded), id);
    return id;
}

std::optional<std::u16string> File::fontName(std::uint16_t id) {
    if (id >= fonts_.size()) return std::nullopt;
    return fonts_[id];
}

} // namespace host
