#include "host/app/PlugIn.h"

#include "host/app/Imports.h"
#include "host/app/Session.h"
#include "host/calc/Engine.h"
#include "host/calc/Evaluation.h"
#include "host/dispatch/MainQueue.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/Versions.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <stdexcept>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <utility>

namespace host {

/// The reference from a row of the function table to its plug-in. The pointer is cleared when the function
/// is withdrawn, because the row lives on where a parsed expression uses it.
struct PlugIn::Link {
    PlugIn* plugIn;
    std::int16_t id;
    fmx::ExtPluginType handler;
};

namespace {

constexpr const char* entryPointName = "FMExternCallProc";
constexpr std::string_view kInterfacePrefix = "FM_";
constexpr std::u16string_view hostVersionText = u"Kestrel Host 1.0"; // zero-terminated, as a literal
constexpr FMX_PtrType englishLanguage = 0;

FMX_PtrType address(const void* pointer) { return reinterpret_cast<FMX_PtrType>(pointer); }

FMX_ErrorCode startScript(const FMX_Text* fileName, const FMX_Text* scriptName, FMX_ScriptControl control,
                          const FMX_Data* parameter) {
    Session* session = Session::current();
    if (session == nullptr) return calc::error::unspecific;
    try {
        auto value = std::make_shared<const Data>(bridge::in<Data>(parameter));
        return static_cast<FMX_ErrorCode>(session->startScript(bridge::in<Text>(fileName).units(),
                                                               bridge::in<Text>(scriptName).units(),
                                                               std::move(value), control));
    } catch (...) {
        return calc::error::unspecific;
    }
}

FMX_ErrorCode setToCurrentEnvironment(FMX_ExprEnv* environment) {
    const Session* session = Session::current();
    if (session == nullptr) return calc::error::unspecific;
    try {
        auto& target = bridge::in<calc::Environment>(environment);
        target = session->topLevel();
        return static_cast<FMX_ErrorCode>(target.file ? calc::error::none : calc::error::missingFile);
    } catch (...) {
        return calc::error::unspecific;
    }
}

/// The length in units of the name at the beginning of a text: letters, digits and underscores, no digit
/// first.
std::size_t nameLength(std::u16string_view text) {
    std::size_t end = 0;
    while (end < text.size()) {
        std::size_t next = end;
        UChar32 letter = 0;
        U16_NEXT(text.data(), next, text.size(), letter);
        const bool isPart = letter == U'_' || u_isalpha(letter) || (end > 0 && u_isdigit(letter));
        if (!isPart) break;
        end = next;
    }
    return end;
}

bool isFunctionName(std::u16string_view name) {
    static constexpr std::array<std::u16string_view, 4> operators{u"and", u"or", u"xor", u"not"};
    constexpr std::size_t longest = 1'000;
    return !name.empty() && name.size() <= longest && nameLength(name) == name.size() &&
           std::find(operators.begin(), operators.end(), calc::foldName(name)) == operators.end();
}

/// A sentence about the functions of the interface that a library needs and nobody has; empty: none.
std::string missingFunctions(const std::filesystem::path& library) {
    std::string names;
    for (const std::string& name : importsOf(library, kInterfacePrefix)) {
        if (::dlsym(RTLD_DEFAULT, name.c_str()) != nullptr) continue;
        const NewerFunction* row = newerFunction(name);
        names.append(names.empty() ? "" : ", ").append(name);
        names += row == nullptr ? " (in no version up to " + std::to_string(PlugIn::currentHostVersion) + ")"
                                : " (since version " + std::to_string(row->since) + ")";
    }
    return names.empty() ? names : "the plug-in needs functions that this host lacks: " + names;
}

bool beginsWithName(std::u16string_view prototype, std::u16string_view name) {
    return calc::foldName(prototype.substr(0, nameLength(prototype))) == calc::foldName(name);
}

} // namespace

PlugIn::PlugIn(Session& session, const std::filesystem::path& library) : session_(session), path_(library) {
    const std::filesystem::path path = std::filesystem::absolute(library);
    library_ = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) {
        const std::string reason = ::dlerror(), missing = missingFunctions(path);
        throw std::runtime_error(missing.empty() ? reason : library.string() + ": " + missing);
    }
    entryPoint_ = reinterpret_cast<FMX_ExternCallProc>(::dlsym(library_, entryPointName));
    if (entryPoint_ == nullptr) {
        ::dlclose(library_);
        throw std::runtime_error(library.string() + ": no entry point " + entryPointName);
    }
    session_.join(*this);
}

