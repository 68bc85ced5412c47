#include "vek/registry/cgdCidades.h"

namespace vek {
namespace {

constexpr std::string_view kCaption = "Carregando as cidades";

}  // namespace

void cgdCidades::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    if (!IsPostcodeFilter(Ds_Condicao)) {
      FillTableComboBox(Ob_ComboBox, "TbCidade", "Nm_Cidade", "Cd_Cidade", kCaption, Ds_Condicao);
      return;
    }
    ds_sql_ = SqlLines() << "SELECT   C.CD_CIDADE,"
                         << "         C.NM_CIDADE"
                         << "FROM     TBCEP_TbLogradouro A JOIN TbLogradouro B ON A.CD_LOGRADOURO = B.CD_LOGRADOURO"
                         << "                              JOIN TbCidade C ON B.CD_CIDADE = C.CD_CIDADE"
                         << "WHERE " + Ds_Condicao
                         << "ORDER BY C.NM_CIDADE;";
    FillComboBox(Ob_ComboBox, {.caption = kCaption, .text_column = "Nm_Cidade", .code_column = "Cd_Cidade"});
  });
}

void cgdCidades::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                           const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Cidade,"
        << "         A.Nm_Cidade,"
        << "         A.Sg_UF,"
        << "         A.Qt_DistanciaEmKm"
        << "FROM     TbCidade A";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_Cidade,"
        << "         A.Sg_UF"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
