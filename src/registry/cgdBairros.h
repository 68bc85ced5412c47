#pragma once
// The neighbourhoods' pick list and search grid (TbBairro).
//
// Every loader raises what fails, the database's error for a bad filter
// included, with " -> cgdBairros.<Member>, " added to its Source.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdBairros : public ListCollection {
 public:
  // Names as text, Cd_Bairro as item data, in name order. A filter that
  // starts with "TbCEP_TbLogradouro.Cd_EP =" (any case) lists the
  // neighbourhoods of the postcode's city.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per neighbourhood: code, name, city and state, after the grid's
  // empty first cell; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
