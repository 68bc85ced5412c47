#pragma once
// The ERP's parameters of an operating company (TbParametrosMicrosiga, key
// Cd_EmpresaUsuariaSistema, one row per company): the branch, prefix, type,
// nature, cost centre, bank and the other constant columns that the
// receivables' export writes into every title (cgdContasReceber::ExportarDBF).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdParametrosMicrosiga : public cgdRecord<cgpParametrosMicrosiga> {
 public:
  cgdParametrosMicrosiga() : cgdRecord("TbParametrosMicrosiga") {}
};

}  // namespace vek
