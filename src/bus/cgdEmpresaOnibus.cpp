#include "vek/bus/cgdEmpresaOnibus.h"

#include "vek/platform/Format.h"

namespace vek {

int32_t cgdEmpresaOnibus::ConsultarQuantidadeDeEmbarques(Date Dt_Movimento) {
  return Run("ConsultarQuantidadeDeEmbarques", [&] {
    const std::string company = KeyLiteral("Cd_EmpresaOnibus");
    const std::string day = Format(Variant(Dt_Movimento), CStr(Ob_cgpSistema()->Get("Ds_FormatoData")));
    // The company condition stands twice, as the statement always had it.
    ds_sql_ = SqlLines()
              << "SELECT   Sum(A.Qt_EmbarquesComPassagem + A.Qt_EmbarquesSemPassagem) As Qt_Embarques"
              << "FROM     TbViagemOnibus A"
              << "         INNER JOIN TbHorariosLinha B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
              << "                    And A.Cd_HorarioLinha = B.Cd_HorarioLinha"
              << "Where    B.Cd_EmpresaOnibus = " + company
              << "         And A.Hr_Previsto Between '" + day + " 00:00:00' And '" + day + " 23:59:59'"
              << "         And B.Cd_EmpresaOnibus = " + company;
    const Variant total = FirstValue();
    return total.IsNull() || total.IsEmpty() ? int32_t{0} : CLng(total);
  });
}

}  // namespace vek
