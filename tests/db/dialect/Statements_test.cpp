#include "vek/db/dialect/Statements.h"

#include <gtest/gtest.h>

#include "support/TestSupport.h"

namespace vek::dialect {
namespace {

TEST(Statements, EmptyTextsAndSemicolonsInsideTokensOrAtTheEnd) {
  EXPECT_EQ(CountStatements(""), 0u);
  EXPECT_EQ(CountStatements(" \r\n\t"), 0u);
  EXPECT_EQ(CountStatements(";;"), 0u);
  EXPECT_EQ(CountStatements("-- nothing\r/* at all */"), 0u);
  // The library's trailing semicolon line, and empty statements after it.
  EXPECT_EQ(CountStatements("SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = 1\r;"), 1u);
  EXPECT_EQ(CountStatements("SELECT 1 ; ;; -- done\r/* really */ ;"), 1u);
  EXPECT_FALSE(HoldsMoreThanOneStatement("DELETE FROM cgrApuracaoReceita3;"));
  EXPECT_EQ(CountStatements("SELECT N'a;b', [x;y], \"p;q\" FROM t"), 1u);
  EXPECT_EQ(CountStatements("SELECT 1 -- ; DROP TABLE t\r"), 1u);
  EXPECT_EQ(CountStatements("SELECT 1 /* ; DROP TABLE t */"), 1u);
  EXPECT_EQ(CountStatements("SELECT 'it''s; fine'"), 1u);
  EXPECT_EQ(testing::ErrorOf([] { CountStatements("SELECT 'a; SELECT 2"); }).Number(),
            static_cast<int32_t>(0x80040E14u));
}

TEST(Statements, AnythingAfterTheFirstSemicolonIsASecondStatementButATriggersBody) {
  EXPECT_EQ(CountStatements("SELECT 1; SELECT 2"), 2u);
  EXPECT_EQ(CountStatements("SELECT 1;DROP TABLE t;"), 2u);
  EXPECT_EQ(CountStatements("SELECT 1 -- a\r; x"), 2u);
  EXPECT_TRUE(HoldsMoreThanOneStatement("UPDATE t SET a = 1; DELETE FROM t"));
  EXPECT_TRUE(HoldsMoreThanOneStatement("SELECT 1;;;1"));
  EXPECT_EQ(CountStatements("a;b;c"), 3u);
  const char* trigger =
      "CREATE TRIGGER tr AFTER INSERT ON t BEGIN\r"
      "  UPDATE t SET a = CASE WHEN new.b = 1 THEN 2 ELSE 3 END;\r"
      "  DELETE FROM u;\r"
      "END;";
  EXPECT_EQ(CountStatements(trigger), 1u);
  EXPECT_EQ(CountStatements(std::string(trigger) + " SELECT 1"), 2u);
}

TEST(Statements, ADollarQuotedFunctionBodyIsOneString) {
  const char* function =
      "CREATE OR REPLACE FUNCTION f() RETURNS int LANGUAGE plpgsql AS $body$ BEGIN RETURN 1; END; $body$";
  EXPECT_EQ(CountStatements(function), 1u);
  EXPECT_EQ(CountStatements("SELECT $$a; b$$; DELETE FROM T"), 2u);
  EXPECT_TRUE(HoldsMoreThanOneStatement(std::string(function) + "; DROP TABLE T"));
  // A mark that is never closed hides nothing.
  EXPECT_EQ(CountStatements("SELECT $x$ 1; SELECT 2"), 2u);
}

}  // namespace
}  // namespace vek::dialect
