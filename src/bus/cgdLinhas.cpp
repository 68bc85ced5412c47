#include "vek/bus/cgdLinhas.h"

namespace vek {

void cgdLinhas::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                          const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Linha,"
        << "B.Nm_Cidade as Nm_CidadeOrigem,"
        << "C.Nm_Cidade as Nm_CidadeDestino"
        << "FROM     TbLinha A"
        << "Join TbCidade B On A.Cd_CidadeOrigem = B.Cd_Cidade"
        << "Join TbCidade C On A.Cd_CidadeDestino = C.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Nm_Cidade,"
        << "C.Nm_Cidade"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
