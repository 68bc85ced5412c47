#pragma once
// The postcodes' search grid (TbCEP_TbLogradouro with the street and its
// city), in the manner of the neighbourhoods' grid; its statement is this
// library's own: postcode, street, city and state, by postcode then street.
// It raises what fails, the database's error for a bad filter included,
// with " -> cgdCEP_Logradouros.CarregarMSFlexGridDeBusca, " added to its Source.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdCEP_Logradouros : public ListCollection {
 public:
  // One line per postcode of a street after the grid's empty first cell;
  // the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
