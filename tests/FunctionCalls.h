#pragma once

#include "LoadedPlugIn.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Data.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

inline host::Solution solutionNamed(std::u16string name) {
    host::Solution solution;
    solution.name = std::move(name);
    return solution;
}

inline std::u16string times(int count, const std::u16string& piece) {
    std::u16string made;
    for (; count > 0; --count)
        made += piece;
    return made;
}

/// A calculation, its result and the last error after it; an empty last error means that it is unchanged.
struct Step {
    const char *calculation, *result, *lastError = "";
};

/// Calls functions with values that no calculation can write. The store of globals is empty before and after
/// each test, because the library stays in memory between tests.
class FunctionCalls : public LoadedPlugIn {
protected:
    struct Answer {
        fmx::errcode error;
        host::Data value;
    };

    void SetUp() override {
        LoadedPlugIn::SetUp();
        clearGlobals();
        before = host::objectCounts();
    }
    void TearDown() override {
        LoadedPlugIn::TearDown();
        clearGlobals();
        EXPECT_EQ((host::objectCounts() - before).describe(), "");
    }

    void clearGlobals() { EXPECT_EQ(textOf("Kestrel_SetGlobal ( \"\" ; 1 )"), ""); }

    void expectSteps(const std::vector<Step>& steps) {
        for (const auto& [calculation, result, expectedError] : steps) {
            textOf("Let ( [ $$Kestrel_LastError = 7 ; $$Kestrel_LastErrorMessage = \"kept\" ] ; \"\" )");
            EXPECT_EQ(textOf(calculation), result) << calculation;
            EXPECT_EQ(lastError(), *expectedError == '\0' ? "7 kept" : expectedError) << calculation;
        }
    }

    Answer call(std::u16string_view name, const std::vector<host::Data>& arguments) {
        host::DataVect values;
        for (const host::Data& argument : arguments)
            values.push_back(std::make_shared<const host::Data>(argument));
        const auto function =
            std::find_if(plugIn.functions().begin(), plugIn.functions().end(),
                         [name](const host::RegisteredFunction& row) { return row.name == name; });
        Answer answer{-1, {}};
        if (function == plugIn.functions().end()) return answer;
        const host::calc::Environment environment = session.environment(session.front());
        answer.error =
            plugIn.call(*function, host::bridge::out<fmx::ExprEnv>(environment),
                        host::bridge::out<fmx::DataVect>(values), host::bridge::out<fmx::Data>(answer.value));
        return answer;
    }

    std::int64_t liveData() const {
        return (host::objectCounts() - before).live[static_cast<std::size_t>(host::ObjectClass::data)];
    }

    host::ObjectCounts before;
};
