#include "vek/revenue/cgdItensCondicaoPagamento.h"

#include "vek/platform/Controls.h"

namespace vek {

void cgdItensCondicaoPagamento::CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGrid", [&] {
    Ob_MSFlexGrid.Clear();
    Ob_MSFlexGrid.FormatString("<|<Inicio|<Fim|<Faturamento|<Vencimento");
    SqlLines sql;
    sql << "SELECT   A.*, B.Cd_TipoCondicaoPagamento"
        << "FROM     TbItemCondicaoPagamento A JOIN TbCondicaoPagamento B"
        << "                                        ON A.Cd_CondicaoPagamento = B.Cd_CondicaoPagamento";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.No_InicioPeriodo";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, nullptr,
                   {{"No_InicioPeriodo"}, {"No_FinalPeriodo"}, {"No_Faturamento"}, {"No_Vencimento"}});
  });
}

void cgdItensCondicaoPagamento::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                          const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.*,"
        << "         B.No_InicioPeriodo,"
        << "         B.No_FinalPeriodo,"
        << "         B.No_Faturamento,"
        << "         B.No_Vencimento"
        << "FROM     TbCondicaoPagamento A"
        << "         Join TbItemCondicaoPagamento B"
        << "            On A.Cd_CondicaoPagamento = B.Cd_CondicaoPagamento";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Cd_CondicaoPagamento,"
        << "         B.No_InicioPeriodo";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                   {{"Cd_CondicaoPagamento", "###,###,##0"},
                    {"Cd_TipoCondicaoPagamento"},
                    {"No_InicioPeriodo"},
                    {"No_FinalPeriodo"},
                    {"No_Faturamento"},
                    {"No_Vencimento"}});
  });
}

}  // namespace vek
