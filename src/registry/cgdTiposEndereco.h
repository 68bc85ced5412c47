#pragma once
// The pick list of the address types (TbTipoEndereco). Its statement and caption
// follow the states' list: "SELECT A.*" / "FROM   TbTipoEndereco A" /
// ["WHERE " + filter] / "ORDER BY A.Nm_TipoEndereco" / ";", caption
// "Carregando os tipos de endereço".

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdTiposEndereco : public ListCollection {
 public:
  // Names as text, Cd_TipoEndereco as item data, in name order; "--ESCOLHA-->"
  // first when there is more than one. Raises what fails with
  // " -> cgdTiposEndereco.CarregarComboBox, " added to its Source.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "") {
    Run("CarregarComboBox", [&] {
      FillTableComboBox(Ob_ComboBox, "TbTipoEndereco", "Nm_TipoEndereco", "Cd_TipoEndereco", "Carregando os tipos de endereço", Ds_Condicao);
    });
  }
};

}  // namespace vek
