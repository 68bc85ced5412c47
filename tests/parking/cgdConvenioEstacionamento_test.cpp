#include "vek/parking/cgdConvenioEstacionamento.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "support/RecordingControls.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

const Date kNoon = DateSerial(2026, 11, 21) + TimeSerial(12, 0, 0);

// Agreement 300 owns 5 vacancies. Its tickets: 1 to 4 inside (4 a monthly
// stay), 5 left exactly at noon, 6 left at 12:00:01, 7 of another
// agreement.
class cgdConvenioEstacionamentoTest : public ::testing::Test {
 protected:
  cgdConvenioEstacionamentoTest() {
    convenio.Ob_cgpSistema(db.session);
    db.session->SetMessages(messages);
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (300, 'Hospital Central'), (301, 'Clínica Sul')");
    db.Query("INSERT INTO TbConvenioEstacionamento (Cd_EmpresaUsuariaSistema, Cd_ClienteConvenio, Qt_Vagas) "
             "VALUES (1, 300, 5), (1, 301, 2)");
    for (int32_t t = 1; t <= 3; ++t) {
      testing::AddTicket(db, t, "CV00" + std::to_string(t), 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 0, 0, 300);
    }
    testing::AddTicket(db, 4, "CV004", 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 0, 1, 300);
    testing::AddTicket(db, 5, "CV005", 2, "2026-11-21 08:00:00", "'2026-11-21 12:00:00'", "NULL", 1, 0, 0, 0, 300);
    testing::AddTicket(db, 6, "CV006", 2, "2026-11-21 08:00:00", "'2026-11-21 12:00:01'", "NULL", 1, 0, 0, 0, 300);
    testing::AddTicket(db, 7, "CV007", 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 0, 0, 301);
    Key(300);
  }

  void Key(int32_t agreement) {
    convenio.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    convenio.Ob_cgp()->Let("Cd_ClienteConvenio", Variant(agreement));
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentMessageBox> messages = std::make_shared<SilentMessageBox>();
  cgdConvenioEstacionamento convenio;
};

TEST_F(cgdConvenioEstacionamentoTest, VacanciesInUseCountPendingTicketsThatAreNotMonthlyStays) {
  EXPECT_EQ(convenio.VagasUtilizadas(), 3);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT Count(*) As Qt_TotalVagasUtilizadas", "From   TbTicketEstacionamento",
                                         "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                                         "       And TbTicketEstacionamento.Cd_ClienteConvenio = 300",
                                         "       And TbTicketEstacionamento.No_situacao = 1",
                                         "       And TbTicketEstacionamento.Ic_Mensalista = 0"}) +
                                      "\r");
  auto rows = convenio.rsVagasUtilizadas();
  EXPECT_EQ(db.statements.back().substr(0, 32), "SELECT TbTicketEstacionamento.*\r");
  EXPECT_EQ(rows->RecordCount(), 3);
}

TEST_F(cgdConvenioEstacionamentoTest, AtAMomentEveryTicketWithALaterOrNoExitCountsLeavingOneOut) {
  auto rows = convenio.rsVagasUtilizadasEmDeterminadoHorario(kNoon);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT TbTicketEstacionamento.*", "From   TbTicketEstacionamento",
                                         "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = 1",
                                         "       And TbTicketEstacionamento.Cd_ClienteConvenio = 300",
                                         "       And (TbTicketEstacionamento.Dt_Saida > '21/11/2026 12:00:00'",
                                         "            Or TbTicketEstacionamento.Dt_Saida  IS NULL)"}) +
                                      "\r");
  // Tickets 1 to 4 and 6; ticket 5 left exactly at the moment.
  EXPECT_EQ(rows->RecordCount(), 5);

  EXPECT_EQ(convenio.VagasDisponiveis(kNoon, 0), 0);
  EXPECT_EQ(convenio.VagasDisponiveis(kNoon, 2), 1);
  EXPECT_NE(db.statements.back().find("               And TbTicketEstacionamento.Cd_TicketEstacionamento <> 2\r"),
            std::string::npos);
  EXPECT_NE(db.statements.back().find(") As Qt_VagasDisponiveis\rFROM   TbConvenioEstacionamento\r"), std::string::npos);
  // A moment after every exit: ticket 6 no longer counts.
  EXPECT_EQ(convenio.VagasDisponiveis(kNoon + TimeSerial(0, 0, 1), 0), 1);
  // More inside than owned: negative.
  Key(301);
  db.Query("UPDATE TbConvenioEstacionamento SET Qt_Vagas = 0 WHERE Cd_ClienteConvenio = 301");
  EXPECT_EQ(convenio.VagasDisponiveis(kNoon, 0), -1);
  // No agreement row: 0.
  Key(999);
  EXPECT_EQ(convenio.VagasDisponiveis(kNoon, 0), 0);
}

