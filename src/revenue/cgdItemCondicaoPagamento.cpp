#include "vek/revenue/cgdItemCondicaoPagamento.h"

#include "vek/db/Field.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/cgdModulo.h"

namespace vek {
namespace {

constexpr int16_t kWeeklyPeriods = 1;
constexpr int16_t kMonthlyPeriods = 2;

}  // namespace

std::shared_ptr<cgpItemCondicaoPagamento> cgdItemCondicaoPagamento::EncontrarPeriodo(
    Date Dt_Movimento, int16_t Cd_TipoCondicaoPagamento) {
  return Run("EncontrarPeriodo", [&]() -> std::shared_ptr<cgpItemCondicaoPagamento> {
    int32_t day = 0;
    if (Cd_TipoCondicaoPagamento == kMonthlyPeriods) {
      day = Day(Dt_Movimento);
    } else if (Cd_TipoCondicaoPagamento == kWeeklyPeriods) {
      day = Weekday(Dt_Movimento);  // Sunday is 1
    } else {
      return nullptr;
    }
    const std::string d = std::to_string(day);
    ds_sql_ = SqlLines() << "SELECT A.*"
                         << "FROM   TbItemCondicaoPagamento A"
                         << "WHERE  A.Cd_CondicaoPagamento = " + KeyLiteral("Cd_CondicaoPagamento")
                         << "       AND A.No_InicioPeriodo <= " + d
                         << "       AND A.No_FinalPeriodo >= " + d + ";";
    Recordset items;
    OpenStatement(items);
    if (items.Eof()) {
      items.Close();
      return nullptr;
    }
    CopyRowToProperties(items, RecordObject());
    items.Close();
    return Ob_cgp();
  });
}

}  // namespace vek
