#pragma once

#include "host/app/File.h"
#include "host/app/LoadedPlugIn.h"
#include "host/fmwrapper/ForEachFault.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Encoding.h"

#include <gtest/gtest.h>
#include <string>

/// A session with an empty file and with Kestrel, loaded from its shared library.
class LoadedPlugIn : public testing::Test {
protected:
    using Start = host::LoadedPlugIn::Start;

    explicit LoadedPlugIn(Start start = Start::now) : loaded(KESTREL_PLUGIN_PATH, {}, start) {}

    host::LoadedPlugIn loaded;
    host::Session& session = loaded.session();
    host::PlugIn& plugIn = loaded.plugIn();
    std::uint64_t file = session.front()->id();

    void TearDown() override {
        host::faults().disarm();
        EXPECT_TRUE(plugIn.violations().empty());
    }

    host::calc::Result evaluate(const std::string& calculation) {
        return session.evaluate(host::fromUtf8(calculation));
    }
    /// The result as text; "error N" for a calculation that fails, or that a plug-in's function failed in.
    std::string textOf(const std::string& calculation) {
        const host::calc::Result result = evaluate(calculation);
        const int error = result.error != 0 ? result.error : result.external.code;
        return error == 0 ? result.value->asText().utf8() : "error " + std::to_string(error);
    }
    /// The number of host calls that an action makes.
    template<class Action>
    static std::uint64_t hostCallsDuring(const Action& action) {
        host::faults().count();
        action();
        host::faults().disarm();
        return host::faults().calls();
    }
    /// The last error that the solution sees: "code message".
    std::string lastError() { return textOf("$$Kestrel_LastError & \" \" & $$Kestrel_LastErrorMessage"); }
};
