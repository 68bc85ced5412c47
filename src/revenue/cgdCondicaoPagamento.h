#pragma once
// Payment terms (TbCondicaoPagamento, key Cd_CondicaoPagamento, numbered by
// the database): Cd_TipoCondicaoPagamento 1 splits the week into billing
// periods, 2 the month; the periods are its items (cgdItemCondicaoPagamento).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdCondicaoPagamento : public cgdRecord<cgpCondicaoPagamento> {
 public:
  cgdCondicaoPagamento() : cgdRecord("TbCondicaoPagamento") {}

  // Deletes the term's items, then the term (a failure of the first
  // statement stops before the second). A code of 0 resets Ob_cgp and
  // raises 0x80040201.
  void Excluir();
};

}  // namespace vek
