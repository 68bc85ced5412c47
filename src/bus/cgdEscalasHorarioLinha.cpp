#include "vek/bus/cgdEscalasHorarioLinha.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/ListLoader.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {

std::string cgdEscalasHorarioLinha::KeyLines(bool zero_keys) {
  auto key = [&](std::string_view column) { return zero_keys ? std::string("0") : KeyLiteral(column); };
  return SqlLines() << "WHERE  Cd_EmpresaUsuariaSistema = " + key("Cd_EmpresaUsuariaSistema")
                    << "And Cd_Linha = " + key("Cd_Linha")
                    << "And Cd_HorarioLinha = " + key("Cd_HorarioLinha")
                    << "And Cd_Cidade = " + key("Cd_Cidade");
}

std::string cgdEscalasHorarioLinha::SelectStatement() {
  return (SqlLines() << "SELECT A.*"
                     << "FROM   TbEscalasHorarioLinha A").Text() +
         KeyLines(false) + ";\r";
}

std::string cgdEscalasHorarioLinha::EmptySelectStatement() {
  return (SqlLines() << "SELECT A.*"
                     << "FROM   TbEscalasHorarioLinha A").Text() +
         KeyLines(true) + ";\r";
}

std::string cgdEscalasHorarioLinha::DeleteStatement() {
  return (SqlLines() << "DELETE "
                     << "FROM   TbEscalasHorarioLinha").Text() +
         KeyLines(false);
}

void cgdEscalasHorarioLinha::CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGrid", [&] {
    Ob_MSFlexGrid.Clear();
    Ob_MSFlexGrid.FormatString("<|<Codigo|<Cidade|Distancia");
    Ob_MSFlexGrid.ColWidth(1, 600);
    Ob_MSFlexGrid.ColWidth(2, 2700);
    Ob_MSFlexGrid.ColWidth(3, 800);
    SqlLines sql;
    sql << "SELECT   A.Cd_Cidade,"
        << "B.Nm_Cidade,"
        << "B.Sg_Uf,"
        << "B.Qt_DistanciaEmKm"
        << "FROM     TbEscalasHorarioLinha A"
        << "Inner Join TbCidade B On A.Cd_Cidade = B.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Qt_DistanciaEmKm,"
        << "B.Nm_Cidade";
    ds_sql_ = sql;
    Recordset stops;
    OpenStatement(stops);
    Field& code = stops.Fields().Item("Cd_Cidade");
    Field& name = stops.Fields().Item("Nm_Cidade");
    Field& state = stops.Fields().Item("Sg_Uf");
    Field& distance = stops.Fields().Item("Qt_DistanciaEmKm");
    while (!stops.Eof()) {
      Ob_MSFlexGrid.AddItem("\t" + CellText(code.Value()) + "\t" + CellText(name.Value()) + " / " +
                            CellText(state.Value()) + "\t" + Format(distance.Value(), "###,##0"));
      stops.MoveNext();
    }
    stops.Close();
  });
}

}  // namespace vek
