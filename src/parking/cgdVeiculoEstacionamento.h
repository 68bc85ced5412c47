#pragma once
// What one operating company records about a vehicle that uses its car park
// (TbVeiculoEstacionamento, key the plate Cd_Placa then
// Cd_EmpresaUsuariaSistema, the plate first in every statement; nothing is
// numbered). Consultar reads the record together with the vehicle of
// TbVeiculo (its fleet number, bus company, colour, make and model come into
// Ob_cgp too), so a plate that TbVeiculo lacks is not found; Alterar and
// Incluir read the company's record alone.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdVeiculoEstacionamento : public cgdRecord<cgpVeiculoEstacionamento> {
 public:
  cgdVeiculoEstacionamento() : cgdRecord("TbVeiculoEstacionamento") {}

 protected:
  std::string ConsultarStatement() override;
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;
};

}  // namespace vek
