#pragma once
// States (TbUF): found by their abbreviation Sg_UF when it is given, else by
// the code Cd_UF; deleted by the abbreviation.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdUF : public cgdRecord<cgpUF> {
 public:
  cgdUF() : cgdRecord("TbUF", {"Sg_UF"}) {}

 protected:
  bool KeyMissing() override;
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;

 private:
  bool HasAbbreviation();
};

}  // namespace vek
