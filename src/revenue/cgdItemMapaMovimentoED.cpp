#include "vek/revenue/cgdItemMapaMovimentoED.h"

namespace vek {

std::string cgdItemMapaMovimentoED::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbItemMapaMovimentoED A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = 0"
                    << "       and A.Cd_Cidade = 0"
                    << ";";
}

}  // namespace vek
