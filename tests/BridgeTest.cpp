#include "host/fmwrapper/Bridge.h"
#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "Handlers.h"
#include "PlugIn.h"
#include "Registry.h"
#include "bridge/HandlerFrame.h"
#include "bridge/LastError.h"
#include "bridge/StringUtils.h"
#include "bridge/cFMUtils.h"
#include "bridge/fmlib.h"
#include "host/app/Session.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Data.h"
#include "host/values/Encoding.h"

#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The base of every function of the plug-in: conversions, calculations in the caller's file and the record
/// of the last error.

namespace {

using Pieces = std::vector<std::string>;

class Bridge : public testing::Test {
protected:
    Bridge() {
        host::Solution solution;
        solution.name = u"Caf\u00E9";
        solution.path = u"/data/a:b";
        session.open(solution);
        place = session.topLevel();
    }
    ~Bridge() override {
        host::setNativeEncoding(native);
        EXPECT_EQ((host::objectCounts() - before).describe(), "");
    }

    const fmx::ExprEnv& environment() const { return host::bridge::out<fmx::ExprEnv>(place); }
    std::string valueOf(const std::string& calculation) {
        const host::calc::Result result = session.evaluate(host::fromUtf8(calculation));
        return result.error == 0 ? result.value->asText().utf8() : "error " + std::to_string(result.error);
    }
    std::string lastError() { return valueOf("$$Kestrel_LastError & \" \" & $$Kestrel_LastErrorMessage"); }

