#include "CommandOutput.h"
#include "FunctionCalls.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

/// SQL through the loaded plug-in, compared with the output of SQLite's own shell.

namespace {

using host::Data;

constexpr std::u16string_view executeSql = u"Kestrel_ExecuteSQL";

class ExecuteSQL : public FunctionCalls {
protected:
    void SetUp() override {
        FunctionCalls::SetUp();
        host::Solution solution;
        solution.schema =
            "CREATE TABLE t (txt TEXT, num NUMERIC, d DATE, h TIME, m TIMESTAMP, c BLOB);"
            "INSERT INTO t VALUES ('a', 0.5, '2024-02-29', '-1:00:05', '2024-02-29 14:05:09', x'00FF'),"
            "('b' || char(9) || '|\"', -12, NULL, NULL, NULL, NULL)";
        session.close(file);
        file = session.open(std::move(solution));
    }

    Answer run(const char* statement) { return call(executeSql, {Data(host::fromUtf8(statement))}); }
};

TEST_F(ExecuteSQL, givesTextOrAnErrorNumber) {
    EXPECT_EQ(run("SELECT num FROM t FETCH FIRST 1 ROWS ONLY").value.nativeType(), host::DataType::text);
    const Answer refused = run("SELECT nothing");
    EXPECT_EQ(refused.error, 0);
    EXPECT_EQ(refused.value.nativeType(), host::DataType::number);

    textOf("Let ( $$Kestrel_LastError = \"as it was\" ; \"\" )");
    const Answer none = call(executeSql, {});
    EXPECT_EQ(none.error, 0);
    EXPECT_TRUE(none.value.isIdenticalTo(Data()));
    EXPECT_EQ(textOf("$$Kestrel_LastError"), "as it was");
}

TEST_F(ExecuteSQL, usesTheFirstUnitOfASeparator) {
    const struct {
        std::u16string separator, result;
    } cases[] = {
        {u"\U0001F600", u"1\xD83D\x32"}, // the first unit of a surrogate pair
        {u"\xDE00\xD83D", u"1\xDE00\x32"},
        {u"\u00E9\u0301", u"1\u00E92"},
        {std::u16string(u"\0|", 2), std::u16string(u"1\0002", 3)},
    };
    for (const auto& [separator, result] : cases) {
        const Data query(u"SELECT 1, 2 FROM t WHERE num = .5");
        EXPECT_EQ(call(executeSql, {query, Data(separator)}).value.asText().units(), result);
        const Data rows(u"SELECT 1 FROM t UNION SELECT 2 FROM t ORDER BY 1");
        EXPECT_EQ(call(executeSql, {rows, Data(u"x"), Data(separator)}).value.asText().units(), result);
    }
}

TEST_F(ExecuteSQL, takesStyledTextAndGivesPlainText) {
    const char* const styled =
        "Let ( bold = TextStyleAdd ( \"|\" ; Bold ) ; Kestrel_ExecuteSQL ( "
        "TextStyleAdd ( \"SELECT txt, num FROM t FETCH FIRST 1 ROW ONLY\" ; Italic ) ; bold ; bold ) )";
    EXPECT_EQ(textOf(styled), "a|.5");
    EXPECT_TRUE(evaluate(styled).value->asText().isPlain());
}

TEST_F(ExecuteSQL, readsTheCallingFile) {
    host::Solution other = solutionNamed(u"Other");
    other.schema = "CREATE TABLE mine (x); INSERT INTO mine VALUES ('theirs')";
    session.open(std::move(other));
    EXPECT_EQ(run("SELECT x FROM mine").value.asText().utf8(), "8309");
    session.close(file);
    EXPECT_EQ(run("SELECT x FROM mine").value.asText().utf8(), "theirs");
}

/// After a failing host call the result and the record are 2400; the result is never a part of the answer.
TEST_F(ExecuteSQL, givesNoPartialResultWhenTheHostFails) {
    const std::vector<Data> query{Data(u"SELECT txt, num, c, d FROM t"), Data(u"; "), Data(u"/ ")};
    const auto ask = [&](host::FaultPoint& point) {
        textOf("Let ( [ $$Kestrel_LastError = \"\" ; $$Kestrel_LastErrorMessage = \"\" ] ; \"\" )");
        Answer answer;
        point.during([&] { answer = call(executeSql, query); });
        ASSERT_EQ(answer.error, 0);
        ASSERT_EQ(answer.value.asText().utf8(), point.fired ? "2400" : "a;.5;?;2/29/2024/b\t|\";-12;;");
        ASSERT_EQ(lastError(), point.fired ? "2400 std::bad_alloc" : "0 No Error Message") << point.nth;
    };
    host::forEachFault(ask, std::array{host::FaultMode{host::Faults::Kind::badAlloc, false}});
}

/// A hundred thousand rows with difficult content: both separators, quotes, UTF-8 of every length, NULL and
/// empty text. No fraction is below 1, because only the shell writes a zero before the point.
constexpr const char* manyRows = R"(
CREATE TABLE many (id INTEGER PRIMARY KEY, name TEXT, price NUMERIC, note TEXT);
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000)
INSERT INTO many SELECT i,
    CASE i % 7 WHEN 0 THEN 'Ada Brandström' WHEN 1 THEN '中村 さくら' WHEN 2 THEN '😀𝄞'
               WHEN 3 THEN 'a' || char(9) || 'b' || char(13) WHEN 4 THEN '"q", ''q''' WHEN 5 THEN 'x|y;z'
               ELSE hex(i) END || i,
    (i - 50000) * 1000 + i % 4 * 0.25,
    CASE i % 3 WHEN 0 THEN NULL WHEN 1 THEN '' ELSE 'é' END
