#pragma once
// An item of the boarding and alighting map (TbItemMapaMovimentoED, key
// Cd_EmpresaUsuariaSistema, Cd_EmpresaOnibus, Dt_Movimento, Cd_Cidade;
// nothing is numbered): the passengers of one bus company who boarded
// (Qt_Embarques) and alighted (Qt_Desembarques) at the terminal on one day,
// for one destination city. The day is written between quotes in the
// session's date format ("       and A.Dt_Movimento = '2026-03-02'").
// Incluir opens its empty record set on two conditions only, tenant 0 and
// city 0, as the system always did.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdItemMapaMovimentoED : public cgdRecord<cgpItemMapaMovimentoED> {
 public:
  cgdItemMapaMovimentoED() : cgdRecord("TbItemMapaMovimentoED") {}

 protected:
  std::string EmptySelectStatement() override;
};

}  // namespace vek
