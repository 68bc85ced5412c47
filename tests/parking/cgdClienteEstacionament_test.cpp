#include "vek/parking/cgdClienteEstacionament.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::CountOf;
using testing::ErrorOf;
using testing::Lines;

// Client 500 (tariff 30) is known to the gates with 2 vacancies in use;
// client 501 is not.
class cgdClienteEstacionamentTest : public ::testing::Test {
 protected:
  cgdClienteEstacionamentTest() {
    cliente.Ob_cgpSistema(db.session);
    testing::AddTariff(db, 30, "MENSAL", "200");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (500, 'Ana Souza'), (501, 'Bruno Lima')");
    db.Query("INSERT INTO TbClienteEstacionamento (Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento, Cd_Tarifa) "
             "VALUES (1, 500, 30), (1, 501, 30)");
    db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE (IDEMPRESACADASTRO, IDCLIENTE, NOME, VAGASEMUSO) "
             "VALUES (1, 500, 'ANA', 2)");
    Key(500);
  }

  void Key(int32_t client) {
    cliente.Ob_cgp()->RestaurarDefault();
    cliente.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    cliente.Ob_cgp()->Let("Cd_ClienteEstacionamento", Variant(client));
  }

  testing::TerminalDatabase db;
  cgdClienteEstacionament cliente;
};

TEST_F(cgdClienteEstacionamentTest, AClientIsReadWithTheVacanciesTheGatesCountInUse) {
  auto record = cliente.Consultar(false);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT TbClienteEstacionamento.*,",
                   "       IsNull(MDESTACIONAMENTO.DBO.CLIENTE.VAGASEMUSO,0) As Qt_VagasEmUso",
                   "FROM   TbClienteEstacionamento",
                   "       LEFT JOIN MDESTACIONAMENTO.DBO.CLIENTE ON MDESTACIONAMENTO.DBO.CLIENTE.IDEMPRESACADASTRO = "
                   "TbClienteEstacionamento.Cd_EmpresaUsuariaSistema",
                   "                 And MDESTACIONAMENTO.DBO.CLIENTE.IDCLIENTE = "
                   "TbClienteEstacionamento.Cd_ClienteEstacionamento",
                   "WHERE  TbClienteEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                   "       And TbClienteEstacionamento.Cd_ClienteEstacionamento = 500"}) +
                "\r");
  EXPECT_EQ(CLng(record->Get("Qt_VagasEmUso")), 2);
  EXPECT_EQ(CLng(record->Get("Cd_Tarifa")), 30);
  Key(501);
  cliente.Consultar(false);
  EXPECT_EQ(CLng(cliente.Ob_cgp()->Get("Qt_VagasEmUso")), 0);

  // Saving reads the client alone and never writes the gates' count.
  cliente.Ob_cgp()->Let("Qt_VagasEmUso", Variant(9));
  cliente.Salvar();
  EXPECT_TRUE(db.statements.back().starts_with("SELECT A.*\rFROM   TbClienteEstacionamento A\r"));
  EXPECT_EQ(CountOf(db, "TbClienteEstacionamento"), 2);
}

TEST_F(cgdClienteEstacionamentTest, MonthlyStaysInsideAreCountedAgreementsAreNot) {
  testing::AddTicket(db, 1, "M1", 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 2, "M2", 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 3, "M3", 2, "2026-11-21 08:00:00", "'2026-11-21 09:00:00'", "NULL", 1, 0, 500, 1);
  testing::AddTicket(db, 4, "M4", 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 500, 0);
  EXPECT_EQ(cliente.VagasUtilizadas(), 2);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT Count(*) As Qt_TotalVagasUtilizadas", "From   TbTicketEstacionamento",
                                         "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                                         "       And TbTicketEstacionamento.Cd_ClienteEstacionamento = 500",
                                         "       And TbTicketEstacionamento.No_situacao = 1",
                                         "       And TbTicketEstacionamento.Ic_Mensalista <> 0"}) +
                                      "\r");
}

TEST_F(cgdClienteEstacionamentTest, TheClientsCardsShowTheirVehicleKindAndKind2ShowsEmpty) {
  db.Query("INSERT INTO TbCartaoEstacionamento (Cd_EmpresaUsuariaSistema, Cd_CartaoEstacionamento, "
           "Cd_ClienteEstacionamento, Ds_IdentificacaoCartao, Nm_Portador, No_TipoVeiculo, Ic_Ativo) VALUES "
           "(1, 3, 500, '1003', 'Ana', 2, 1), (1, 1, 500, '1001', 'Ana', 0, 1), (1, 2, 500, '1002', 'Ana', 1, 0), "
           "(1, 4, 501, '1004', 'Bruno', 0, 1)");
  auto cards = cliente.CartaoEstacionamentoRs();
  EXPECT_EQ(db.statements.back().substr(0, 36), "SELECT   Cd_CartaoEstacionamento,\r  ");
  EXPECT_NE(db.statements.back().find("              When No_TipoVeiculo = 1 Then 'VEICULO E MOTO'\r"),
            std::string::npos);
  std::vector<std::string> kinds;
  for (; !cards->Eof(); cards->MoveNext()) {
    kinds.push_back(CStr(cards->Fields().Item("Cd_CartaoEstacionamento").Value()) + ":" +
                    CStr(cards->Fields().Item("Ds_TipoVeiculo").Value()));
  }
  EXPECT_EQ(kinds, (std::vector<std::string>{"1:VEICULO", "2:MOTO", "3:"}));
}

