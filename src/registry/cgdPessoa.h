#pragma once
// People (TbPessoa, key Cd_Pessoa, numbered by the database). Deleting a
// person is one statement on TbPessoa: its natural-person, legal-person,
// address, telephone and e-mail rows stay where they are.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdPessoa : public cgdRecord<cgpPessoa> {
 public:
  cgdPessoa() : cgdRecord("TbPessoa") {}
};

}  // namespace vek
