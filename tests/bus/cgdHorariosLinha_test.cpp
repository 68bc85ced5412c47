#include "vek/bus/cgdHorariosLinha.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "support/RecordingControls.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string KeyLines(int32_t tenant, int32_t line, int32_t code) {
  return Lines({"WHERE  Cd_EmpresaUsuariaSistema = " + std::to_string(tenant), "And Cd_Linha = " + std::to_string(line),
                "And Cd_HorarioLinha = " + std::to_string(code)}) +
         "\r";
}
std::string Select(int32_t tenant, int32_t line, int32_t code) {
  return "SELECT A.*\rFROM   TbHorariosLinha A\r" + KeyLines(tenant, line, code) + ";\r";
}

const std::string kSearchHead = Lines({
    "SELECT   Distinct",
    "C.Nm_Cidade As Nm_CidadeOrigem,",
    "C.Sg_UF As Sg_UFOrigem,",
    "D.Nm_Cidade As Nm_CidadeDestino,",
    "D.Sg_UF As Sg_UFDestino,",
    "Case When A.Ic_TemEmbarques <> 0 And A.Ic_TemDesembarque = 0 Then A.Hr_Saida",
    "When A.Ic_TemEmbarques = 0 And A.Ic_TemDesembarque <> 0 Then A.Hr_Chegada",
    "When A.Ic_TemEmbarques <> 0 And A.Ic_TemDesembarque <> 0 Then A.Hr_Chegada",
    "Else A.Hr_Saida",
    "End As Hr_SaidaRodoviaria,",
    "A.Hr_Saida As Hr_InicioViagem,",
    "Case When A.Ic_TemEmbarques <> 0 Then 'SIM'",
    "Else 'NÃO'",
    "End Ds_TemEmbarque,",
    "E.Nm_EmpresaOnibus,",
    "F.Ds_TipoOnibus,",
    "A.No_Plataforma,",
    "A.Ic_ViagemNoDomingo,",
    "A.Ic_ViagemNaSegunda,",
    "A.Ic_ViagemNaTerca,",
    "A.Ic_ViagemNaQuarta,",
    "A.Ic_ViagemNaQuinta,",
    "A.Ic_ViagemNaSexta,",
    "A.Ic_ViagemNoSabado",
    "FROM     TbHorariosLinha A",
    "INNER JOIN TbLinha B On B.Cd_Linha = A.Cd_Linha",
    "INNER JOIN TbCidade C On C.Cd_Cidade = B.Cd_CidadeOrigem",
    "INNER JOIN TbCidade D On D.Cd_Cidade = B.Cd_CidadeDestino",
    "INNER JOIN TbEmpresaOnibus E On E.Cd_EmpresaOnibus = A.Cd_EmpresaOnibus",
    "INNER JOIN TbTipoOnibus F On F.Cd_TipoOnibus = A.Cd_TipoOnibus",
    "LEFT  JOIN TbEscalasHorarioLinha G On G.Cd_EmpresaUsuariaSistema = A.Cd_EmpresaUsuariaSistema",
    "And G.Cd_Linha = A.Cd_Linha",
    "And G.Cd_HorarioLinha = A.Cd_HorarioLinha",
    "LEFT  JOIN TbCidade H On H.Cd_Cidade = G.Cd_Cidade",
    "WHERE    A.Cd_EmpresaUsuariaSistema = 1",
    "And (A.Dt_Inicial Is Null Or CONVERT(date, GetDate()) >= A.Dt_Inicial)",
    "And (A.Dt_Final Is Null Or CONVERT(date, GetDate()) <= A.Dt_Final)",
}) + "\r";

std::string Search(const std::string& filters) { return kSearchHead + filters + "ORDER BY Hr_SaidaRodoviaria\r"; }

class cgdHorariosLinhaTest : public ::testing::Test {
 protected:
  cgdHorariosLinhaTest() { horarios.Ob_cgpSistema(db.session); }

