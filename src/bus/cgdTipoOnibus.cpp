#include "vek/bus/cgdTipoOnibus.h"

namespace vek {

void cgdTipoOnibus::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    SqlLines sql;
    sql << "SELECT Cd_TipoOnibus,"
        << "       Ds_TipoOnibus"
        << "FROM   TbTipoOnibus";
    AddFilter(sql, Ds_Condicao, "WHERE  ");
    sql << "ORDER BY Ds_TipoOnibus";
    ds_sql_ = sql;
    FillComboBox(Ob_ComboBox, {.caption = "Carregando Tipo de Onibus",
                               .text_column = "Ds_TipoOnibus",
                               .code_column = "Cd_TipoOnibus"});
  });
}

}  // namespace vek
