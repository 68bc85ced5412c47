#include "vek/parking/cgdPrecoEstacionamento.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string BandFor(int32_t minutes) {
  const std::string m = std::to_string(minutes);
  return Lines({"SELECT   TOP 1", "         TbPrecoEstacionamento.*,", "         TbTarifa.Vl_Tarifa,",
                "         TbTarifa.Cd_Tarifa", "From     TbPrecoEstacionamento",
                "         INNER JOIN TbTarifa On TbPrecoEstacionamento.Cd_EmpresaUsuariaSistema = "
                "TbTarifa.Cd_EmpresaUsuariaSistema",
                "                    And TbPrecoEstacionamento.Cd_Tarifa = TbTarifa.Cd_Tarifa",
                "Where    TbPrecoEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                "         And (" + m + " Between TbPrecoEstacionamento.Qt_TempoInicial  And TbPrecoEstacionamento.Qt_TempoFinal",
                "              Or TbPrecoEstacionamento.Qt_TempoFinal <= " + m + ")",
                "ORDER BY TbPrecoEstacionamento.Qt_TempoFinal Desc"}) +
         "\r";
}

// Company 1: band 11, 1 to 15 minutes at tariff 21; band 12, 16 to 60 at
// tariff 22; band 13, 61 to 90, whose tariff 99 is gone. Company 2 has a band of its own.
class cgdPrecoEstacionamentoTest : public ::testing::Test {
 protected:
  cgdPrecoEstacionamentoTest() {
    preco.Ob_cgpSistema(db.session);
    preco.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    testing::AddTariff(db, 21, "ATE 15 MIN", "3.5");
    testing::AddTariff(db, 22, "ATE 1 HORA", "8");
    testing::AddTariff(db, 23, "OUTRA EMPRESA", "1", 2);
    testing::AddBand(db, 11, 1, 15, 21);
    testing::AddBand(db, 12, 16, 60, 22);
    testing::AddBand(db, 13, 61, 90, 99);
    testing::AddBand(db, 1, 0, 1000, 23, 2);
  }

  // The band's number and tariff for a stay, or -1 when none applies.
  std::pair<int32_t, int32_t> BandOf(int32_t minutes) {
    auto rows = preco.rsObterTarifaAplicavelAoTempo(minutes);
    if (rows->Eof()) return {-1, -1};
    return {CLng(rows->Fields().Item("Cd_PrecoEstacionamento").Value()), CLng(rows->Fields().Item("Cd_Tarifa").Value())};
  }

  testing::TerminalDatabase db;
  cgdPrecoEstacionamento preco;
};

TEST_F(cgdPrecoEstacionamentoTest, AStayFindsTheBandHoldingItTheLastBandWhenLongerAndNoneWhenShorter) {
  EXPECT_EQ(BandOf(15), (std::pair<int32_t, int32_t>{11, 21}));
  EXPECT_EQ(db.statements.back(), BandFor(15));
  EXPECT_EQ(BandOf(1), (std::pair<int32_t, int32_t>{11, 21}));
  EXPECT_EQ(BandOf(16), (std::pair<int32_t, int32_t>{12, 22}));
  EXPECT_EQ(BandOf(60), (std::pair<int32_t, int32_t>{12, 22}));
  // The band 61 to 90 has no tariff: it is never chosen, and longer stays
  // get the last band that has one.
  EXPECT_EQ(BandOf(61), (std::pair<int32_t, int32_t>{12, 22}));
  EXPECT_EQ(BandOf(500), (std::pair<int32_t, int32_t>{12, 22}));
  // Shorter than the first band: no band, no failure.
  EXPECT_EQ(BandOf(0), (std::pair<int32_t, int32_t>{-1, -1}));
  EXPECT_EQ(BandOf(-5), (std::pair<int32_t, int32_t>{-1, -1}));

  auto rows = preco.rsObterTarifaAplicavelAoTempo(30);
  EXPECT_EQ(CCur(rows->Fields().Item("Vl_Tarifa").Value()), Currency(8.0));
}

