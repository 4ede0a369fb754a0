#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "host/app/Session.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/ForEachFault.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/fmwrapper/Versions.h"
#include "host/values/Clock.h"
#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <regex>
#include <sstream>

/// The host's interface through the inline classes of the headers, with arguments that a careless plug-in
/// might pass.

namespace {

using fmx::Text;

class Interface : public testing::Test {
protected:
    Interface() {
        host::Solution solution;
        solution.fonts = {u"Helvetica"};
        solution.schema = "CREATE TABLE t (a); INSERT INTO t VALUES (1), (2);";
        session.open(solution);
        place = session.topLevel();
    }
    ~Interface() override {
        host::faults().disarm();
        EXPECT_EQ((host::objectCounts() - before).describe(), "");
    }

    const fmx::ExprEnv& environment() const { return host::bridge::out<fmx::ExprEnv>(place); }

    host::ObjectCounts before = host::objectCounts();
    host::Session session;
    host::calc::Environment place;
};

fmx::TextUniquePtr textOf(const char* utf8) {
    fmx::TextUniquePtr text;
    text->Assign(utf8, Text::kEncoding_UTF8);
    return text;
}

std::string utf8(const Text& text) { return host::bridge::in<host::Text>(&text).utf8(); }

std::string unitsOf(const Text& text, fmx::uint32 position, fmx::uint32 size) {
    std::array<fmx::uint16, 8> buffer{};
    buffer.fill('#');
    text.GetUnicode(buffer.data(), position, size);
    return {buffer.begin(), buffer.end()};
}

/// A call of the interface that raises error 2.
#define EXPECT_REFUSED(call) EXPECT_THROW(call, std::exception)

TEST_F(Interface, BytesNeverLeaveTheBuffer) {
    constexpr std::size_t room = 16;
    const struct {
        Text::Encoding encoding;
        std::string bytes;
    } rows[] = {{Text::kEncoding_UTF8, "a\xC3\xA9\xF0\x9D\x84\x9Ez"},
                {Text::kEncoding_ASCII_Mac, "a\x8E?z"},
                {Text::kEncoding_Native, "a\x8E?z"},
                {Text::kEncoding_ISO_8859_1, "a\xE9?z"}};
    const fmx::TextUniquePtr text = textOf("aé𝄞z");
    for (const auto& [encoding, bytes] : rows)
        for (std::uint32_t size = 0; size < room; ++size) {
            std::string buffer(room, '#'), expected(room, '#');
            text->GetBytes(buffer.data(), size, 0, Text::kSize_End, encoding);
            if (size > 0) {
                const std::string fits = bytes.substr(0, size - 1) + '\0';
                expected.replace(0, fits.size(), fits);
            }
            EXPECT_EQ(buffer, expected) << "encoding " << encoding << ", size " << size;

            buffer.assign(room, '#');
            const fmx::uint32 written = text->GetBytesEx(buffer.data(), size, 0, Text::kSize_End, encoding);
            EXPECT_EQ(buffer, bytes.substr(0, size) + std::string(room - written, '#'));
        }
    EXPECT_EQ(text->GetBytesEx(nullptr, 0), 0U);
    // A long text is encoded in pieces.
    constexpr std::size_t size = 1'500, rest = 2'500;
    std::string buffer(size + rest, '#');
    EXPECT_EQ(textOf(std::string(3'000, 'x').c_str())->GetBytesEx(buffer.data(), size), size);
    EXPECT_EQ(buffer, std::string(size, 'x') + std::string(rest, '#'));
}

TEST_F(Interface, RangesAreCutAtTheEndOfTheText) {
    const fmx::TextUniquePtr text = textOf("abcd");
    const struct {
        fmx::uint32 position, size;
        std::string part;
    } rows[] = {{1, 2, "bc"}, {0, 4, "abcd"},
                {3, 5, "d"},  {2, Text::kSize_End, "cd"},
                {4, 1, ""},   {Text::kSize_End, Text::kSize_End, ""},
                {2, 0, ""}};
    for (const auto& [position, size, part] : rows) {
        SCOPED_TRACE(testing::Message() << position << ", " << size);
        EXPECT_EQ(unitsOf(*text, position, size), part + std::string(8 - part.size(), '#'));
        fmx::TextUniquePtr other;
        other->SetText(*text, position, size);
        EXPECT_EQ(utf8(*other), part);
        other->SetText(*text);
        other->DeleteText(position, size);
        EXPECT_EQ(other->GetSize(), text->GetSize() - part.size());
        std::array<char, 8> buffer{};
        text->GetBytes(buffer.data(), buffer.size(), position, size);
        EXPECT_EQ(buffer.data(), part);
    }
    fmx::CharacterStyleUniquePtr style;
    style->EnableSize();
    text->GetStyle(*style, Text::kSize_End);
    EXPECT_TRUE(style->IsAllDisabled());
    text->InsertText(*textOf("e"), Text::kSize_End);
    EXPECT_EQ(utf8(*text), "abcde");
    EXPECT_EQ(text->Find(*textOf("a"), Text::kSize_End), fmx::uint32{Text::kSize_Invalid});
    EXPECT_EQ(text->FindPrev(*textOf("a"), Text::kSize_End), 0U);
}

TEST_F(Interface, AnObjectMayBeItsOwnArgument) {
    const fmx::TextUniquePtr text = textOf("abc");
    fmx::CharacterStyleUniquePtr bold;
    bold->SetFace(fmx::CharacterStyle::kFace_Bold);
    text->SetStyle(*bold, 1, 1);
    text->AppendText(*text, 1);
    text->InsertText(*text, 2);
    text->SetText(*text, 1, 6);
    EXPECT_EQ(utf8(*text), "babcbc");
    std::string faces;
    for (fmx::uint32 i = 0; i < text->GetSize(); ++i) {
        text->GetStyle(*bold, i);
        faces += bold->IsFaceEnabled(fmx::CharacterStyle::kFace_Bold) ? 'b' : '-';
    }
    EXPECT_EQ(faces, "b-b-b-");

    fmx::FixPtUniquePtr number(6);
    number->Add(*number, *number);
    number->Multiply(*number, *number);
    EXPECT_EQ(number->Divide(*number, *number), 0);
    EXPECT_EQ(number->AsLong(), 1);

    const fmx::DataUniquePtr data;
    data->SetAsNumber(*fmx::FixPtUniquePtr(7));
    EXPECT_EQ(data->SetAsText(data->GetAsText(), data->GetLocale()), 0);
    EXPECT_EQ(environment().Evaluate(data->GetAsText(), *data), 0);
    EXPECT_EQ(data->GetNativeType(), fmx::Data::kDTNumber);
    const fmx::DataVectUniquePtr values;
    values->PushBack(*data);
    values->PushBack(values->At(0));
    EXPECT_EQ(values->AtAsNumber(1).AsLong(), 7);
}

TEST_F(Interface, WideCharactersBecomeUnits) {
    const fmx::TextUniquePtr text;
    const std::array<wchar_t, 6> wide{L'a', 0x1D11E, 0xD834, 0x110000, -1, 0};
    const std::string units = "a𝄞\uFFFD\uFFFD\uFFFD";
    text->AssignWide(wide.data());
    EXPECT_EQ(utf8(*text), units);
    text->AssignWideWithLength(wide.data(), wide.size());
    EXPECT_EQ(utf8(*text), units + '\0');
    const std::array<fmx::uint16, 4> unicode{'a', 0xE9, 0, 'b'};
    text->AssignUnicode(unicode.data());
    EXPECT_EQ(utf8(*text), "aé");
    text->AssignUnicodeWithLength(unicode.data(), unicode.size());
    EXPECT_EQ(text->GetSize(), unicode.size());
    text->AssignWithLength(nullptr, 0);
    EXPECT_EQ(text->GetSize(), 0U);
}

TEST_F(Interface, VectorsRefuseMissingElements) {
    const fmx::DataVectUniquePtr values;
    const fmx::DataUniquePtr data;
    data->SetAsNumber(*fmx::FixPtUniquePtr(7));
    for (const fmx::uint32 position : {0U, 1U, 0xFFFFFFFFU}) {
        EXPECT_REFUSED(values->At(position));
        EXPECT_REFUSED(values->AtAsNumber(position));
        EXPECT_REFUSED(values->AtAsDate(position));
        EXPECT_REFUSED(values->AtAsTime(position));
        EXPECT_REFUSED(values->AtAsTimeStamp(position));
        EXPECT_REFUSED(values->AtAsBoolean(position));
        EXPECT_REFUSED(values->AtAsBinaryData(position));
        EXPECT_REFUSED(fmx::RowVectUniquePtr()->At(position));
        fmx::_fmxcpt slot;
        EXPECT_EQ(utf8(*FM_DataVect_AtAsText(values.get(), position, slot)), "");
        EXPECT_EQ(slot.m_code, fmx::_fmxcpt::kUnknown);
    }
    EXPECT_REFUSED(values->PopBack());
    values->PushBack(*data);
    data->Clear();
    const std::unique_ptr<fmx::Data> last(values->PopBack());
    EXPECT_EQ(last->GetAsNumber().AsLong(), 7);
    EXPECT_TRUE(values->IsEmpty());
    fmx::QuadCharUniquePtr quad('a', 'b', 'c', 'd');
    EXPECT_EQ(quad->GetMacType(), 0x61626364U);
    for (const int index : {-1, 4})
        EXPECT_REFUSED((*quad)[index]);
}

/// Calls a function by name through a C declaration, in which references are pointers. All arguments are null
/// or 0, and the error slot follows them.
__attribute__((no_sanitize("function"))) fmx::int32 codeWithNothing(void* function, std::size_t count) {
    fmx::_fmxcpt slot;
    std::array<void*, 10> a{};
    a.at(count) = &slot;
    using Call = void (*)(void*, void*, void*, void*, void*, void*, void*, void*, void*, void*);
    reinterpret_cast<Call>(function)(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9]);
    return slot.m_code;
}

/// The functions that the headers declare: names and parameters, without the error slot.
std::map<std::string, std::string> declaredFunctions() {
    static const std::regex declaration(R"((FM_\w+)\(([^()]*?),?\s*fmx::_fmxcpt& _x\);)");
    std::map<std::string, std::string> functions;
    for (const auto& header : std::filesystem::directory_iterator(KESTREL_SOURCE_DIR "/include/FMWrapper")) {
        const std::string source = (std::stringstream() << std::ifstream(header.path()).rdbuf()).str();
        for (std::sregex_iterator found(source.begin(), source.end(), declaration), none; found != none;
             ++found)
            functions.emplace((*found)[1], (*found)[2]);
    }
    return functions;
}

TEST_F(Interface, EveryFunctionExistsAndRefusesNull) {
    const auto functions = declaredFunctions();
    EXPECT_GT(functions.size(), 200U);
    for (const auto& [name, parameters] : functions) {
        void* function = dlsym(RTLD_DEFAULT, name.c_str());
        ASSERT_NE(function, nullptr) << name;
        if (parameters.find_first_of("*&") == std::string::npos) continue;
        // Floating-point arguments use other registers.
        const bool takesDouble = parameters.find("double") != std::string::npos;
        const auto commas = std::count(parameters.begin(), parameters.end(), ',');
        EXPECT_EQ(codeWithNothing(function, static_cast<std::size_t>(commas + (takesDouble ? 0 : 1))),
                  name.ends_with("_Delete") ? 0 : fmx::_fmxcpt::kUnknown)
            << name;
    }
    const fmx::TextUniquePtr text;
    EXPECT_REFUSED(text->Assign(nullptr));
    EXPECT_REFUSED(text->GetBytes(nullptr, 1));
}

TEST_F(Interface, FailingCallsLeakNothing) {
    const auto work = [&] {
        const fmx::LocaleUniquePtr locale;
        const fmx::TextUniquePtr text = textOf("1 + 1");
        const fmx::DataUniquePtr data;
        const fmx::DataVectUniquePtr values;
        const fmx::RowVectUniquePtr rows;
        data->SetAsText(*text, *locale);
        values->PushBack(*data);
        const std::unique_ptr<fmx::Data> popped(values->PopBack());
        const fmx::CharacterStyleUniquePtr style(0, fmx::CharacterStyle::kFace_Bold, 12);
        text->SetStyle(*style);
        const fmx::ColorUniquePtr color(style->GetColor());
        const fmx::DateTimeUniquePtr moment(*text, *locale);
        const fmx::BinaryDataUniquePtr binary(*text, 0U, nullptr);
        const fmx::ExprEnvUniquePtr empty;
        environment().Evaluate(*text, *data);
        environment().ExecuteFileSQL(*textOf("SELECT a FROM t"), *fmx::TextUniquePtr(), *values, *rows);
        return data->GetAsNumber().AsLong();
    };
    const std::uint64_t failed = host::forEachFault([&](host::FaultPoint& point) {
        const host::ObjectCounts atFirst = host::objectCounts();
        point.during([&] {
            try {
                EXPECT_EQ(work(), 2);
                EXPECT_FALSE(host::faults().fired());
            } catch (const std::exception& problem) {
                EXPECT_EQ(dynamic_cast<const std::bad_alloc*>(&problem) != nullptr,
                          point.mode.kind == host::Faults::Kind::badAlloc);
            }
        });
        EXPECT_EQ((host::objectCounts() - atFirst).describe(), "") << "call " << point.nth;
    });
    EXPECT_GT(failed, 4 * 20U);
}

TEST_F(Interface, NumbersKeepTheirPrecisionAndRefuseNanAndInfinity) {
    const fmx::FixPtUniquePtr example(0, 40), one(1, *example), three(3), quotient(5);
    EXPECT_EQ(one->GetPrecision(), 40);
    EXPECT_EQ(one->Divide(*three, *quotient), 0);
    EXPECT_EQ(quotient->GetPrecision(), 40);
    EXPECT_NE(one->Divide(*example, *quotient), 0);
    EXPECT_DOUBLE_EQ(quotient->AsFloat(), 1.0 / 3);
    for (const double none : {std::nan(""), HUGE_VAL, -HUGE_VAL})
        EXPECT_REFUSED(one->AssignDouble(none));
    one->Increment64(std::numeric_limits<fmx::int64>::max());
    one->Decrement(1);
    EXPECT_EQ(one->AsLong64(), std::numeric_limits<fmx::int64>::max());
    EXPECT_EQ(one->AsLong(), std::numeric_limits<fmx::int32>::max());
    one->Negate();
    EXPECT_TRUE(*one < *three && *one <= *three && *three > *one && *three >= *one && *one != *three);
}

TEST_F(Interface, DatesNormaliseWithinTheCalendar) {
    const fmx::DateTimeUniquePtr moment;
    const auto spelled = [&] {
        return (std::stringstream() << moment->GetYear() << '-' << moment->GetMonth() << '-'
                                    << moment->GetDay() << ' ' << moment->GetHour() << ':'
                                    << moment->GetMinute() << ':' << moment->GetSec() << '.'
                                    << moment->GetUSec())
            .str();
    };
    EXPECT_EQ(moment->SetNormalizedDate(14, 0, 2023), 0);
    EXPECT_EQ(moment->SetNormalizedTime(1, 90, -5, 1'500'000), 0);
    const std::string kept = "2024-1-31 2:29:56.500000";
    EXPECT_EQ(spelled(), kept);
    const fmx::FixPtUniquePtr most(std::numeric_limits<fmx::int32>::max()), one(1), none(0);
    constexpr auto farHours = std::numeric_limits<fmx::int64>::max();
    for (const fmx::errcode error :
         {moment->SetNormalizedDate(1, 0, 1), moment->SetNormalizedDate(*most, *most, *most),
          moment->SetNormalizedTime(farHours, 0, 0), moment->SetNormalizedTime(*most, *one, *one)})
        EXPECT_NE(error, 0);
    EXPECT_REFUSED(moment->SetDaysSinceEpoch(-1));
    EXPECT_REFUSED(moment->SetDaysSinceEpoch(host::DateTime::lastDay + 1));
    fmx::FixPtUniquePtr seconds(-1);
    EXPECT_REFUSED(moment->SetSecondsSinceEpoch(*seconds));
    EXPECT_EQ(spelled(), kept);
    EXPECT_EQ(moment->SetNormalizedDate(*one, *one, *one), 0);
    EXPECT_EQ(moment->GetDaysSinceEpoch(), 0);
    seconds->AssignDouble(86'401.25);
    moment->SetSecondsSinceEpoch(*seconds);
    EXPECT_EQ(spelled(), "1-1-2 0:0:1.250000");
    moment->GetSecondsSinceEpoch(*none);
    EXPECT_TRUE(*none == *seconds);
    host::clock().hold();
    host::clock().set(std::chrono::seconds(1'700'000'000));
    moment->Now();
    host::clock().release();
    EXPECT_EQ(moment->GetYear(), 2023);
}

TEST_F(Interface, ContainersGiveWholeRangesOrNothing) {
    std::array<char, 4> bytes{'a', 'b', 'c', 'd'};
    const fmx::BinaryDataUniquePtr file(*textOf("x.txt"), 4U, bytes.data());
    const fmx::QuadCharUniquePtr kind;
    file->GetType(0, *kind);
    EXPECT_EQ(file->GetIndex(*kind), 0);
    EXPECT_EQ(file->GetIndex(*fmx::QuadCharUniquePtr()), -1);
    const struct {
        fmx::int32 index;
        fmx::uint32 offset, amount;
        std::string bytes;
    } rows[] = {{0, 0, 4, "abcd"}, {0, 1, 2, "bc##"},       {0, 4, 0, "####"}, {0, 0, 5, ""}, {0, 5, 0, ""},
                {0, 2, 3, ""},     {0, 1, 0xFFFFFFFFU, ""}, {2, 0, 0, ""},     {-1, 0, 1, ""}};
    for (const auto& row : rows) {
        std::string buffer(4, '#');
        const bool good = file->GetData(row.index, row.offset, row.amount, buffer.data()) == 0;
        EXPECT_EQ(good, !row.bytes.empty()) << row.index << ' ' << row.offset << ' ' << row.amount;
        EXPECT_EQ(buffer, good ? row.bytes : "####");
    }
    EXPECT_EQ(file->GetSize(1), 5U) << "the name";
    EXPECT_REFUSED(file->GetSize(2));
    EXPECT_REFUSED(file->GetType(-1, *kind));
    const fmx::BinaryDataUniquePtr copy(*file), named(*textOf("x.txt"), nullptr);
    EXPECT_TRUE(*copy == *file && *named != *file && named->GetCount() == 1);
    const fmx::TextUniquePtr name;
    EXPECT_EQ(named->GetFNAMData(*name), 0);
    EXPECT_EQ(utf8(*name), "x.txt");
}

TEST_F(Interface, EveryValueReadsAsEveryType) {
    using fmx::Data;
    const fmx::LocaleUniquePtr english(fmx::Locale::kType_ENG);
    const fmx::DateTimeUniquePtr moment;
    moment->SetNormalizedDate(1, 2, 2024);
    moment->SetNormalizedTime(3, 4, 5);
    const fmx::FixPtUniquePtr number(5);
    const fmx::TextUniquePtr text = textOf("1/2/2024");
    const fmx::BinaryDataUniquePtr binary(*text, nullptr);
    using Type = Data::DataType;
    const struct {
        std::function<void(Data&, Type)> set;
        std::string text;
        fmx::int64 number;
        bool isTrue = true;
    } rows[] = {
        {[&](Data& data, Type type) { data.SetAsText(*text, *english, type); }, "1/2/2024", 122024},
        {[&](Data& data, Type type) { data.SetAsNumber(*number, type); }, "5", 5},
        {[&](Data& data, Type type) { data.SetAsDate(*moment, type); }, "1/2/2024", 738887},
        {[&](Data& data, Type type) { data.SetAsTime(*moment, type); }, "3:04:05", 11045},
        {[&](Data& data, Type type) { data.SetAsTimeStamp(*moment, type); }, "1/2/2024 3:04:05 AM",
         63839761445},
        {[&](Data& data, Type type) { data.SetDateTime(*moment, Data::kDTTime, type); }, "3:04:05", 11045},
        {[&](Data& data, Type) { data.SetBinaryData(*binary, false); }, "1/2/2024", 0},
        {[&](Data& data, Type type) { data.Clear(type); }, "", 0, false}};
    for (const auto& row : rows)
        for (int type = 0; type <= Data::kDTBoolean; ++type) {
            SCOPED_TRACE(row.text + " as " + std::to_string(type));
            const fmx::DataUniquePtr data;
            row.set(*data, static_cast<Type>(type));
            EXPECT_EQ(utf8(data->GetAsText()), row.text);
            EXPECT_EQ(data->GetAsNumber().AsLong64(), row.number);
            EXPECT_EQ(data->GetAsBoolean(), row.isTrue);
            const bool isReference = row.isTrue && row.number == 0; // it has a name alone
            EXPECT_EQ(data->GetBinaryData().GetCount(), isReference ? 1 : 0);
            EXPECT_EQ(data->GetAsTime().GetDaysSinceEpoch(), 0);
            EXPECT_EQ(data->GetAsTimeStamp().GetHour() == 3, row.text.ends_with("3:04:05 AM"));
            for (fmx::int32 wanted = -1; wanted <= Data::kDTBoolean + 1; ++wanted) {
                fmx::_fmxcpt slot;
                FM_Data_ConvertData(data.get(), wanted, slot);
                EXPECT_EQ(slot.m_code, 0);
                EXPECT_LE(data->GetAsText().GetSize(), 19U);
            }
        }
    const fmx::DataUniquePtr data;
    data->SetAsText(*text, *english);
    EXPECT_EQ(data->GetAsDate().GetYear(), 2024);
    EXPECT_EQ(host::bridge::in<host::Locale>(&data->GetLocale()).type, fmx::Locale::kType_ENG);
}

TEST_F(Interface, FontsBelongToTheFile) {
    const fmx::DataUniquePtr data;
    const fmx::ExprEnvUniquePtr nowhere;
    const fmx::TextUniquePtr helvetica = textOf("Helvetica"), name = textOf("kept");
    const auto font = data->GetFontID(*helvetica, fmx::CharacterStyle::kRoman, environment());
    EXPECT_EQ(data->GetFontID(*helvetica, environment()), font);
    fmx::CharacterStyle::FontScript script = 9;
    EXPECT_FALSE(data->GetFontInfo(fmx::CharacterStyle::kInvalidFont, *name, script, environment()));
    EXPECT_FALSE(data->GetFontInfo(font, *name, *nowhere));
    EXPECT_EQ(utf8(*name), "kept");
    EXPECT_EQ(data->GetFontID(*helvetica, *nowhere), fmx::CharacterStyle::kInvalidFont);
    EXPECT_TRUE(data->GetFontInfo(font, *name, script, environment()));
    EXPECT_EQ(utf8(*name), "Helvetica");
    EXPECT_EQ(script, fmx::CharacterStyle::kRoman);
}

TEST_F(Interface, EvaluatesInTheFileOfTheEnvironment) {
    const fmx::ExprEnvUniquePtr nowhere;
    const fmx::DataUniquePtr result;
    const fmx::RowVectUniquePtr rows;
    const fmx::DataVectUniquePtr parameters;
    const fmx::TextUniquePtr thisFile, count = textOf("SELECT a FROM t");
    EXPECT_EQ(environment().Evaluate(*textOf("Let ( $x = 6 ; $x * 7 )"), *result), 0);
    EXPECT_EQ(environment().Evaluate(*textOf("\"a"), *result), 1206);
    EXPECT_EQ(nowhere->Evaluate(*textOf("1"), *result), 100);
    EXPECT_EQ(result->GetAsNumber().AsLong(), 42);
    EXPECT_EQ(environment().ExecuteFileSQL(*count, *thisFile, *parameters, *rows), 0);
    EXPECT_EQ(environment().ExecuteFileSQL(*textOf("SELECT"), *thisFile, *parameters, *rows), 8310);
    EXPECT_EQ(environment().ExecuteFileSQL(*count, *textOf("Other"), *parameters, *rows), 100);
    EXPECT_EQ(nowhere->ExecuteFileSQL(*count, *thisFile, *parameters, *rows), 100);
    EXPECT_EQ(rows->Size(), 2U);
    EXPECT_EQ(environment().SessionID(), session.id());
    EXPECT_EQ(environment().FileID(), place.fileId);
    EXPECT_EQ(nowhere->SessionID() + nowhere->FileID(), 0U);
    const fmx::QuadCharUniquePtr creator('T', 'e', 's', 't');
    EXPECT_NE(fmx::ExprEnv::UnRegisterExternalFunction(*creator, 1), 0);
    session.close(place.fileId);
    EXPECT_EQ(environment().Evaluate(*textOf("1"), *result), 100);
    EXPECT_EQ(environment().ExecuteFileSQL(*count, *thisFile, *parameters, *rows), 100);
}

TEST_F(Interface, NotesCallsThatTheAnnouncedVersionLacks) {
    const fmx::DataUniquePtr locale;
    host::announceVersion(59);
    EXPECT_EQ(environment().EvaluateGetFunction(1127, *locale), 0);
    host::announceVersion(kCurrentExtnVersion);
    EXPECT_EQ(utf8(locale->GetAsText()).substr(0, 10), R"({"locale":)");
    EXPECT_TRUE(std::ranges::any_of(host::callsBeyondVersion(), [](const host::NewerFunction* function) {
        return function->name == "FM_ExprEnv_EvaluateGetFunction";
    }));
}

} // namespace
