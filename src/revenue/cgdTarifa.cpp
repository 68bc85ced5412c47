#include "vek/revenue/cgdTarifa.h"

#include "vek/foundation/ListLoader.h"

namespace vek {

std::string cgdTarifa::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbTarifa A"
                    << "WHERE  A.Cd_Tarifa = " + KeyLiteral("Cd_Tarifa") + ";";
}

std::string cgdTarifa::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbTarifa A"
                    << "WHERE  A.Cd_Tarifa = 0;";
}

void cgdTarifa::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    SqlLines sql;
    sql << "SELECT Cd_Tarifa,"
        << "       Ds_Tarifa"
        << "FROM   TbTarifa";
    AddFilter(sql, Ds_Condicao, "WHERE  ");
    sql << "ORDER BY Ds_Tarifa";
    ds_sql_ = sql;
    FillComboBox(Ob_ComboBox,
                 {.caption = "Carregando Tipo de Onibus", .text_column = "Ds_Tarifa", .code_column = "Cd_Tarifa"});
  });
}

void cgdTarifa::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                          const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Tarifa,"
        << "         A.Ds_Tarifa"
        << "FROM     TbTarifa A";
    AddFilter(sql, Ds_Condicao, "WHERE  ");
    sql << "ORDER BY A.Ds_Tarifa;";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros, {{"Cd_Tarifa", "###,###,##0"}, {"Ds_Tarifa"}}, false);
  });
}

}  // namespace vek
