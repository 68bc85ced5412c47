#include "vek/registry/cgdUsuarios.h"

namespace vek {

void cgdUsuarios::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                            const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Usuario,"
        << "         B.Nm_Pessoa,"
        << "         A.Nm_Usuario"
        << "FROM     TbUsuario A"
        << "         Left Join TbPessoa B on A.Cd_Pessoa = B.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_Usuario"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
