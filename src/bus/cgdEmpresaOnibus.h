#pragma once
// The bus companies that operate from the terminal (TbEmpresaOnibus, key
// Cd_EmpresaOnibus, which is the company's own person code: nothing is
// numbered here). Shared by every operating company.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdEmpresaOnibus : public cgdRecord<cgpEmpresaOnibus> {
 public:
  cgdEmpresaOnibus() : cgdRecord("TbEmpresaOnibus") {}
};

}  // namespace vek
