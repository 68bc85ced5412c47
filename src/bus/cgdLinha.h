#pragma once
// Lines (TbLinha, key Cd_Linha, numbered by the database): an origin and a
// destination city. Shared by every operating company. Deleting a line
// leaves its timetables alone: while it has any, the database refuses.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdLinha : public cgdRecord<cgpLinha> {
 public:
  cgdLinha() : cgdRecord("TbLinha") {}
};

}  // namespace vek