PlugIn::~PlugIn() {
    shutdown();
    withdrawAll();
    mainQueue().drop(*this); // blocks need the library's code even to be released
    session_.leave(*this);
    ::dlclose(library_);
}

FMX_ExternCallStruct PlugIn::message(FMX_ExternCallSwitch which) const {
    FMX_ExternCallStruct block{};
    block.whichCall = which;
    return block;
}

void PlugIn::send(FMX_ExternCallStruct& block) {
    block.extnVersion = hostVersion_;
    block.entryPoint = entryPoint_;
    const bool isUnsafe = block.whichCall == kFMXT_Idle && block.parm1 == kFMXT_Unsafe;
    block.unsafeCalls = static_cast<FMX_Boolean>(isUnsafe ? 1 : 0);
    block.instanceID = address(this);
    block.cStartScript = startScript;
    block.cCurrentEnv = setToCurrentEnvironment;
    // A nested message must leave the block of the outer message unchanged.
    const FMX_ExternCallStruct before = std::exchange(block_, block);
    const bool isNested = WorkOwner::running() == this;
    const Running running(this);
    try {
        entryPoint_(&block_);
    } catch (...) {
        violations_.push_back(Violation::threwFromMessage);
    }
    block = block_;
    if (isNested) block_ = before;
}

/// The app asks for all strings when it starts.
void PlugIn::askForStrings() {
    if (std::exchange(hasStrings_, true)) return;
    name_ = readString(kFMXT_NameStr).text;
    readString(kFMXT_AppConfigStr);
    options_ = readPlugInOptions(readString(kFMXT_OptionsStr).text);
    helpAddress_ = readString(kFMXT_HelpURLStr).text;
}

std::u16string PlugIn::helpAddress(std::int16_t id) const {
    return helpAddress_.ends_with(u'=') ? helpAddress_ + fromUtf8(std::to_string(id)) : helpAddress_;
}

std::string PlugIn::refusalFor(std::int64_t answer) const {
    if (enabled_) return {};
    if (!options_.problem.empty()) return options_.problem + ", so the plug-in gets no message";
    std::string words = "the plug-in answers init with " + std::to_string(answer);
    if (answer == kBadExtnVersion) words += " (it does not work with this host's version)";
    if (answer == kDoNotEnable) words += " (it asks not to be enabled)";
    return words;
}

std::int64_t PlugIn::init(std::int16_t hostVersion, FMX_UChar application) {
    hostVersion_ = hostVersion;
    announceVersion(hostVersion);
    askForStrings();
    std::int64_t answer = options_.problem.empty() ? hostVersion : kDoNotEnable;
    if (options_.lifecycle) {
        FMX_ExternCallStruct block = message(kFMXT_Init);
        block.parm1 = application;
        block.parm2 = address(hostVersionText.data());
        const std::size_t violationsBefore = violations_.size();
        send(block);
        answer = violations_.size() > violationsBefore ? std::int64_t{kDoNotEnable}
                                                       : static_cast<std::int64_t>(block.result);
    }
    enabled_ = answer >= kMinExtnVersion && answer <= kMaxExtnVersion;
    refusal_ = refusalFor(answer);
    if (!enabled_) withdrawAll();
    return answer;
}

void PlugIn::shutdown() {
    if (!std::exchange(enabled_, false) || !options_.lifecycle) return;
    FMX_ExternCallStruct block = message(kFMXT_Shutdown);
    send(block);
}

void PlugIn::idle(unsigned char level) {
    FMX_ExternCallStruct block = message(kFMXT_Idle);
    block.parm1 = level;
    block.parm2 = session_.id();
    send(block);
}

void PlugIn::preferences() {
    FMX_ExternCallStruct block = message(kFMXT_DoAppPreferences);
    send(block);
}

void PlugIn::fileShutdown(std::uint64_t fileId) {
    FMX_ExternCallStruct block = message(kFMXT_FileShutdown);
    block.parm2 = session_.id();
    block.parm3 = fileId;
    send(block);
}

