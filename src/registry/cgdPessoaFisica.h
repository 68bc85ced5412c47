#pragma once
// A person's natural-person record (TbPessoaFisica, key Cd_Pessoa, the
// person's own code: nothing is numbered).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdPessoaFisica : public cgdRecord<cgpPessoaFisica> {
 public:
  cgdPessoaFisica() : cgdRecord("TbPessoaFisica") {}
};

}  // namespace vek
