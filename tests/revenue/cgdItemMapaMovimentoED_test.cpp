// The two records of the boarding map: the map's item, keyed by a day among
// its codes, and the apportionment line. Both open Incluir's empty record set
// on tenant 0 and city 0 alone.
#include "vek/revenue/cgdItemMapaMovimentoED.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/revenue/cgdItemRateioMovimentoED.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

const std::string kEmptyItemSet = Lines({"SELECT A.*", "FROM   TbItemMapaMovimentoED A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 0", "       and A.Cd_Cidade = 0", ";"}) +
                                  "\r";

std::string ItemSelect(const std::string& day) {
  return Lines({"SELECT A.*", "FROM   TbItemMapaMovimentoED A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                "       and A.Cd_EmpresaOnibus = 10", "       and A.Dt_Movimento = '" + day + "'",
                "       and A.Cd_Cidade = 4", ";"}) +
         "\r";
}

class cgdItemMapaMovimentoEDTest : public ::testing::Test {
 protected:
  cgdItemMapaMovimentoEDTest() {
    item.Ob_cgpSistema(db.session);
    Key(item.Ob_cgp(), DateSerial(2026, 11, 21));
  }

  static void Key(const std::shared_ptr<cgpItemMapaMovimentoED>& record, Date day) {
    record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    record->Let("Cd_EmpresaOnibus", Variant(10));
    record->Let("Dt_Movimento", Variant(day));
    record->Let("Cd_Cidade", Variant(4));
  }

  testing::BusTerminal db;
  cgdItemMapaMovimentoED item;
};

TEST_F(cgdItemMapaMovimentoEDTest, AnItemIsKeptUnderItsDayInTheSessionsDateFormat) {
  item.Ob_cgp()->Let("Qt_Embarques", Variant(30));
  item.Ob_cgp()->Let("Qt_Desembarques", Variant(5));
  item.Salvar();
  // Not there yet: the update's look-up, then the insert's two-condition set.
  EXPECT_EQ(db.statements, (std::vector<std::string>{ItemSelect("2026-11-21"), kEmptyItemSet}));
  EXPECT_FALSE(item.temCampoSequencial());
  EXPECT_TRUE(item.nomeCamposSequencial().empty());

  // Another day of the same company and city is another item.
  cgdItemMapaMovimentoED sunday;
  sunday.Ob_cgpSistema(db.session);
  Key(sunday.Ob_cgp(), DateSerial(2026, 11, 22));
  sunday.Ob_cgp()->Let("Qt_Embarques", Variant(4));
  sunday.Salvar();

  cgdItemMapaMovimentoED other;
  other.Ob_cgpSistema(db.session);
  Key(other.Ob_cgp(), DateSerial(2026, 11, 21));
  auto loaded = other.Consultar(false);
  EXPECT_EQ(db.statements.back(), ItemSelect("2026-11-21"));
  EXPECT_EQ(loaded->Get("Qt_Embarques"), Variant(30));
  EXPECT_EQ(loaded->Get("Qt_Desembarques"), Variant(5));
  EXPECT_EQ(CDate(loaded->Get("Dt_Movimento")), DateSerial(2026, 11, 21));

  loaded->Let("Qt_Embarques", Variant(31));
  other.Salvar();
  EXPECT_EQ(db.statements.back(), ItemSelect("2026-11-21"));
  auto stored = db.Query("SELECT Qt_Embarques FROM TbItemMapaMovimentoED ORDER BY Dt_Movimento");
  EXPECT_EQ(testing::BusTerminal::ColumnOf(*stored, "Qt_Embarques"), (std::vector<std::string>{"31", "4"}));

  other.Excluir();
  EXPECT_EQ(db.statements.back(),
            Lines({"DELETE ", "FROM   TbItemMapaMovimentoED", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                   "       And Cd_EmpresaOnibus = 10", "       And Dt_Movimento = '2026-11-21'",
                   "       And Cd_Cidade = 4"}) +
                "\r");
  stored = db.Query("SELECT Dt_Movimento FROM TbItemMapaMovimentoED");
  ASSERT_EQ(stored->RecordCount(), 1);
  EXPECT_EQ(CDate(stored->Fields().Item(0).Value()), DateSerial(2026, 11, 22));
}

