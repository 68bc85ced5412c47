#include "vek/registry/cgdUFs.h"

namespace vek {
namespace {

constexpr std::string_view kCaption = "Carregando as UFs";

}  // namespace

void cgdUFs::BuildComboStatement(const std::string& Ds_Condicao) {
  SqlLines sql;
  if (IsPostcodeFilter(Ds_Condicao)) {
    sql << "SELECT   D.CD_UF,"
        << "         D.NM_UF,"
        << "         D.SG_UF"
        << "FROM     TBCEP_TbLogradouro A JOIN TbLogradouro B ON A.CD_LOGRADOURO = B.CD_LOGRADOURO"
        << "                              JOIN TbCidade C ON B.CD_CIDADE = C.CD_CIDADE"
        << "                              JOIN TBUF D ON C.SG_UF = D.SG_UF"
        << "WHERE " + Ds_Condicao
        << "ORDER BY D.NM_UF;";
  } else {
    sql << "SELECT A.*"
        << "FROM   TbUF A";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_UF"
        << ";";
  }
  ds_sql_ = sql;
}

void cgdUFs::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    BuildComboStatement(Ds_Condicao);
    FillComboBox(Ob_ComboBox, {.caption = kCaption, .text_column = "Nm_UF", .code_column = "Cd_UF"});
  });
}

void cgdUFs::CarregarComboBoxSomenteSigla(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  // Its link in the error chain says CarregarComboBox, as it always has.
  Run("CarregarComboBox", [&] {
    BuildComboStatement(Ds_Condicao);
    FillComboBox(Ob_ComboBox, {.caption = kCaption, .text_column = "Sg_UF", .code_column = "Cd_UF"});
  });
}

void cgdUFs::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                       const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Sg_UF,"
        << "         A.Nm_UF"
        << "FROM     TbUF A";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_UF"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
