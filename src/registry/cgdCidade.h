#pragma once
// Cities (TbCidade, key Cd_Cidade, numbered by the database).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdCidade : public cgdRecord<cgpCidade> {
 public:
  cgdCidade() : cgdRecord("TbCidade") {}
};

}  // namespace vek
