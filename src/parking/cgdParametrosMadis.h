#pragma once
// The access-control link settings of one company (TbParametrosMadis, key
// Cd_EmpresaUsuariaSistema alone: one row per company, given by the caller).
// The standard statements are its own.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdParametrosMadis : public cgdRecord<cgpParametrosMadis> {
 public:
  cgdParametrosMadis() : cgdRecord("TbParametrosMadis") {}
};

}  // namespace vek
