// The operating company's reports of what a till took.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "revenue/TillData.h"
#include "vek/platform/Format.h"
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

namespace vek {
namespace {

using testing::Lines;
using testing::RowsOf;

class TillReportsTest : public ::testing::Test {
 protected:
  TillReportsTest() {
    empresa.Ob_cgpSistema(db.session);
    empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  }

  testing::LocaleGuard dots{testing::kDotLocale};
  testing::TerminalDatabase db;
  cgdEmpresaUsuariaSistema empresa;
};

// The ticket's vehicle, where the plate is known.
const char* const kVehicleJoins[] = {
    "FROM     TbTicketEstacionamento",
    "         Left Join TbVeiculo On TbTicketEstacionamento.Cd_Placa = TbVeiculo.cd_placa",
    "         Left Join TbCor On TbVeiculo.Cd_Cor = TbCor.Cd_Cor",
    "         Left Join TbMarcaModelo On TbVeiculo.Cd_MarcaModelo = TbMarcaModelo.Cd_MarcaModelo"};

std::string JoinedVehicle() {
  return Lines({kVehicleJoins[0], kVehicleJoins[1], kVehicleJoins[2], kVehicleJoins[3]});
}

TEST_F(TillReportsTest, TheTillsExitsComeByExitTimeWithTheirVehicleAndNoOtherCompanysTicket) {
  testing::FillTill(db);
  auto rows = empresa.rsSaidasCaixa(7);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   TbTicketEstacionamento.*,", "         TbMarcaModelo.Ds_MarcaModelo,", "         TbCor.Nm_Cor"}) +
                "\r" + JoinedVehicle() + "\r" +
                Lines({"WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                       "         And TbTicketEstacionamento.No_Situacao = 2",
                       "         And TbTicketEstacionamento.Cd_Caixa = 7", "ORDER BY TbTicketEstacionamento.Dt_Saida"}) +
                "\r");
  // Ticket 9 of company 2 left through its own till 7 with the same plate.
  EXPECT_EQ(RowsOf(*rows, {"Cd_TicketEstacionamento", "Cd_Placa", "Ds_MarcaModelo", "Nm_Cor", "Cd_EmpresaUsuariaSistema"}),
            (std::vector<std::string>{"3|XYZ9K88|NULL|NULL|1", "2|NULL|NULL|NULL|1", "1|ABC1D23|VW Gol|PRATA|1"}));
  EXPECT_EQ(empresa.rsSaidasCaixa(8)->RecordCount(), 1);
  EXPECT_EQ(empresa.rsSaidasCaixa(99)->RecordCount(), 0);
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  auto other = empresa.rsSaidasCaixa(7);
  EXPECT_EQ(RowsOf(*other, {"Cd_TicketEstacionamento"}), std::vector<std::string>{"9"});
}

TEST_F(TillReportsTest, ThePeriodRunsFromMidnightOfTheFirstDayTo235959OfTheLast) {
  testing::AddTicket(db, 1, "AAA1A11", 2, "2026-11-18 20:00:00", "'2026-11-18 23:59:59'");
  testing::AddTicket(db, 2, "BBB2B22", 2, "2026-11-19 00:00:00", "'2026-11-19 00:00:00'");
  testing::AddTicket(db, 3, "", 2, "2026-11-20 12:00:00", "'2026-11-20 23:59:59'");
  testing::AddTicket(db, 4, "DDD4D44", 2, "2026-11-20 23:00:00", "'2026-11-21 00:00:00'");
  testing::AddTicket(db, 5, "EEE5E55", 1, "2026-11-20 10:00:00", "'2026-11-20 11:00:00'");  // not closed
  testing::AddTicket(db, 6, "FFF6F66", 2, "2026-11-20 10:00:00", "'2026-11-20 11:00:00'", "NULL", 2);
  // The times of the day the dates carry do not move the period.
  auto rows = empresa.rsSaidasPeriodo(DateSerial(2026, 11, 19) + TimeSerial(15, 0, 0),
                                      DateSerial(2026, 11, 20) + TimeSerial(8, 0, 0));
  std::vector<std::string> expected = {"SELECT   IsNull(TbTicketEstacionamento.Cd_Placa,'') As Cd_Placa,"};
  for (const char* column :
       {"Cd_TicketEstacionamento", "No_Situacao", "Vl_Tarifa", "Qt_TempoPermanenciaMinutos", "Dt_Saida", "Dt_Entrada",
        "Cd_EmpresaUsuariaSistema", "Cd_ClienteEstacionamento", "Cd_Caixa", "Ic_Mensalista", "Cd_ClienteConvenio",
        "Qt_MinutosDisponivelParaMensalista", "Qt_MinutosPermanenciaoOutrosTickets", "Ds_Ticket"}) {
    expected.push_back("         TbTicketEstacionamento." + std::string(column) + ",");
  }
  expected.insert(expected.end(), {"         TbMarcaModelo.Ds_MarcaModelo,", "         TbCor.Nm_Cor"});
  expected.insert(expected.end(), std::begin(kVehicleJoins), std::end(kVehicleJoins));
  expected.insert(expected.end(),
                  {"WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                   "         And TbTicketEstacionamento.No_Situacao = 2",
                   "         And TbTicketEstacionamento.Dt_Saida Between '2026-11-19 00:00:00' And '2026-11-20 23:59:59'",
                   "ORDER BY TbTicketEstacionamento.Dt_Saida"});
  std::string text;
  for (const std::string& line : expected) text += line + "\r";
  EXPECT_EQ(db.statements.back(), text);
  EXPECT_EQ(RowsOf(*rows, {"Cd_TicketEstacionamento", "Cd_Placa"}), (std::vector<std::string>{"2|BBB2B22", "3|"}));
  EXPECT_EQ(rows->Fields().Count(), 17);

  // One day: both ends on it.
  auto one_day = empresa.rsSaidasPeriodo(DateSerial(2026, 11, 18), DateSerial(2026, 11, 18));
  EXPECT_EQ(RowsOf(*one_day, {"Cd_TicketEstacionamento"}), std::vector<std::string>{"1"});
}

TEST_F(TillReportsTest, PerTariffTheTillsParkingAndRestroomUnitsInOneList) {
  testing::FillTill(db);
  auto rows = empresa.rsSaidasCaixaAgrupadoPorTarifa(7);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   'ESTACIONAMENTO' AS Ds_Tipo,", "         A.Cd_Tarifa,", "         B.Ds_Tarifa,",
                   "         Sum(A.Qt_Unidade) As Qt_Unidade,", "         A.Vl_Tarifa",
                   "FROM     TbTicketEstacionamento_TbTarifa A",
                   "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_Tarifa = b.Cd_Tarifa",
                   "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = C.cd_empresausuariasistema",
                   "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento",
                   "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And C.Cd_Caixa = 7", "GROUP BY A.Cd_Tarifa,",
                   "         B.Ds_Tarifa,", "         A.Vl_Tarifa", "UNION", "SELECT   'SANITARIO' AS Ds_Tipo,",
                   "         A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         Sum(A.Qt_Unidade) As Qt_Unidade,",
                   "         A.Vl_Tarifa", "FROM     TbTicketSanitario A",
                   "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                    And A.Cd_Tarifa = B.Cd_Tarifa", "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
                   "         And A.Cd_Caixa = 7", "GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa",
                   "ORDER BY A.Cd_Tarifa;"}) +
                "\r");
  EXPECT_EQ(RowsOf(*rows, {"Ds_Tipo", "Cd_Tarifa", "Ds_Tarifa", "Qt_Unidade", "Vl_Tarifa"}),
            (std::vector<std::string>{"ESTACIONAMENTO|10|ESTACIONAMENTO 1 HORA|3|4.35",
                                      "ESTACIONAMENTO|11|ESTACIONAMENTO FRACAO|3|0.145",
                                      "SANITARIO|40|SANITARIO|4|1.5"}));

  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  auto other = empresa.rsSaidasCaixaAgrupadoPorTarifa(7);
  EXPECT_EQ(RowsOf(*other, {"Ds_Tipo", "Cd_Tarifa", "Qt_Unidade"}),
            (std::vector<std::string>{"ESTACIONAMENTO|20|1", "SANITARIO|41|1"}));
}

