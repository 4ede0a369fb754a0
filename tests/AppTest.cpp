#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/calc/Evaluation.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"
#include "host/values/Encoding.h"

#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace host;

DataRef value(const Data& data) { return std::make_shared<const Data>(data); }

std::string textOf(Session& session, std::u16string_view calculation) {
    return session.evaluate(calculation).value->asText().utf8();
}

/// A temporary folder, removed at the end.
class Folder {
public:
    Folder() {
        std::string name = testing::TempDir() + "solutionXXXXXX";
        path = ::mkdtemp(name.data());
    }
    ~Folder() { std::filesystem::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    void write(const char* name, std::string_view content) const { std::ofstream(path / name) << content; }
    std::filesystem::path path;
};

/// The error of loading and opening a folder with this description and schema; empty when there is none.
std::string complaint(std::string_view description, std::string_view schema = "") {
    const Folder folder;
    folder.write("solution.toml", description);
    folder.write("schema.sql", schema);
    try {
        Session().open(Solution::load(folder.path));
    } catch (const std::runtime_error& problem) {
        return problem.what();
    }
    return {};
}

TEST(Faults, FailOnceOrFromThenOn) {
    Faults faults;
    for (const bool fromThenOn : {false, true}) {
        faults.arm(2, Faults::Kind::badAlloc, fromThenOn);
        EXPECT_EQ(faults.next(), 0);
        EXPECT_EQ(faults.next(), 1);
        EXPECT_EQ(faults.next(), fromThenOn ? 1 : 0);
        EXPECT_TRUE(faults.fired());
        faults.disarm();
        EXPECT_EQ(faults.next(), 0);
    }
}

TEST(Solution, ReadsItsFolder) {
    const Folder folder;
    folder.write("solution.toml", "name = \"Contacts\"\nuser = \"Ada\"\nfonts = [\"Helvetica\", \"Times\"]\n"
                                  "[[script]]\nname = \"Greet\"\ncalculations = ['1', '2']\n");
    folder.write("schema.sql", "CREATE TABLE a (x INT); -- rows\nINSERT INTO a VALUES (7);\n");
    Session session;
    session.open(Solution::load(folder.path));
    const auto file = session.find(u"CONTACTS.fmp12");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->executeSql(u"SELECT x FROM a", u"", {}).rows.at(0).at(0)->asText(), Text(u"7"));
    EXPECT_EQ(file->script(u"greet")->calculations.size(), 2U);
    EXPECT_EQ(file->fontId(u"Times"), 1);
    EXPECT_EQ(textOf(session, u"Get ( FileName ) & Get ( UserName ) & Get ( SystemPlatform )"),
              "ContactsAda3");
    EXPECT_EQ(textOf(session, u"Get ( FilePath )"), "file:" + folder.path.string() + "/Contacts.fmp12");
}

