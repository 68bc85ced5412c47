#include "vek/revenue/cgdItemRateioMovimentoED.h"

namespace vek {

std::string cgdItemRateioMovimentoED::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbItemRateioMovimentoED A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = 0"
                    << "       and A.Cd_Cidade = 0"
                    << ";";
}

}  // namespace vek
