#include "vek/bus/cgdAgendaSom.h"

namespace vek {

std::string cgdAgendaSom::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbAgendaSom A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And A.Cd_AgendaSom = " + KeyLiteral("Cd_AgendaSom")
                    << ";";
}

std::string cgdAgendaSom::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbAgendaSom A"
                    << "WHERE  A.Cd_AgendaSom = 0"
                    << ";";
}

std::string cgdAgendaSom::DeleteStatement() {
  return SqlLines() << "DELETE "
                    << "FROM   TbAgendaSom"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And Cd_AgendaSom = " + KeyLiteral("Cd_AgendaSom");
}

}  // namespace vek