TEST_F(cgdClienteEstacionamentTest, TheLastPaidMonthlyFeeIsTheLatestParkingAssessmentWithATill) {
  EXPECT_EQ(cliente.ObterDataFinalUltimaMensalidadeEstacionamento(), Date());
  db.Query("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, Cd_Pessoa, "
           "Dt_Final, Cd_Caixa) VALUES (1, 1, 2, 500, '2026-09-30 00:00:00', 4), "
           "(1, 2, 2, 500, '2026-10-31 00:00:00', 5), (1, 3, 2, 500, '2026-11-30 00:00:00', NULL), "
           "(1, 4, 1, 500, '2026-12-31 00:00:00', 6), (1, 5, 2, 501, '2027-01-31 00:00:00', 7)");
  EXPECT_EQ(Format(Variant(cliente.ObterDataFinalUltimaMensalidadeEstacionamento()), "dd/mm/yyyy"), "31/10/2026");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   TOP 1", "         Dt_Final", "FROM     TbApuracaoReceita",
                   "WHERE    TbApuracaoReceita.Cd_EmpresaUsuariaSistema = 1",
                   "         And TbApuracaoReceita.Cd_TipoReceita = 2", "         And TbApuracaoReceita.Cd_Pessoa = 500",
                   "         And TbApuracaoReceita.Cd_Caixa Is Not Null", "ORDER BY TbApuracaoReceita.Dt_Final Desc"}) +
                "\r");
}

TEST_F(cgdClienteEstacionamentTest, TheClientIsPushedToTheGatesAndItsPassagesReadBack) {
  std::string aviso;
  Key(501);
  cliente.AtualizarClienteMadis(aviso);
  EXPECT_EQ(db.statements.back(), "ClienteEstacionamento_AtualizarClienteMadis");
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CLIENTE WHERE IDCLIENTE = 501 And NOME = 'Bruno Lima'"), 1);
  Key(999);
  const VekError refused = ErrorOf([&] { cliente.AtualizarClienteMadis(aviso); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_EQ(refused.Description(), "Cliente de estacionamento não encontrado");
  EXPECT_NE(refused.Source().find("cgdClienteEstacionament.AtualizarClienteMadis"), std::string::npos);

  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO (IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, IDCARTAO, "
           "CODIGOCARTAO, NOMEPROPRIETARIO) VALUES (1, 500, 1, 40, 1001, 'ANA')");
  for (int32_t i = 1; i <= 32; ++i) {
    db.Query("INSERT INTO MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, "
             "IDEMPRESACARTAO, IDCARTAO, EVENTO, DATAHORAPASSAGEM, REALTIME) VALUES (" +
             std::to_string(i) + ", 1, 1, 40, " + std::to_string(1 + i % 2) + ", '2026-11-21 08:" +
             (i < 10 ? "0" : "") + std::to_string(i) + ":00', 1)");
  }
  Key(500);
  auto passages = cliente.EntradasMadisRs(40);
  EXPECT_NE(db.statements.back().find("WHERE    MDESTACIONAMENTO.DBO.CLIENTECARTAO.IDCLIENTE = 500\r"
                                      "         And MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.IDCARTAO = 40\r"),
            std::string::npos);
  ASSERT_EQ(passages->RecordCount(), 30);
  EXPECT_EQ(Format(passages->Fields().Item("DATAHORAPASSAGEM").Value(), "dd/mm hh:Nn"), "21/11 08:32");
  EXPECT_EQ(CStr(passages->Fields().Item("DESCRICAO").Value()), "ENTRADA");

  cliente.ExcluirClienteMadis(aviso);
  EXPECT_EQ(aviso, "");
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CLIENTECARTAO"), 0);
  cliente.ExcluirClienteMadis(aviso);
  EXPECT_EQ(aviso, "Cliente não cadastrado na Madis");
}

TEST_F(cgdClienteEstacionamentTest, TheSearchGridListsClientsByName) {
  ListGrid grid;
  TextBox count;
  cliente.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.Cd_ClienteEstacionamento,", "         B.Nm_Pessoa",
                                         "FROM     TbClienteEstacionamento A",
                                         "         Join TbPessoa B on A.Cd_ClienteEstacionamento = B.Cd_Pessoa",
                                         "ORDER BY B.Nm_Pessoa", ";"}) +
                                      "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t500\tAna Souza", "\t501\tBruno Lima"}));
  EXPECT_EQ(count.Text(), "2");
}

}  // namespace
}  // namespace vek
