#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Format.h"
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string DayStatement(const std::string& flag) {
  return Lines({"SELECT * ", "FROM   TbHorariosLinha ", "WHERE  " + flag + " <> 0 ", "And (", "getDate() >= Dt_Inicial ",
                "Or Dt_Inicial Is Null) ", "And (", "getDate() <= Dt_Final ", "Or Dt_Final Is Null) "}) +
         "\r";
}

std::string Board(int32_t rows, const std::string& limit, const std::string& flag_line) {
  return Lines({"SELECT   TOP " + std::to_string(rows),
                "A.Cd_ViagemOnibus,",
                "D.Nm_Cidade + '/' + F.Sg_Uf As Nm_CidadeOrigem,",
                "E.Nm_Cidade + '/' + G.Sg_Uf As Nm_CidadeDestino,",
                "H.Cd_EmpresaOnibus,",
                "H.Nm_EmpresaOnibus,",
                "A.No_Andamento,",
                "B.Hr_Saida,",
                "B.Hr_Chegada,",
                "A.Hr_Previsto,",
                "B.Ic_TemDesembarque,",
                "B.Ic_TemEmbarques,",
                "B.No_Plataforma,",
                "A.Qt_EmbarquesComPassagem,",
                "A.Qt_EmbarquesSemPassagem,",
                "A.Hr_SaidaRodoviaria",
                "FROM     TbViagemOnibus A",
                "INNER JOIN TbHorariosLinha B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                "And A.Cd_HorarioLinha = B.Cd_HorarioLinha",
                "INNER JOIN TbLinha C On B.Cd_Linha = C.Cd_Linha",
                "INNER JOIN TbCidade D On C.Cd_CidadeOrigem = D.Cd_Cidade",
                "INNER JOIN TbCidade E On C.Cd_CidadeDestino = E.Cd_Cidade",
                "INNER JOIN TbUf F On D.Cd_Uf = F.Cd_Uf",
                "INNER JOIN TbUf G On E.Cd_Uf = G.Cd_Uf",
                "INNER JOIN TbEmpresaOnibus H On B.Cd_EmpresaOnibus = H.Cd_EmpresaOnibus",
                "Where    A.Cd_EmpresaUsuariaSistema = 1",
                "And A.Hr_Previsto <= '" + limit + "'",
                flag_line,
                "And ((getDate() >= B.Dt_Inicial And getDate() <= B.Dt_Final) ",
                "Or B.Dt_Inicial Is Null ",
                "Or B.Dt_Inicial <= '1900-01-01' ",
                "Or B.Dt_Final Is Null ",
                "Or B.Dt_Final <= '1900-01-01') ",
                "ORDER BY A.Hr_Previsto Desc,",
                "B.No_Plataforma"}) +
         "\r";
}

class cgdEmpresaUsuariaSistemaBusTest : public ::testing::Test {
 protected:
  cgdEmpresaUsuariaSistemaBusTest() {
    empresa.Ob_cgpSistema(db.session);
    empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    db.session->Let("Qt_TempoAntecedenciaMostrarViagensVisualizador", Variant(30));
  }

  std::vector<std::string> Codes(const std::shared_ptr<Recordset>& rows, const std::string& column) {
    EXPECT_EQ(rows->ActiveConnection(), nullptr);  // detached
    EXPECT_EQ(rows->CursorType(), adOpenStatic);
    return testing::BusTerminal::ColumnOf(*rows, column);
  }
  std::vector<std::string> Sorted(std::vector<std::string> values) {
    std::sort(values.begin(), values.end());
    return values;
  }

  testing::BusTerminal db;
  cgdEmpresaUsuariaSistema empresa;
};

