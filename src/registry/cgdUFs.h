#pragma once
// The states' pick lists and search grid (TbUF).
//
// Every loader raises what fails, the database's error for a bad filter
// included, with " -> cgdUFs.<Member>, " added to its Source; the
// abbreviation list names itself CarregarComboBox there, as it always has.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdUFs : public ListCollection {
 public:
  // Names as text, Cd_UF as item data, in name order. A filter that starts
  // with "TbCEP_TbLogradouro.Cd_EP =" (any case) lists the postcode's state.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // The same list with the abbreviation Sg_UF as the text.
  void CarregarComboBoxSomenteSigla(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per state: abbreviation and name, after the grid's empty first
  // cell; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");

 private:
  // The statement both pick lists run.
  void BuildComboStatement(const std::string& Ds_Condicao);
};

}  // namespace vek
