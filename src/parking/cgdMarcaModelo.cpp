#include "vek/parking/cgdMarcaModelo.h"

namespace vek {

void cgdMarcaModelo::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    SqlLines sql;
    sql << "SELECT   *"
        << "FROM     TbMarcaModelo";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY Ds_MarcaModelo";
    ds_sql_ = sql;
    FillComboBox(Ob_ComboBox, {.caption = "Carregando as marcas/modelos",
                               .text_column = "Ds_MarcaModelo",
                               .code_column = "Cd_MarcaModelo",
                               .empty_message = "Não existe nenhuma marca/modelo cadastrada"});
  });
}

void cgdMarcaModelo::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                               const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_MarcaModelo,"
        << "         A.Ds_MarcaModelo"
        << "FROM     TbMarcaModelo A";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Ds_MarcaModelo"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