TEST_F(cgdEmpresaUsuariaSistemaBusTest, TheDaysTimetablesTakeTheWeekdayGivenAndValidityByTheServersClock) {
  // Sunday: every company's Sunday timetables valid now.
  EXPECT_EQ(Sorted(Codes(empresa.rsViagensDoDia(DateSerial(2026, 11, 22)), "Cd_HorarioLinha")),
            (std::vector<std::string>{"1", "3", "4", "5", "6"}));
  EXPECT_EQ(db.statements.back(), DayStatement("Ic_ViagemNoDomingo"));
  // Monday: timetable 2 runs on Mondays but ended yesterday; 3 runs on weekends.
  EXPECT_EQ(Sorted(Codes(empresa.rsViagensDoDia(DateSerial(2026, 11, 23)), "Cd_HorarioLinha")),
            (std::vector<std::string>{"1", "4", "5", "6"}));
  EXPECT_EQ(db.statements.back(), DayStatement("Ic_ViagemNaSegunda"));

  // Date and time are compared: ending at today's midnight is already out;
  // starting at this very second is in, a second later is not.
  db.Timetable("1, 1, 20, 10, 1, '2026-01-01 13:00:00', '2026-01-01 23:00:00', 1, 0, 1, 0, 0, 0, 0, 0, 0, 1, NULL, "
               "'2026-11-21 00:00:00'");
  db.Timetable("1, 1, 21, 10, 1, '2026-01-01 13:00:00', '2026-01-01 23:00:00', 1, 0, 1, 0, 0, 0, 0, 0, 0, 1, "
               "'2026-11-21 10:30:00', NULL");
  db.Timetable("1, 1, 22, 10, 1, '2026-01-01 13:00:00', '2026-01-01 23:00:00', 1, 0, 1, 0, 0, 0, 0, 0, 0, 1, "
               "'2026-11-21 10:30:01', NULL");
  db.Timetable("1, 1, 23, 10, 1, '2026-01-01 13:00:00', '2026-01-01 23:00:00', 1, 0, 1, 0, 0, 0, 0, 0, 0, 1, "
               "'2026-11-01 00:00:00', '2026-11-21 10:30:00'");
  EXPECT_EQ(Sorted(Codes(empresa.rsViagensDoDia(DateSerial(2026, 11, 28)), "Cd_HorarioLinha")),
            (std::vector<std::string>{"1", "21", "23", "3", "4", "5", "6"}));
  EXPECT_EQ(db.statements.back(), DayStatement("Ic_ViagemNoSabado"));
}

TEST_F(cgdEmpresaUsuariaSistemaBusTest, TheBoardLooksAheadToTheMinuteAndSplitsArrivalsFromDepartures) {
  db.Trip(1, 1, 1, "2026-11-21 08:00:00", 3, 4);    // departed
  db.Trip(2, 3, 4, "2026-11-21 10:50:00", 7, 1);    // arrival due in 20 minutes
  db.Trip(3, 4, 6, "2026-11-21 11:00:00", 2, 1);    // passing, at the limit
  db.Trip(4, 4, 6, "2026-11-21 11:00:30", 2, 0);    // past the minute of the limit
  db.Trip(5, 1, 1, "2026-11-21 11:10:00", 3, 0);    // in 40 minutes
  db.Trip(6, 1, 5, "2026-11-21 09:00:00", 1, 0, 2);  // another company's
  auto departures = empresa.rsUltimasPartidas(10);
  EXPECT_EQ(db.statements.back(), Board(10, "2026-11-21 11:00", "And B.Ic_TemEmbarques <> 0"));
  EXPECT_EQ(Codes(departures, "Cd_ViagemOnibus"), (std::vector<std::string>{"3", "1"}));
  departures->MoveFirst();
  EXPECT_EQ(CStr(departures->Fields().Item("Nm_CidadeOrigem").Value()), "Olhos-d'Água/MG");
  EXPECT_EQ(CStr(departures->Fields().Item("Nm_CidadeDestino").Value()), "Goiânia/GO");
  EXPECT_EQ(CStr(departures->Fields().Item("Nm_EmpresaOnibus").Value()), "Araguarina");
  EXPECT_EQ(CLng(departures->Fields().Item("No_Plataforma").Value()), 2);
  EXPECT_EQ(departures->Fields().Count(), 15);

  auto arrivals = empresa.rsUltimasChegadas(10);
  EXPECT_EQ(db.statements.back(), Board(10, "2026-11-21 11:00", "And B.Ic_TemDesembarque <> 0"));
  EXPECT_EQ(Codes(arrivals, "Cd_ViagemOnibus"), (std::vector<std::string>{"3", "2"}));
  EXPECT_EQ(Codes(empresa.rsUltimasChegadas(1), "Cd_ViagemOnibus"), std::vector<std::string>{"3"});
  EXPECT_TRUE(Codes(empresa.rsUltimasPartidas(0), "Cd_ViagemOnibus").empty());
  EXPECT_EQ(db.statements.back(), Board(0, "2026-11-21 11:00", "And B.Ic_TemEmbarques <> 0"));

  // A longer look-ahead brings the 11:10 departures; trips expected at the
  // same time go by their timetable's platform (3 before 4).
  db.session->Let("Qt_TempoAntecedenciaMostrarViagensVisualizador", Variant(45));
  db.Trip(7, 2, 3, "2026-11-21 11:10:00", 1, 0);
  EXPECT_EQ(Codes(empresa.rsUltimasPartidas(10), "Cd_ViagemOnibus"),
            (std::vector<std::string>{"5", "7", "4", "3", "1"}));
  EXPECT_EQ(db.statements.back(), Board(10, "2026-11-21 11:15", "And B.Ic_TemEmbarques <> 0"));

  const VekError bad = ErrorOf([&] { empresa.rsUltimasPartidas(-1); });
  EXPECT_TRUE(bad.Source().ends_with(" -> cgdEmpresaUsuariaSistema.rsRecebimentoDeMensalistas, ")) << bad.Source();
}