    host::ObjectCounts before = host::objectCounts();
    host::Encoding native = host::nativeEncoding();
    host::Session session;
    host::calc::Environment place;
};

fmx::TextUniquePtr text(const std::string& utf8) { return cFMUtils::getUTF16data(utf8); }

std::string utf8(const fmx::Text& text) { return host::bridge::in<host::Text>(&text).utf8(); }

TEST_F(Bridge, cutsTextAtTheBufferSize) {
    // The buffers have as many bytes as the text has units, and twice as many. The cut may split a character.
    const struct {
        const char *whole, *byUtils, *byLib;
    } cases[] = {{"plain", "plain", "plain"},
                 {"", "", ""},
                 {"\u00E9", "\xC3", "\u00E9"},
                 {"\u03A9\u03B3", "\u03A9", "\u03A9\u03B3"},
                 {"\u20AC\u20AC", "\xE2\x82", "\u20AC\xE2"},
                 {"a\u00E9b", "a\u00E9", "a\u00E9b"}};
    for (const auto& [whole, byUtils, byLib] : cases) {
        const fmx::TextUniquePtr source = text(whole);
        EXPECT_EQ(cFMUtils::StringFromFmxText(*source), byUtils) << whole;
        EXPECT_EQ(fmlib::StringFromFmText(*source), byLib) << whole;
        EXPECT_EQ(StringFromFmText(source), byLib) << whole;
        EXPECT_EQ(cFMUtils::CharsFromFMText(*source).size(), source->GetSize() + 1U) << whole;
    }
}

TEST_F(Bridge, convertsAllOfUnicodeToTexts) {
    EXPECT_EQ(utf8(*text("a\u00E9\u20AC\U0001F600")), "a\u00E9\u20AC\U0001F600");
    EXPECT_EQ(fmlib::WStringFromFMText(*text("x\U0001F600")), (std::wstring{L'x', 0xD83D, 0xDE00}));
    EXPECT_EQ(fmlib::WStringFromFMText(*text("")), L"");
    // Malformed sequences: overlong, a surrogate, beyond the last code point (twice), truncated, a stray
    // byte.
    for (const char* malformed :
         {"\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\x80"}) {
        for (const std::string& whole : {"a" + std::string(malformed) + "b", "a" + std::string(malformed)}) {
            EXPECT_TRUE(utf8(*text(whole)).starts_with("a\uFFFD")) << whole;
            EXPECT_EQ(utf8(*text(whole)), host::Text::fromUtf8(whole).utf8()) << whole; // as ICU decodes them
        }
    }
    // The largest number stands for the end of a text, so it is not a valid length.
    EXPECT_EQ(hostLength(0xFFFFFFFEU), 0xFFFFFFFEU);
    EXPECT_THROW(hostLength(0xFFFFFFFFU), std::length_error);
}

/// The host lowers the Kelvin sign to k, a final capital sigma to the final small one, and I to i. A capital
/// I with a dot does not become a plain i.
TEST_F(Bridge, findsWholeSelectorsInAnyCase) {
    host::setNativeEncoding(host::Encoding::utf8);
    constexpr unsigned none = cFMUtils::kNotFound;
    const char* const table[] = {"lastError", "timestamp", "key", "\u03BF\u03B4\u03CC\u03C2", "in"};
    const struct {
        const char* text;
        unsigned index;
    } cases[] = {{"LASTERROR", 0}, {" lastError", none},
                 {"TimeStamp", 1}, {"lastErrorMessage", none},
                 {"", none},       {"\u039F\u0394\u038C\u03A3", 3},
                 {"\u212AEY", 2},  {"\u0130N", none},
                 {"IN", 4}};
    for (const auto& [selector, index] : cases)
        EXPECT_EQ(fmlib::FindFMTextInArray(*text(selector), table, std::size(table)), index) << selector;
    EXPECT_EQ(cFMUtils::FindFMTextInArray(*text("a"), table, 0), 0xFFFFFFFFU);
}

TEST_F(Bridge, readsPlainStringsInTheHostsNativeEncoding) {
    const struct {
        host::Encoding native;
        const char *bytes, *utf8;
    } cases[] = {{host::Encoding::asciiMac, "\x8E", "\u00E9"},
                 {host::Encoding::iso8859_1, "\xE9", "\u00E9"},
                 {host::Encoding::utf8, "\u00E9", "\u00E9"},
                 {host::Encoding::shiftJisMac, "\x83\x41", "\u30A2"}};
    for (const auto& [encoding, bytes, expected] : cases) {
        host::setNativeEncoding(encoding);
        EXPECT_EQ(utf8(*cFMUtils::FMXTextUniquePtrFromString(bytes)), expected);
        std::string string = bytes;
        const fmx::TextUniquePtr copy = text("before");
        fmlib::copyToFMText(string, *copy);
        EXPECT_EQ(utf8(*copy), expected);
        EXPECT_EQ(utf8(*text("\u00E9\u30A2")), "\u00E9\u30A2");
        EXPECT_EQ(kst::SetLastError(1, bytes, environment()), 0);
        EXPECT_EQ(lastError(), "1 " + std::string(expected));
    }
}

TEST_F(Bridge, recognisesSpecialTexts) {
    EXPECT_TRUE(isEmpty(*text("")));
    EXPECT_TRUE(isAll(*text("all")));
    EXPECT_FALSE(isAll(*text("All")));
    EXPECT_TRUE(isSpace(*text(" ")));
    for (const char* other : {"", "  ", "\t", "\u00A0"})
        EXPECT_FALSE(isSpace(*text(other))) << other;
    EXPECT_TRUE(is_number("007"));
    for (const char* other : {"", "-1", "1.0", " 1", "\u0661"})
        EXPECT_FALSE(is_number(other)) << other;
    EXPECT_EQ(toLower("AbC\xC3\x89"), "abc\xC3\x89");
}

TEST_F(Bridge, splitsStrings) {
    const struct {
        std::string string, delimiter;
        Pieces pieces;
    } cases[] = {
        {"a,,b,", ",", {"a", "", "b"}}, {",a", ",", {"", "a"}},   {"", ",", {}},
        {"a<>b<c", "<>", {"a", "b<c"}}, {"whole", "", {"whole"}}, {"", "", {}},
        {"aaa", "aa", {"", "a"}},       {",", ",", {""}},
    };
    for (const auto& [string, delimiter, pieces] : cases) {
        EXPECT_EQ(split(string, delimiter), pieces) << string;
        if (delimiter.size() == 1) EXPECT_EQ(explode(string, delimiter[0]), pieces) << string;
    }
    EXPECT_EQ(indexOfStringInVector("b", {"a", "b", "b"}), 1);
    EXPECT_EQ(indexOfStringInVector("B", {"a", "b"}), -1);
}

TEST_F(Bridge, writesResults) {
    fmx::DataUniquePtr result;
    fmlib::FMErrCode2FMData(-50, *result);
    EXPECT_EQ(result->GetNativeType(), fmx::Data::kDTNumber);
    EXPECT_EQ(result->GetAsNumber().AsLong(), -50);
    cFMUtils::FMResultFromInt(-12, *result);
    EXPECT_EQ(result->GetNativeType(), fmx::Data::kDTText);
    EXPECT_EQ(utf8(result->GetAsText()), "-12");

    fmx::DataVectUniquePtr values;
    Pieces strings{"a", "", "c"};
    cFMUtils::StringVectorToDataVect(values, strings);
    EXPECT_EQ(cFMUtils::StringVectorFromDataVect(*values), strings);
    EXPECT_EQ(cFMUtils::StringCRFromDataVect(*values), "a\r\rc\r");
}

TEST_F(Bridge, evaluatesInTheCallersFile) {
    EXPECT_EQ(cFMUtils::evaluateCalculation("1 + 1", environment()), "2");
    EXPECT_EQ(cFMUtils::evaluateCalculation("1 +", environment()), "?");
    EXPECT_EQ(cFMUtils::getFromEnvironmentAsString(environment(), "UserName"), valueOf("Get ( UserName )"));
    EXPECT_EQ(valueOf("Get ( FilePath )"), "file:/data/a:b/Caf\u00E9.fmp12");
    EXPECT_EQ(cFMUtils::getFileID(environment()), "file-data-ab-Caf\u00E9User");

    const fmx::TextUniquePtr name = text("before");
    fmlib::FillFMTextWithCurrentDatabaseFileName(*name, environment());
    EXPECT_EQ(utf8(*name), "Caf\u00E9");
    session.close(place.fileId);
    EXPECT_THROW(fmlib::FillFMTextWithCurrentDatabaseFileName(*name, environment()), std::logic_error);
}

TEST_F(Bridge, reportsExceptionsOfHandlers) {
    const struct {
        void (*fails)();
        int answer;
        const char* record;
    } cases[] = {
        {[] { throw std::runtime_error("out of luck"); }, 0, "2400 out of luck"},
        {[] { throw 7; }, 0, "2400 Unknown fatal error occured"},
        {[] { throw std::bad_alloc(); }, 0, "2400 std::bad_alloc"},
        // The record cannot be written, so the previous one stays and the host gets the error.
        {[] { throw std::runtime_error("a \" inside"); }, 1212, "2400 std::bad_alloc"},
    };
    for (const auto& [fails, answer, record] : cases) {
        const fmx::DataUniquePtr result;
        EXPECT_EQ(kst::runHandler(environment(), *result,
                                  [&, failing = fails]() -> fmx::errcode {
                                      failing();
                                      return 0;
                                  }),
                  answer);
        EXPECT_EQ(result->GetNativeType(), fmx::Data::kDTNumber);
        EXPECT_EQ(result->GetAsNumber().AsLong(), 2400);
        EXPECT_EQ(lastError(), record);
    }
}

TEST_F(Bridge, setsTheResultAndTheLastError) {
    const struct {
        short code;
        bool recordSuccess, useDefault;
        const char *message, *result, *record;
    } cases[] = {{-50, true, true, "", "?", "-50 Wrong Parameter"},
                 {0, false, false, "abc", "abc", "-50 Wrong Parameter"},
                 {-4, false, true, "mine", "?", "-4 mine"},
                 {2400, false, false, "", "?", "2400 "},
                 {0, true, true, "", "0", "0 No error"},
                 {2400, false, true, "", "?", "2400 Uknown Error"}, // solutions know it by this spelling
                 {77, false, true, "", "?", "77 Error code has no Error Message"}};
    fmx::DataUniquePtr result;
    getLastErrorMessage(environment(), *result);
    EXPECT_EQ(utf8(result->GetAsText()), "No error");
    for (const auto& row : cases) {
        setLastError(row.code, row.message, *result, environment(), row.recordSuccess, row.useDefault);
        EXPECT_EQ(utf8(result->GetAsText()), row.result);
        EXPECT_EQ(lastError(), row.record);
        const fmx::DataUniquePtr code, message; // read from the session's record
        getLastErrorCode(environment(), *code);
        getLastErrorMessage(environment(), *message);
        EXPECT_EQ(utf8(code->GetAsText()) + " " + utf8(message->GetAsText()), row.record);
    }
}

TEST_F(Bridge, mapsUnknownCodesTo2400) {
    using Codes = std::vector<fmx::errcode>;
    for (const fmx::errcode code : Codes{0, -4, -50})
        EXPECT_EQ(kst::FilterErrCode(code), code);
    for (const fmx::errcode code : Codes{-80, 100, 2400, 1})
        EXPECT_EQ(kst::FilterErrCode(code), 2400);
}

TEST_F(Bridge, givesNoStringsForUnknownFunctions) {
    for (const unsigned long id : {100UL, 116UL, 127UL, ~0UL})
        for (const bool nameAlone : {false, true}) {
            fmx::TextUniquePtr string = text("before");
            Do_GetString(id, string, nameAlone);
            EXPECT_EQ(utf8(*string), "ERROR") << id;
        }
}

TEST_F(Bridge, writesOnlyTheRequestedIdentityString) {
    std::vector<unsigned short> buffer(kMostIdentityUnits, 7);
    ReadString(buffer.data(), buffer.size(), kReadName + kReadDescription);
    EXPECT_EQ(buffer, std::vector<unsigned short>(kMostIdentityUnits, 7));
    ReadString(buffer.data(), buffer.size(), kReadName);
    EXPECT_EQ(buffer[18], 'n');
    EXPECT_EQ(buffer[19], 7);
}

TEST_F(Bridge, keepsTheResultsLocale) {
    host::DataVect none;
    const auto& parameters = host::bridge::out<fmx::DataVect>(std::as_const(none));
    for (const auto& [handler, expected] :
         {std::pair(&Kestrel_GetLog, "Kestrel_GetLog"), {&Kestrel_Version, "3.1"}}) {
        host::Data result;
        result.setLocale({fmx::Locale::kType_ENG});
        EXPECT_EQ(handler(0, environment(), parameters, host::bridge::out<fmx::Data>(result)), 0);
        EXPECT_EQ(result.asText().utf8(), expected);
        EXPECT_EQ(result.locale().type, fmx::Locale::kType_ENG);
        EXPECT_EQ(lastError(), " ");
    }
}

TEST_F(Bridge, hasAMessageForEachCode) {
    const struct {
        short code;
        const char* message;
    } cases[] = {{0, "0"},
                 {-4, "Not Implemented"},
                 {-50, "Wrong Parameter"},
                 {-80, "Timeout Error"},
                 {100, "Could not send push notification"},
                 {101, "OneSignal API error"},
                 {102, "Notifications are not allowed"},
                 {2400, "Uknown Error"},
                 {1, "Error code has no Error Message"}};
    for (const auto& [code, message] : cases)
        EXPECT_EQ(getErrorMessage(code), message);
}

} // namespace
