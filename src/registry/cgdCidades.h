#pragma once
// The cities' pick list and search grid (TbCidade), in the manner of the
// neighbourhoods' lists (their statements and the caption "Carregando as
// cidades" are this library's own):
//   pick list: "SELECT A.*" / "FROM   TbCidade A" / ["WHERE " + filter] /
//     "ORDER BY A.Nm_Cidade" / ";"; a filter that starts with
//     "TbCEP_TbLogradouro.Cd_EP =" (any case) lists the postcode's city
//     through the postcode table instead;
//   grid: code, name, state and distance in km, by name then state.
//
// Every loader raises what fails, the database's error for a bad filter
// included, with " -> cgdCidades.<Member>, " added to its Source.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdCidades : public ListCollection {
 public:
  // Names as text, Cd_Cidade as item data, in name order.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per city after the grid's empty first cell; the row count
  // goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