void PlugIn::sessionShutdown() {
    FMX_ExternCallStruct block = message(kFMXT_SessionShutdown);
    block.parm2 = session_.id();
    send(block);
}

PlugIn::StringAnswer PlugIn::readString(int request, std::uint32_t units) {
    constexpr std::size_t guard = 4096;
    // The buffer is cleared first, so a text needs no zero at its end. The guard zones hold private-use
    // characters, which occur in no text.
    const auto original = [&](std::size_t place) {
        const bool isInside = place >= guard && place < guard + units;
        return static_cast<char16_t>(isInside ? 0 : 0xE000 | (place * 31 % 0x1000));
    };
    std::u16string zone(guard + units + guard, u'\0');
    for (std::size_t i = 0; i < zone.size(); ++i)
        zone[i] = original(i);

    FMX_ExternCallStruct block = message(kFMXT_GetString);
    block.parm1 = static_cast<FMX_UChar>(request);
    block.parm2 = englishLanguage;
    block.parm3 = units;
    block.result = address(zone.data() + guard);
    send(block);

    StringAnswer answer;
    for (std::size_t i = 0; i < zone.size(); ++i) {
        if (zone[i] == original(i)) continue;
        const bool isInside = i >= guard && i < guard + units;
        (isInside ? answer.answered : answer.overrun) = true;
    }
    if (!answer.answered) return answer;
    const auto text = std::u16string_view(zone).substr(guard, units);
    answer.text = text.substr(0, text.find(u'\0'));
    return answer;
}

fmx::errcode PlugIn::callHandler(std::int16_t id, fmx::ExtPluginType handler, const fmx::ExprEnv& environment,
                                 const fmx::DataVect& arguments, fmx::Data& result) {
    const Running running(this);
    try {
        return handler(id, environment, arguments, result);
    } catch (...) {
        violations_.push_back(Violation::threwFromHandler);
        return calc::error::unspecific;
    }
}

fmx::errcode PlugIn::call(const RegisteredFunction& function, const fmx::ExprEnv& environment,
                          const fmx::DataVect& arguments, fmx::Data& result) {
    return callHandler(function.id, function.handler, environment, arguments, result);
}

fmx::errcode PlugIn::call(const RegisteredStep& step, const fmx::ExprEnv& environment,
                          const fmx::DataVect& arguments, fmx::Data& result) {
    return callHandler(step.id, step.handler, environment, arguments, result);
}

PlugIn::Problem PlugIn::problemWithCreator(const QuadChar& creator) const {
    const auto& bytes = creator.bytes;
    if (std::find(bytes.begin(), bytes.end(), 0) != bytes.end())
        return {calc::error::unspecific, "the plug-in's identifier has a zero byte"};
    const QuadChar& first = !functions_.empty() ? functions_.front().creator
                            : !steps_.empty()   ? steps_.front()->creator
                                                : creator;
    if (first != creator)
        return {calc::error::unspecific, "the plug-in has registered under another identifier before"};
    return {};
}

PlugIn::Problem PlugIn::problemWith(const RegisteredFunction& function) const {
    if (const Problem problem = problemWithCreator(function.creator); problem.code != 0) return problem;
    struct Rule {
        bool isBroken;
        std::int16_t code;
        std::string_view words;
    };
    const auto isTwin = [&](const RegisteredFunction& other) {
        return other.creator == function.creator && other.id == function.id;
    };
    const bool idIsTaken = std::ranges::any_of(session_.plugIns(), [&](const PlugIn* plugIn) {
        return std::ranges::any_of(plugIn->functions(), isTwin);
    });
    const Rule rules[] = {
        {function.id < 0, calc::error::unspecific, "its identifier is negative"},
        {function.handler == nullptr, calc::error::unspecific, "it has no handler"},
        {function.minimum < 0, calc::error::unspecific, "its minimum of parameters is negative"},
        {function.maximum != -1 && function.maximum < function.minimum, calc::error::unspecific,
         "its maximum of parameters is neither -1 nor at least its minimum"},
        {!isFunctionName(function.name), calc::error::unspecific,
         "its name is not made of letters, digits and underscores, with no digit first"},
        {!beginsWithName(function.prototype, function.name), calc::error::unspecific,
         "its prototype does not begin with its name"},
        {idIsTaken, calc::error::alreadyRegistered, "its identifier is taken"},
        {session_.functions()->find(function.name) != nullptr, calc::error::alreadyRegistered,
         "its name is taken"},
    };
    for (const Rule& rule : rules)
        if (rule.isBroken) return {rule.code, rule.words};
    return {};
}