TEST_F(cgdConvenioEstacionamentoTest, MoreThan255VehiclesInsideOverflowTheCount) {
  Key(301);
  for (int32_t t = 100; t < 356; ++t) {
    testing::AddTicket(db, t, "X" + std::to_string(t), 1, "2026-11-21 08:00:00", "NULL", "NULL", 1, 0, 0, 0, 301);
  }
  const VekError overflow = ErrorOf([&] { convenio.VagasUtilizadas(); });
  EXPECT_EQ(overflow.Number(), 6);
  EXPECT_NE(overflow.Source().find("cgdConvenioEstacionamento.VagasUtilizadas"), std::string::npos);
}

TEST_F(cgdConvenioEstacionamentoTest, TheListsShowTheAgreementsByNameAndAnEmptyPickListSaysSo) {
  ListComboBox combo;
  convenio.CarregarComboBox(combo, "B.Nm_Pessoa <> 'X'");
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.Cd_ClienteConvenio,", "         B.Nm_Pessoa",
                                         "FROM     TbConvenioEstacionamento A",
                                         "         Inner Join TbPessoa B on A.Cd_ClienteConvenio = B.Cd_Pessoa",
                                         "WHERE    A.Cd_EmpresaUsuariaSistema = 1", "         And B.Nm_Pessoa <> 'X'",
                                         "ORDER BY B.Nm_Pessoa"}) +
                                      "\r");
  EXPECT_EQ(testing::EntriesOf(combo),
            (testing::Entries{{"--ESCOLHA-->", 0}, {"Clínica Sul", 301}, {"Hospital Central", 300}}));

  convenio.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  convenio.CarregarComboBox(combo);
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"NENHUM", 0}}));
  ASSERT_FALSE(messages->Messages().empty());
  EXPECT_EQ(messages->Messages().back().prompt, "Não existe nenhuma cor cadastrada");

  ListGrid grid;
  TextBox count;
  convenio.CarregarMSFlexGridDeBusca(grid, count, "A.Qt_Vagas > 1");
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   A.Cd_ClienteConvenio,", "         B.Nm_Pessoa",
                                         "FROM     TbConvenioEstacionamento A",
                                         "         Join TbPessoa B on A.Cd_ClienteConvenio = B.Cd_Pessoa",
                                         "WHERE A.Qt_Vagas > 1", "ORDER BY B.Nm_Pessoa", ";"}) +
                                      "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t301\tClínica Sul", "\t300\tHospital Central"}));
  EXPECT_EQ(count.Text(), "2");
}

TEST_F(cgdConvenioEstacionamentoTest, TheAgreementsTimesAreKeptAsTimesOfDay) {
  Key(302);
  auto record = convenio.Ob_cgp();
  record->Let("Qt_Vagas", Variant(3));
  record->Let("Hr_Inicial", Variant(TimeSerial(7, 30, 0)));
  record->Let("Hr_Final", Variant(TimeSerial(19, 0, 0)));
  convenio.Salvar();
  record->RestaurarDefault();
  Key(302);
  convenio.Consultar(false);
  EXPECT_EQ(Format(record->Get("Hr_Inicial"), "hh:Nn:ss"), "07:30:00");
  EXPECT_EQ(Format(record->Get("Hr_Final"), "hh:Nn:ss"), "19:00:00");
  EXPECT_EQ(CLng(record->Get("Qt_Vagas")), 3);
}

}  // namespace
}  // namespace vek
