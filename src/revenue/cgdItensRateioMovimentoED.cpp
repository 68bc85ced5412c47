#include "vek/revenue/cgdItensRateioMovimentoED.h"

#include "vek/db/Recordset.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {

void cgdItensRateioMovimentoED::CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, TextControl& Ob_TextTotal,
                                                   const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGrid", [&] {
    Ob_MSFlexGrid.Clear();
    Ob_MSFlexGrid.FormatString(std::string("<") + "|Cod" + "|<Nome Cidade" + "|>Embarques");
    SqlLines sql;
    sql << "SELECT   A.Cd_Cidade,"
        << "         A.Qt_Embarques,"
        << "         B.Nm_Cidade,"
        << "         B.Sg_UF"
        << "FROM     TbItemRateioMovimentoED A Join TbCidade B"
        << "                                   On A.Cd_Cidade = B.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Nm_Cidade;";
    ds_sql_ = sql;
    Recordset lines;
    OpenStatement(lines);
    Field& city = lines.Fields().Item("Cd_Cidade");
    Field& boardings = lines.Fields().Item("Qt_Embarques");
    Field& name = lines.Fields().Item("Nm_Cidade");
    Field& state = lines.Fields().Item("Sg_Uf");
    // The total is the boardings the grid shows, summed as whole numbers
    // (a line without a count adds nothing).
    int64_t total = 0;
    while (!lines.Eof()) {
      const Variant count = boardings.Value();
      Ob_MSFlexGrid.AddItem("\t" + CellText(city.Value()) + "\t" + CellText(name.Value()) + "/" +
                            CellText(state.Value()) + "\t" + CellText(count));
      if (!count.IsNull()) total += CLng(count);
      lines.MoveNext();
    }
    lines.Close();
    Ob_TextTotal.Text(Format(Variant(static_cast<double>(total)), "###,###,##0"));
  });
}

std::shared_ptr<Recordset> cgdItensRateioMovimentoED::ConsultarRateioPorEmpresa(int32_t Cd_EmpresaOnibus) {
  return Run("ConsultarRateioPorEmpresa", [&] {
    ds_sql_ = SqlLines() << "SELECT   *"
                         << "FROM     TbItemRateioMovimentoED"
                         << "WHERE    Cd_EmpresaOnibus = " + std::to_string(Cd_EmpresaOnibus)
                         << "ORDER BY Qt_Embarques";
    return OpenReport();
  });
}

}  // namespace vek
