#pragma once
// A person's e-mail address (TbEMail, key Cd_Pessoa; nothing is numbered).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdEMail : public cgdRecord<cgpEMail> {
 public:
  cgdEMail() : cgdRecord("TbEMail") {}
};

}  // namespace vek
