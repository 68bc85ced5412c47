#pragma once
// The vehicles' search grid: only vehicles of a bus company are listed.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdVeiculos : public ListCollection {
 public:
  // One line per vehicle of a bus company, by the company's name then the
  // plate, after the grid's empty first cell: fleet number, plate, company
  // code and company name; the row count goes into ObQt_Registros. Raises
  // what fails with " -> cgdVeiculos.CarregarMSFlexGridDeBusca, " added.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
