#include "vek/parking/cgdTicketSanitario.h"

#include <gtest/gtest.h>

#include <string>

#include "parking/ParkingData.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/parking/cgdParametrosMadis.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

using testing::CountOf;
using testing::ErrorOf;
using testing::Lines;

class cgdTicketSanitarioTest : public ::testing::Test {
 protected:
  cgdTicketSanitarioTest() {
    sanitario.Ob_cgpSistema(db.session);
    testing::AddTariff(db, 40, "SANITARIO", "1.5", 1, 3);
  }

  testing::TerminalDatabase db;
  cgdTicketSanitario sanitario;
};

TEST_F(cgdTicketSanitarioTest, ASaleIsStampedWithTheServersClockWhateverTheRecordSays) {
  auto sale = sanitario.Ob_cgp();
  sale->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  sale->Let("Dt_Entrada", Variant(DateSerial(2001, 1, 1)));
  sale->Let("Cd_Tarifa", Variant(40));
  sale->Let("Vl_Tarifa", Variant(Currency(1.5)));
  sale->Let("Qt_Unidade", Variant(3));
  sale->Let("Cd_Caixa", Variant(8));
  sanitario.Salvar();
  const int32_t number = CLng(sale->Get("Cd_TicketSanitario"));
  ASSERT_GT(number, 0);
  EXPECT_EQ(db.statements.back(),
            Lines({"INSERT INTO TbTicketSanitario (", "   Cd_EmpresaUsuariaSistema,", "   Cd_TicketSanitario,",
                   "   Dt_Entrada,", "   Cd_Tarifa,", "   Vl_Tarifa,", "   Qt_Unidade,", "   Cd_Caixa", "   )",
                   "Values (", "1,", std::to_string(number) + ",", "Getdate(),", "40,", "1.50,", "3,", "8)"}) +
                "\r");

  // The session clock stands for the server's on both engines.
  sale->RestaurarDefault();
  sale->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  sale->Let("Cd_TicketSanitario", Variant(number));
  sanitario.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbTicketSanitario A", "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       And A.Cd_TicketSanitario = " + std::to_string(number), ";"}) +
                                      "\r");
  EXPECT_EQ(Format(sale->Get("Dt_Entrada"), "dd/mm/yyyy hh:Nn:Ss"), "21/11/2026 10:30:00");
  EXPECT_EQ(CLng(sale->Get("Qt_Unidade")), 3);
  EXPECT_EQ(CCur(sale->Get("Vl_Tarifa")), Currency(1.5));

  // An update keeps the number; a second sale takes the next one.
  sale->Let("Qt_Unidade", Variant(4));
  sanitario.Salvar();
  sale->Let("Cd_TicketSanitario", Variant(0));
  sanitario.Salvar();
  EXPECT_EQ(CLng(sale->Get("Cd_TicketSanitario")), number + 1);
  EXPECT_EQ(CountOf(db, "TbTicketSanitario WHERE Qt_Unidade = 4"), 2);

  sanitario.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbTicketSanitario", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "       And Cd_TicketSanitario = " + std::to_string(number + 1)}) +
                                      "\r");
  EXPECT_EQ(CountOf(db, "TbTicketSanitario"), 1);
}

TEST(cgdParametrosMadisTest, OneRowPerCompanyKeyedByTheCompanyAlone) {
  testing::TerminalDatabase db;
  cgdParametrosMadis parametros;
  parametros.Ob_cgpSistema(db.session);
  auto settings = parametros.Ob_cgp();
  settings->Let("Cd_EmpresaUsuariaSistema", Variant(3));
  settings->Let("Qt_MinutosMaximoSaidaAposPagamento", Variant(20));
  parametros.Salvar();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT A.*", "FROM   TbParametrosMadis A", "WHERE  A.Cd_EmpresaUsuariaSistema = 0", ";"}) + "\r");
  settings->Let("Qt_MinutosMaximoSaidaAposPagamento", Variant(25));
  parametros.Salvar();
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT A.*", "FROM   TbParametrosMadis A", "WHERE  A.Cd_EmpresaUsuariaSistema = 3", ";"}) + "\r");
  EXPECT_EQ(CountOf(db, "TbParametrosMadis WHERE Qt_MinutosMaximoSaidaAposPagamento = 25"), 1);
  parametros.Excluir();
  EXPECT_EQ(db.statements.back(),
            Lines({"DELETE ", "FROM   TbParametrosMadis", "WHERE  Cd_EmpresaUsuariaSistema = 3"}) + "\r");
  EXPECT_EQ(CountOf(db, "TbParametrosMadis"), 0);
  settings->Let("Cd_EmpresaUsuariaSistema", Variant(0));
  EXPECT_EQ(ErrorOf([&] { parametros.Consultar(false); }).Number(), kErrorNoKey);
}

}  // namespace
}  // namespace vek
