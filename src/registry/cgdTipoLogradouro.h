#pragma once
// Street types (TbTipoLogradouro, key Cd_TipoLogradouro, numbered by the
// database). With the code at 0 a street type is found by its name
// Nm_TipoLogradouro; that look-up's first line ends in a blank, as it always has.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTipoLogradouro : public cgdRecordFoundByText<cgpTipoLogradouro> {
 public:
  cgdTipoLogradouro()
      : cgdRecordFoundByText("TbTipoLogradouro", "Nm_TipoLogradouro", "SELECT A.* \rFROM   TbTipoLogradouro A\r", "") {}
};

}  // namespace vek