TEST_F(cgdEmpresaUsuariaSistemaBusTest, TheBoardCountsAnEndOnOrBefore1900AsEmpty) {
  //           line code: validity
  db.Timetable("1, 1, 30, 10, 1, '2026-01-01 08:00:00', '2026-01-01 20:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, NULL, "
               "'2025-01-01 00:00:00'");  // ended last year, no start: shown
  db.Timetable("1, 1, 31, 10, 1, '2026-01-01 08:00:00', '2026-01-01 20:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, "
               "'1900-01-01 00:00:00', '2025-01-01 00:00:00'");  // start on 1900: shown
  db.Timetable("1, 1, 32, 10, 1, '2026-01-01 08:00:00', '2026-01-01 20:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, "
               "'1900-01-02 00:00:00', '2025-01-01 00:00:00'");  // a real start and end, both past
  db.Timetable("1, 1, 33, 10, 1, '2026-01-01 08:00:00', '2026-01-01 20:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, "
               "'2027-01-01 00:00:00', '1899-12-30 00:00:00'");  // end before 1900, start to come: shown
  db.Timetable("1, 1, 34, 10, 1, '2026-01-01 08:00:00', '2026-01-01 20:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, "
               "'2026-11-21 10:30:00', '2026-11-21 10:30:00'");  // valid this very second
  for (int32_t code = 30; code <= 34; ++code) db.Trip(code, 1, code, "2026-11-21 0" + std::to_string(code - 29) + ":00:00");
  EXPECT_EQ(Codes(empresa.rsUltimasPartidas(10), "Cd_ViagemOnibus"),
            (std::vector<std::string>{"34", "33", "31", "30"}));
}

TEST_F(cgdEmpresaUsuariaSistemaBusTest, AnnouncementsAreDueForTenMinutesUntilPlayed) {
  auto add = [&](int32_t code, const std::string& when, int32_t done, int32_t tenant = 1) {
    db.Query("INSERT INTO TbAgendaSom (Cd_EmpresaUsuariaSistema, Cd_AgendaSom, Cd_ViagemOnibus, Dt_Agendamento, Ic_Feito) "
             "VALUES (" + std::to_string(tenant) + ", " + std::to_string(code) + ", 1, '" + when + "', " +
             std::to_string(done) + ")");
  };
  add(1, "2026-11-21 10:19:00", 0);  // 11 minutes ago
  add(2, "2026-11-21 10:20:00", 0);  // 10 minutes ago
  add(3, "2026-11-21 10:29:00", 0);
  add(4, "2026-11-21 10:30:00", 0);  // now
  add(5, "2026-11-21 10:30:01", 0);  // to come
  add(6, "2026-11-21 10:25:00", 1);  // played
  add(7, "2026-11-21 10:25:00", 0, 2);
  auto due = empresa.rsAgendaSom();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   *", "FROM     TbAgendaSom", "WHERE    Cd_EmpresaUsuariaSistema = 1",
                   "And Dt_Agendamento Between '2026-11-21 10:20:00' And '2026-11-21 10:30:00'", "And Ic_Feito = 0",
                   "ORDER BY Dt_Agendamento"}) +
                "\r");
  EXPECT_EQ(Codes(due, "Cd_AgendaSom"), (std::vector<std::string>{"2", "3", "4"}));
}

