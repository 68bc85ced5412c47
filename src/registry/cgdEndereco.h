#pragma once
// A person's address of one type (TbEndereco, key Cd_TipoEndereco then
// Cd_Pessoa, in that order in every statement; nothing is numbered).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdEndereco : public cgdRecord<cgpEndereco> {
 public:
  cgdEndereco() : cgdRecord("TbEndereco") {}
};

}  // namespace vek
