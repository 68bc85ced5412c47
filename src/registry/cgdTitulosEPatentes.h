#pragma once
// The pick list of the titles and ranks (TbTituloEPatente). Its statement and caption
// follow the states' list: "SELECT A.*" / "FROM   TbTituloEPatente A" /
// ["WHERE " + filter] / "ORDER BY A.Nm_TituloEPatente" / ";", caption
// "Carregando os títulos e patentes".

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdTitulosEPatentes : public ListCollection {
 public:
  // Names as text, Cd_TituloEPatente as item data, in name order; "--ESCOLHA-->"
  // first when there is more than one. Raises what fails with
  // " -> cgdTitulosEPatentes.CarregarComboBox, " added to its Source.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "") {
    Run("CarregarComboBox", [&] {
      FillTableComboBox(Ob_ComboBox, "TbTituloEPatente", "Nm_TituloEPatente", "Cd_TituloEPatente", "Carregando os títulos e patentes", Ds_Condicao);
    });
  }
};

}  // namespace vek
