#pragma once
// Receivables (TbContaReceber, key Cd_EmpresaUsuariaSistema,
// No_ContaReceber, No_Parcela; No_ContaReceber numbered through
// TbSequenciadores when left at 0): what a payer (Cd_Pessoa) owes, issued on
// Dt_Emissao and due on Dt_Vencimento, plus Qt_DiasProrrogacao days of grace.
// Ic_GeradoPeloSistema is 1 for those the daily closing made.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdContaReceber : public cgdRecord<cgpContaReceber> {
 public:
  cgdContaReceber() : cgdRecord("TbContaReceber") {}
};

}  // namespace vek
