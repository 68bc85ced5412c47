#include "vek/bus/cgdAgendaSom.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/BusTerminal.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

TEST(cgdAgendaSomTest, AnAnnouncementIsNumberedWithinItsCompanyAndMarkedPlayed) {
  testing::BusTerminal db;
  cgdAgendaSom agenda;
  agenda.Ob_cgpSistema(db.session);
  auto announcement = agenda.Ob_cgp();
  announcement->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  announcement->Let("Cd_ViagemOnibus", Variant(7));
  announcement->Let("Dt_Agendamento", Variant(DateSerial(2026, 11, 21) + TimeSerial(10, 40, 0)));
  agenda.Salvar();
  // The empty record set compares the code alone.
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbAgendaSom A\rWHERE  A.Cd_AgendaSom = 0\r;\r");
  EXPECT_EQ(CLng(announcement->Get("Cd_AgendaSom")), 1);
  EXPECT_EQ(agenda.nomeCamposSequencial(), std::vector<std::string>{"Cd_AgendaSom"});

  announcement->Let("Ic_Feito", Variant(true));
  agenda.Salvar();
  const std::string select =
      Lines({"SELECT A.*", "FROM   TbAgendaSom A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1", "And A.Cd_AgendaSom = 1", ";"}) +
      "\r";
  EXPECT_EQ(db.statements.back(), select);
  EXPECT_TRUE(CBool(db.Query("SELECT Ic_Feito FROM TbAgendaSom")->Fields().Item(0).Value()));

  // Another company's announcement 1 is another row.
  announcement->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  EXPECT_EQ(ErrorOf([&] { agenda.Consultar(false); }).Number(), kErrorRecordNotFound);
  announcement->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  announcement->Let("Cd_AgendaSom", Variant(1));
  agenda.Excluir();
  EXPECT_EQ(db.statements.back(),
            Lines({"DELETE ", "FROM   TbAgendaSom", "WHERE  Cd_EmpresaUsuariaSistema = 1", "And Cd_AgendaSom = 1"}) + "\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbAgendaSom")->RecordCount(), 0);
}

}  // namespace
}  // namespace vek
