#include "vek/parking/cgdVeiculoEstacionamento.h"

namespace vek {

std::string cgdVeiculoEstacionamento::ConsultarStatement() {
  return SqlLines() << "SELECT *"
                    << "FROM   TbVeiculoEstacionamento A"
                    << "       INNER JOIN TbVeiculo B On A.Cd_Placa = B.Cd_Placa"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And A.Cd_Placa = " + KeyLiteral("Cd_Placa")
                    << ";";
}

std::string cgdVeiculoEstacionamento::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbVeiculoEstacionamento A"
                    << "WHERE  A.Cd_Placa = " + KeyLiteral("Cd_Placa")
                    << "       And Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << ";";
}

std::string cgdVeiculoEstacionamento::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbVeiculoEstacionamento A"
                    << "WHERE  A.Cd_Placa = ''"
                    << "       And Cd_EmpresaUsuariaSistema = 0"
                    << ";";
}

}  // namespace vek