TEST(Solution, ErrorsNameTheLine) {
    const struct {
        const char *description, *words;
        std::string_view schema{};
    } cases[] = {
        {"name = \"A\"\nfnots = []\n", "line 2: unknown key \"fnots\""},
        {"[[script]]\nname = \"A\"\ncalculation = []\n", "line 3: unknown key \"calculation\""},
        {"name = 3\n", "line 1: name must be a text"},
        {"name = \"a\\nb\"\n", "line 1: name has a control character"},
        {"\nscript = [1]\n", "line 2: script must be a table"},
        {"[[script]]\ncalculations = []\n", "a script has no name"},
        {"[[script]]\nname = \"A\"\nsteps = '''\n\nLoop\n'''\n", "solution.toml, line 5: Loop has no end"},
        {"[[script]]\nname = \"A\"\nsteps = 'Loop'\n", "line 3: Loop has no end"},
        {"[[script]]\nname = \"A\"\ncalculations = []\nsteps = ''\n", "line 4: a script has either"},
        {"[[script]]\nname = \"A\"\n[[script]]\nname = \"a\"\n", "line 3: a script of this name"},
        {"\nlocale = \"Atlantis\"\n", "line 2: locale \"Atlantis\" is not known"},
        {"[[function]]\nname = \"A\"\n", "a function has no calculation"},
        {"[[function]]\nname = \"a-b\"\ncalculation = \"\"\n",
         "line 2: a function's name \"a-b\" holds a sign"},
        {"[[function]]\nname = \"F\"\nparameters = [\"n\",\n\"N\"]\ncalculation = \"\"\n",
         "line 4: a parameter of this name"},
        {"[[table]]\nname = \"T\"\nfields = [\n{ name = \"a\", type = \"txt\" } ]\n", "line 4: type must be"},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\" },\n{ name = \"A\" } ]\n",
         "line 4: a field of this name"},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\", serial = \"1\", global = \"1\" } ]\n",
         "line 3: a field has both global and serial"},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\", type = \"date\", global = \"x\" } ]\n",
         "line 3: \"x\" is no Date"},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\", summary = \"total of b\" } ]\n",
         "line 3: the table has no field \"b\""},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\", summary = \"total of \" } ]\n",
         "line 3: summary must be"},
        {"[[table]]\nname = \"T\"\nfields = [\n{ name = \"a\", calculation = \"1 +\" } ]\n",
         "solution.toml, line 4: field T::a: "},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\", value_list = \"V\" } ]\n",
         "line 3: there is no value list \"V\""},
        {"[[table]]\nname = \"T\"\nfields = [ { name = \"a\", type = \"number\", range = [\"1\"] } ]\n",
         "line 3: range must be the least and the most"},
        {"[[relationship]]\nmatch = \"A::a = B::b\"\n", "line 2: there is no occurrence \"A\""},
        {"[[occurrence]]\nname = \"A\"\ntable = \"B\"\n", "line 3: there is no table \"B\""},
        {"[[value_list]]\nname = \"V\"\n", "line 1: a value list has either values or a field"},
        {"[[function]]\nname = \"left\"\ncalculation = \"\"\n", "function left: the name is taken"},
        {"[[function]]\nname = \"F\"\ncalculation = \"\"\n[[function]]\nname = \"f\"\ncalculation = \"\"\n",
         "function f: the name is taken"},
        {"name = \"A\n", "line 1"},
        {"[\u00E9]\n", "solution.toml"},
        {"[[[", "solution.toml"},
        {"[{", "solution.toml"},
        {"", "schema.sql, line 2: no such table: b", "CREATE TABLE a (x);\nINSERT\nINTO b VALUES (1);"},
        {"", "schema.sql, line 2: ", "SELECT 1;\nATTACH 'x' AS y;"},
        {"", "a transaction is begun", "BEGIN;"},
        {"", "line 2: a zero byte", std::string_view("SELECT 1;\n\0SELECT", 17)},
    };
    for (const auto& [description, words, schema] : cases)
        EXPECT_THAT(complaint(description, schema), testing::HasSubstr(words));
    EXPECT_EQ(complaint("", "SELECT 1;\n;-- end\n"), "");
    EXPECT_THROW(Solution::load("/nowhere"), std::runtime_error);
}

std::u16string times(int count, const std::u16string& piece) {
    std::u16string made;
    for (; count > 0; --count)
        made += piece;
    return made;
}

class SqlTest : public testing::Test {
protected:
    Session session;
    std::shared_ptr<File> file;
    void SetUp() override {
        Solution solution;
        solution.schema = "CREATE TABLE t (txt TEXT, num NUMERIC, d DATE, h TIME, m TIMESTAMP, c BLOB)";
        session.open(std::move(solution));
        file = session.front();
    }
    int error(std::u16string_view statement, const DataVect& parameters = {}) {
        return file->executeSql(statement, u"", parameters).error;
    }
};

