#pragma once
// The bus companies' search grid (TbEmpresaOnibus with its person row).

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdEmpresasOnibus : public ListCollection {
 public:
  // One line per company whose person row is there, by display name: code,
  // person name and display name, after the grid's empty first cell; the
  // row count goes into ObQt_Registros. Raises the database's error for a
  // bad filter, with " -> cgdEmpresasOnibus.CarregarMSFlexGridDeBusca, ".
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
