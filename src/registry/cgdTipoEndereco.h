#pragma once
// Address types (TbTipoEndereco, key Cd_TipoEndereco, numbered by the database).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTipoEndereco : public cgdRecord<cgpTipoEndereco> {
 public:
  cgdTipoEndereco() : cgdRecord("TbTipoEndereco") {}
};

}  // namespace vek
