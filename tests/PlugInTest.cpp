#include "Handlers.h"
#include "LoadedPlugIn.h"
#include "Registry.h"

/// The plug-in as a host sees it: a shared library, an entry point, messages, functions in calculations.

namespace {

using host::toUtf8;

class PlugInBeforeInit : public LoadedPlugIn {
protected:
    PlugInBeforeInit() : LoadedPlugIn(Start::later) {}
};

TEST_F(PlugInBeforeInit, acceptsHostVersionsFrom50To255) {
    for (const int version : {-1, 0, 49, 50, 71, 255, 256, 32767}) {
        host::PlugIn fresh(session, KESTREL_PLUGIN_PATH);
        const bool accepted = version >= 50 && version <= 255;
        EXPECT_EQ(fresh.init(static_cast<std::int16_t>(version)), accepted ? 60 : -1) << version;
        EXPECT_EQ(fresh.isEnabled(), accepted);
        EXPECT_EQ(fresh.functions().size(), accepted ? 25U : 0U);
    }
}

TEST_F(PlugInBeforeInit, handlesMessagesInAnyOrderAndRestarts) {
    const auto idle = [&] {
        for (const unsigned char level : {0, 1, 4, 9})
            plugIn.idle(level);
    };
    idle();
    plugIn.shutdown();
    plugIn.preferences();
    for (const bool withShutdown : {false, true, true}) {
        EXPECT_EQ(plugIn.init(), 60);
        EXPECT_EQ(plugIn.functions().size(), 25U);
        EXPECT_TRUE(plugIn.refusedRegistrations().empty());
        if (withShutdown) plugIn.shutdown();
    }
    plugIn.shutdown();
    idle();
}

TEST_F(PlugInBeforeInit, withdrawsItsFunctionsWhenOneRegistrationFails) {
    session.functions()->add({.name = u"Kestrel_SetScriptShortcut",
                              .minimum = 0,
                              .maximum = 0,
                              .eager = [](auto&&...) { return std::make_shared<const host::Data>(); },
                              .lazy = {}});
    EXPECT_EQ(plugIn.init(), -2);
    EXPECT_TRUE(plugIn.functions().empty());
    ASSERT_EQ(plugIn.refusedRegistrations().size(), 1U);
    EXPECT_EQ(plugIn.refusedRegistrations().front().id, 20);
    EXPECT_EQ(session.functions()->find(u"kestrel_version"), nullptr);
}

TEST_F(LoadedPlugIn, leavesOneFunctionRegisteredAtShutdown) {
    ASSERT_EQ(RegisterExternalFunction(16, 0, 0, 0xFF01, Kestrel_Version), 0);
    plugIn.shutdown();
    ASSERT_EQ(plugIn.functions().size(), 1U);
    EXPECT_EQ(toUtf8(plugIn.functions().front().name), "Kestrel_DoBashCmd");
}

TEST_F(LoadedPlugIn, answersStringRequests) {
    EXPECT_EQ(toUtf8(plugIn.readString(kFMXT_NameStr).text), "Vex Kestrel Plug-In");
    EXPECT_EQ(toUtf8(plugIn.readString(kFMXT_OptionsStr).text), "KSTR1YnYYnn");
    const std::string description = toUtf8(plugIn.readString(kFMXT_AppConfigStr).text);
    EXPECT_TRUE(description.starts_with("Collection of useful and sometimes indispensable functions.\\n\\n"))
        << description;
    EXPECT_TRUE(description.ends_with("\\n\\nVersion 3.1")) << description;
    for (const int request : {130, 132, 0, 255})
        EXPECT_FALSE(plugIn.readString(request).answered) << request;
    // The text is cut at the buffer's size.
    const std::u16string whole = plugIn.readString(kFMXT_AppConfigStr).text;
    for (const std::uint32_t units : {0U, 1U, 20U, static_cast<std::uint32_t>(whole.size()), 4000U}) {
        const auto answer = plugIn.readString(kFMXT_AppConfigStr, units);
        EXPECT_FALSE(answer.overrun) << units;
        EXPECT_EQ(answer.text, whole.substr(0, units)) << units;
    }
}

TEST_F(LoadedPlugIn, registersExactlyTheFunctionsThatSolutionsKnow) {
    // id | prototype (the name stands before its parenthesis) | counts; flags are 0xFF01, and 1 for the last
    // function.
    const struct {
        int id;
        const char* prototype;
        int minimum, maximum;
    } expected[] = {
        {1, "Kestrel_Version( { versionFormat } )", 0, -1},
        {2, "Kestrel_Get( selector { ; moreOptions } )", 0, -1},
        {3, "Kestrel_Set( selector ; newValue )", 2, -1},
        {4, "Kestrel_ExecuteSQL( SQLCommand { ; fieldSeparator { ; recordSeparator } } )", 1, -1},
        {5, "Kestrel_Encode( encoding ; text )", 2, 2},
        {6, "Kestrel_Decode( encoding ; text )", 2, 2},
        {7, "Kestrel_MergeText( text )", 1, -1},
        {8, "Kestrel_DoFileMakerScript( scriptName { ; scriptParameter } { ; delayOrTime } )", 1, -1},
        {9, "Kestrel_DoSystemScript( scriptText ; scriptInterpreter )", 2, -1},
        {10, "Kestrel_GetDefaultPrinter", 0, -1},
        {11, "Kestrel_SetDefaultPrinter( printerName )", 1, -1},
        {12, "Kestrel_GetPrinterNames", 0, -1},
        {13, "Kestrel_RegExp_Substitute( text ; searchPattern ; replaceString1 { ; replaceString2 ... } )", 3,
         -1},
        {14, "Kestrel_RegExp_PatternCount( text ; searchPattern )", 2, -1},
        {15, "Kestrel_GetClientPublicIPAddress", 0, -1},
        {17, "Kestrel_GetNameForIP( hostIP )", 1, -1},
        {18, "Kestrel_GetIPforName( hostName )", 1, -1},
        {19, "Kestrel_GetSpecialWindows", 0, -1},
        {20, "Kestrel_SetScriptShortcut( key ; scriptName { ; scriptParameter } { ; scriptControl } )", 2,
         -1},
        {21, "Kestrel_ValueType( value )", 1, 1},
        {22, "Kestrel_GetTimestamp", 0, 1},
        {23, "Kestrel_SetGlobal( key ; value { ; moreOptions } )", 0, -1},
        {24, "Kestrel_GetGlobal( key )", 0, -1},
        {25, "Kestrel_GetAsHTML( key )", 0, -1},
        {26, "Kestrel_DoBashCmd", 1, 1},
    };
    ASSERT_EQ(plugIn.functions().size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const host::RegisteredFunction& function = plugIn.functions()[i];
        const std::string prototype = expected[i].prototype;
        EXPECT_EQ(function.id, expected[i].id);
        EXPECT_EQ(toUtf8(function.prototype), prototype);
        EXPECT_EQ(toUtf8(function.name), prototype.substr(0, prototype.find('(')));
        EXPECT_EQ(function.minimum, expected[i].minimum) << prototype;
        EXPECT_EQ(function.maximum, expected[i].maximum) << prototype;
        EXPECT_EQ(function.flags, function.id == 26 ? 0x0001U : 0xFF01U) << prototype;
        EXPECT_EQ(std::string(function.creator.bytes.begin(), function.creator.bytes.end()), "KSTR");
    }
}

TEST_F(LoadedPlugIn, leavesTheLastErrorAloneWhereNothingFailed) {
    evaluate("Kestrel_GetPrinterNames");
    for (const char* format : {"short", "Long", "PLATFORM", "autoupdate", " long", ""})
        evaluate("Kestrel_Version ( \"" + std::string(format) + "\" )");
    EXPECT_EQ(textOf("Kestrel_Version ( 1 ; 2 ; 3 ) & Kestrel_DoBashCmd ( 1 )"), "3.1");
    EXPECT_EQ(lastError(), "-4 iOS doesn't support this function.");
}

TEST_F(LoadedPlugIn, reportsFunctionsThatThePlatformLacks) {
    for (const char* const calculation :
         {"Kestrel_DoSystemScript ( \"a\" ; \"b\" )", "Kestrel_GetPrinterNames",
          "Kestrel_SetDefaultPrinter ( \"\" )", "Kestrel_GetDefaultPrinter ( 1 ; 2 )",
          "Kestrel_SetScriptShortcut ( \"a\" ; \"b\" ; \"c\" ; 4 ; 5 )", "Kestrel_GetSpecialWindows"}) {
        SCOPED_TRACE(calculation);
        evaluate("Let ( [ $$Kestrel_LastError = 0 ; $$Kestrel_LastErrorMessage = \"\" ] ; \"\" )");
        const host::calc::Result result = evaluate(calculation);
        EXPECT_EQ(result.error, 0);
        EXPECT_EQ(result.value->nativeType(), host::DataType::number);
        EXPECT_EQ(result.value->asText().utf8(), "-4");
        EXPECT_EQ(lastError(), std::string(calculation).starts_with("Kestrel_DoSystemScript")
                                   ? "-4 Not implemented in iOS."
                                   : "-4 iOS doesn't support this function.");
    }
}

} // namespace
