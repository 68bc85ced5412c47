#include "vek/parking/cgdTicketSanitario.h"

namespace vek {

std::string cgdTicketSanitario::InsertStatement() {
  static const std::vector<std::string> kColumns = {"Cd_EmpresaUsuariaSistema", "Cd_TicketSanitario", "Dt_Entrada",
                                                    "Cd_Tarifa", "Vl_Tarifa", "Qt_Unidade", "Cd_Caixa"};
  std::vector<std::string> values;
  for (const std::string& column : kColumns) {
    values.push_back(column == "Dt_Entrada" ? "Getdate()" : ValueLiteral(column));
  }
  return InsertLines(kColumns, values);
}

}  // namespace vek
