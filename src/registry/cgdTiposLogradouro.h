#pragma once
// The pick list of the street types (TbTipoLogradouro). Its statement and caption
// follow the states' list: "SELECT A.*" / "FROM   TbTipoLogradouro A" /
// ["WHERE " + filter] / "ORDER BY A.Nm_TipoLogradouro" / ";", caption
// "Carregando os tipos de logradouro".

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdTiposLogradouro : public ListCollection {
 public:
  // Names as text, Cd_TipoLogradouro as item data, in name order; "--ESCOLHA-->"
  // first when there is more than one. Raises what fails with
  // " -> cgdTiposLogradouro.CarregarComboBox, " added to its Source.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "") {
    Run("CarregarComboBox", [&] {
      FillTableComboBox(Ob_ComboBox, "TbTipoLogradouro", "Nm_TipoLogradouro", "Cd_TipoLogradouro", "Carregando os tipos de logradouro", Ds_Condicao);
    });
  }
};

}  // namespace vek
