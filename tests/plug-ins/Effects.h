#pragma once

#include "FMWrapper/FMXBinaryData.h"
#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXExtern.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTextStyle.h"
#include "FMWrapper/FMXTypes.h"

#include <exception>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

/// Checks of the effects of the interface's calls, a function for each part of it. They need the host's
/// environment, and add what does not hold to `gFailures`.
namespace effects {

using fmx::BinaryDataUniquePtr;
using fmx::CharacterStyle;
using fmx::CharacterStyleUniquePtr;
using fmx::ColorUniquePtr;
using fmx::Data;
using fmx::DataUniquePtr;
using fmx::DataVectUniquePtr;
using fmx::DateTimeUniquePtr;
using fmx::ExprEnv;
using fmx::ExprEnvUniquePtr;
using fmx::FixPtUniquePtr;
using fmx::LocaleUniquePtr;
using fmx::QuadCharUniquePtr;
using fmx::RowVectUniquePtr;
using fmx::Text;
using fmx::TextUniquePtr;

inline std::string gFailures; ///< the checks of the running group that failed

#define EXPECT(condition)                                                                                    \
    if (!(condition)) gFailures += std::string(gFailures.empty() ? "" : "; ") + #condition

struct Words : TextUniquePtr {
    Words(const char* utf8 = "") { (*this)->Assign(utf8, Text::kEncoding_UTF8); }
};

inline std::string utf8(const Text& text) {
    std::string bytes(text.GetSize() * 3 + 1, '\0');
    bytes.resize(text.GetBytesEx(bytes.data(), static_cast<fmx::uint32>(bytes.size())));
    return bytes;
}

inline void setText(Data& data, const std::string& text) {
    data.SetAsText(*Words(text.c_str()), *LocaleUniquePtr());
}

inline QuadCharUniquePtr creator() { return {'U', 'S', 'E', 'S'}; }

template<class Value>
bool isOrdered(const Value& less, const Value& more) {
    const Value& same = less;
    return less == same && less != more && less < more && less <= more && more > less && more >= less;
}

inline void checkTypes(const ExprEnv&) {
    const QuadCharUniquePtr letters('a', 'b', 'c', 'd'), copy(*letters), empty, more('a', 'b', 'c', 'e');
    EXPECT((*letters)[1] == 'b');
    EXPECT((*static_cast<const fmx::QuadChar*>(copy.get()))[3] == 'd');
    EXPECT(isOrdered(*letters, *more) && *copy == *letters);
    EXPECT(letters->GetMacType() == 0x61626364);
    more->SetMacType(0x61626364);
    EXPECT(*more == *letters);
    *empty = *letters;
    EXPECT(*empty == *letters);
    const LocaleUniquePtr german(fmx::Locale::kType_DEU), system;
    *system = *LocaleUniquePtr(*german);
    DataUniquePtr data;
    EXPECT(data->SetAsText(*Words("x"), *system) == 0 && utf8(data->GetAsText()) == "x");
    EXPECT(data->SetAsText(*Words("y"), *LocaleUniquePtr(data->GetLocale())) == 0);
}

/// A letter in the encodings that the product does not use.
struct EncodedLetter {
    Text::Encoding encoding;
    const char *bytes, *letter;
};
constexpr EncodedLetter kLetters[] = {
    {Text::kEncoding_Korean_Mac, "\xB0\xA1", "가"},
    {Text::kEncoding_Korean_Win, "\xB0\xA1", "가"},
    {Text::kEncoding_ChineseTrad_Mac, "\xA4\xA4", "中"},
    {Text::kEncoding_ChineseTrad_Win, "\xA4\xA4", "中"},
    {Text::kEncoding_ChineseSimp_Mac, "\xD6\xD0", "中"},
    {Text::kEncoding_ChineseSimp_Win, "\xD6\xD0", "中"},
    {Text::kEncoding_Cyrillic_Mac, "\x80", "А"},
    {Text::kEncoding_Cyrillic_Win, "\xC0", "А"},
    {Text::kEncoding_ISO_8859_5, "\xB0", "А"},
    {Text::kEncoding_CentralEurope_Mac, "\x88", "ą"},
    {Text::kEncoding_EasternEurope_Win, "\xB9", "ą"},
    {Text::kEncoding_ISO_8859_2, "\xB1", "ą"},
    {Text::kEncoding_Turkish_Mac, "\xDB", "ğ"},
    {Text::kEncoding_Turkish_Win, "\xF0", "ğ"},
    {Text::kEncoding_ISO_8859_3, "\xFE", "ŝ"},
    {Text::kEncoding_ISO_8859_9, "\xF0", "ğ"},
    {Text::kEncoding_Baltic_Win, "\xE0", "ą"},
    {Text::kEncoding_ISO_8859_4, "\xB1", "ą"},
    {Text::kEncoding_Arabic_Mac, "\xC7", "ا"},
    {Text::kEncoding_Arabic_Win, "\xC7", "ا"},
    {Text::kEncoding_ISO_8859_6, "\xC7", "ا"},
    {Text::kEncoding_Greek_Mac, "\xE1", "α"},
    {Text::kEncoding_Greek_Win, "\xE1", "α"},
    {Text::kEncoding_ISO_8859_7, "\xE1", "α"},
    {Text::kEncoding_Hebrew_Mac, "\xE0", "א"},
    {Text::kEncoding_Hebrew_Win, "\xE0", "א"},
    {Text::kEncoding_ISO_8859_8, "\xE0", "א"},
    {Text::kEncoding_ISO_8859_15, "\xA4", "€"},
};

inline void checkEncodings(const ExprEnv&) {
    for (const auto& [encoding, bytes, letter] : kLetters) {
        const TextUniquePtr text;
        text->Assign(bytes, encoding);
        char back[8];
        text->GetBytes(back, sizeof back, 0, Text::kSize_End, encoding);
        if (utf8(*text) != letter || std::string(back) != bytes)
            gFailures += " encoding " + std::to_string(encoding);
    }
}

inline void checkTextCalls(const ExprEnv&) {
    const Words text("Größe"), other("größe");
    EXPECT(text->GetSize() == 5);
    EXPECT(isOrdered(*text, *other));
    char bytes[8];
    text->GetBytes(bytes, sizeof bytes, 0, Text::kSize_End, Text::kEncoding_ISO_8859_1);
    EXPECT(std::string(bytes) == "Gr\xF6\xDF"
                                 "e");
    fmx::uint16 units[2];
    text->GetUnicode(units, 2, 2);
    EXPECT(units[0] == 0xF6 && units[1] == 0xDF);
    const TextUniquePtr made;
    made->AssignWide(L"wide");
    EXPECT(utf8(*made) == "wide");
    made->AssignWideWithLength(L"wide", 2);
    EXPECT(utf8(*made) == "wi");
    const fmx::uint16 letters[] = {'a', 'b', 'c', 0};
    made->AssignUnicode(letters);
    EXPECT(utf8(*made) == "abc");
    made->AssignUnicodeWithLength(letters, 2);
    EXPECT(utf8(*made) == "ab");
    made->AssignWithLength("two words", 3);
    EXPECT(utf8(*made) == "two");
    made->SetText(*text, 1, 2);
    made->AppendText(*text, 4);
    made->InsertText(*other, 0);
    EXPECT(utf8(*made) == "größeröe");
    made->DeleteText(5);
    EXPECT(utf8(*made) == "größe");
    EXPECT(made->Find(*Words("e"), 0) == 4 && made->Find(*Words("E"), 0) == Text::kSize_Invalid);
    EXPECT(made->FindPrev(*Words("r"), 4) == 1);
    EXPECT(made->FindIgnoringCase(*Words("R"), 0) == 1 && made->FindPrevIgnoringCase(*Words("R"), 4) == 1);
    made->Uppercase();
    EXPECT(utf8(*made) == "GRÖSSE");
    made->Lowercase();
    EXPECT(utf8(*made) == "grösse");
    const CharacterStyleUniquePtr bold, seen;
    bold->SetFace(CharacterStyle::kFace_Bold);
    made->SetStyle(*bold, 1, 1);
    made->GetStyle(*seen, 1);
    EXPECT(*seen == *bold);
    made->GetDefaultStyle(*seen);
    EXPECT(seen->IsAllDisabled());
    made->RemoveStyle(*bold);
    made->GetStyle(*seen, 1);
    EXPECT(!seen->IsFaceEnabled(CharacterStyle::kFace_Bold));
    made->SetStyle(*bold);
    made->ResetAllStyleBuffers();
    made->GetStyle(*seen, 1);
    EXPECT(seen->IsAllDisabled());
}

inline void checkStyles(const ExprEnv&) {
    const ColorUniquePtr color(1, 2, 3), copy(*color), none;
    EXPECT(color->GetRed() == 1 && color->GetGreen() == 2 && color->GetBlue() == 3 &&
           color->GetAlpha() == 255);
    EXPECT(*copy == *color && *copy != CharacterStyle::Color::White());
    copy->SetRed(255);
    copy->SetGreen(128);
    copy->SetBlue(0);
    copy->SetAlpha(1);
    EXPECT(copy->GetRedUpsample() == 65535 && copy->GetGreenUpsample() == 128 * 257);
    EXPECT(copy->GetBlueUpsample() == 0 && copy->GetAlphaUpsample() == 257);
    *none = CharacterStyle::Color::Black();
    EXPECT(none->GetRed() == 0);
    const CharacterStyleUniquePtr style, red(7, CharacterStyle::kFace_Italic, 12, *color), twin(*red);
    EXPECT(style->IsAllDisabled() && *twin == *red && *style != *red);
    EXPECT(red->GetFont() == 7 && red->GetFace() == CharacterStyle::kFace_Italic && red->GetSize() == 12);
    EXPECT(red->GetColor() == *color);
    style->EnableFont();
    style->EnableFace(CharacterStyle::kFace_Bold);
    style->EnableSize();
    style->EnableColor();
    EXPECT(style->IsFontEnabled() && style->IsFaceEnabled(CharacterStyle::kFace_Bold) &&
           style->IsSizeEnabled());
    EXPECT(style->IsColorEnabled() && style->IsAnyFaceEnabled());
    style->DisableFont();
    style->DisableFace(CharacterStyle::kFace_Bold);
    style->DisableSize();
    style->DisableColor();
    style->DisableAllFaces();
    EXPECT(style->IsAllDisabled() && !style->IsAnyFaceEnabled());
    style->SetFontInformation(1, CharacterStyle::kFace_Bold, 9);
    CharacterStyle::FontID font = 0;
    CharacterStyle::Face face = 0;
    CharacterStyle::FontSize size = 0;
    style->GetFontInformation(font, face, size);
    EXPECT(font == 1 && face == CharacterStyle::kFace_Bold && size == 9);
    const CharacterStyleUniquePtr fresh;
    fresh->SetFont(7);
    fresh->SetFace(CharacterStyle::kFace_Italic);
    fresh->SetSize(12);
    fresh->SetColor(*color);
    EXPECT(fresh->GetFont() == 7 && fresh->GetFace() == CharacterStyle::kFace_Italic &&
           fresh->GetSize() == 12);
    EXPECT(fresh->GetColor() == *color);
    style->DisableAll();
    *style = *red;
    EXPECT(*style == *red);
}

inline void checkNumbers(const ExprEnv&) {
    const FixPtUniquePtr six(6), four(4, *six), result;
    EXPECT(isOrdered(*four, *six));
    six->Add(*four, *result);
    EXPECT(result->AsLong() == 10);
    six->Subtract(*four, *result);
    EXPECT(result->AsLong64() == 2);
    six->Multiply(*four, *result);
    EXPECT(result->AsFloat() == 24);
    EXPECT(six->Divide(*four, *result) == 0 && result->AsFloat() == 1.5);
    result->AssignInt(5);
    result->Increment(2);
    result->Decrement(1);
    result->Increment64(10);
    result->Decrement64(4);
    EXPECT(result->AsLong() == 12);
    result->AssignInt64(1L << 40);
    EXPECT(result->AsLong64() == 1L << 40);
    result->AssignDouble(-2.5);
    result->Negate();
    EXPECT(result->AsFloat() == 2.5 && result->AsBool());
    result->AssignFixPt(*six);
    result->SetPrecision(20);
    EXPECT(*result == *six && result->GetPrecision() == 20);
}

inline void checkDates(const ExprEnv&) {
    const fmx::unichar16 leapDay[] = {'2', '/', '2', '9', '/', '2', '0', '2', '4'};
    const LocaleUniquePtr system;
    const DateTimeUniquePtr date(leapDay, 9, *system), same(*Words("2/29/2024"), *system), moment;
    EXPECT(*date == *same && date->IsLeapYear() == 1);
    EXPECT(date->GetYear() == 2024 && date->GetMonth() == 2 && date->GetDay() == 29);
    EXPECT(date->DayOfWeek() == 5 && date->DayOfYear() == 60 && date->WeekOfYear() == 9);
    moment->Now();
    EXPECT(*moment != *date && moment->GetYear() > 2023);
    EXPECT(moment->SetNormalizedTime(1, 2, 3, 4) == 0);
    EXPECT(moment->GetHour() == 1 && moment->GetMinute() == 2 && moment->GetSec() == 3 &&
           moment->GetUSec() == 4);
    moment->SetDate(*date);
    EXPECT(moment->GetDay() == 29 && moment->GetHour() == 1);
    date->SetTime(*moment);
    EXPECT(date->GetMinute() == 2);
    const FixPtUniquePtr number, day(1), month(14), year(2023);
    moment->GetSeconds(*number);
    EXPECT(number->AsLong() == 3);
    moment->GetSecsSinceMidnight(*number);
    EXPECT(number->AsLong() == 3723);
    moment->GetSecondsSinceEpoch(*number);
    same->SetSecondsSinceEpoch(*number);
    EXPECT(*same == *moment);
    same->SetSecsSinceMidnight(*FixPtUniquePtr(60));
    EXPECT(same->GetMinute() == 1 && same->GetHour() == 0);
    same->SetDaysSinceEpoch(moment->GetDaysSinceEpoch() + 1);
    EXPECT(same->GetMonth() == 3 && same->GetDay() == 1);
    EXPECT(same->SetNormalizedDate(2, 30, 2024) == 0 && same->GetMonth() == 3);
    EXPECT(same->SetNormalizedDate(*year, *month, *day) == 0 && same->GetYear() == 2024 &&
           same->GetMonth() == 2);
    EXPECT(same->SetNormalizedTime(*day, *FixPtUniquePtr(61), *day) == 0 && same->GetHour() == 2);
}

inline void checkContainers(const ExprEnv&) {
    char file[] = "plain", png[] = "\x89PNG\r\n\x1A\n", gif[] = "GIF89a", pdf[] = "%PDF-1.7";
    // Segments of a JPEG file: start, a frame of 3 x 2 pixels, end.
    char jpeg[] = "\xFF\xD8\xFF\xC0\0\x11\x08\0\2\0\3\3\1\x22\0\2\x11\1\3\x11\1\xFF\xD9";
    struct {
        char* bytes;
        fmx::uint32 size;
        const char* kind;
    } kinds[] = {{file, 5, "FILE"},
                 {png, 8, "PNGf"},
                 {gif, 6, "GIFf"},
                 {pdf, 8, "PDF "},
                 {jpeg, sizeof jpeg - 1, "JPEG"}};
    short width = 0, height = 0;
    for (const auto& [bytes, size, kind] : kinds) {
        const BinaryDataUniquePtr data(*Words("name"), size, bytes);
        const bool isJpeg = kind[0] == 'J';
        EXPECT(data->GetIndex(*QuadCharUniquePtr(kind[0], kind[1], kind[2], kind[3])) == 0);
        EXPECT(data->GetIndex(*QuadCharUniquePtr('F', 'N', 'A', 'M')) == (isJpeg ? 2 : 1));
        EXPECT(data->GetCount() == (isJpeg ? 3 : 2));
        EXPECT((data->GetSIZEData(width, height) == 0) == isJpeg);
    }
    EXPECT(width == 3 && height == 2);
    fmx::uint32 context = 0;
    const BinaryDataUniquePtr pieces(*Words("name"), &context), empty, whole(*Words("name"), 5, file);
    EXPECT(pieces->AddAppend(context, 2, file) == 0 && pieces->AddAppend(context, 3, file + 2) == 0);
    EXPECT(*pieces != *whole);
    EXPECT(pieces->AddFinish(context) == 0 && *pieces == *whole && pieces->AddFinish(context) != 0);
    const QuadCharUniquePtr own('O', 'W', 'N', ' '), kind;
    EXPECT(pieces->AddBegin(*own, &context) == 0 && pieces->AddAppend(context, 5, file) == 0);
    EXPECT(pieces->AddFinish(context) == 0 && pieces->GetCount() == 3 && pieces->GetTotalSize() == 14);
    pieces->GetType(1, *kind);
    char read[3] = {};
    EXPECT(*kind == *own && pieces->GetSize(1) == 5);
    EXPECT(pieces->GetData(1, 1, 2, read) == 0 && std::string(read) == "la");
    EXPECT(pieces->Remove(*own) && !pieces->Remove(*own));
    const TextUniquePtr name;
    EXPECT(pieces->AddFNAMData(*Words("other")) == 0 && pieces->GetFNAMData(*name) == 0 &&
           utf8(*name) == "other");
    EXPECT(pieces->AddSIZEData(640, -1) == 0 && pieces->GetSIZEData(width, height) == 0);
    EXPECT(width == 640 && height == -1);
    pieces->RemoveAll();
    EXPECT(pieces->GetCount() == 0 && pieces->Add(*own, 5, file) == 0 && pieces->GetCount() == 1);
    *empty = *pieces;
    EXPECT(*BinaryDataUniquePtr(*empty) == *pieces);
}

inline void checkValues(const ExprEnv& env) {
    const DataUniquePtr data;
    EXPECT(data->IsEmpty() && data->IsValid() && !data->IsFindRequest());
    data->SetAsNumber(*FixPtUniquePtr(45351));
    EXPECT(data->GetNativeType() == Data::kDTNumber && data->GetAsBoolean() &&
           data->GetAsNumber().AsLong() == 45351);
    data->ConvertData(Data::kDTText);
    EXPECT(data->GetNativeType() == Data::kDTText && utf8(data->GetAsText()) == "45351");
    const DateTimeUniquePtr moment;
    moment->SetNormalizedDate(2, 29, 2024);
    moment->SetNormalizedTime(1, 2, 3);
    data->SetAsDate(*moment);
    EXPECT(data->GetAsDate().GetDay() == 29);
    data->SetAsTime(*moment);
    EXPECT(data->GetAsTime().GetMinute() == 2);
    data->SetAsTimeStamp(*moment);
    EXPECT(data->GetAsTimeStamp() == *moment);
    data->SetDateTime(*moment, Data::kDTDate, Data::kDTText);
    EXPECT(data->GetNativeType() == Data::kDTText && utf8(data->GetAsText()) == "2/29/2024");
    char file[] = "plain";
    const BinaryDataUniquePtr container(*Words("name"), 5, file);
    data->SetBinaryData(*container);
    EXPECT(data->GetBinaryData() == *container && data->GetNativeType() == Data::kDTBinary);
    const TextUniquePtr name;
    const CharacterStyle::FontID font = data->GetFontID(*Words("Arial"), CharacterStyle::kRoman, env);
    CharacterStyle::FontScript script = 9;
    EXPECT(data->GetFontID(*Words("Arial"), env) == font && data->GetFontInfo(font, *name, env));
    EXPECT(data->GetFontInfo(font, *name, script, env) && utf8(*name) == "Arial");
    const DataVectUniquePtr values;
    EXPECT(values->IsEmpty());
    setText(*data, "12");
    values->PushBack(*data);
    data->SetBinaryData(*container);
    values->PushBack(*data);
    data->SetAsTimeStamp(*moment);
    values->PushBack(*data);
    EXPECT(values->Size() == 3 && values->At(1).GetNativeType() == Data::kDTBinary);
    EXPECT(utf8(values->AtAsText(0)) == "12" && values->AtAsNumber(0).AsLong() == 12 &&
           values->AtAsBoolean(0));
    EXPECT(values->AtAsBinaryData(1) == *container && values->AtAsDate(2).GetDay() == 29);
    EXPECT(values->AtAsTime(2).GetHour() == 1 && values->AtAsTimeStamp(2) == *moment);
    const std::unique_ptr<Data> last(values->PopBack());
    EXPECT(last->GetAsTimeStamp() == *moment && values->Size() == 2);
    values->Clear();
    EXPECT(values->IsEmpty());
    data->Clear();
    EXPECT(data->GetNativeType() == Data::kDTInvalid);
}

inline void checkEngine(const ExprEnv& env) {
    const DataUniquePtr data;
    EXPECT(env.Evaluate(*Words("1 + 1"), *data) == 0 && data->GetAsNumber().AsLong() == 2);
    EXPECT(env.Evaluate(*Words("1 +"), *data) == 1203 || env.Evaluate(*Words("1 +"), *data) == 1204);
    EXPECT(env.SessionID() != 0 && env.FileID() != 0);
    const ExprEnvUniquePtr own;
    EXPECT(own->Evaluate(*Words("1"), *data) == 100);
    EXPECT(FMX_SetToCurrentEnv(own.get()) == 0 && own->FileID() == env.FileID());
    const DataVectUniquePtr none;
    const RowVectUniquePtr rows;
    EXPECT(rows->IsEmpty());
    for (const char* change : {"CREATE TABLE pairs ( a INT , b INT )", "INSERT INTO pairs VALUES ( 1 , 2 )",
                               "INSERT INTO pairs VALUES ( 3 , 4 )"})
        EXPECT(env.ExecuteFileSQL(*Words(change), *Words(), *none, *rows) == 0 && rows->IsEmpty());
    const char* const query = "SELECT a , b FROM pairs ORDER BY a";
    EXPECT(env.ExecuteFileSQL(*Words(query), *Words(), *none, *rows) == 0 && rows->Size() == 2);
    EXPECT(utf8(rows->At(1).AtAsText(1)) == "4");
    EXPECT(env.ExecuteFileSQLTextResult(*Words(query), *Words(), *none, *data, ',', ';') == 0);
    EXPECT(utf8(data->GetAsText()) == "1,2;3,4");
    EXPECT(env.ExecuteFileSQL(*Words("DROP TABLE pairs"), *Words(), *none, *rows) == 0);
    EXPECT(env.EvaluateGetFunction(1005, *data) == 0 && utf8(data->GetAsText()) == "Untitled");
    EXPECT(env.EvaluateGetFunction(1, *data) == 1215);
    const struct {
        int form;
        const char *system, *app;
    } paths[] = {{ExprEnv::kConvert_PosixPath, "/a b/c", "file:/a b/c"},
                 {ExprEnv::kConvert_WinPath, "C:\\a b\\c", "file:/C:/a b/c"},
                 {ExprEnv::kConvert_WinPath, "1:\\c", "file:1:/c"},
                 {ExprEnv::kConvert_WinPath, "\\\\server\\c", "file://server/c"},
                 {ExprEnv::kConvert_URLPath, "file:///a%20b/%C3%A9", "file:/a b/é"},
                 {ExprEnv::kConvert_URLPath, "file://server/c", "file://server/c"}};
    const TextUniquePtr path;
    for (const auto& [form, system, app] : paths) {
        EXPECT(env.EvaluateConvertToFileMakerPath(*Words(system), form, *path) == 0 && utf8(*path) == app);
        EXPECT(env.EvaluateConvertFromFileMakerPath(*Words(app), form, *path) == 0 && utf8(*path) == system);
    }
    EXPECT(env.EvaluateConvertToFileMakerPath(*Words("x"), 4, *path) != 0);
    EXPECT(env.EvaluateConvertFromFileMakerPath(*Words("/x"), 1, *path) != 0 &&
           utf8(*path) == "file://server/c");
    EXPECT(FMX_StartScript(Words("Untitled").get(), Words("None").get(), kFMXT_Resume, data.get()) == 104);
}

/// Objects are made and given back on several threads at once; the host's count comes out even. Exceptions of
/// this library's kind pass through threads and containers of it.
inline void checkThreads(const ExprEnv&) {
    constexpr int count = 4;
    std::vector<std::thread> threads;
    threads.reserve(count);
    for (int i = 0; i < count; ++i)
        threads.emplace_back([] {
            for (int turn = 0; turn < 10'000; ++turn)
                Words("x")->AppendText(*Words("y"));
        });
    for (std::thread& thread : threads)
        thread.join();
    const auto messageOf = [](const auto& work) -> std::string {
        try {
            work();
        } catch (const std::out_of_range&) {
            return "range";
        } catch (const std::exception& problem) {
            return problem.what();
        }
        return "nothing";
    };
    EXPECT(messageOf([] { std::ignore = std::vector<int>().at(1); }) == "range");
    EXPECT(messageOf([] { throw std::runtime_error(std::string()); }).empty());
    EXPECT(messageOf([] { (void)std::stoi("no number"); }).starts_with("stoi"));
    EXPECT(messageOf([] {
               std::async(std::launch::async, [] { throw std::logic_error("from a thread"); }).get();
           }) == "from a thread");
    EXPECT(messageOf([] { std::rethrow_exception(std::make_exception_ptr(std::domain_error("kept"))); }) ==
           "kept");
}

} // namespace effects