  // The destinations and terminal times the search returns, in order.
  std::vector<std::string> Found(const std::string& from, const std::string& from_state, const std::string& to,
                                 const std::string& to_state, bool stops_from = false, bool stops_to = false) {
    auto rows = horarios.adoRsHorariosLinha(from, from_state, to, to_state, stops_from, stops_to);
    EXPECT_EQ(rows->ActiveConnection(), nullptr);  // detached
    std::vector<std::string> found;
    while (!rows->Eof()) {
      found.push_back(CStr(rows->Fields().Item("Nm_CidadeOrigem").Value()) + " > " +
                      CStr(rows->Fields().Item("Nm_CidadeDestino").Value()) + " " +
                      Format(rows->Fields().Item("Hr_SaidaRodoviaria").Value(), "hh:Nn"));
      rows->MoveNext();
    }
    return found;
  }

  void Key(int32_t tenant, int32_t line, int32_t code) {
    horarios.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(tenant));
    horarios.Ob_cgp()->Let("Cd_Linha", Variant(line));
    horarios.Ob_cgp()->Let("Cd_HorarioLinha", Variant(code));
  }

  testing::BusTerminal db;
  cgdHorariosLinha horarios;
};

TEST_F(cgdHorariosLinhaTest, ATimetableIsNumberedWithinItsLineAndDeletedAfterItsStops) {
  auto timetable = horarios.Ob_cgp();
  Key(1, 1, 0);
  timetable->Let("Cd_EmpresaOnibus", Variant(11));
  timetable->Let("Cd_TipoOnibus", Variant(1));
  timetable->Let("Hr_Saida", Variant(DateSerial(2026, 1, 1) + TimeSerial(14, 15, 0)));
  timetable->Let("Ic_TemEmbarques", Variant(true));
  timetable->Let("No_Plataforma", Variant(6));
  timetable->Let("Ic_ViagemNaSexta", Variant(true));
  timetable->Let("Dt_Inicial", Variant(DateSerial(2026, 12, 1)));
  horarios.Salvar();
  // Code 0 is an insert at once; the numbering table gives the next code.
  EXPECT_EQ(db.statements.size(), 2u);  // the numbering table's, then the empty set
  EXPECT_EQ(db.statements.back(), Select(0, 0, 0));
  EXPECT_EQ(CLng(timetable->Get("Cd_HorarioLinha")), 7);
  EXPECT_EQ(horarios.nomeCamposSequencial(), std::vector<std::string>{"Cd_HorarioLinha"});

  cgdHorariosLinha other;
  other.Ob_cgpSistema(db.session);
  other.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  other.Ob_cgp()->Let("Cd_Linha", Variant(1));
  other.Ob_cgp()->Let("Cd_HorarioLinha", Variant(7));
  auto loaded = other.Consultar(false);
  EXPECT_EQ(db.statements.back(), Select(1, 1, 7));
  EXPECT_EQ(Format(loaded->Get("Hr_Saida"), "hh:Nn"), "14:15");
  EXPECT_TRUE(CBool(loaded->Get("Ic_ViagemNaSexta")));
  EXPECT_FALSE(CBool(loaded->Get("Ic_ViagemNoSabado")));
  // Open at the end: stored as Null.
  EXPECT_EQ(db.Column("SELECT Dt_Final FROM TbHorariosLinha WHERE Cd_HorarioLinha = 7", "Dt_Final"),
            std::vector<std::string>{"NULL"});

  // Timetable 3 has two stops and a trip; the stops go first, the trip stays.
  db.Trip(1, 2, 3, "2026-11-21 09:00:00");
  Key(1, 2, 3);
  const size_t before = db.statements.size();
  horarios.Excluir();
  EXPECT_EQ(std::vector<std::string>(db.statements.begin() + static_cast<long>(before), db.statements.end()),
            (std::vector<std::string>{"DELETE \rFROM   TbEscalasHorarioLinha\r" + KeyLines(1, 2, 3),
                                      "DELETE \rFROM   TbHorariosLinha\r" + KeyLines(1, 2, 3)}));
  EXPECT_EQ(db.Query("SELECT * FROM TbEscalasHorarioLinha")->RecordCount(), 0);
  EXPECT_EQ(db.Query("SELECT * FROM TbHorariosLinha WHERE Cd_HorarioLinha = 3")->RecordCount(), 0);
  EXPECT_EQ(db.Query("SELECT * FROM TbViagemOnibus")->RecordCount(), 1);

  Key(1, 0, 3);
  const VekError no_key = ErrorOf([&] { horarios.Excluir(); });
  EXPECT_EQ(no_key.Number(), kErrorNoKey);
  EXPECT_EQ(no_key.Source(), " -> cgdHorariosLinha.Excluir,  -> cgdHorariosLinha.Excluir, ");
  EXPECT_EQ(CLng(horarios.Ob_cgp()->Get("Cd_HorarioLinha")), 0);  // reset
}

