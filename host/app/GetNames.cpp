#include "host/app/GetNames.h"

#include "host/app/Computer.h"
#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/data/Position.h"
#include "host/data/Records.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

#include <array>
#include <map>
#include <nlohmann/json.hpp>

namespace host {

namespace {

constexpr int kIosPlatform = 3;
constexpr std::u16string_view kApplicationVersion = u"Kestrel Host 1.0";

struct Place {
    File& file;
    const Session* session; ///< null once the file is closed
    const calc::Environment& environment;

    [[nodiscard]] Position& position() const { return file.position(); }
    [[nodiscard]] Records& records() const { return file.records(); }
    [[nodiscard]] std::optional<std::size_t> occurrence() const {
        return environment.record ? environment.record->occurrence : position().occurrence();
    }
    /// The record of the calculation.
    [[nodiscard]] RecordPlace record() const {
        const auto here = occurrence();
        if (!here || *here >= records().schema().occurrences.size()) return {};
        return {records().schema().occurrences[*here].table,
                environment.record ? environment.record->record : position().record()};
    }
};

Data text(std::u16string_view units) { return Data(Text(std::u16string(units))); }
template<typename Number>
Data number(Number value) {
    return Data(Decimal(static_cast<std::int64_t>(value)));
}

/// Answers that are always the same.
template<int value>
Data always(const Place&) {
    return number(value);
}
Data nothing(const Place&) { return {}; }

Data filePath(const Place& place) {
    const Solution& solution = place.file.solution();
    return text(u"file:" + solution.path + u"/" + solution.name + u".fmp12");
}

/// One line each: name, version (an unpacked library has none) and state.
Data installedPlugIns(const Place& place) {
    if (place.session == nullptr) return {};
    std::u16string list;
    for (PlugIn* plugIn : place.session->plugIns())
        list += (list.empty() ? u"" : u"\r") + plugIn->name() +
                (plugIn->isEnabled() ? u";;Enabled" : u";;Disabled");
    return text(list);
}

Data installedPlugInsAsJson(const Place& place) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    if (place.session != nullptr)
        for (PlugIn* plugIn : place.session->plugIns())
            list.push_back({{"name", toUtf8(plugIn->name())},
                            {"version", ""},
                            {"state", plugIn->isEnabled() ? "Enabled" : "Disabled"}});
    return text(fromUtf8(list.dump()));
}

template<std::int64_t microsPerUnit>
Data sinceYearOne(const Place&) {
    return number((clock().now().count() + std::chrono::microseconds(kYearOneToUnixEpoch).count()) /
                  microsPerUnit);
}

Data localeElements(const Place& place) {
    const nlohmann::ordered_json elements{{"locale", place.file.formats().locale}};
    return text(fromUtf8(elements.dump()));
}

/// An identifier in the form of a UUID, the same as long as the session lives.
template<char16_t kind>
Data identifier(const Place& place) {
    std::u16string digits = u"00000000-0000-4000-8000-000000000000";
    digits[0] = kind;
    std::uint64_t id = place.session == nullptr ? 0 : place.session->id();
    for (std::size_t i = digits.size(); id > 0; id /= 10)
        digits[--i] = static_cast<char16_t>(u'0' + id % 10);
    return text(digits);
}

Data recordNumber(const Place& place) {
    const auto& scope = place.environment.record;
    if (!scope) return number(place.position().recordNumber());
    const auto& found = place.position().foundSet(scope->occurrence).records;
    const auto at = std::find(found.begin(), found.end(), place.record().record);
    return number(at == found.end() ? 0 : at - found.begin() + 1);
}

Data recordId(const Place& place) {
    const std::int64_t record = place.record().record;
    return record == 0 ? Data() : number(record);
}

Data foundCount(const Place& place) {
    const auto here = place.occurrence();
    return number(here ? place.position().foundSet(*here).records.size() : 0);
}

Data totalRecordCount(const Place& place) {
    return number(place.occurrence() ? place.records().count(place.record().table) : 0);
}

Data recordOpenState(const Place& place) { return number(place.records().state(place.record())); }

Data modificationCount(const Place& place) {
    return place.occurrence() ? number(place.records().modifications(place.record())) : number(0);
}

Data modifiedFields(const Place& place) {
    std::u16string list;
    for (const std::u16string& name : place.records().modifiedFields(place.record()))
        list += (list.empty() ? u"" : u"\r") + name;
    return text(list);
}

Data sortState(const Place& place) {
    const auto here = place.position().occurrence();
    if (!here) return number(0);
    const FoundSet& set = place.position().foundSet(*here);
    return number(set.sortedBy.empty() ? 0 : set.hasUnsorted ? 2 : 1);
}

Data recordAccess(const Place& place) { return number(place.record().record == 0 ? 0 : 2); }

Data requestCount(const Place& place) { return number(place.position().requests().size()); }

Data requestOmitState(const Place& place) {
    const Position& position = place.position();
    const bool isFinding = position.mode() == Position::Mode::find;
    return number(isFinding && position.requests().at(position.request()).omits ? 1 : 0);
}

Data windowMode(const Place& place) {
    return number(place.position().mode() == Position::Mode::find ? 1 : 0);
}

Data layoutName(const Place& place) {
    const auto layout = place.position().layout();
    return layout ? text(place.records().schema().layouts.at(*layout).name) : Data();
}

Data layoutNumber(const Place& place) {
    const auto layout = place.position().layout();
    return number(layout ? *layout + 1 : 0);
}

Data layoutTableName(const Place& place) {
    const auto here = place.position().occurrence();
    return here ? text(place.records().schema().occurrences[*here].name) : Data();
}

Data repetitionNumber(const Place& place) {
    return number(place.environment.record ? place.environment.record->repetition : 1);
}

struct Answer {
    std::u16string_view name;
    Data (*value)(const Place& place);
};

const std::array answers{
    Answer{u"AccountExtendedPrivileges", nothing},
    Answer{u"AccountGroupName", nothing},
    Answer{u"AccountName", [](const Place& place) { return text(place.file.solution().account); }},
    Answer{u"AccountPasswordDaysRemaining", nothing},
    Answer{u"AccountPrivilegeSetName", [](const Place&) { return text(u"[Full Access]"); }},
    Answer{u"AccountType", always<0>},
    Answer{u"ActiveFieldContents", nothing},
    Answer{u"ActiveFieldName", nothing},
    Answer{u"ActiveFieldTableName", nothing},
    Answer{u"ActiveLayoutObjectName", nothing},
    Answer{u"ActiveModifierKeys", always<0>},
    Answer{u"ActivePortalRowNumber", always<0>},
    Answer{u"ActiveRecordNumber", recordNumber},
    Answer{u"ActiveRepetitionNumber", always<0>},
    Answer{u"ActiveSelectionSize", always<0>},
    Answer{u"ActiveSelectionStart", always<0>},
    Answer{u"AllowFormattingBarState", always<0>},
    Answer{u"ApplicationArchitecture", [](const Place&) { return text(computer::architecture()); }},
    Answer{u"ApplicationLanguage", [](const Place&) { return text(u"English"); }},
    Answer{u"ApplicationVersion", [](const Place&) { return text(kApplicationVersion); }},
    Answer{u"CacheFileName", nothing},
    Answer{u"CacheFilePath", nothing},
    Answer{u"CalculationRepetitionNumber", repetitionNumber},
    Answer{u"ConnectionAttributes", nothing},
    Answer{u"ConnectionState", always<0>},
    Answer{u"CurrentExtendedPrivileges", nothing},
    Answer{u"CurrentPrivilegeSetName", [](const Place&) { return text(u"[Full Access]"); }},
    Answer{u"CurrentTimeUTCMicroseconds", sinceYearOne<1>},
    Answer{u"CurrentTimeUTCMilliseconds", sinceYearOne<1'000>},
    Answer{u"CustomMenuSetName", nothing},
    Answer{u"DesktopPath", nothing},
    Answer{u"Device", always<0>},
    Answer{u"DocumentsPath", [](const Place&) { return text(computer::documentsPath()); }},
    Answer{u"DocumentsPathListing", [](const Place&) { return text(computer::documentsPathListing()); }},
    Answer{u"EncryptionState", always<0>},
    Answer{u"FileLocaleElements", localeElements},
    Answer{u"FileMakerPath", [](const Place&) { return text(computer::programPath()); }},
    Answer{u"FileName", [](const Place& place) { return text(place.file.solution().name); }},
    Answer{u"FilePath", filePath},
    Answer{u"FileSize",
           [](const Place& place) { return number(computer::sizeOf(place.file.solution().path)); }},
    Answer{u"FoundCount", foundCount},
    Answer{u"GuidedAccessState", always<0>},
    Answer{u"HighContrastState", always<0>},
    Answer{u"HostApplicationVersion", nothing},
    Answer{u"HostIPAddress", nothing},
    Answer{u"HostName", nothing},
    Answer{u"InstalledFMPlugins", installedPlugIns},
    Answer{u"InstalledFMPluginsAsJSON", installedPlugInsAsJson},
    Answer{u"LastMessageChoice", always<0>},
    Answer{u"LastStepTokensUsed", always<0>},
    Answer{u"LayoutAccess", always<2>},
    Answer{u"LayoutCount",
           [](const Place& place) { return number(place.records().schema().layouts.size()); }},
    Answer{u"LayoutName", layoutName},
    Answer{u"LayoutNumber", layoutNumber},
    Answer{u"LayoutTableName", layoutTableName},
    Answer{u"LayoutViewState", always<0>},
    Answer{u"MenubarState", always<0>},
    Answer{u"ModifiedFields", modifiedFields},
    Answer{u"MultiUserState", always<0>},
    Answer{u"NetworkProtocol", [](const Place&) { return text(u"TCP/IP"); }},
    Answer{u"NetworkType", always<0>},
    Answer{u"OpenDataFileInfo", nothing},
    Answer{u"PageCount", always<0>},
    Answer{u"PageNumber", always<0>},
    Answer{u"PersistentID", [](const Place&) { return text(computer::persistentId()); }},
    Answer{u"PreferencesPath", [](const Place&) { return text(computer::preferencesPath()); }},
    Answer{u"PrinterName", nothing},
    Answer{u"QuickFindText", nothing},
    Answer{u"RecordAccess", recordAccess},
    Answer{u"RecordID", recordId},
    Answer{u"RecordModificationCount", modificationCount},
    Answer{u"RecordNumber", recordNumber},
    Answer{u"RecordOpenCount", [](const Place& place) { return number(place.records().openCount()); }},
    Answer{u"RecordOpenState", recordOpenState},
    Answer{u"RegionMonitorEvents", nothing},
    Answer{u"RequestCount", requestCount},
    Answer{u"RequestOmitState", requestOmitState},
    Answer{u"RevertTransactionOnErrorState",
           [](const Place& place) { return number(place.position().revertsOnError() ? 1 : 0); }},
    Answer{u"ScreenDepth", always<0>},
    Answer{u"ScreenHeight", always<0>},
    Answer{u"ScreenScaleFactor", always<0>},
    Answer{u"ScreenWidth", always<0>},
    Answer{u"ScriptAnimationState", always<0>},
    Answer{u"SessionIdentifier", identifier<u'1'>},
    Answer{u"SortState", sortState},
    Answer{u"StatusAreaState", always<0>},
    Answer{u"SystemAppearance", nothing},
    Answer{u"SystemDrive", [](const Place&) { return text(u"/"); }},
    Answer{u"SystemIPAddress", [](const Place&) { return text(computer::ipAddresses()); }},
    Answer{u"SystemLanguage", [](const Place&) { return text(u"English"); }},
    Answer{u"SystemLocaleElements", localeElements},
    Answer{u"SystemNICAddress", [](const Place&) { return text(computer::nicAddresses()); }},
    Answer{u"SystemPlatform", always<kIosPlatform>},
    Answer{u"SystemStorageAvailable", [](const Place&) { return number(computer::freeBytes()); }},
    Answer{u"SystemVersion", [](const Place&) { return text(computer::systemVersion()); }},
    Answer{u"TemporaryPath", [](const Place&) { return text(computer::temporaryPath()); }},
    Answer{u"TextRulerVisible", always<0>},
    Answer{u"TotalRecordCount", totalRecordCount},
    Answer{u"TouchKeyboardState", always<0>},
    Answer{u"TransactionOpenState",
           [](const Place& place) { return number(place.position().hasTransaction() ? 1 : 0); }},
    Answer{u"TriggerCurrentPanel", always<0>},
    Answer{u"TriggerExternalEvent", always<0>},
    Answer{u"TriggerGestureInfo", nothing},
    Answer{u"TriggerKeystroke", nothing},
    Answer{u"TriggerModifierKeys", always<0>},
    Answer{u"TriggerTargetPanel", always<0>},
    Answer{u"UseSystemFormatsState", always<0>},
    Answer{u"UserCount", always<1>},
    Answer{u"UserName", [](const Place& place) { return text(place.file.solution().user); }},
    Answer{u"WindowContentHeight", always<0>},
    Answer{u"WindowContentWidth", always<0>},
    Answer{u"WindowDesktopHeight", always<0>},
    Answer{u"WindowDesktopWidth", always<0>},
    Answer{u"WindowHeight", always<0>},
    Answer{u"WindowLeft", always<0>},
    Answer{u"WindowMode", windowMode},
    Answer{u"WindowName", [](const Place& place) { return text(place.file.solution().name); }},
    Answer{u"WindowOrientation", always<0>},
    Answer{u"WindowStyle", always<0>},
    Answer{u"WindowTop", always<0>},
    Answer{u"WindowUUID", identifier<u'2'>},
    Answer{u"WindowVisible", always<0>},
    Answer{u"WindowWidth", always<0>},
    Answer{u"WindowZoomLevel", always<100>},
};

const Answer* answerNamed(std::u16string_view name) {
    static const auto index = [] {
        std::map<std::u16string, const Answer*, std::less<>> rows;
        for (const Answer& answer : answers)
            rows.emplace(calc::foldName(answer.name), &answer);
        return rows;
    }();
    const auto row = index.find(name);
    return row == index.end() ? nullptr : row->second;
}

} // namespace

std::vector<std::u16string_view> getNames() {
    std::vector<std::u16string_view> names;
    names.reserve(answers.size());
    for (const Answer& answer : answers)
        names.push_back(answer.name);
    return names;
}

bool isGetName(std::u16string_view name) { return answerNamed(name) != nullptr; }

DataRef getValue(std::u16string_view name, File& file, const Session* session,
                 const calc::Environment& environment) {
    return std::make_shared<const Data>(answerNamed(name)->value({file, session, environment}));
}

} // namespace host