TEST_F(TillReportsTest, PaymentsTotallingAndRestroomSalesOfTheTillOnly) {
  testing::FillTill(db);
  auto payments = empresa.rsRecebimentoDeMensalistas(7);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT TbApuracaoReceita.*,", "       TbPessoa.nm_pessoa", "From   TbApuracaoReceita",
                   "       INNER JOIN TbPessoa On tbapuracaoreceita.cd_pessoa = TbPessoa.cd_pessoa",
                   "WHERE  TbApuracaoReceita.Cd_EmpresaUsuariaSistema = 1", "       And TbApuracaoReceita.Cd_Caixa = 7",
                   "       And Ic_TotalizacaoDeCaixa = 0"}) +
                "\r");
  EXPECT_EQ(RowsOf(*payments, {"No_ApuracaoReceita", "nm_pessoa", "Vl_ApuracaoReceita", "Cd_Caixa"}),
            std::vector<std::string>{"1|MARIA DA CONCEIÇÃO|150|7"});

  auto totalling = empresa.rsApuracaoReceitaCaixa(7);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT TbApuracaoReceita.*,", "       TbPessoa.nm_pessoa", "From   TbApuracaoReceita",
                   "       INNER JOIN TbPessoa On tbapuracaoreceita.cd_pessoa = TbPessoa.cd_pessoa",
                   "WHERE  TbApuracaoReceita.Cd_EmpresaUsuariaSistema = 1", "       And TbApuracaoReceita.Cd_Caixa = 7",
                   "       And Ic_TotalizacaoDeCaixa = 1"}) +
                "\r");
  EXPECT_EQ(RowsOf(*totalling, {"No_ApuracaoReceita", "nm_pessoa", "Vl_ApuracaoReceita"}),
            std::vector<std::string>{"2|TERMINAL RODOVIARIO|169.5"});

  auto sales = empresa.rsRecebimentoSanitario(7);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT A.*,", "       B.Ds_Tarifa", "FROM   TbTicketSanitario A",
                   "       INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                   "                            And A.Cd_Tarifa = B.Cd_Tarifa", "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
                   "         And A.Cd_Caixa = 7"}) +
                "\r");
  std::vector<std::string> sold = RowsOf(*sales, {"Cd_TicketSanitario", "Ds_Tarifa", "Qt_Unidade", "Vl_Tarifa"});
  std::sort(sold.begin(), sold.end());
  EXPECT_EQ(sold, (std::vector<std::string>{"1|SANITARIO|1|1.5", "2|SANITARIO|3|1.5"}));
}

