#pragma once
// A person's telephone of one type (TbTelefone, key Cd_Pessoa then
// No_TipoTelefone; nothing is numbered).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTelefone : public cgdRecord<cgpTelefone> {
 public:
  cgdTelefone() : cgdRecord("TbTelefone") {}
};

}  // namespace vek
