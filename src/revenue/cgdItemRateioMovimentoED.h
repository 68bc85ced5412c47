#pragma once
// An apportionment line (TbItemRateioMovimentoED, key
// Cd_EmpresaUsuariaSistema, Cd_EmpresaOnibus, Cd_Cidade; nothing is
// numbered): how many of a bus company's boardings go to one city.
// Incluir opens its empty record set on two conditions only, tenant 0 and
// city 0, as the boarding map's items do.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdItemRateioMovimentoED : public cgdRecord<cgpItemRateioMovimentoED> {
 public:
  cgdItemRateioMovimentoED() : cgdRecord("TbItemRateioMovimentoED") {}

 protected:
  std::string EmptySelectStatement() override;
};

}  // namespace vek
