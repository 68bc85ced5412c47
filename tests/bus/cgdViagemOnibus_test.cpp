#include "vek/bus/cgdViagemOnibus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string ByKey(int32_t tenant, int32_t trip) {
  return Lines({"SELECT A.* ", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = " + std::to_string(tenant),
                "And Cd_ViagemOnibus = " + std::to_string(trip), ";"}) +
         "\r";
}
std::string Window(const std::string& from, const std::string& to) {
  return Lines({"SELECT TOP 1 A.*", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                "And Cd_HorarioLinha = 1", "And Hr_Previsto Between '" + from + "' And '" + to + "'",
                "-- (Data Atual - 11 horas) And (Data Atual + 12 horas)"}) +
         "\r";
}

class cgdViagemOnibusTest : public ::testing::Test {
 protected:
  cgdViagemOnibusTest() { viagem.Ob_cgpSistema(db.session); }

  // Looks a trip of timetable (1,1) up around now; its code, 0 when none.
  int32_t AroundNow() {
    viagem.Ob_cgp()->RestaurarDefault();
    viagem.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    viagem.Ob_cgp()->Let("Cd_HorarioLinha", Variant(1));
    return CLng(viagem.Consultar()->Get("Cd_ViagemOnibus"));
  }
  std::vector<std::string> Trips() { return db.Column("SELECT Cd_ViagemOnibus FROM TbViagemOnibus ORDER BY 1", "Cd_ViagemOnibus"); }

  testing::BusTerminal db;
  cgdViagemOnibus viagem;
};

TEST_F(cgdViagemOnibusTest, ConsultarTakesTheKeyThenThePlatformThenTheTimetable) {
  db.Trip(1, 1, 1, "2026-11-21 08:00:00", 3, 2);
  db.Trip(2, 1, 1, "2026-11-21 18:00:00", 3, 2);
  db.Trip(3, 1, 1, "2026-11-21 08:00:00", 3, 2, 2);
  db.Query("UPDATE TbViagemOnibus SET Hr_ChegadaRodoviaria = '2026-11-21 07:50:00' WHERE Cd_ViagemOnibus = 1");
  db.Query("UPDATE TbViagemOnibus SET Hr_ChegadaRodoviaria = '2026-11-21 07:55:00' WHERE Cd_ViagemOnibus = 2");
  auto trip = viagem.Ob_cgp();
  trip->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  trip->Let("Cd_ViagemOnibus", Variant(1));
  trip->Let("No_Plataforma", Variant(3));
  trip->Let("Cd_HorarioLinha", Variant(1));
  EXPECT_EQ(Format(viagem.Consultar(false)->Get("Hr_Previsto"), "hh:Nn"), "08:00");
  EXPECT_EQ(db.statements.back(), ByKey(1, 1));

  // The trip at platform 3 in state 2 that arrived last.
  trip->Let("Cd_ViagemOnibus", Variant(0));
  trip->Let("No_Andamento", Variant(2));
  EXPECT_EQ(CLng(viagem.Consultar(false)->Get("Cd_ViagemOnibus")), 2);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT TOP 1 A.*", "FROM     TbViagemOnibus A",
                                         "WHERE    Cd_EmpresaUsuariaSistema = 1", "And No_Plataforma = 3",
                                         "And No_Andamento = 2", "ORDER BY Hr_ChegadaRodoviaria Desc"}) +
                                      "\r");

  // By line, timetable and the exact expected time.
  trip->RestaurarDefault();
  trip->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  trip->Let("Cd_Linha", Variant(1));
  trip->Let("Cd_HorarioLinha", Variant(1));
  trip->Let("Hr_Previsto", Variant(DateSerial(2026, 11, 21) + TimeSerial(18, 0, 0)));
  EXPECT_EQ(CLng(viagem.Consultar()->Get("Cd_ViagemOnibus")), 2);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.* ", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "And Cd_Linha = 1", "And Cd_HorarioLinha = 1",
                                         "And A.Hr_Previsto = '2026-11-21 18:00:00'"}) +
                                      "\r");
  trip->Let("Cd_ViagemOnibus", Variant(0));
  trip->Let("No_Plataforma", Variant(0));
  trip->Let("Hr_Previsto", Variant(DateSerial(2026, 11, 21) + TimeSerial(18, 0, 1)));
  EXPECT_EQ(CLng(viagem.Consultar()->Get("Cd_ViagemOnibus")), 0);

  // Nothing to look up by.
  trip->RestaurarDefault();
  trip->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  const VekError none = ErrorOf([&] { viagem.Consultar(); });
  EXPECT_EQ(none.Number(), kErrorNoKey);
  EXPECT_EQ(none.Source(), " -> cgdViagemOnibus.Consultar,  -> cgdViagemOnibus.Consultar, ");
}

