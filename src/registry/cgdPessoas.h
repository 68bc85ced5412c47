#pragma once
// The people's search grid (TbPessoa with the natural-person and legal-person
// records), in the manner of the neighbourhoods' grid; its statement is this
// library's own: code, name, CPF and CNPJ (empty where the person has no such
// record), by name then code. It raises what fails, the database's error
// for a bad filter included, with " -> cgdPessoas.CarregarMSFlexGridDeBusca, "
// added to its Source.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdPessoas : public ListCollection {
 public:
  // One line per person after the grid's empty first cell; the row count
  // goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
