#include "vek/parking/cgdPrecoEstacionamento.h"

#include "vek/db/Recordset.h"

namespace vek {

bool cgdPrecoEstacionamento::LookupKeyMissing() { return CLng(Ob_cgp()->Get("Cd_EmpresaUsuariaSistema")) == 0; }

std::string cgdPrecoEstacionamento::ConsultarStatement() {
  if (CLng(Ob_cgp()->Get("Cd_PrecoEstacionamento")) != 0) return SelectByKey(true);
  return SqlLines() << "SELECT   A.*"
                    << "FROM     TbPrecoEstacionamento A"
                    << "WHERE    A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "         And A.Qt_TempoFinal >= " + std::to_string(CLng(Ob_cgp()->Get("Qt_TempoFinal")))
                    << "ORDER BY A.Qt_TempoFinal";
}

std::shared_ptr<Recordset> cgdPrecoEstacionamento::rsPrecosEstacionamento() {
  return Run("rsPrecosEstacionamento", [&] {
    ds_sql_ = SqlLines() << "SELECT   A.*,"
                         << "         B.Vl_Tarifa,"
                         << "         B.Cd_Tarifa"
                         << "FROM     TbPrecoEstacionamento A"
                         << "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
                         << "                    And A.Cd_Tarifa = b.Cd_Tarifa"
                         << "WHERE    A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "ORDER BY A.Qt_TempoFinal";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdPrecoEstacionamento::rsObterTarifaAplicavelAoTempo(int32_t Qt_Minutos) {
  return Run("rsPrecosEstacionamento", [&] {
    const std::string minutes = std::to_string(Qt_Minutos);
    ds_sql_ = SqlLines()
              << "SELECT   TOP 1"
              << "         TbPrecoEstacionamento.*,"
              << "         TbTarifa.Vl_Tarifa,"
              << "         TbTarifa.Cd_Tarifa"
              << "From     TbPrecoEstacionamento"
              << "         INNER JOIN TbTarifa On TbPrecoEstacionamento.Cd_EmpresaUsuariaSistema = TbTarifa.Cd_EmpresaUsuariaSistema"
              << "                    And TbPrecoEstacionamento.Cd_Tarifa = TbTarifa.Cd_Tarifa"
              << "Where    TbPrecoEstacionamento.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
              << "         And (" + minutes +
                     " Between TbPrecoEstacionamento.Qt_TempoInicial  And TbPrecoEstacionamento.Qt_TempoFinal"
              << "              Or TbPrecoEstacionamento.Qt_TempoFinal <= " + minutes + ")"
              << "ORDER BY TbPrecoEstacionamento.Qt_TempoFinal Desc";
    return OpenReport();
  });
}

}  // namespace vek
