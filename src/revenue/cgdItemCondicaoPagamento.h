#pragma once
// The billing periods of a payment term (TbItemCondicaoPagamento, key
// Cd_CondicaoPagamento, No_InicioPeriodo; nothing numbered): the days
// No_InicioPeriodo to No_FinalPeriodo, both included, of the week (1 Sunday
// ... 7 Saturday) or of the month (1 to 31), billed on No_Faturamento and
// due on No_Vencimento.

#include <cstdint>
#include <memory>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"
#include "vek/platform/Date.h"

namespace vek {

class cgdItemCondicaoPagamento : public cgdRecord<cgpItemCondicaoPagamento> {
 public:
  cgdItemCondicaoPagamento() : cgdRecord("TbItemCondicaoPagamento") {}

  // The item of the term Cd_CondicaoPagamento (of Ob_cgp) whose span holds
  // the day of the movement: its weekday (Sunday 1) for a weekly term
  // (Cd_TipoCondicaoPagamento 1), its day of the month for a monthly one (2).
  // Loads that row into Ob_cgp, column by column as Consultar does, and
  // returns Ob_cgp; returns null, leaving Ob_cgp as it was, when no span
  // holds the day or the type is neither (no statement is run then). Where
  // spans overlap, the first row the database returns wins.
  std::shared_ptr<cgpItemCondicaoPagamento> EncontrarPeriodo(Date Dt_Movimento, int16_t Cd_TipoCondicaoPagamento);
};

}  // namespace vek
