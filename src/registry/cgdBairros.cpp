#include "vek/registry/cgdBairros.h"

namespace vek {

void cgdBairros::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    SqlLines sql;
    if (IsPostcodeFilter(Ds_Condicao)) {
      sql << "SELECT TbBairro.CD_BAIRRO,"
          << "       TbBairro.NM_BAIRRO"
          << "FROM   TBCEP_TbLogradouro"
          << "       JOIN TbLogradouro ON TBCEP_TbLogradouro.CD_LOGRADOURO = TbLogradouro.CD_LOGRADOURO"
          << "       JOIN TbCidade ON TbLogradouro.Cd_Cidade = TbCidade.CD_CIDADE"
          << "       JOIN TbBairro ON TbCidade.CD_CIDADE = TbBairro.CD_CIDADE"
          << "WHERE  " + Ds_Condicao
          << "ORDER BY TbBairro.Nm_Bairro";
    } else {
      // The select list names the table while FROM gives it an alias; the
      // statement is the one installations have always sent.
      sql << "SELECT   TbBairro.*"
          << "FROM     TbBairro A";
      AddFilter(sql, Ds_Condicao);
      sql << "ORDER BY TbBairro.Nm_Bairro"
          << ";";
    }
    ds_sql_ = sql;
    FillComboBox(Ob_ComboBox, {.caption = "Carregando os bairros", .text_column = "Nm_Bairro", .code_column = "Cd_Bairro"});
  });
}

void cgdBairros::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                           const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_Bairro,"
        << "         A.Nm_Bairro,"
        << "         B.Nm_Cidade,"
        << "         B.Sg_UF"
        << "FROM     TbBairro A"
        << "                Join TbCidade B On A.Cd_Cidade = B.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Nm_Bairro,"
        << "         B.Nm_Cidade"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros);
  });
}

}  // namespace vek
