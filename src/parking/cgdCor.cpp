#include "vek/parking/cgdCor.h"

namespace vek {

void cgdCor::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    SqlLines sql;
    sql << "SELECT   *"
        << "FROM     TbCor";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY Nm_Cor";
    ds_sql_ = sql;
    FillComboBox(Ob_ComboBox, {.caption = "Carregando as cores",
                               .text_column = "Nm_Cor",
                               .code_column = "Cd_Cor",
                               .empty_message = "Não existe nenhuma cor cadastrada"});
  });
}

void cgdCor::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                       const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Cor,"
        << "         A.Nm_Cor"
        << "FROM     TbCor A";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_Cor"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros, {{"Cd_Cor", "###,###,##0"}, {"Nm_Cor"}});
  });
}

}  // namespace vek