TEST_F(cgdPrecoEstacionamentoTest, TheBandListShowsTheCompanysBandsWithATariffShortestFirst) {
  auto rows = preco.rsPrecosEstacionamento();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.*,", "         B.Vl_Tarifa,", "         B.Cd_Tarifa", "FROM     TbPrecoEstacionamento A",
                   "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_Tarifa = b.Cd_Tarifa", "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
                   "ORDER BY A.Qt_TempoFinal"}) +
                "\r");
  std::vector<int32_t> ends;
  for (; !rows->Eof(); rows->MoveNext()) ends.push_back(CLng(rows->Fields().Item("Qt_TempoFinal").Value()));
  EXPECT_EQ(ends, (std::vector<int32_t>{15, 60}));
}

TEST_F(cgdPrecoEstacionamentoTest, ABandIsReadByNumberOrByTheMinutesItEndsAt) {
  preco.Ob_cgp()->Let("Cd_PrecoEstacionamento", Variant(12));
  auto band = preco.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbPrecoEstacionamento A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       And A.Cd_PrecoEstacionamento = 12", ";"}) +
                                      "\r");
  EXPECT_EQ(CLng(band->Get("Qt_TempoInicial")), 16);

  // Band number 0: the band with the smallest end not below the minutes.
  band->RestaurarDefault();
  band->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  band->Let("Qt_TempoFinal", Variant(10));
  preco.Consultar();
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.*", "FROM     TbPrecoEstacionamento A",
                                         "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
                                         "         And A.Qt_TempoFinal >= 10", "ORDER BY A.Qt_TempoFinal"}) +
                                      "\r");
  EXPECT_EQ(CLng(band->Get("Cd_PrecoEstacionamento")), 11);

  band->RestaurarDefault();
  EXPECT_EQ(ErrorOf([&] { preco.Consultar(); }).Number(), kErrorNoKey);
}

TEST_F(cgdPrecoEstacionamentoTest, ANewBandIsNumberedWithinItsCompanyAndUpdatedByItsKey) {
  auto band = preco.Ob_cgp();
  band->Let("Qt_TempoInicial", Variant(91));
  band->Let("Qt_TempoFinal", Variant(120));
  band->Let("Cd_Tarifa", Variant(22));
  db.statements.clear();
  preco.Salvar();
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbPrecoEstacionamento A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 0",
                                         "       And A.Cd_PrecoEstacionamento = 0", ";"}) +
                                      "\r");
  const int32_t number = CLng(band->Get("Cd_PrecoEstacionamento"));
  EXPECT_GT(number, 0);
  EXPECT_EQ(BandOf(100), (std::pair<int32_t, int32_t>{number, 22}));

  band->Let("Qt_TempoFinal", Variant(99));
  preco.Salvar();
  EXPECT_EQ(testing::CountOf(db, "TbPrecoEstacionamento WHERE Qt_TempoFinal = 99"), 1);

  preco.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbPrecoEstacionamento", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "       And Cd_PrecoEstacionamento = " + std::to_string(number)}) +
                                      "\r");
  EXPECT_EQ(testing::CountOf(db, "TbPrecoEstacionamento"), 4);
}

TEST_F(cgdPrecoEstacionamentoTest, TheBandLookUpFailsInTheNameOfTheBandList) {
  cgdPrecoEstacionamento without_session;
  const VekError error = ErrorOf([&] { without_session.rsObterTarifaAplicavelAoTempo(10); });
  EXPECT_NE(error.Number(), 0);
  EXPECT_NE(error.Source().find("cgdPrecoEstacionamento.rsPrecosEstacionamento"), std::string::npos) << error.Source();
  EXPECT_EQ(error.Source().find("rsObterTarifaAplicavelAoTempo"), std::string::npos);
}

}  // namespace
}  // namespace vek
