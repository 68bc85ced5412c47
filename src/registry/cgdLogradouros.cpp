#include "vek/registry/cgdLogradouros.h"

namespace vek {

void cgdLogradouros::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    FillTableComboBox(Ob_ComboBox, "TbLogradouro", "Nm_Logradouro", "Cd_Logradouro", "Carregando os logradouros",
                      Ds_Condicao);
  });
}

void cgdLogradouros::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                               const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Logradouro,"
        << "         B.Nm_TipoLogradouro,"
        << "         A.Nm_Logradouro,"
        << "         C.Nm_Cidade,"
        << "         C.Sg_UF"
        << "FROM     TbLogradouro A"
        << "         Left Join TbTipoLogradouro B On A.Cd_TipoLogradouro = B.Cd_TipoLogradouro"
        << "         Join TbCidade C On A.Cd_Cidade = C.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_Logradouro,"
        << "         C.Nm_Cidade"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
