#include "vek/db/StatementShape.h"

#include <gtest/gtest.h>

#include "support/TestSupport.h"
#include "vek/db/dialect/SqliteTranslator.h"

namespace vek {
namespace {

using testing::OpenMemoryDatabase;

std::string Column(const std::shared_ptr<Recordset>& rows, int32_t index = 0) {
  std::string values;
  for (; !rows->Eof(); rows->MoveNext()) values += CStr(rows->Fields().Item(index).Value()) + ";";
  return values;
}

class StatementShapeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    connection_ = OpenMemoryDatabase();
    connection_->Execute("CREATE TABLE TbBairro (Cd_Bairro INTEGER PRIMARY KEY, Nm_Bairro VARCHAR(50), Dt_Cadastro DATETIME)");
    connection_->Execute("INSERT INTO TbBairro VALUES (1, 'Centro', '2026-11-20 23:59:59')");
    connection_->Execute("INSERT INTO TbBairro VALUES (2, 'Vila', '2026-11-21 00:00:00')");
    connection_->Execute("INSERT INTO TbBairro VALUES (3, 'Aeroporto', '2026-11-21 08:00:00')");
  }
  std::shared_ptr<Connection> connection_;
};

TEST_F(StatementShapeTest, TextsThatDifferOnlyInLiteralsShareAShape) {
  const auto a = ShapeOf("SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = 1\r;\r");
  const auto b = ShapeOf("SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = 77\r;\r");
  ASSERT_TRUE(a && b);
  EXPECT_EQ(a->key, b->key);
  EXPECT_EQ(b->literals, std::vector<Variant>{Variant(77)});
  // A date is another kind of literal than other text: its translation differs.
  const auto date = ShapeOf("SELECT * FROM TbBairro WHERE Nm_Bairro = '21/11/2026'");
  const auto text = ShapeOf("SELECT * FROM TbBairro WHERE Nm_Bairro = 'Centro'");
  ASSERT_TRUE(date && text);
  EXPECT_NE(date->key, text->key);
  EXPECT_EQ(date->literals[0], Variant("2026-11-21 00:00:00"));
  EXPECT_EQ(text->literals[0], Variant("Centro"));
  // Nothing to shape: other statements, statements with parameters of their own, no literals.
  EXPECT_FALSE(ShapeOf("CREATE TABLE T (A INT DEFAULT 0)"));
  EXPECT_FALSE(ShapeOf("SELECT * FROM TbBairro WHERE Cd_Bairro = ?"));
  EXPECT_FALSE(ShapeOf("SELECT * FROM TbBairro"));
  EXPECT_FALSE(ShapeOf("SELECT 'unterminated"));
}

TEST_F(StatementShapeTest, LiteralsThatChangeTheMeaningStayInTheShape) {
  // Positions in ORDER BY, TOP and CONVERT's style are not values.
  EXPECT_EQ(Column(connection_->Execute("SELECT Cd_Bairro, Nm_Bairro FROM TbBairro WHERE Cd_Bairro > 0 ORDER BY 2")),
            "3;1;2;");
  EXPECT_EQ(Column(connection_->Execute("SELECT Cd_Bairro, Nm_Bairro FROM TbBairro WHERE Cd_Bairro > 0 ORDER BY 1 DESC")),
            "3;2;1;");
  EXPECT_EQ(connection_->Execute("SELECT TOP 1 * FROM TbBairro WHERE Cd_Bairro > 0")->RecordCount(), 1);
  EXPECT_EQ(connection_->Execute("SELECT TOP 2 * FROM TbBairro WHERE Cd_Bairro > 0")->RecordCount(), 2);
  EXPECT_EQ(connection_->Execute("SELECT TOP (0) * FROM TbBairro WHERE Cd_Bairro > 0")->RecordCount(), 0);
  EXPECT_EQ(Column(connection_->Execute(
                "SELECT CONVERT(Varchar, Dt_Cadastro, 103) FROM TbBairro WHERE Cd_Bairro = 1")),
            "20/11/2026;");
  EXPECT_EQ(Column(connection_->Execute(
                "SELECT CONVERT(Varchar, Dt_Cadastro, 108) FROM TbBairro WHERE Cd_Bairro = 1")),
            "23:59:59;");
  // A LIKE pattern and its escape stay: a [set] or a backslash changes the
  // server's form; for PostgreSQL a decimal stays too, as NUMERIC.
  const auto plain = ShapeOf("SELECT * FROM TbBairro WHERE Nm_Bairro LIKE 'C%' AND Cd_Bairro > 0");
  const auto set = ShapeOf("SELECT * FROM TbBairro WHERE Nm_Bairro LIKE '[AC]%' AND Cd_Bairro > 0");
  ASSERT_TRUE(plain && set);
  EXPECT_NE(plain->key, set->key);
  EXPECT_EQ(set->literals, std::vector<Variant>{Variant(0)});
  EXPECT_EQ(ShapeOf("SELECT * FROM T WHERE A LIKE 'x!%' ESCAPE '!' AND B = 1")->literals.size(), 1u);
  // A substring's positions stay: an index may be made on the expression.
  EXPECT_EQ(ShapeOf("SELECT * FROM T WHERE Substring(A,1,13) = 'x' AND B = 1")->literals,
            (std::vector<Variant>{Variant("x"), Variant(1)}));
  EXPECT_EQ(ShapeOf("SELECT * FROM T WHERE V = 2.5 AND B = 1")->literals.size(), 2u);
  EXPECT_EQ(ShapeOf("SELECT * FROM T WHERE V = 2.5 AND B = 1", Dialect::PostgreSQL)->literals,
            std::vector<Variant>{Variant(1)});
  EXPECT_EQ(Column(connection_->Execute("SELECT Nm_Bairro FROM TbBairro WHERE Nm_Bairro LIKE '[AC]%' ORDER BY 1")),
            "Aeroporto;Centro;");
  EXPECT_EQ(Column(connection_->Execute("SELECT Nm_Bairro FROM TbBairro WHERE Nm_Bairro LIKE 'V%' ORDER BY 1")),
            "Vila;");
}

