// Payment terms, their items, the period of a movement and the items' lists.

#include "vek/revenue/cgdCondicaoPagamento.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "revenue/BillingData.h"
#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/revenue/cgdItemCondicaoPagamento.h"
#include "vek/revenue/cgdItensCondicaoPagamento.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;

std::string PeriodOf(int32_t term, int32_t day) {
  const std::string d = std::to_string(day);
  return Lines({"SELECT A.*", "FROM   TbItemCondicaoPagamento A",
                "WHERE  A.Cd_CondicaoPagamento = " + std::to_string(term), "       AND A.No_InicioPeriodo <= " + d,
                "       AND A.No_FinalPeriodo >= " + d + ";"}) +
         "\r";
}

// Term 1 is weekly: Sunday to Tuesday billed on Wednesday (4) due on Friday
// (6); Wednesday to Friday billed Saturday due Monday; the day after Friday
// alone. Term 2 is monthly in three spans, the last ending at 30.
class PaymentTermsTest : public ::testing::Test {
 protected:
  PaymentTermsTest() {
    term.Ob_cgpSistema(db.session);
    item.Ob_cgpSistema(db.session);
    items.Ob_cgpSistema(db.session);
    SaveTerm(1, "SEMANAL");
    SaveItem(1, 1, 3, 4, 6);
    SaveItem(1, 4, 6, 7, 2);
    SaveItem(1, 7, 7, 1, 3);
    SaveTerm(2, "MENSAL");
    SaveItem(2, 1, 10, 11, 20);
    SaveItem(2, 11, 20, 21, 30);
    SaveItem(2, 21, 30, 1, 10);
    db.statements.clear();
  }

  void SaveTerm(int32_t type, const std::string& name) {
    auto record = term.Ob_cgp();
    record->RestaurarDefault();
    record->Let("Cd_TipoCondicaoPagamento", Variant(type));
    record->Let("Ds_CondicaoPagamento", Variant(name));
    term.Salvar();
    codes.push_back(CLng(record->Get("Cd_CondicaoPagamento")));
  }
  void SaveItem(int32_t type, int32_t first, int32_t last, int32_t billing, int32_t due) {
    auto record = item.Ob_cgp();
    record->Let("Cd_CondicaoPagamento", Variant(codes.at(static_cast<size_t>(type - 1))));
    record->Let("No_InicioPeriodo", Variant(first));
    record->Let("No_FinalPeriodo", Variant(last));
    record->Let("No_Faturamento", Variant(billing));
    record->Let("No_Vencimento", Variant(due));
    item.Salvar();
  }
  // The billing and due days of a movement's period, or {-1, -1}.
  std::pair<int32_t, int32_t> Period(int32_t term_code, Date day, int16_t type) {
    auto finder = cgdItemCondicaoPagamento();
    finder.Ob_cgpSistema(db.session);
    finder.Ob_cgp()->Let("Cd_CondicaoPagamento", Variant(term_code));
    auto found = finder.EncontrarPeriodo(day, type);
    if (!found) return {-1, -1};
    EXPECT_EQ(found, finder.Ob_cgp());
    return {CLng(found->Get("No_Faturamento")), CLng(found->Get("No_Vencimento"))};
  }

  testing::TerminalDatabase db;
  cgdCondicaoPagamento term;
  cgdItemCondicaoPagamento item;
  cgdItensCondicaoPagamento items;
  std::vector<int32_t> codes;
};