TEST_F(cgdViagemOnibusTest, TheWindowAroundNowIsElevenHoursBackAndTwelveAhead) {
  db.Trip(7, 1, 1, "2026-11-21 23:30:00");
  db.clock->Set(DateSerial(2026, 11, 21) + TimeSerial(11, 30, 0));
  EXPECT_EQ(AroundNow(), 7);
  EXPECT_EQ(db.statements.back(), Window("2026-11-21 00:30:00", "2026-11-21 23:30:00"));
  db.clock->Set(DateSerial(2026, 11, 21) + TimeSerial(11, 29, 59));
  EXPECT_EQ(AroundNow(), 0);
  db.clock->Set(DateSerial(2026, 11, 22) + TimeSerial(10, 30, 0));
  EXPECT_EQ(AroundNow(), 7);
  EXPECT_EQ(db.statements.back(), Window("2026-11-21 23:30:00", "2026-11-22 22:30:00"));
  db.clock->Set(DateSerial(2026, 11, 22) + TimeSerial(10, 30, 1));
  EXPECT_EQ(AroundNow(), 0);
}

TEST_F(cgdViagemOnibusTest, SavingADaysTripUpdatesItByCalendarDayOrCreatesIt) {
  db.Trip(4, 1, 1, "2026-11-21 08:00:00", 3);
  auto trip = viagem.Ob_cgp();
  trip->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  trip->Let("Cd_Linha", Variant(1));
  trip->Let("Cd_HorarioLinha", Variant(1));
  trip->Let("Hr_Previsto", Variant(DateSerial(2026, 11, 21) + TimeSerial(8, 20, 0)));
  trip->Let("No_Plataforma", Variant(6));
  trip->Let("Qt_EmbarquesComPassagem", Variant(31));
  viagem.Salvar();
  EXPECT_EQ(db.statements, (std::vector<std::string>{Lines({"SELECT A.* ", "FROM   TbViagemOnibus A",
                                                            "WHERE  Cd_EmpresaUsuariaSistema = 1", "And Cd_Linha = 1",
                                                            "And Cd_HorarioLinha = 1", "And Day(Hr_Previsto) = 21",
                                                            "And Month(Hr_Previsto) = 11",
                                                            "And Year(Hr_Previsto) = 2026"}) +
                                                     "\r"}));
  // The day's trip took the changes and kept its number.
  EXPECT_EQ(CLng(trip->Get("Cd_ViagemOnibus")), 4);
  EXPECT_EQ(db.Column("SELECT Qt_EmbarquesComPassagem FROM TbViagemOnibus WHERE Cd_ViagemOnibus = 4",
                      "Qt_EmbarquesComPassagem"),
            std::vector<std::string>{"31"});

  // The next day has no trip yet: it is created under the next number.
  trip->Let("Cd_ViagemOnibus", Variant(0));
  trip->Let("Hr_Previsto", Variant(DateSerial(2026, 11, 22) + TimeSerial(8, 0, 0)));
  viagem.Salvar();
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 0",
                                         "And Cd_ViagemOnibus = 0", ";"}) +
                                      "\r");
  EXPECT_EQ(CLng(trip->Get("Cd_ViagemOnibus")), 1);
  EXPECT_EQ(Trips(), (std::vector<std::string>{"1", "4"}));
  EXPECT_EQ(viagem.nomeCamposSequencial(), std::vector<std::string>{"Cd_ViagemOnibus"});

  // Without an expected time Alterar looks around now: 08:00 today is there.
  trip->Let("Cd_ViagemOnibus", Variant(0));
  trip->Let("Hr_Previsto", Variant(Date()));
  trip->Let("Qt_EmbarquesSemPassagem", Variant(2));
  viagem.Alterar();
  EXPECT_EQ(db.statements.back(), Window("2026-11-20 23:30:00", "2026-11-21 22:30:00"));
  EXPECT_EQ(CLng(trip->Get("Cd_ViagemOnibus")), 4);
}