TEST_F(StatementShapeTest, EveryTextOfAShapeRunsWithItsOwnValues) {
  for (int key = 1; key <= 3; ++key) {
    auto rows = connection_->Execute("SELECT 'Bairro: ' + Nm_Bairro AS Texto, " + std::to_string(key) +
                                     " * 10 AS Dez FROM TbBairro WHERE Cd_Bairro = " + std::to_string(key));
    ASSERT_EQ(rows->RecordCount(), 1);
    EXPECT_EQ(CLng(rows->Fields().Item("Dez").Value()), key * 10);
  }
  EXPECT_EQ(Column(connection_->Execute("SELECT 'Nome: ' + Nm_Bairro FROM TbBairro WHERE Cd_Bairro = 1")),
            "Nome: Centro;");
  // Dates on both sides of midnight, each compared as a moment.
  EXPECT_EQ(Column(connection_->Execute(
                "SELECT Cd_Bairro FROM TbBairro WHERE Dt_Cadastro >= '21/11/2026 00:00:00' ORDER BY Cd_Bairro")),
            "2;3;");
  EXPECT_EQ(Column(connection_->Execute(
                "SELECT Cd_Bairro FROM TbBairro WHERE Dt_Cadastro >= '20/11/2026 23:59:59' ORDER BY Cd_Bairro")),
            "1;2;3;");
  EXPECT_EQ(Column(connection_->Execute("SELECT Nm_Bairro FROM TbBairro WHERE Nm_Bairro = 'It''s'")), "");
  int32_t affected = 0;
  connection_->Execute("UPDATE TbBairro SET Nm_Bairro = 'D''Ávila' WHERE Cd_Bairro = 2", affected);
  EXPECT_EQ(affected, 1);
  EXPECT_EQ(Column(connection_->Execute("SELECT Nm_Bairro FROM TbBairro WHERE Cd_Bairro = 2")), "D'Ávila;");
}

TEST_F(StatementShapeTest, AShapeWhoseTranslationMovesALiteralIsNotParameterized) {
  // A translation that drops or repeats a probe can't carry the literals as parameters.
  const auto dropping = TranslateShape("SELECT * FROM TbBairro WHERE Cd_Bairro = 5", Dialect::SQLite,
                                       [](std::string_view) { return std::string("SELECT 1"); });
  EXPECT_FALSE(dropping);
  const auto repeating = TranslateShape("SELECT * FROM TbBairro WHERE Cd_Bairro = 5", Dialect::SQLite,
                                        [](std::string_view probe) {
    return std::string(probe) + " OR Cd_Bairro = " + std::string(probe.substr(probe.rfind(' ') + 1));
  });
  EXPECT_FALSE(repeating);
  const auto faithful = TranslateShape("SELECT * FROM TbBairro WHERE Cd_Bairro = 5 AND Nm_Bairro = N'x'", Dialect::SQLite,
                                       [](std::string_view probe) { return dialect::TranslateToSqlite(probe); });
  ASSERT_TRUE(faithful);
  EXPECT_EQ(faithful->text, "SELECT * FROM TbBairro WHERE Cd_Bairro = ? AND Nm_Bairro = ?");
  EXPECT_EQ(faithful->order, (std::vector<size_t>{0, 1}));
}

