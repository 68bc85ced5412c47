#include "vek/revenue/cgdTarifas.h"

namespace vek {

void cgdTarifas::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                           const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Tarifa,"
        << "         A.Ds_Tarifa,"
        << "         B.Nm_TipoReceita"
        << "FROM     TbTarifa A"
        << "         Join TbTipoReceita B On A.Cd_TipoReceita = B.Cd_TipoReceita";
    AddFilter(sql, Ds_Condicao, "WHERE  ");
    sql << "ORDER BY A.Ds_Tarifa";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                   {{"Cd_Tarifa", "###,###,##0"}, {"Ds_Tarifa"}, {"Nm_TipoReceita"}}, false);
  });
}

}  // namespace vek
