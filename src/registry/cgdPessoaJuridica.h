#pragma once
// A person's legal-person record (TbPessoaJuridica, key Cd_Pessoa, the
// person's own code: nothing is numbered).

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdPessoaJuridica : public cgdRecord<cgpPessoaJuridica> {
 public:
  cgdPessoaJuridica() : cgdRecord("TbPessoaJuridica") {}
};

}  // namespace vek
