#pragma once
// The revenue types' pick list (TbTipoReceita).

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdTiposReceita : public ListCollection {
 public:
  // Nm_TipoReceita as text and Cd_TipoReceita as item data, by name, under
  // the caption "Carregando tipos de receita"; "--ESCOLHA-->" first when
  // there is more than one. Raises what fails with
  // " -> cgdTiposReceita.CarregarComboBox, " added to its Source.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "") {
    Run("CarregarComboBox", [&] {
      SqlLines sql;
      sql << "SELECT   A.*"
          << "FROM     TbTipoReceita A";
      AddFilter(sql, Ds_Condicao, "WHERE  ");
      sql << "ORDER BY A.Nm_TipoReceita;";
      ds_sql_ = sql;
      FillComboBox(Ob_ComboBox, {.caption = "Carregando tipos de receita",
                                 .text_column = "Nm_TipoReceita",
                                 .code_column = "Cd_TipoReceita"});
    });
  }
};

}  // namespace vek
