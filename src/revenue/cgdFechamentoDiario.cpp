#include "vek/revenue/cgdFechamentoDiario.h"

#include "vek/db/Field.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/ListLoader.h"
#include "vek/foundation/cgdModulo.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {

std::shared_ptr<cgpFechamentoDiario> cgdFechamentoDiario::ConsultarUltimaDataFechamento() {
  return Run("ConsultarUltimaDataFechamento", [&]() -> std::shared_ptr<cgpFechamentoDiario> {
    ds_sql_ = SqlLines() << "SELECT   TOP 1 *"
                         << "FROM     TbFechamentoDiario"
                         << "ORDER BY Dt_FechamentoDiario Desc";
    Recordset closings;
    OpenStatement(closings);
    if (closings.Eof()) {
      closings.Close();
      return nullptr;
    }
    CopyRowToProperties(closings, RecordObject());
    closings.Close();
    return Ob_cgp();
  });
}

void cgdFechamentoDiario::VerificarFaturamentos(FlexGrid& Ob_MSFlexGrid, TextControl& Ob_TextBox) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    const Date day = CDate(Ob_cgp()->Get("Dt_FechamentoDiario"));
    ds_sql_ = SqlLines() << "SELECT   A.No_ContaReceber,"
                         << "         A.No_Parcela,"
                         << "         B.Nm_Pessoa,"
                         << "         A.Dt_Vencimento,"
                         << "         A.Vl_ContaReceber"
                         << "FROM     TbContaReceber A"
                         << "         Join TbPessoa B On A.Cd_Pessoa = B.Cd_Pessoa"
                         << "WHERE    A.Dt_Emissao = '" + Format(Variant(day), CStr(Ob_cgpSistema()->Get("Ds_FormatoData"))) + "'"
                         << "ORDER BY B.Nm_Pessoa";
    Recordset receivables;
    OpenStatement(receivables);
    Fields& fields = receivables.Fields();
    Currency total;
    for (; !receivables.Eof(); receivables.MoveNext()) {
      const Variant amount = fields.Item("Vl_ContaReceber").Value();
      if (!amount.IsNull()) total += CCur(amount);
      Ob_MSFlexGrid.AddItem(CellText(fields.Item("No_ContaReceber").Value()) + "\t" +
                            CellText(fields.Item("No_Parcela").Value()) + "\t" +
                            CellText(fields.Item("Nm_Pessoa").Value()) + "\t" +
                            Format(fields.Item("Dt_Vencimento").Value(), "dd/mm/yyyy") + "\t" +
                            Format(amount, "###,###,##0.00"));
    }
    receivables.Close();
    Ob_TextBox.Text(Format(Variant(total), "###,###,##0.00"));
  });
}

}  // namespace vek