TEST_F(PaymentTermsTest, AMovementFindsThePeriodHoldingItsWeekdayOrDayOfTheMonth) {
  const int32_t weekly = codes[0], monthly = codes[1];
  // Sunday 1 March 2026 is weekday 1; Saturday 7 March, the day after Friday, is 7.
  EXPECT_EQ(Period(weekly, DateSerial(2026, 3, 1), 1), (std::pair<int32_t, int32_t>{4, 6}));
  EXPECT_EQ(db.statements.back(), PeriodOf(weekly, 1));
  EXPECT_EQ(Period(weekly, DateSerial(2026, 3, 7) + TimeSerial(23, 59, 0), 1), (std::pair<int32_t, int32_t>{1, 3}));
  EXPECT_EQ(db.statements.back(), PeriodOf(weekly, 7));
  EXPECT_EQ(Period(weekly, DateSerial(2026, 3, 4), 1), (std::pair<int32_t, int32_t>{7, 2}));  // Wednesday
  EXPECT_EQ(Period(weekly, DateSerial(2026, 3, 3), 1), (std::pair<int32_t, int32_t>{4, 6}));  // Tuesday, the span's end
  // Monthly: both ends of a span belong to it.
  EXPECT_EQ(Period(monthly, DateSerial(2026, 3, 10), 2), (std::pair<int32_t, int32_t>{11, 20}));
  EXPECT_EQ(Period(monthly, DateSerial(2026, 3, 11), 2), (std::pair<int32_t, int32_t>{21, 30}));
  EXPECT_EQ(Period(monthly, DateSerial(2026, 3, 30), 2), (std::pair<int32_t, int32_t>{1, 10}));
  EXPECT_EQ(db.statements.back(), PeriodOf(monthly, 30));
  // The 31st lies beyond the last span: no object.
  EXPECT_EQ(Period(monthly, DateSerial(2026, 3, 31), 2), (std::pair<int32_t, int32_t>{-1, -1}));
  EXPECT_EQ(db.statements.back(), PeriodOf(monthly, 31));
  // The type decides how the day is counted, not the term: a monthly
  // reading of Saturday 7 March looks for day 7 of the month.
  EXPECT_EQ(Period(monthly, DateSerial(2026, 3, 7), 2), (std::pair<int32_t, int32_t>{11, 20}));
}

TEST_F(PaymentTermsTest, AnUnknownTypeFindsNothingWithoutAStatementAndLeavesTheItemAsItWas) {
  cgdItemCondicaoPagamento finder;
  finder.Ob_cgpSistema(db.session);
  finder.Ob_cgp()->Let("Cd_CondicaoPagamento", Variant(codes[1]));
  finder.Ob_cgp()->Let("No_Vencimento", Variant(99));
  for (int16_t type : {int16_t{0}, int16_t{3}, int16_t{-1}}) {
    EXPECT_EQ(finder.EncontrarPeriodo(DateSerial(2026, 3, 2), type), nullptr);
  }
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(finder.Ob_cgp()->Get("No_Vencimento"), Variant(99));
  // A term without items finds nothing either, and keeps what the item held.
  finder.Ob_cgp()->Let("Cd_CondicaoPagamento", Variant(777));
  EXPECT_EQ(finder.EncontrarPeriodo(DateSerial(2026, 3, 2), 2), nullptr);
  EXPECT_EQ(finder.Ob_cgp()->Get("No_Vencimento"), Variant(99));
}

TEST_F(PaymentTermsTest, ATermIsNumberedByTheDatabaseAndItsItemsAreKeyedByTermAndStartDay) {
  EXPECT_EQ(codes.size(), 2u);
  EXPECT_NE(codes[0], codes[1]);
  EXPECT_TRUE(term.temCampoSequencial());
  EXPECT_EQ(term.nomeCamposSequencial(), std::vector<std::string>{"Cd_CondicaoPagamento"});
  EXPECT_FALSE(item.temCampoSequencial());

  item.Ob_cgp()->Let("Cd_CondicaoPagamento", Variant(codes[1]));
  item.Ob_cgp()->Let("No_InicioPeriodo", Variant(11));
  item.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbItemCondicaoPagamento A",
                                         "WHERE  A.Cd_CondicaoPagamento = " + std::to_string(codes[1]),
                                         "       and A.No_InicioPeriodo = 11", ";"}) +
                                      "\r");
  EXPECT_EQ(CLng(item.Ob_cgp()->Get("No_FinalPeriodo")), 20);

  item.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbItemCondicaoPagamento",
                                         "WHERE  Cd_CondicaoPagamento = " + std::to_string(codes[1]),
                                         "       And No_InicioPeriodo = 11"}) +
                                      "\r");
  EXPECT_EQ(Period(codes[1], DateSerial(2026, 3, 15), 2), (std::pair<int32_t, int32_t>{-1, -1}));

  // No start day is no key.
  item.Ob_cgp()->Let("No_InicioPeriodo", Variant(0));
  EXPECT_EQ(ErrorOf([&] { item.Excluir(); }).Number(), kErrorNoKey);
}