// A template must give exactly what the tokenizer would: the same literals
// for a text of its shape, and nothing for a text whose shape differs.
TEST_F(StatementShapeTest, ATemplateRecognisesOnlyTextsOfItsOwnShape) {
  const std::string head = "SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = ";
  ShapeTemplate shape_template;
  const auto first = ShapeOf(head + "1\r   and A.Nm_Bairro = 'Centro'\r;\r", Dialect::SQLite, &shape_template);
  ASSERT_TRUE(first);
  ASSERT_TRUE(shape_template.Usable());
  EXPECT_EQ(shape_template.kinds, "is");

  for (const std::string& text : {head + "2147483647\r   and A.Nm_Bairro = 'D''Ávila'\r;\r",
                                 head + "007\r   and A.Nm_Bairro = ''\r;\r"}) {
    const auto matched = MatchShape(text, shape_template);
    const auto walked = ShapeOf(text);
    ASSERT_TRUE(matched && walked) << text;
    EXPECT_EQ(*matched, walked->literals) << text;
    EXPECT_EQ(walked->key, first->key) << text;
  }
  // A date where the shape had other text, a number too big for a Long, a
  // decimal, a number carried on by a letter, another fixed text, a quote
  // left open, a parameter of its own: each is the tokenizer's to judge.
  for (const std::string& text : {head + "2\r   and A.Nm_Bairro = '21/11/2026'\r;\r",
                                 head + "2147483648\r   and A.Nm_Bairro = 'Centro'\r;\r",
                                 head + "2.5\r   and A.Nm_Bairro = 'Centro'\r;\r",
                                 head + "2e3\r   and A.Nm_Bairro = 'Centro'\r;\r",
                                 head + "-2\r   and A.Nm_Bairro = 'Centro'\r;\r",
                                 head + "2\r   and A.Nm_Bairro = N'Centro'\r;\r",
                                 head + "2\r   and A.Nm_Bairro = 'Centro\r;\r",
                                 head + "2\r   and A.Nm_Bairro = 'Centro'\r;\r ",
                                 head + "?\r   and A.Nm_Bairro = 'Centro'\r;\r"}) {
    EXPECT_FALSE(MatchShape(text, shape_template)) << text;
  }

  // Shapes with a decimal, a national text or a number that a letter follows
  // get no template; ShapeOf alone reads them.
  for (const char* text : {"SELECT * FROM TbBairro WHERE Cd_Bairro = 2.5",
                           "SELECT * FROM TbBairro WHERE Nm_Bairro = N'Centro'",
                           "SELECT 1x FROM TbBairro WHERE Cd_Bairro = 2"}) {
    ShapeTemplate none;
    ShapeOf(text, Dialect::SQLite, &none);
    EXPECT_FALSE(none.Usable()) << text;
  }
}

// Texts that a remembered template recognises still reach the hook as built
// and run with their own values, alternating between shapes.
TEST_F(StatementShapeTest, TextsRecognisedByATemplateRunWithTheirOwnValues) {
  std::vector<std::string> seen;
  connection_->OnStatement([&](const std::string& text) { seen.push_back(text); });
  std::string names;
  for (int round = 0; round < 2; ++round) {
    for (int key = 1; key <= 3; ++key) {
      const std::string select = "SELECT Nm_Bairro FROM TbBairro WHERE Cd_Bairro = " + std::to_string(key);
      names += Column(connection_->Execute(select));
      int32_t affected = 0;
      connection_->Execute("UPDATE TbBairro SET Nm_Bairro = 'B" + std::to_string(key + round * 10) +
                               "' WHERE Cd_Bairro = " + std::to_string(key),
                           affected);
      EXPECT_EQ(affected, 1);
    }
  }
  EXPECT_EQ(names, "Centro;Vila;Aeroporto;B1;B2;B3;");
  ASSERT_EQ(seen.size(), 12u);
  EXPECT_EQ(seen[10], "SELECT Nm_Bairro FROM TbBairro WHERE Cd_Bairro = 3");
  EXPECT_EQ(seen[11], "UPDATE TbBairro SET Nm_Bairro = 'B13' WHERE Cd_Bairro = 3");
  // A text of a known shape that the template can't read falls back to the tokenizer.
  EXPECT_EQ(Column(connection_->Execute("SELECT Nm_Bairro FROM TbBairro WHERE Cd_Bairro = 02")), "B12;");
  EXPECT_EQ(Column(connection_->Execute("SELECT Nm_Bairro FROM TbBairro WHERE Cd_Bairro = 2147483648")), "");
}

}  // namespace
}  // namespace vek
