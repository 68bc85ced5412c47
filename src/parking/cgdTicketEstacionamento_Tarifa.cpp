#include "vek/parking/cgdTicketEstacionamento_Tarifa.h"

namespace vek {

std::string cgdTicketEstacionamento_Tarifa::InsertStatement() {
  static const std::vector<std::string> kColumns = {"Cd_EmpresaUsuariaSistema", "Cd_Tarifa", "Cd_TicketEstacionamento",
                                                    "Qt_Unidade", "Vl_Tarifa"};
  std::vector<std::string> values;
  for (const std::string& column : kColumns) values.push_back(ValueLiteral(column));
  return InsertLines(kColumns, values);
}

}  // namespace vek