FROM n;
)";

TEST_F(ExecuteSQL, givesTheSameBytesAsTheShell) {
    if (std::system("command -v sqlite3 >/dev/null") != 0) // NOLINT(cert-env33-c): a fixed command
        GTEST_SKIP() << "the package sqlite3 is not installed";
    session.close(file);
    host::Solution solution;
    solution.schema = manyRows;
    session.open(std::move(solution));
    const std::string script = testing::TempDir() + "kestrel-" + std::to_string(::getpid()) + ".sql";
    const struct {
        const char *query, *fields, *records, *shells, *shellsFields, *shellsRecords;
    } cases[] = {
        {"SELECT * FROM many ORDER BY id", "\t", "\r", "SELECT * FROM many ORDER BY id", "\\t", "\\r"},
        {"SELECT note, MAX ( name ), SUM ( id ), COUNT ( * ) FROM many GROUP BY note, INT ( id / 5 ) "
         "ORDER BY "
         "MAX ( id ), note",
         "·", "語",
         "SELECT nullif(note, '') AS n, max(name), sum(id), count(*) FROM many GROUP BY n, id / 5 ORDER "
         "BY "
         "max(id), n",
         "·", "語"},
        {"SELECT a.name, b.name FROM many a JOIN many b ON b.id = a.id * 2 ORDER BY a.id DESC", "|", "\n",
         "SELECT a.name, b.name FROM many a JOIN many b ON b.id = a.id * 2 ORDER BY a.id DESC", "|", "\\n"},
    };
    for (const auto& [query, fields, records, shells, shellsFields, shellsRecords] : cases) {
        const std::string ours = call(executeSql, {Data(host::fromUtf8(query)), Data(host::fromUtf8(fields)),
                                                   Data(host::fromUtf8(records))})
                                     .value.asText()
                                     .utf8();
        EXPECT_GT(ours.size(), 500'000U) << query;
        std::ofstream(script) << manyRows << ".mode list\n.separator \"" << shellsFields << "\" \""
                              << shellsRecords << "\"\n"
                              << shells << ";\n";
        // The shell writes a separator after the last row as well. EXPECT_TRUE avoids a message of megabytes.
        EXPECT_TRUE(ours + records == outputOf("sqlite3 -batch -noheader -init /dev/null :memory: <'" +
                                               script + "' || echo failed"))
            << query;
    }
    std::filesystem::remove(script);
}

} // namespace
