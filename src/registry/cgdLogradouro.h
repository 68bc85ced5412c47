#pragma once
// Streets (TbLogradouro, key Cd_Logradouro, numbered by the database).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdLogradouro : public cgdRecord<cgpLogradouro> {
 public:
  cgdLogradouro() : cgdRecord("TbLogradouro") {}
};

}  // namespace vek
