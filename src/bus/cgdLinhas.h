#pragma once
// The lines' search grid (TbLinha with the names of its two cities).

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdLinhas : public ListCollection {
 public:
  // One line per line, by origin then destination name: code, origin and
  // destination, after the grid's empty first cell; the row count goes into
  // ObQt_Registros. Raises the database's error for a bad filter, with
  // " -> cgdLinhas.CarregarMSFlexGridDeBusca, ".
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
