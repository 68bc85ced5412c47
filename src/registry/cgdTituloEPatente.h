#pragma once
// Titles and ranks (TbTituloEPatente, key Cd_TituloEPatente, numbered by the
// database). With the code at 0 a title is found by its name Nm_TituloEPatente.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTituloEPatente : public cgdRecordFoundByText<cgpTituloEPatente> {
 public:
  cgdTituloEPatente()
      : cgdRecordFoundByText("TbTituloEPatente", "Nm_TituloEPatente", "SELECT A.*\rFROM   TbTituloEPatente A\r", "") {}
};

}  // namespace vek
