#include "scripts/Scripts.h"

#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "Kestrel_Unavailable.h"
#include "bridge/LastError.h"
#include "bridge/cFMUtils.h"
#include "host/app/Session.h"
#include "host/app/Solution.h"
#include "host/fmwrapper/Bridge.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

/// The start-script call from the plug-in's code, recorded before it reaches a host.

namespace {

std::vector<std::string>
    started; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): used by a C call-back

std::string utf8(const fmx::Text& text) { return host::bridge::in<host::Text>(&text).utf8(); }

FMX_ErrorCode record(const FMX_Text* file, const FMX_Text* script, FMX_ScriptControl control,
                     const FMX_Data* parameter) {
    started.push_back(utf8(*file) + "/" + utf8(*script) + "/" + std::to_string(control) + "/" +
                      utf8(parameter->GetAsText()));
    return 104;
}

class ScriptCalls : public testing::Test {
protected:
    ScriptCalls() {
        started.clear();
        host::Solution solution;
        solution.name = u"Desk";
        solution.scripts.push_back({u"Print Report", {}});
        session.open(solution);
        place = session.topLevel();
    }
    ~ScriptCalls() override { gFMX_ExternCallPtr = nullptr; }

    const fmx::ExprEnv& environment() const { return host::bridge::out<fmx::ExprEnv>(place); }

    host::Session session;
    host::calc::Environment place;
    FMX_ExternCallStruct block{};
};

TEST_F(ScriptCalls, nameFileScriptAndParameter) {
    block.cStartScript = record;
    gFMX_ExternCallPtr = &block;
    // Direct calls give the host's error. The other functions give 0 for a valid name.
    EXPECT_EQ(cFMUtils::StartFMScript(environment(), "Other", "Any", kFMXT_Resume, "p"), 104);
    EXPECT_EQ(cFMUtils::StartFMScript(environment(), nullptr, nullptr, kFMXT_Halt, nullptr), 104);
    const fmx::DataUniquePtr parameter;
    parameter->SetAsText(*cFMUtils::getUTF16data("42"), parameter->GetLocale());
    for (auto* const run : {runFMScript, cFMUtils::runFMScript}) {
        EXPECT_EQ(run(*cFMUtils::getUTF16data("print report"), *parameter, environment()), kst::kNoError);
        EXPECT_EQ(run(*cFMUtils::getUTF16data("Print"), *parameter, environment()), kst::kWrongParameter);
    }
    EXPECT_EQ(started, (std::vector<std::string>{"Other/Any/2/p", "//0/", "Desk/print report/0/42",
                                                 "Desk/print report/0/42"}));
}

TEST_F(ScriptCalls, failWithoutAHost) {
    EXPECT_EQ(cFMUtils::StartFMScript(environment(), "Other", "Any", kFMXT_Halt, ""), kst::kUnexpectedError);
    gFMX_ExternCallPtr = &block; // the block of a host that lacks the call
    EXPECT_EQ(cFMUtils::StartFMScript(environment(), "Other", "Any", kFMXT_Halt, ""), kst::kUnexpectedError);
    EXPECT_TRUE(started.empty());
}

TEST_F(ScriptCalls, areNotMadeByEmptyFunctions) {
    block.cStartScript = record;
    gFMX_ExternCallPtr = &block;
    kst::PerformScheduledScripts();
    EXPECT_TRUE(started.empty());
    char output[] = "as it was";
    EXPECT_EQ(perform_shell_command_and_get_result("echo changed", output, sizeof output), 0);
    EXPECT_STREQ(output, "as it was");
}

} // namespace