TEST_F(TillReportsTest, ATillWithNoTakingsGivesEmptyReportsThatStillNameTheirColumns) {
  testing::FillTill(db);
  for (auto rows : {empresa.rsSaidasCaixa(42), empresa.rsSaidasCaixaAgrupadoPorTarifa(42),
                    empresa.rsRecebimentoDeMensalistas(42), empresa.rsApuracaoReceitaCaixa(42),
                    empresa.rsRecebimentoSanitario(42),
                    empresa.rsSaidasPeriodo(DateSerial(2026, 11, 22), DateSerial(2026, 11, 30))}) {
    EXPECT_TRUE(rows->Eof());
    EXPECT_EQ(rows->RecordCount(), 0);
    EXPECT_GT(rows->Fields().Count(), 2);
  }
  // Returned detached: the reports stay readable after the connection goes.
  auto kept = empresa.rsSaidasCaixa(7);
  db.connection->Close();
  EXPECT_EQ(kept->RecordCount(), 3);
  const VekError closed = testing::ErrorOf([&] { empresa.rsSaidasCaixa(7); });
  EXPECT_NE(closed.Number(), 0);
  EXPECT_NE(closed.Source().find("cgdEmpresaUsuariaSistema.rsSaidasCaixa"), std::string::npos) << closed.Source();
}

}  // namespace
}  // namespace vek
