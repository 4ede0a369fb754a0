#pragma once

#include "LoadedPlugIn.h"
#include "host/fmwrapper/Bridge.h"
#include "host/values/Data.h"

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

/// Calls functions with values that no calculation can write. The store of globals is empty before and after
/// each test, because the library stays in memory between tests.
class FunctionCalls : public LoadedPlugIn {
protected:
    struct Answer {
        fmx::errcode error;
        host::Data value;
    };

    void SetUp() override {
        clearGlobals();
        before = host::objectCounts();
    }
    void TearDown() override {
        LoadedPlugIn::TearDown();
        clearGlobals();
        EXPECT_EQ((host::objectCounts() - before).describe(), "");
    }

    void clearGlobals() { EXPECT_EQ(textOf("Kestrel_SetGlobal ( \"\" ; 1 )"), ""); }

    Answer call(std::u16string_view name, const std::vector<host::Data>& arguments) {
        host::DataVect values;
        for (const host::Data& argument : arguments)
            values.push_back(std::make_shared<const host::Data>(argument));
        Answer answer{-1, {}};
        answer.error = loaded.call(loaded.function(name), values, answer.value);
        return answer;
    }

    std::int64_t liveData() const {
        return (host::objectCounts() - before).live[static_cast<std::size_t>(host::ObjectClass::data)];
    }

    host::ObjectCounts before;
};