TEST_F(cgdEmpresaUsuariaSistemaBusTest, CitiesServedAreRebuiltEachTimeAndMarkedForSoundFiles) {
  db.Query("INSERT INTO TempCidade (Cd_Cidade, Nm_Cidade, Ic_ExisteArquivoSom) VALUES (99, 'Left from before', 1)");
  auto cities = empresa.rsCidadesAtendidas();
  const std::string insert_head = Lines({"INSERT INTO TempCidade", "SELECT   B.Cd_Cidade,", "B.Nm_Cidade,", "B.Sg_Cidade,",
                                         "B.Sg_UF,", "B.Cd_UF,", "B.Qt_DistanciaEmKm,", "0"}) +
                                  "\r";
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{
                "Delete\rfrom TempCidade\r",
                insert_head + "FROM     TbLinha A\rINNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_CidadeOrigem\r",
                insert_head + "FROM     TbLinha A\rINNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_CidadeDestino\r",
                insert_head + "FROM     TbEscalasHorarioLinha A\rINNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_Cidade\r",
                "SELECT   DISTINCT *\rfrom TempCidade\rORDER BY Cd_Cidade\r"}));
  // Goiânia is origin and destination of several lines, yet listed once;
  // Uberlândia and Campinas are stops only.
  EXPECT_EQ(Codes(cities, "Nm_Cidade"), (std::vector<std::string>{"Goiânia", "Anápolis", "Uberlândia", "São Paulo",
                                                                  "Santa Bárbara d'Oeste", "Olhos-d'Água", "Campinas"}));
  EXPECT_EQ(db.Query("SELECT * FROM TempCidade")->RecordCount(), 10);  // duplicates stay in the table
  cities->MoveFirst();
  EXPECT_EQ(CStr(cities->Fields().Item("Sg_UF").Value()), "GO");
  EXPECT_EQ(CLng(cities->Fields().Item("Ic_ExisteArquivoSom").Value()), 0);

  empresa.AtualizarCidadeAtendidaExisteArquivoSom(5, true);
  EXPECT_EQ(db.statements.back(), "Update TempCidade\rSet    Ic_ExisteArquivoSom = 1\rWhere  Cd_Cidade = 5\r");
  empresa.AtualizarCidadeAtendidaExisteArquivoSom(1, false);
  EXPECT_EQ(db.statements.back(), "Update TempCidade\rSet    Ic_ExisteArquivoSom = 0\rWhere  Cd_Cidade = 1\r");
  EXPECT_EQ(db.Column("SELECT DISTINCT Cd_Cidade FROM TempCidade WHERE Ic_ExisteArquivoSom <> 0", "Cd_Cidade"),
            std::vector<std::string>{"5"});
}

TEST_F(cgdEmpresaUsuariaSistemaBusTest, TheAccessControlDatabaseIsThereOthersAreNot) {
  EXPECT_TRUE(empresa.ExisteBancoDeDados("MDESTACIONAMENTO"));
  EXPECT_EQ(db.statements.back(),
            "SELECT name, database_id, create_date\rFrom   sys.databases\rWHERE  name = 'MDESTACIONAMENTO'\r");
  EXPECT_TRUE(empresa.ExisteBancoDeDados("mdestacionamento"));
  EXPECT_FALSE(empresa.ExisteBancoDeDados("MDESTACIONAMENTO2"));
  const size_t sent = db.statements.size();
  const VekError refused = ErrorOf([&] { empresa.ExisteBancoDeDados("x' or '1'='1"); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_EQ(refused.Source(), " -> cgdEmpresaUsuariaSistema.rsRecebimentoDeMensalistas, ");
  EXPECT_EQ(db.statements.size(), sent);

  auto buses = empresa.rsOnibus();
  EXPECT_EQ(db.statements.back(), "SELECT * \rFROM   TbVeiculoOnibus \r");
  EXPECT_EQ(buses->RecordCount(), 0);
}

}  // namespace
}  // namespace vek
