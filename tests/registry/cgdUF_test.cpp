#include "vek/registry/cgdUF.h"

#include <gtest/gtest.h>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

class cgdUFTest : public ::testing::Test {
 protected:
  cgdUFTest() {
    uf.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (5, 'Bahia', 'BA')");
  }

  testing::TerminalDatabase db;
  cgdUF uf;
};

TEST_F(cgdUFTest, AStateIsFoundByItsAbbreviationBeforeItsCode) {
  uf.Ob_cgp()->Let("Sg_UF", Variant("GO"));
  uf.Ob_cgp()->Let("Cd_UF", Variant(5));
  EXPECT_EQ(CStr(uf.Consultar()->Get("Nm_UF")), "Goiás");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbUF A\rWHERE  A.Sg_UF = 'GO'\r;\r");

  uf.Ob_cgp()->RestaurarDefault();
  uf.Ob_cgp()->Let("Cd_UF", Variant(5));
  EXPECT_EQ(CStr(uf.Consultar()->Get("Sg_UF")), "BA");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbUF A\rWHERE  A.Cd_UF = 5\r;\r");

  uf.Ob_cgp()->RestaurarDefault();
  EXPECT_EQ(testing::ErrorOf([&] { uf.Consultar(); }).Number(), kErrorNoKey);
}

TEST_F(cgdUFTest, AStateIsDeletedByItsAbbreviationAndInsertedUnderANewCode) {
  uf.Ob_cgp()->Let("Sg_UF", Variant("BA"));
  uf.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbUF\rWHERE  Sg_UF = 'BA'\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbUF")->RecordCount(), 1);

  uf.Ob_cgp()->RestaurarDefault();
  uf.Ob_cgp()->Let("Sg_UF", Variant("TO"));
  uf.Ob_cgp()->Let("Nm_UF", Variant("Tocantins"));
  uf.Salvar();
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbUF A\rWHERE  A.Cd_UF = 0\r;\r");
  EXPECT_EQ(CLng(uf.Ob_cgp()->Get("Cd_UF")), 10);
}

TEST_F(cgdUFTest, AnAbbreviationWithAnApostropheNeverReachesTheDatabase) {
  uf.Ob_cgp()->Let("Sg_UF", Variant("G'"));
  for (auto member : {+[](cgdUF& u) { u.Consultar(); }, +[](cgdUF& u) { u.Excluir(); },
                      +[](cgdUF& u) { u.Salvar(); }}) {
    const VekError refused = testing::ErrorOf([&] { member(uf); });
    EXPECT_EQ(refused.Number(), kBusinessError);
    EXPECT_NE(refused.Description().find("Sg_UF"), std::string::npos);
  }
  EXPECT_TRUE(db.statements.empty());
}

}  // namespace
}  // namespace vek