TEST_F(SqlTest, ValuesAreReadBackUnchanged) {
    Binary container;
    container.add(QuadChar{{'F', 'I', 'L', 'E'}}, std::as_bytes(std::span("bytes\0", 6)));
    const DateTime day = *DateTime::fromDate(2026, 11, 21);
    const DateTime span{0, -DateTime::microsPerDay * 2 - 5};
    const DateTime moment{day.days, DateTime::microsPerDay / 3 + 500'000};
    const DataVect sent{value(Data(Text(std::u16string(u"a\0\xD83D\xDE00", 4)))),
                        value(Data(*Decimal::parse(u"-12.1"))),
                        value(Data(day, DataType::date)),
                        value(Data(span, DataType::time)),
                        value(Data(moment, DataType::timestamp)),
                        value(Data(container))};
    ASSERT_EQ(error(u"INSERT INTO t VALUES (?, ?, ?, ?, ?, ?)", sent), 0);
    const RowVect rows = file->executeSql(u"SELECT * FROM t;", u"Untitled", {}).rows;
    ASSERT_EQ(rows.size(), 1U);
    for (std::size_t i = 0; i < sent.size(); ++i)
        EXPECT_TRUE(rows[0][i]->isIdenticalTo(*sent[i])) << i << " " << rows[0][i]->asText().utf8();
}

TEST(Sql, UnreadableValuesStayText) {
    Solution solution;
    solution.schema = "CREATE TABLE t (num NUMERIC, d DATE, h TIME, m TIMESTAMP);"
                      "INSERT INTO t VALUES ('x', '2026-02-30', '1:99', '2026-01-01 25:00')";
    Session session;
    session.open(std::move(solution));
    const RowVect rows = session.front()->executeSql(u"SELECT num, d, h, m FROM t", u"", {}).rows;
    for (const DataRef& field : rows.at(0))
        EXPECT_EQ(field->nativeType(), DataType::text) << field->asText().utf8();
}

TEST_F(SqlTest, RefusesWhatItDoesNotTranslate) {
    for (const char16_t* good : {u"SELECT txt FROM t ;", u"SELECT 9e999 FROM t", u"TRUNCATE TABLE \"T\""})
        EXPECT_EQ(error(good), 0) << toUtf8(good);
    const std::u16string_view wrong[] = {u"SELEC 1",
                                         u"SELECT (",
                                         u"SELECT 'a",
                                         u"",
                                         u" ; ",
                                         u"SELECT txt FROM t; SELECT txt FROM t",
                                         {u"SELECT txt FROM t\0 x", 19},
                                         u"ATTACH 'a' AS b",
                                         u"PRAGMA user_version",
                                         u"BEGIN",
                                         u"VACUUM INTO '/tmp/kestrel-vacuum'",
                                         u"SELECT load_extension ( 'x' ) FROM t",
                                         u"SELECT kestrel_field ( 0, 0, 1, 1 ) FROM t",
                                         u"SELECT txt FROM t LIMIT 1",
                                         u"VALUES ( 1 )"};
    for (const std::u16string_view statement : wrong)
        EXPECT_EQ(error(statement), 8310) << toUtf8(statement);
    std::u16string crowd = u"SELECT COUNT ( * ) FROM t t0";
    for (char16_t letter = u'a'; letter <= u'z'; ++letter)
        for (const char16_t digit : {u'1', u'2'})
            crowd += std::u16string(u", t ") + letter + digit;
    const std::u16string chain = times(300, u"num + ") + u"num",
                         nested = times(300, u"(") + u"1" + times(300, u")");
    const std::u16string refused[] = {u"SELECT missing FROM t",
                                      u"SELECT txt FROM nowhere",
                                      u"SELECT txt FROM pragma_database_list",
                                      u"SELECT name FROM sqlite_schema",
                                      u"SELECT ? FROM t",
                                      u"SELECT SPACE ( 999999999 ) FROM FileMaker_Tables",
                                      u"CREATE TABLE t ( a INT )",
                                      u"CREATE TABLE sqlite_a ( a INT )",
                                      u"CREATE TABLE u ( kestrel_id INT )",
                                      u"ALTER TABLE t DROP COLUMN kestrel_id",
                                      crowd,
                                      u"SELECT " + chain + u" FROM t",
                                      u"SELECT " + nested + u" FROM t",
                                      std::u16string(1'100'000, u' ')};
    for (const std::u16string& statement : refused)
        EXPECT_EQ(error(statement), 8309) << toUtf8(statement.substr(0, 80));
    EXPECT_EQ(error(u"SELECT txt FROM t"), 0);
}

/// Definitions change what calculations and later statements see, all at once or not at all.
TEST_F(SqlTest, DefinesTables) {
    const auto rows = [&](std::u16string_view statement) {
        std::string text;
        const calc::SqlAnswer answer = file->executeSql(statement, u"", {});
        for (const DataVect& row : answer.rows)
            for (const DataRef& field : row)
                text += field->asText().utf8() + ";";
        return answer.error == 0 ? text : std::to_string(answer.error);
    };
    const struct {
        const char16_t* statement;
        const char* rows;
    } steps[] = {
        {u"CREATE TABLE Tags ( ID INT PRIMARY KEY , Tag VARCHAR (20) NOT NULL , gRate DECIMAL GLOBAL )", ""},
        {u"INSERT INTO Tags VALUES ( 4 , 'red' )", ""},
        {u"INSERT INTO Tags VALUES ( 4 , 'blue' )", "8309"},
        {u"INSERT INTO Tags ( ID ) VALUES ( 5 )", "8309"},
        {u"ALTER TABLE Tags ADD COLUMN Marks TIMESTAMP[3]", ""},
        {u"UPDATE Tags SET Marks[2] = TIMESTAMP '2024-03-17 14:05:00' WHERE ID = 4", ""},
        {u"ALTER TABLE Tags ADD Since DATE DEFAULT DATE '2024-03-17'", ""},
        {u"INSERT INTO Tags ( ID , Tag ) SELECT ID + 1 , Tag || '!' FROM Tags", "8309"},
        {u"INSERT INTO Tags ( ID , Tag ) VALUES ( 5 , 'green' )", ""},
        {u"SELECT ROWID , ROWMODID , ID , Tag , Marks[2] , Since FROM Tags ORDER BY ID",
         "1;1;4;red;3/17/2024 2:05 PM;;2;0;5;green;;3/17/2024;"},
        {u"SELECT FieldName , FieldType , FieldReps FROM FileMaker_Fields WHERE TableName = 'Tags'",
         "ID;decimal;1;Tag;varchar;1;gRate;global decimal;1;Marks;timestamp;3;Since;date;1;"},
        {u"CREATE INDEX ON Tags.Tag", ""},
        {u"ALTER TABLE Tags ALTER Since DROP DEFAULT", ""},
        {u"ALTER TABLE Tags DROP Tag", ""},
        {u"ALTER TABLE Tags DROP COLUMN ID", ""},
        {u"DELETE FROM Tags WHERE Since IS NULL", ""},
        {u"INSERT INTO Tags ( Marks[3] ) VALUES ( NULL )", ""},
        {u"SELECT ROWID , Since FROM Tags", "2;3/17/2024;3;;"},
        {u"DROP TABLE Tags", ""},
        {u"SELECT COUNT ( * ) FROM Tags", "8309"},
        {u"SELECT BaseTableName FROM FileMaker_BaseTables", "t;"},
    };
    for (const auto& [statement, expected] : steps)
        EXPECT_EQ(rows(statement), expected) << toUtf8(statement);
}

TEST_F(SqlTest, QueriesAnotherOpenFileByName) {
    EXPECT_EQ(file->executeSql(u"SELECT x FROM u", u"Other", {}).error, 100);
    Solution other;
    other.name = u"Other";
    other.schema = "CREATE TABLE u (x INT); INSERT INTO u VALUES (1)";
    session.open(std::move(other));
    EXPECT_EQ(file->executeSql(u"UPDATE u SET x = x + 1", u"OTHER.fmp12", {}).error, 0);
    EXPECT_EQ(file->executeSql(u"SELECT x FROM u", u"Other", {}).rows.at(0).at(0)->asText(), Text(u"2"));
    EXPECT_EQ(error(u"SELECT x FROM u"), 8309);
}

TEST(Session, FilesOpenAndClose) {
    constexpr std::u16string_view identifier = u"Get ( SessionIdentifier )";
    std::string formerIdentifier;
    {
        Session former;
        former.open(Solution{});
        formerIdentifier = textOf(former, identifier);
    }
    Session session;
    EXPECT_EQ(session.evaluate(u"1").error, 100);
    Solution other;
    other.name = u"Other";
    const auto first = session.open(Solution{});
    session.open(other);
    EXPECT_THROW(session.open(other), std::runtime_error);
    const calc::Environment kept = session.environment(session.front());
    EXPECT_EQ(kept.file->design(u"DatabaseNames", {}), u"Untitled\rOther");
    std::uint64_t closed = 0;
    session.onFileClosed = [&](std::uint64_t id) { closed = id; };
    EXPECT_TRUE(session.close(first));
    EXPECT_FALSE(session.close(first));
    EXPECT_EQ(closed, first);
    EXPECT_EQ(session.front()->name(), u"Other");
    EXPECT_NE(textOf(session, identifier), formerIdentifier);

    EXPECT_FALSE(kept.file->isOpen());
    EXPECT_EQ(kept.file->design(u"DatabaseNames", {}), u"");
    EXPECT_EQ(kept.file->executeSql(u"SELECT x FROM u", u"Other", {}).error, 100);
    EXPECT_EQ(kept.file->get(u"installedfmplugins", kept)->asText(), Text());
    EXPECT_EQ(calc::evaluate(u"Count ( A::b ) & Get ( LayoutName )", kept, session.functions()).error, 102);
}

TEST(Session, TheNumberOfFontsIsLimited) {
    Session session;
    session.open(Solution{});
    const auto file = session.front();
    for (int i = 0; i < 65'000; ++i)
        ASSERT_EQ(file->fontId(fromUtf8("Font " + std::to_string(i))), i);
    EXPECT_EQ(file->fontId(u"one more"), invalidFont);
    EXPECT_EQ(file->fontId(u"Font 64999"), 64'999);
    EXPECT_EQ(file->fontName(64'999), u"Font 64999");
    EXPECT_FALSE(file->fontName(65'000));
}

TEST(Session, ScriptsRunInOrderInSeparateScopes) {
    Session session;
    Solution solution;
    solution.scripts = {
        {u"Note",
         {u"Let ( $a = $a & Get ( ScriptParameter ) ; 1 )", u"1 +", u"Let ( $$log = $$log & $a & $b ; 1 )"}}};
    session.open(std::move(solution));
    std::vector<int> errors;
    session.onScriptCall = [&](const ScriptCall& call) { errors.push_back(call.error); };

    ASSERT_EQ(session.evaluate(u"Let ( $b = \"no\" ; 1 )").error, 0);
    EXPECT_EQ(session.startScript(u"Untitled", u"note", value(Data(Text(u"x")))), 0);
    EXPECT_EQ(session.startScript(u"untitled.fmp12", u"Note", value(Data(Text(u"y")))), 0);
    EXPECT_EQ(session.startScript(u"Untitled", u"None", nullptr), 104);
    EXPECT_EQ(session.startScript(u"None", u"Note", nullptr), 100);
    EXPECT_EQ(errors, (std::vector{0, 0, 104, 100}));
    EXPECT_EQ(session.runWaitingScripts(), 2U);
    EXPECT_EQ(textOf(session, u"$$log"), "xy");

    for (std::size_t i = 0; i < Session::kMostWaitingScripts; ++i)
        session.startScript(u"Untitled", u"Note", nullptr);
    EXPECT_EQ(errors.back(), 0);
    EXPECT_EQ(session.startScript(u"Untitled", u"Note", nullptr), calc::error::unavailable);
    EXPECT_EQ(session.runWaitingScripts(), Session::kMostScriptsPerRun);
}

fmx::errcode countArguments(short id, const fmx::ExprEnv&, const fmx::DataVect& arguments,
                            fmx::Data& result) {
    if (id == 99) throw 1;
    const auto size = static_cast<std::int64_t>(bridge::in<DataVect>(&arguments).size());
    bridge::in<Data>(&result).setNumber(Decimal(size));
    return id == 98 ? 14 : 0;
}

class LoadedSample : public testing::Test {
protected:
    Session session;
    std::uint64_t file = session.open(Solution{});
    std::unique_ptr<PlugIn> plugIn =
        std::make_unique<PlugIn>(session, std::filesystem::path(KESTREL_BROKEN_DIR) / "Sound.so");
    void SetUp() override { ASSERT_EQ(plugIn->init(), 62); }
    static RegisteredFunction row(std::int16_t id, const std::u16string& name) {
        return {.creator = QuadChar{{'B', 'R', 'K', 'N'}},
                .id = id,
                .name = name,
                .prototype = name + u"( a )",
                .minimum = 0,
                .maximum = -1,
                .flags = 0,
                .handler = countArguments};
    }
};

TEST_F(LoadedSample, RegistrationsAreChecked) {
    using F = RegisteredFunction;
    const auto with = [](void (*change)(F&)) {
        F function = row(3, u"Sample_Third");
        change(function);
        return Session::current()->registerFunction(function);
    };
    for (const char16_t* name : {u"", u"3rd", u"a b", u"a+b", u"a(", u"and", u"$a", u"a\xD800"})
        EXPECT_EQ(Session::current()->registerFunction(row(3, name)), 1200) << toUtf8(name);
    EXPECT_EQ(with([](F& f) { f.creator.bytes[3] = 0; }), 1200);
    EXPECT_EQ(with([](F& f) { f.creator.bytes[3] = 'X'; }), 1200);
    EXPECT_EQ(with([](F& f) { f.id = -1; }), 1200);
    EXPECT_EQ(with([](F& f) { f.minimum = -1; }), 1200);
    EXPECT_EQ(with([](F& f) { f.minimum = 2, f.maximum = 1; }), 1200);
    EXPECT_EQ(with([](F& f) { f.handler = nullptr; }), 1200);
    EXPECT_EQ(with([](F& f) { f.prototype = u"Sample_ThirdParty"; }), 1200);
    EXPECT_EQ(with([](F& f) { f.id = 1; }), 1210);
    for (const char16_t* taken : {u"SAMPLE_first", u"Upper"})
        EXPECT_EQ(Session::current()->registerFunction(row(3, taken)), 1210);
    EXPECT_EQ(plugIn->refusedRegistrations().size(), 18U);
    EXPECT_EQ(with([](F&) {}), 0);
    EXPECT_EQ(plugIn->functions().size(), 3U);
}

TEST_F(LoadedSample, RegisteredFunctionsWorkUntilWithdrawn) {
    for (const RegisteredFunction& function : {row(3, u"MyCount"), row(98, u"MyRefuse"), row(99, u"MyThrow")})
        ASSERT_EQ(Session::current()->registerFunction(function), 0);
    EXPECT_EQ(textOf(session, u"mycount ( 1 ; 2 ) + Sample_First"), "3");
    const calc::Result refused = session.evaluate(u"MyRefuse & \"!\"");
    EXPECT_EQ(refused.value->asText(), Text(u"?!"));
    EXPECT_EQ(refused.external.code, 14);
    EXPECT_EQ(textOf(session, u"Get ( LastError )"), "14");
    EXPECT_EQ(textOf(session, u"EvaluationError ( MyRefuse ( ) )"), "14");
    EXPECT_EQ(session.evaluate(u"MyThrow").external.code, 1200);
    EXPECT_EQ(plugIn->violations(), std::vector{PlugIn::Violation::threwFromHandler});

    const auto kept = calc::parse(u"Sample_First", session.functions()).expression;
    const calc::Environment scope = session.environment(session.front());
    EXPECT_EQ(textOf(session, u"Get ( InstalledFMPlugins )"), "Sample;;Enabled");
    plugIn.reset();
    EXPECT_EQ(calc::evaluate(*kept, scope).error, 1208);
    EXPECT_EQ(session.evaluate(u"MyCount ( 1 )").error, 1208);
    EXPECT_EQ(session.evaluate(u"MyCount").error, 102);
    EXPECT_TRUE(session.plugIns().empty());
}

TEST_F(LoadedSample, CallBacksCheckTheirArguments) {
    FMX_ExternCallStruct block{};
    block.whichCall = kFMXT_Idle;
    plugIn->send(block);
    const Text name(u"Untitled");
    const Data parameter;
    calc::Environment scope;
    const auto& asText = bridge::out<FMX_Text>(name);
    const auto& asData = bridge::out<FMX_Data>(parameter);
    EXPECT_EQ(block.cStartScript(&asText, &asText, 0, &asData), 104);
    EXPECT_EQ(block.cStartScript(&asText, nullptr, 0, &asData), 1200);
    EXPECT_EQ(block.cCurrentEnv(&bridge::out<FMX_ExprEnv>(scope)), 0);
    EXPECT_EQ(scope.fileId, file);
}

} // namespace