TEST_F(cgdHorariosLinhaTest, FutureTripsAreTodaysFromMidnightOnComparingTenantAndTimetableOnly) {
  db.Trip(1, 1, 1, "2026-11-20 23:59:59");
  db.Trip(2, 1, 1, "2026-11-21 00:00:00");
  db.Trip(3, 1, 1, "2026-11-21 08:00:00");  // already gone
  db.Trip(4, 1, 1, "2026-11-25 08:00:00");
  db.Trip(5, 2, 1, "2026-11-22 08:00:00");  // another line, same timetable code
  db.Trip(6, 1, 1, "2026-11-22 08:00:00", 0, 0, 2);
  db.Trip(7, 1, 2, "2026-11-22 22:00:00");
  Key(1, 1, 1);
  auto trips = horarios.ConsultarViagensFuturasDoHorarioLinha();
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "And Cd_HorarioLinha = 1", "And Hr_Previsto >='2026-11-21 00:00:00'"}) +
                                      "\r");
  std::vector<std::string> codes = testing::BusTerminal::ColumnOf(*trips, "Cd_ViagemOnibus");
  std::sort(codes.begin(), codes.end());
  EXPECT_EQ(codes, (std::vector<std::string>{"2", "3", "4", "5"}));
}

TEST_F(cgdHorariosLinhaTest, ThePickListShowsTerminalTimesAndKeepsItsItemDataQuirk) {
  auto progress = std::make_shared<testing::RecordingProgress>();
  db.session->SetProgress(progress);
  // On line 1 also: a passing timetable at 15:00 (shown by its arrival,
  // 16:00) and one with neither flag at 09:00.
  db.Timetable("1, 1, 8, 10, 2, '2026-01-01 15:00:00', '2026-01-01 16:00:00', 1, 1, 9, 1, 1, 1, 1, 1, 1, 1, NULL, NULL");
  db.Timetable("1, 1, 9, 10, 1, '2026-01-01 09:00:00', '2026-01-01 21:00:00', 0, 0, 9, 1, 1, 1, 1, 1, 1, 1, NULL, NULL");
  ListComboBox combo;
  combo.AddItem("left from before");
  horarios.CarregarComboBox(combo, "TbHorariosLinha.Cd_EmpresaUsuariaSistema = 1 And TbHorariosLinha.Cd_Linha = 1");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT Cd_HorarioLinha,", "Hr_Saida,", "Hr_Chegada,", "Ds_TipoOnibus,", "Ic_TemEmbarques,",
                   "Ic_TemDesembarque", "From   TbHorariosLinha",
                   "INNER JOIN TbTipoOnibus On TbHorariosLinha.cd_tipoonibus = TbTipoOnibus.cd_tipoonibus",
                   "WHERE  TbHorariosLinha.Cd_EmpresaUsuariaSistema = 1 And TbHorariosLinha.Cd_Linha = 1",
                   "ORDER BY Hr_Saida"}) +
                "\r");
  auto time = [](int32_t hour) { return CStr(Variant(DateSerial(2026, 1, 1) + TimeSerial(hour, 0, 0))); };
  // The 09:00 timetable adds no entry and its code lands on the 08:00 one.
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"--ESCOLHA-->", 0},
                                                         {time(8) + " - Convencional", 9},
                                                         {time(16) + " - Leito", 8},
                                                         {time(22) + " - Leito", 2}}));
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Horarios da Linha", "Close"}));

  // One timetable: no "--ESCOLHA-->"; a passing one shows its arrival.
  horarios.CarregarComboBox(combo, "TbHorariosLinha.Cd_Linha = 4");
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{time(12) + " - Leito", 6}}));

  const VekError bad = ErrorOf([&] { horarios.CarregarComboBox(combo, "Cd_Linha ="); });
  EXPECT_EQ(bad.Source(), testing::ProviderSource() + " -> cgdHorariosLinha.CarregarComboBox, ");
  EXPECT_EQ(progress->calls.back(), "Close");  // closed on failure too
}