TEST_F(PaymentTermsTest, DeletingATermDeletesItsItemsFirst) {
  term.Ob_cgp()->Let("Cd_CondicaoPagamento", Variant(codes[0]));
  term.Excluir();
  const std::string code = std::to_string(codes[0]);
  ASSERT_EQ(db.statements.size(), 2u);
  EXPECT_EQ(db.statements[0],
            Lines({"DELETE ", "FROM   TbItemCondicaoPagamento", "WHERE  Cd_CondicaoPagamento = " + code}) + "\r");
  EXPECT_EQ(db.statements[1],
            Lines({"DELETE ", "FROM   TbCondicaoPagamento", "WHERE  Cd_CondicaoPagamento = " + code}) + "\r");
  EXPECT_EQ(testing::RowCount(db, "TbItemCondicaoPagamento WHERE Cd_CondicaoPagamento = " + code), 0);
  EXPECT_EQ(testing::RowCount(db, "TbCondicaoPagamento"), 1);
  EXPECT_EQ(testing::RowCount(db, "TbItemCondicaoPagamento"), 3);  // the other term's

  // Without a code nothing is sent and the term is reset.
  db.statements.clear();
  term.Ob_cgp()->Let("Cd_CondicaoPagamento", Variant(0));
  term.Ob_cgp()->Let("Ds_CondicaoPagamento", Variant("X"));
  const VekError error = ErrorOf([&] { term.Excluir(); });
  EXPECT_EQ(error.Number(), kErrorNoKey);
  EXPECT_EQ(error.Source(), " -> cgdCondicaoPagamento.Excluir,  -> cgdCondicaoPagamento.Excluir, ");
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(term.Ob_cgp()->Get("Ds_CondicaoPagamento"), Variant(""));
}

TEST_F(PaymentTermsTest, TheItemsGridListsOneTermsItemsByStartDayUnderItsHeader) {
  ListGrid grid;
  grid.AddItem("left over");
  items.CarregarMSFlexGrid(grid, "A.Cd_CondicaoPagamento = " + std::to_string(codes[0]));
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.*, B.Cd_TipoCondicaoPagamento",
                   "FROM     TbItemCondicaoPagamento A JOIN TbCondicaoPagamento B",
                   "                                        ON A.Cd_CondicaoPagamento = B.Cd_CondicaoPagamento",
                   "WHERE A.Cd_CondicaoPagamento = " + std::to_string(codes[0]), "ORDER BY A.No_InicioPeriodo"}) +
                "\r");
  EXPECT_EQ(grid.FormatString(), "<|<Inicio|<Fim|<Faturamento|<Vencimento");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t1\t3\t4\t6", "\t4\t6\t7\t2", "\t7\t7\t1\t3"}));
}

TEST_F(PaymentTermsTest, TheSearchGridListsEveryItemByTermThenStartDayWithItsCount) {
  db.Query("INSERT INTO TbCondicaoPagamento (Cd_TipoCondicaoPagamento, Ds_CondicaoPagamento) VALUES (2, 'VAZIA')");
  ListGrid grid;
  TextBox count;
  items.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.*,", "         B.No_InicioPeriodo,", "         B.No_FinalPeriodo,",
                   "         B.No_Faturamento,", "         B.No_Vencimento", "FROM     TbCondicaoPagamento A",
                   "         Join TbItemCondicaoPagamento B",
                   "            On A.Cd_CondicaoPagamento = B.Cd_CondicaoPagamento", "ORDER BY A.Cd_CondicaoPagamento,",
                   "         B.No_InicioPeriodo"}) +
                "\r");
  const std::string w = std::to_string(codes[0]), m = std::to_string(codes[1]);
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t" + w + "\t1\t1\t3\t4\t6", "\t" + w + "\t1\t4\t6\t7\t2",
                                                    "\t" + w + "\t1\t7\t7\t1\t3", "\t" + m + "\t2\t1\t10\t11\t20",
                                                    "\t" + m + "\t2\t11\t20\t21\t30", "\t" + m + "\t2\t21\t30\t1\t10"}));
  EXPECT_EQ(count.Text(), "6");

  const VekError error = ErrorOf([&] { items.CarregarMSFlexGridDeBusca(grid, count, "B.Nada = 1"); });
  EXPECT_EQ(error.Source().substr(0, testing::ProviderSource().size()), testing::ProviderSource());
  EXPECT_TRUE(error.Source().ends_with(" -> cgdItensCondicaoPagamento.CarregarMSFlexGridDeBusca, ")) << error.Source();
}

}  // namespace
}  // namespace vek
