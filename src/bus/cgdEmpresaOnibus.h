#pragma once
// The bus companies that operate from the terminal (TbEmpresaOnibus, key
// Cd_EmpresaOnibus, which is the company's own person code: nothing is
// numbered here). Shared by every operating company.

#include <cstdint>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"
#include "vek/platform/Date.h"

namespace vek {

class cgdEmpresaOnibus : public cgdRecord<cgpEmpresaOnibus> {
 public:
  cgdEmpresaOnibus() : cgdRecord("TbEmpresaOnibus") {}

  // Passengers boarded (with and without a ticket) on the company's trips
  // expected on the day, of every operating company: counted from the trips,
  // not from assessments. 0 when the company had no trip that day.
  int32_t ConsultarQuantidadeDeEmbarques(Date Dt_Movimento);
};

}  // namespace vek
