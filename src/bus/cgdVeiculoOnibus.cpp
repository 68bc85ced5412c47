#include "vek/bus/cgdVeiculoOnibus.h"

namespace vek {

bool cgdVeiculoOnibus::HasPlate() { return !CStr(Ob_cgp()->Get("Cd_Placa")).empty(); }

bool cgdVeiculoOnibus::HasFleetNumber() {
  return CLng(Ob_cgp()->Get("Cd_EmpresaOnibus")) != 0 && CLng(Ob_cgp()->Get("No_Frota")) != 0;
}

bool cgdVeiculoOnibus::KeyMissing() { return !HasPlate() && !HasFleetNumber(); }

std::string cgdVeiculoOnibus::FleetLookup() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbVeiculoOnibus A"
                    << "WHERE  A.Cd_EmpresaOnibus = " + KeyLiteral("Cd_EmpresaOnibus", false)
                    << "And A.No_Frota = " + KeyLiteral("No_Frota", false)
                    << ";";
}

std::string cgdVeiculoOnibus::SelectStatement() {
  if (!HasPlate()) return FleetLookup();
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbVeiculoOnibus A"
                    << "WHERE  A.Cd_Placa = " + KeyLiteral("Cd_Placa")
                    << ";";
}

std::string cgdVeiculoOnibus::DeleteStatement() {
  if (HasFleetNumber()) return FleetLookup();
  return SqlLines() << "DELETE "
                    << "FROM   TbVeiculoOnibus"
                    << "WHERE  Cd_Placa = " + KeyLiteral("Cd_Placa");
}

void cgdVeiculoOnibus::ExportarVeiculoOnibus() {
  Run("ExportarVeiculoOnibus", [] {});
}

}  // namespace vek
