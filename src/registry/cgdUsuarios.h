#pragma once
// The users' search grid (TbUsuario with the user's person), users of every
// company unless the filter restricts them.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdUsuarios : public ListCollection {
 public:
  // One line per user: code, person's name and login name, after the grid's
  // empty first cell, in login-name order; the count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