TEST_F(cgdHorariosLinhaTest, StopsAreListedNearestFirst) {
  Key(1, 2, 3);
  auto stops = horarios.adoRsEscalas();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   B.Cd_Cidade,", "B.Nm_Cidade", "FROM     TbEscalasHorarioLinha A",
                   "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_Cidade", "Where    A.Cd_EmpresaUsuariaSistema = 1",
                   "And A.Cd_Linha = 2", "And A.Cd_HorarioLinha = 3", "ORDER BY B.Qt_DistanciaEmKm"}) +
                "\r");
  EXPECT_EQ(testing::BusTerminal::ColumnOf(*stops, "Nm_Cidade"), (std::vector<std::string>{"Uberlândia", "Campinas"}));
  Key(1, 1, 1);
  EXPECT_EQ(horarios.adoRsEscalas()->RecordCount(), 0);
}

TEST_F(cgdHorariosLinhaTest, TheSearchWithoutTextsReturnsTodaysTimetablesOfCompanyOneByTerminalTime) {
  // Timetable 2 ended yesterday; company 2's timetable 5 is not searched.
  EXPECT_EQ(Found("", "", "", ""),
            (std::vector<std::string>{"Goiânia > São Paulo 08:00", "Goiânia > Santa Bárbara d'Oeste 09:00",
                                      "Anápolis > Goiânia 11:00", "Olhos-d'Água > Goiânia 12:00"}));
  EXPECT_EQ(db.statements.back(), Search(""));
  // A state without its city adds nothing.
  EXPECT_EQ(Found("", "GO", "", "SP").size(), 4u);
  EXPECT_EQ(db.statements.back(), Search(""));

  auto rows = horarios.adoRsHorariosLinha("Goiânia", "", "Paulo", "", false, false);
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CStr(rows->Fields().Item("Ds_TemEmbarque").Value()), "SIM");
  EXPECT_EQ(CStr(rows->Fields().Item("Nm_EmpresaOnibus").Value()), "Araguarina");
  EXPECT_EQ(CStr(rows->Fields().Item("Ds_TipoOnibus").Value()), "Convencional");
  EXPECT_EQ(CLng(rows->Fields().Item("No_Plataforma").Value()), 3);
  EXPECT_EQ(rows->Fields().Count(), 17);
  rows = horarios.adoRsHorariosLinha("Anápolis", "", "", "", false, false);
  EXPECT_EQ(CStr(rows->Fields().Item("Ds_TemEmbarque").Value()), "NÃO");
}

TEST_F(cgdHorariosLinhaTest, ValidityComparesTheDatabasesDateOnly) {
  // Ending today and starting today are both valid all day; starting
  // tomorrow is not yet.
  db.Timetable("1, 1, 10, 10, 1, '2026-01-01 13:00:00', '2026-01-01 23:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, NULL, "
               "'2026-11-21 00:00:00'");
  db.Timetable("1, 1, 11, 10, 1, '2026-01-01 14:00:00', '2026-01-01 23:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, "
               "'2026-11-21 00:00:00', NULL");
  db.Timetable("1, 1, 12, 10, 1, '2026-01-01 15:00:00', '2026-01-01 23:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, "
               "'2026-11-22 00:00:00', NULL");
  EXPECT_EQ(Found("", "", "Paulo", "SP"),
            (std::vector<std::string>{"Goiânia > São Paulo 08:00", "Goiânia > São Paulo 13:00",
                                      "Goiânia > São Paulo 14:00"}));
  db.clock->Set(DateSerial(2026, 11, 21) + TimeSerial(23, 59, 59));
  EXPECT_EQ(Found("", "", "Paulo", "SP").size(), 3u);
  db.clock->Set(DateSerial(2026, 11, 22) + TimeSerial(0, 0, 0));
  EXPECT_EQ(Found("", "", "Paulo", "SP"),
            (std::vector<std::string>{"Goiânia > São Paulo 08:00", "Goiânia > São Paulo 14:00",
                                      "Goiânia > São Paulo 15:00"}));
}