PlugIn::Problem PlugIn::problemWith(const RegisteredStep& step) const {
    if (const Problem problem = problemWithCreator(step.creator); problem.code != 0) return problem;
    if (step.id < 0) return {calc::error::unspecific, "its identifier is negative"};
    if (step.handler == nullptr) return {calc::error::unspecific, "it has no handler"};
    if (step.name.empty()) return {calc::error::unspecific, "it has no name"};
    const auto isTwin = [&](const auto& other) {
        return other->creator == step.creator && other->id == step.id;
    };
    for (const PlugIn* plugIn : session_.plugIns())
        if (std::ranges::any_of(plugIn->steps(), isTwin))
            return {calc::error::alreadyRegistered, "its identifier is taken"};
    if (session_.registeredStep(step.name)) return {calc::error::alreadyRegistered, "its name is taken"};
    return {};
}

std::int16_t PlugIn::registerStep(RegisteredStep step) {
    Problem problem = problemWith(step);
    std::string reason(problem.words);
    if (problem.code == 0) try {
            step.parameters = readStepDefinition(step.definition);
        } catch (const std::runtime_error& fault) {
            problem.code = calc::error::unspecific;
            reason = fault.what();
        }
    if (problem.code != 0)
        refusals_.push_back({step.id, std::move(step.name), reason});
    else
        steps_.push_back(std::make_shared<const RegisteredStep>(std::move(step)));
    return problem.code;
}

bool PlugIn::unregisterStep(const QuadChar& creator, std::int16_t id) {
    return std::erase_if(steps_,
                         [&](const auto& step) { return step->creator == creator && step->id == id; }) > 0;
}

std::int16_t PlugIn::registerFunction(RegisteredFunction function) {
    if (const Problem problem = problemWith(function); problem.code != 0) {
        refusals_.push_back({function.id, std::move(function.name), std::string(problem.words)});
        return problem.code;
    }
    auto link = std::make_shared<Link>(Link{this, function.id, function.handler});
    calc::Function row{.name = function.name,
                       .minimum = function.minimum,
                       .maximum = function.maximum,
                       .eager = {},
                       .lazy = {}};
    row.eager = [link, name = function.name](calc::Evaluation& evaluation,
                                             std::span<const DataRef> values) -> DataRef {
        if (link->plugIn == nullptr) throw calc::Error{calc::error::functionNotFound};
        const DataVect arguments(values.begin(), values.end());
        auto result = std::make_shared<Data>();
        // The handler may withdraw its own row, so the row is not used after the call.
        const fmx::errcode error = link->plugIn->callHandler(
            link->id, link->handler, bridge::out<fmx::ExprEnv>(evaluation.environment()),
            bridge::out<fmx::DataVect>(arguments), bridge::out<fmx::Data>(*result));
        if (error == calc::error::none) return result;
        const bool isOwnError = error >= calc::error::plugInFirst && error <= calc::error::plugInLast;
        return evaluation.failed(
            calc::ExternalError{.code = error,
                                .function = name,
                                .detail = isOwnError ? std::u16string(result->asText().units()) : u""});
    };
    session_.functions()->add(std::move(row));
    functions_.push_back(std::move(function));
    links_.push_back(std::move(link));
    return calc::error::none;
}

void PlugIn::withdraw(std::size_t index) {
    const auto place = static_cast<std::ptrdiff_t>(index);
    links_[index]->plugIn = nullptr;
    session_.functions()->remove(functions_[index].name);
    functions_.erase(functions_.begin() + place);
    links_.erase(links_.begin() + place);
}

void PlugIn::withdrawAll() {
    while (!functions_.empty())
        withdraw(functions_.size() - 1);
    steps_.clear();
}

bool PlugIn::unregisterFunction(const QuadChar& creator, std::int16_t id) {
    for (std::size_t i = 0; i < functions_.size(); ++i) {
        if (functions_[i].creator != creator || functions_[i].id != id) continue;
        withdraw(i);
        return true;
    }
    return false;
}

} // namespace host
