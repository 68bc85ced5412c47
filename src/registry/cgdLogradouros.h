#pragma once
// The streets' pick list and search grid (TbLogradouro), in the manner of
// the neighbourhoods' lists (their statements and the caption "Carregando os
// logradouros" are this library's own):
//   pick list: "SELECT A.*" / "FROM   TbLogradouro A" / ["WHERE " + filter] /
//     "ORDER BY A.Nm_Logradouro" / ";";
//   grid: code, street type, name, city and state, by name then city.
//
// Every loader raises what fails, the database's error for a bad filter
// included, with " -> cgdLogradouros.<Member>, " added to its Source.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdLogradouros : public ListCollection {
 public:
  // Names as text, Cd_Logradouro as item data, in name order.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per street after the grid's empty first cell (a street
  // without a type shows an empty type); the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
