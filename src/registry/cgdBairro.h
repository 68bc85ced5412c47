#pragma once
// Neighbourhoods (TbBairro, key Cd_Bairro, numbered by the database).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdBairro : public cgdRecord<cgpBairro> {
 public:
  cgdBairro() : cgdRecord("TbBairro") {}
};

}  // namespace vek
