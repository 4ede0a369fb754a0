// Uses every function of the interface and every message. Each function of the plug-in checks the effects of
// one part and gives "ok", or the checks that failed. It stands for the plug-ins of others.
#include "Effects.h"

#include <cstdio>
#include <cstdlib>

using namespace effects;

FMX_ExternCallPtr gFMX_ExternCallPtr = nullptr;

namespace {

std::string gMessages;

struct Group {
    const char* name;
    void (*check)(const ExprEnv& env);
};
constexpr Group kGroups[] = {{"Uses_Types", checkTypes},     {"Uses_Text", checkTextCalls},
                             {"Uses_Styles", checkStyles},   {"Uses_Numbers", checkNumbers},
                             {"Uses_Dates", checkDates},     {"Uses_Containers", checkContainers},
                             {"Uses_Values", checkValues},   {"Uses_Engine", checkEngine},
                             {"Uses_Threads", checkThreads}, {"Uses_Encodings", checkEncodings}};
constexpr short kGroupCount = std::size(kGroups), kFails = 20, kWithdrawn = 21, kMessages = 22, kJoin = 1;

FMX_PROC(fmx::errcode) runGroup(short id, const ExprEnv& env, const fmx::DataVect&, Data& result) try {
    gFailures.clear();
    kGroups[id].check(env);
    setText(result, gFailures.empty() ? "ok" : gFailures);
    return 0;
} catch (const std::exception& problem) {
    std::fprintf(stderr, "%s: %s %s\n", kGroups[id].name, problem.what(), gFailures.c_str());
    return 1200;
}

/// Answers the error that it is asked for, with a sentence about it.
FMX_PROC(fmx::errcode) fail(short, const ExprEnv&, const fmx::DataVect& arguments, Data& result) try {
    setText(result, "it was asked to");
    return static_cast<fmx::errcode>(arguments.AtAsNumber(0).AsLong());
} catch (const std::exception&) {
    return 1200;
}

FMX_PROC(fmx::errcode) listMessages(short, const ExprEnv&, const fmx::DataVect&, Data& result) try {
    setText(result, gMessages);
    return 0;
} catch (const std::exception&) {
    return 1200;
}

/// The step: its parameters with bars between.
FMX_PROC(fmx::errcode) join(short, const ExprEnv&, const fmx::DataVect& arguments, Data& result) try {
    std::string joined;
    for (fmx::uint32 i = 0; i < arguments.Size(); ++i)
        joined += (i > 0 ? "|" : "") + utf8(arguments.AtAsText(i));
    setText(result, joined);
    return joined.starts_with("fail") ? kPluginErrResult2 : 0;
} catch (const std::exception&) {
    return 1200;
}

constexpr const char* kStep = R"(<PluginStep>
  <Parameter Type="list" ID="3" Label="Sign"><Value>plus</Value><Value>minus</Value></Parameter>
  <Parameter Type="calc" ID="0" Label="First" DataType="text" ShowInline="true"/>
  <Parameter Type="bool" ID="1" Label="Loud" Default="True"/>
  <Parameter Type="calc" ID="2" Label="Number" DataType="number" Default="7"/>
  <Parameter Type="target" ID="4" Label="Result"/>
</PluginStep>)";

bool registerAll() {
    const auto id = creator();
    const auto add = [&](short number, const char* name, const char* prototype, short counts,
                         fmx::ExtPluginType handler) {
        return ExprEnv::RegisterExternalFunction(*id, number, *Words(name), *Words(prototype), counts, counts,
                                                 ExprEnv::kDisplayInAllDialogs, handler);
    };
    int faults = 0;
    for (short i = 0; i < kGroupCount; ++i)
        faults += add(i, kGroups[i].name, kGroups[i].name, 0, runGroup);
    faults += add(kFails, "Uses_Fail", "Uses_Fail( error )", 1, fail);
    faults += add(kWithdrawn, "Uses_Withdrawn", "Uses_Withdrawn", 0, runGroup);
    faults += ExprEnv::UnRegisterExternalFunction(*id, kWithdrawn);
    faults += ExprEnv::RegisterExternalFunctionEx(
        *id, kMessages, *Words("Uses_Messages"), *Words("Uses_Messages"),
        *Words("protocol list|The messages that the plug-in has received."), 0, 0, 0xFF00, listMessages);
    faults += ExprEnv::RegisterScriptStep(*id, kJoin, *Words("Join Values"), *Words(kStep), *Words("Joins."),
                                          0xFF00, join);
    faults +=
        ExprEnv::RegisterScriptStep(*id, 2, *Words("Other"), *Words("<PluginStep/>"), *Words(), 0xFF00, join);
    faults += ExprEnv::UnRegisterScriptStep(*id, 2);
    // Both are refused: the identifier is taken, the definition is wrong.
    add(0, "Uses_Twin", "Uses_Twin", 0, runGroup);
    ExprEnv::RegisterScriptStep(*id, 3, *Words("Broken"), *Words("<Step/>"), *Words(), 0xFF00, join);
    return faults == 0;
}

void answerString(FMX_ExternCallPtr call) {
    const char* text = call->parm1 == kFMXT_NameStr        ? "Uses Everything"
                       : call->parm1 == kFMXT_AppConfigStr ? "Uses the whole interface."
                       : call->parm1 == kFMXT_OptionsStr   ? "USES1YnYYYn"
                                                           : "https://example.org/help?id=";
    auto* units = reinterpret_cast<fmx::unichar16*>(call->result);
    for (; *text != '\0'; ++text)
        *units++ = static_cast<unsigned char>(*text);
    *units = 0;
}

/// The name of a message; that of a string has its number.
std::string nameOf(const FMX_ExternCallStruct& call) {
    switch (call.whichCall) {
    case kFMXT_Init: return "init" + std::to_string(call.parm1) + "/" + std::to_string(call.extnVersion);
    case kFMXT_Idle: return "idle" + std::to_string(call.parm1);
    case kFMXT_Shutdown: return "shutdown";
    case kFMXT_DoAppPreferences: return "preferences";
    case kFMXT_GetString: return "string" + std::to_string(call.parm1);
    case kFMXT_SessionShutdown: return "session";
    case kFMXT_FileShutdown: return "file";
    default: return "unknown";
    }
}

} // namespace

void FMX_ENTRYPT FMExternCallProc(FMX_ExternCallPtr call) {
    gFMX_ExternCallPtr = call;
    gMessages += nameOf(*call) + " ";
    if (call->whichCall == kFMXT_GetString) answerString(call);
    if (call->whichCall == kFMXT_Init)
        call->result = registerAll() ? static_cast<FMX_PtrType>(k190ExtnVersion)
                                     : static_cast<FMX_PtrType>(kDoNotEnable);
    if (call->whichCall != kFMXT_Shutdown) return;
    if (std::getenv("USES_EVERYTHING_TELLS") != nullptr) std::fprintf(stderr, "%s\n", gMessages.c_str());
    for (short id = 0; id <= kMessages; ++id)
        ExprEnv::UnRegisterExternalFunction(*creator(),
                                            id); // gives 1200 for those in between, which are free
    ExprEnv::UnRegisterScriptStep(*creator(), kJoin);
}