TEST_F(cgdItemMapaMovimentoEDTest, TheDayFollowsTheSessionsFormatAndAMissingKeyPartIsRefusedBeforeAnySql) {
  db.Query("INSERT INTO TbItemMapaMovimentoED (Cd_EmpresaUsuariaSistema, Cd_EmpresaOnibus, Dt_Movimento, Cd_Cidade, "
           "Qt_Embarques) VALUES (1, 10, '2026-11-21 00:00:00', 4, 12)");
  db.session->Let("Ds_FormatoData", Variant("dd/mm/yyyy"));
  EXPECT_EQ(item.Consultar(false)->Get("Qt_Embarques"), Variant(12));
  EXPECT_EQ(db.statements.back(), ItemSelect("21/11/2026"));

  db.statements.clear();
  for (const char* part : {"Cd_EmpresaUsuariaSistema", "Cd_EmpresaOnibus", "Dt_Movimento", "Cd_Cidade"}) {
    cgdItemMapaMovimentoED partial;
    partial.Ob_cgpSistema(db.session);
    Key(partial.Ob_cgp(), DateSerial(2026, 11, 21));
    partial.Ob_cgp()->Let(part, std::string(part) == "Dt_Movimento" ? Variant(Date(0.0)) : Variant(0));
    const VekError no_key = ErrorOf([&] { partial.Consultar(); });
    EXPECT_EQ(no_key.Number(), kErrorNoKey) << part;
    EXPECT_EQ(no_key.Source(), " -> cgdItemMapaMovimentoED.Consultar,  -> cgdItemMapaMovimentoED.Consultar, ");
    EXPECT_EQ(ErrorOf([&] { partial.Excluir(); }).Number(), kErrorNoKey) << part;
  }
  EXPECT_TRUE(db.statements.empty());

  // Missing with false: not found; an update of it, too.
  Key(item.Ob_cgp(), DateSerial(2026, 11, 23));
  EXPECT_EQ(ErrorOf([&] { item.Consultar(false); }).Number(), kErrorRecordNotFound);
  EXPECT_EQ(ErrorOf([&] { item.Alterar(); }).Source(), " -> cgdItemMapaMovimentoED.Alterar,  -> cgdItemMapaMovimentoED.Alterar, ");
}

TEST(cgdItemRateioMovimentoEDTest, AnApportionmentLineIsKeptUnderCompanyAndCity) {
  testing::BusTerminal db;
  cgdItemRateioMovimentoED line;
  line.Ob_cgpSistema(db.session);
  auto record = line.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Cd_EmpresaOnibus", Variant(11));
  record->Let("Cd_Cidade", Variant(3));
  record->Let("Qt_Embarques", Variant(120));
  line.Salvar();
  const std::string select = Lines({"SELECT A.*", "FROM   TbItemRateioMovimentoED A",
                                    "WHERE  A.Cd_EmpresaUsuariaSistema = 1", "       and A.Cd_EmpresaOnibus = 11",
                                    "       and A.Cd_Cidade = 3", ";"}) +
                             "\r";
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{select, Lines({"SELECT A.*", "FROM   TbItemRateioMovimentoED A",
                                                     "WHERE  A.Cd_EmpresaUsuariaSistema = 0",
                                                     "       and A.Cd_Cidade = 0", ";"}) +
                                                  "\r"}));
  EXPECT_FALSE(line.temCampoSequencial());

  record->Let("Qt_Embarques", Variant(0));
  EXPECT_EQ(line.Consultar()->Get("Qt_Embarques"), Variant(120));
  record->Let("Qt_Embarques", Variant(125));
  line.Salvar();
  EXPECT_EQ(db.statements.back(), select);
  EXPECT_EQ(testing::BusTerminal::ColumnOf(*db.Query("SELECT Qt_Embarques FROM TbItemRateioMovimentoED"),
                                           "Qt_Embarques"),
            (std::vector<std::string>{"125"}));

  line.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbItemRateioMovimentoED",
                                         "WHERE  Cd_EmpresaUsuariaSistema = 1", "       And Cd_EmpresaOnibus = 11",
                                         "       And Cd_Cidade = 3"}) +
                                      "\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbItemRateioMovimentoED")->RecordCount(), 0);
  record->Let("Cd_EmpresaOnibus", Variant(0));
  EXPECT_EQ(ErrorOf([&] { line.Excluir(); }).Number(), kErrorNoKey);
}

}  // namespace
}  // namespace vek
