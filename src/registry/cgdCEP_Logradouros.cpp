#include "vek/registry/cgdCEP_Logradouros.h"

namespace vek {

void cgdCEP_Logradouros::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                   const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_EP,"
        << "         B.Nm_Logradouro,"
        << "         C.Nm_Cidade,"
        << "         C.Sg_UF"
        << "FROM     TbCEP_TbLogradouro A"
        << "         Join TbLogradouro B On A.Cd_Logradouro = B.Cd_Logradouro"
        << "         Join TbCidade C On B.Cd_Cidade = C.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Cd_EP,"
        << "         B.Nm_Logradouro"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
