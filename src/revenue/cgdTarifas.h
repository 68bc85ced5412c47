#pragma once
// The tariffs' search grid with their revenue types. The join names the
// tariff table A, so a filter qualifies tariff columns with "A."
// (A.Cd_EmpresaUsuariaSistema = 1).

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdTarifas : public ListCollection {
 public:
  // One line per tariff, by description: the code as "###,###,##0", the
  // description and the revenue type's name, tab-separated; the row count
  // goes into ObQt_Registros. Raises what fails with
  // " -> cgdTarifas.CarregarMSFlexGridDeBusca, " added to its Source.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