TEST_F(cgdHorariosLinhaTest, EachSideFiltersByCityStateAndOptionallyTheStops) {
  const std::string destination_sp =
      "AND ((D.Nm_Cidade Like '%Santa Bárbara d''Oeste%' And D.Sg_UF = 'SP')) -- Cidade Destino\r";
  EXPECT_EQ(Found("", "", "Santa Bárbara d'Oeste", "SP"),
            std::vector<std::string>{"Goiânia > Santa Bárbara d'Oeste 09:00"});
  EXPECT_EQ(db.statements.back(), Search(destination_sp));
  EXPECT_TRUE(Found("", "", "Santa Bárbara d'Oeste", "MG").empty());

  EXPECT_EQ(Found("Olhos-d'Água", "", "", ""), std::vector<std::string>{"Olhos-d'Água > Goiânia 12:00"});
  EXPECT_EQ(db.statements.back(), Search("AND (C.Nm_Cidade Like '%Olhos-d''Água%') -- Cidade Origem\r"));

  // Campinas is only a stop: found with the stops, shown under the line's
  // own destination.
  EXPECT_TRUE(Found("", "", "Campinas", "").empty());
  EXPECT_EQ(Found("", "", "Campinas", "", false, true),
            std::vector<std::string>{"Goiânia > Santa Bárbara d'Oeste 09:00"});
  EXPECT_EQ(db.statements.back(),
            Search("AND ((D.Nm_Cidade Like '%Campinas%') Or (H.Nm_Cidade Like '%Campinas%')) -- Cidade Destino\r"));
  EXPECT_EQ(Found("", "", "Campinas", "SP", false, true).size(), 1u);
  EXPECT_EQ(db.statements.back(), Search("AND (((D.Nm_Cidade Like '%Campinas%' And D.Sg_UF = 'SP') Or "
                                         "(H.Nm_Cidade Like '%Campinas%' And H.Sg_UF = 'SP'))) -- Cidade Destino\r"));
  // Two matching stops fold into one row; destination before origin.
  EXPECT_EQ(Found("Goi", "GO", "n", "", true, true).size(), 1u);
  EXPECT_EQ(db.statements.back(),
            Search("AND ((D.Nm_Cidade Like '%n%') Or (H.Nm_Cidade Like '%n%')) -- Cidade Destino\r"
                   "AND (((C.Nm_Cidade Like '%Goi%' And C.Sg_UF = 'GO') Or (H.Nm_Cidade Like '%Goi%' And H.Sg_UF = "
                   "'GO'))) -- Cidade Origem\r"));
  // From a stop to the destination.
  EXPECT_EQ(Found("Uberlândia", "MG", "Bárbara", "SP", true, false),
            std::vector<std::string>{"Goiânia > Santa Bárbara d'Oeste 09:00"});
  // An apostrophe in a state is doubled as well: it finds nothing and breaks nothing.
  EXPECT_TRUE(Found("", "", "Paulo", "S'").empty());

  const VekError refused = ErrorOf([&] {
    horarios.Ob_cgpSistema(nullptr);
    horarios.adoRsHorariosLinha("", "", "", "", false, false);
  });
  EXPECT_EQ(refused.Source(), " -> cgdHorariosLinha.adoRsHorariosLinha, ");
}

}  // namespace
}  // namespace vek
