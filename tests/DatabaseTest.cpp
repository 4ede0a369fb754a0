#include "host/sql/Database.h"
#include "host/values/Encoding.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <string>
#include <vector>

/// The bounds of a file's tables, with a short time limit.

namespace {

using namespace host;

TEST(Database, StopsAStatementAtItsTimeLimit) {
    Database database("CREATE TABLE t (x); INSERT INTO t VALUES (1)", {}, std::chrono::milliseconds(50));
    const std::string endless =
        "WITH RECURSIVE v (long, half, pattern) AS (SELECT printf('%.*c', 8000000, 'a'), "
        "printf('%.*c', 4000000, 'a') || 'b', printf('%.*c', 990, 'a') || 'b'), "
        "n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) ";
    std::vector<std::string> statements{"SELECT count(*) FROM n", "INSERT INTO t SELECT i FROM n"};
    // These calls would take long within one step of the engine.
    for (const char* const expression :
         {"instr(long, half)", "replace(long, half, '')", "trim(long, half)", "long LIKE '%' || pattern",
          "long LIKE '%' || pattern ESCAPE 'x'", "long GLOB '*' || pattern", "json_patch('{}', '{}')"})
        statements.push_back(std::string("SELECT count(") + expression + " || i) FROM v, n");
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < statements.size(); ++i) {
        EXPECT_EQ(database.query(endless + statements[i], {}).error, 8309) << statements[i];
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(i < 2 ? 3 : 10));
    }
    EXPECT_EQ(database.execute(u"SELECT COUNT ( * ) FROM t", {}).rows.at(0).at(0)->asText(), Text(u"1"))
        << "undone";
}

TEST(Database, ATransactionEndsWithAStatementThatReachesALimit) {
    Database database("CREATE TABLE t (x NUMERIC); INSERT INTO t VALUES (1)", {},
                      std::chrono::milliseconds(50));
    const auto count = [&] {
        return database.execute(u"SELECT COUNT ( * ) FROM t", {}).rows.at(0).at(0)->asText().utf8();
    };
    database.beginTransaction();
    EXPECT_EQ(database.execute(u"INSERT INTO t ( x ) VALUES ( 2 )", {}).error, 0);
    EXPECT_EQ(count(), "2");
    EXPECT_EQ(database
                  .query("WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                         "INSERT INTO t SELECT i FROM n",
                         {})
                  .error,
              8309);
    EXPECT_EQ(database.execute(u"INSERT INTO t ( x ) VALUES ( 3 )", {}).error, 0);
    EXPECT_FALSE(database.endTransaction(true));
    EXPECT_EQ(count(), "1");
    database.beginTransaction();
    EXPECT_EQ(database.execute(u"INSERT INTO t ( x ) VALUES ( 2 )", {}).error, 0);
    EXPECT_TRUE(database.endTransaction(true));
    EXPECT_EQ(count(), "2");
}

/// The replaced functions give the results of the engine's functions for well-formed text.
TEST(Database, BoundedFunctionsAgreeWithTheEngine) {
    sqlite3* engine = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &engine), SQLITE_OK);
    Database database("");
    const char* const values[] = {"''",   "'a'",     "'ab'", "'abcab'", "'  b '",     "'éa中é'",
                                  "'é'",  "'😀a😀'", "'%'",  "'_b%'",   "'*b[a-c]*'", "'x%b'",
                                  "12.5", "25",      "NULL", "x'6162'", "x'c3a9'",    "'B'"};
    const char* const calls[] = {"instr(%s,%s)",
                                 "replace(%s,%s,'é-')",
                                 "replace('abcaéb',%s||'b',%s)",
                                 "trim(%s,%s)",
                                 "ltrim(%s,%s)",
                                 "rtrim(%s,%s)",
                                 "trim(%s)||%s",
                                 "%s LIKE %s",
                                 "%s LIKE %s ESCAPE 'x'",
                                 "%s GLOB %s",
                                 "'a' LIKE ifnull(%s,'') ESCAPE %s"};
    int compared = 0;
    for (const char* const call : calls)
        for (const char* const first : values)
            for (const char* const second : values) {
                char* const expression = sqlite3_mprintf(call, first, second);
                const std::string statement =
                    std::string("SELECT typeof(") + expression + ") || hex(" + expression + ")";
                sqlite3_free(expression);
                sqlite3_stmt* prepared = nullptr;
                sqlite3_prepare_v2(engine, statement.c_str(), -1, &prepared, nullptr);
                const bool works = sqlite3_step(prepared) == SQLITE_ROW;
                const calc::SqlAnswer answer = database.query(statement, {});
                if (works && answer.error == 0) {
                    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
                    EXPECT_EQ(answer.rows.at(0).at(0)->asText().utf8(), text) << statement;
                    ++compared;
                } else if (works) {
                    EXPECT_THAT(statement, testing::HasSubstr("ESCAPE '%'")) << statement;
                } else {
                    EXPECT_NE(answer.error, 0) << statement;
                }
                sqlite3_finalize(prepared);
            }
    EXPECT_GT(compared, 3'000);
    sqlite3_close(engine);
}

} // namespace