TEST_F(cgdViagemOnibusTest, DeletingWithoutTheCodeRemovesEveryTripOfTheCompanyAtThatTime) {
  db.Trip(1, 1, 1, "2026-11-21 08:00:00");
  db.Trip(2, 2, 3, "2026-11-21 08:00:00");
  db.Trip(3, 1, 1, "2026-11-21 08:00:00", 0, 0, 2);
  db.Trip(4, 1, 1, "2026-11-22 08:00:00");
  auto trip = viagem.Ob_cgp();
  trip->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  trip->Let("Cd_ViagemOnibus", Variant(4));
  viagem.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbViagemOnibus", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "And Cd_ViagemOnibus = 4"}) +
                                      "\r");
  trip->Let("Cd_ViagemOnibus", Variant(0));
  trip->Let("Hr_Previsto", Variant(DateSerial(2026, 11, 21) + TimeSerial(8, 0, 0)));
  viagem.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbViagemOnibus A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "And Hr_Previsto = '2026-11-21 08:00:00'", ";"}) +
                                      "\r");
  EXPECT_EQ(Trips(), std::vector<std::string>{"3"});
  trip->Let("Hr_Previsto", Variant(Date()));
  EXPECT_EQ(ErrorOf([&] { viagem.Excluir(); }).Number(), kErrorNoKey);
}

TEST_F(cgdViagemOnibusTest, ApagarAgendaSomRemovesTheTripsAnnouncementsOfEveryCompany) {
  db.Query("INSERT INTO TbAgendaSom (Cd_EmpresaUsuariaSistema, Cd_AgendaSom, Cd_ViagemOnibus, Ic_Feito) VALUES (1, 1, 5, 0)");
  db.Query("INSERT INTO TbAgendaSom (Cd_EmpresaUsuariaSistema, Cd_AgendaSom, Cd_ViagemOnibus, Ic_Feito) VALUES (2, 2, 5, 0)");
  db.Query("INSERT INTO TbAgendaSom (Cd_EmpresaUsuariaSistema, Cd_AgendaSom, Cd_ViagemOnibus, Ic_Feito) VALUES (1, 3, 6, 0)");
  viagem.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  viagem.Ob_cgp()->Let("Cd_ViagemOnibus", Variant(5));
  viagem.ApagarAgendaSom();
  EXPECT_EQ(db.statements, std::vector<std::string>{"DELETE\rFROM   TbAgendaSom\rWHERE  Cd_ViagemOnibus = 5\r"});
  EXPECT_EQ(db.Column("SELECT Cd_AgendaSom FROM TbAgendaSom", "Cd_AgendaSom"), std::vector<std::string>{"3"});
}

TEST_F(cgdViagemOnibusTest, TheSearchGridJoinsTheTimetableOnTenantAndCodeOnly) {
  db.Trip(1, 1, 1, "2026-11-21 08:00:00", 3);
  db.Trip(2, 3, 4, "2026-11-21 11:00:05", 7);
  db.Trip(3, 1, 1, "2026-11-21 08:00:00", 1, 0, 2);  // company 2 has no timetable 1
  ListGrid grid;
  TextBox count;
  viagem.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_EmpresaUsuariaSistema = 1");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_ViagemOnibus,", "B.Nm_Cidade As Nm_CidadeOrigem,", "C.Nm_Cidade As Nm_CidadeDestino,",
                   "A.Hr_Previsto", "FROM     TbViagemOnibus A",
                   "INNER JOIN TbHorariosLinha D On A.Cd_EmpresaUsuariaSistema = D.Cd_EmpresaUsuariaSistema",
                   "And A.Cd_HorarioLinha =  D.Cd_HorarioLinha", "INNER JOIN TbLinha E On D.Cd_Linha = E.Cd_Linha",
                   "INNER JOIN TbCidade B On E.Cd_CidadeOrigem = B.Cd_Cidade",
                   "INNER JOIN TbCidade C On E.Cd_CidadeDestino = C.Cd_Cidade", "WHERE A.Cd_EmpresaUsuariaSistema = 1",
                   "ORDER BY A.Hr_Previsto,", "A.No_Plataforma"}) +
                "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t1\tGoiânia\tSão Paulo\t21/11/2026 08:00:00",
                                                    "\t2\tAnápolis\tGoiânia\t21/11/2026 11:00:05"}));
  EXPECT_EQ(count.Text(), "2");
}

}  // namespace
}  // namespace vek
