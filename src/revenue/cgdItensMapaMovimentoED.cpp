#include "vek/revenue/cgdItensMapaMovimentoED.h"

#include "vek/db/Recordset.h"
#include "vek/platform/Format.h"

namespace vek {

namespace {

constexpr const char* kAlightingJoins[] = {"FROM     TbItemMapaMovimentoED A",
                                           "         LEFT JOIN TbPessoa B On A.Cd_EmpresaOnibus = B.Cd_Pessoa",
                                           "         LEFT JOIN TbCidade C On A.Cd_Cidade = C.Cd_Cidade"};

}  // namespace

std::string cgdItensMapaMovimentoED::DayText(Date day) {
  return Format(Variant(day), CStr(Ob_cgpSistema()->Get("Ds_FormatoData")));
}

void cgdItensMapaMovimentoED::AddPeriodAndReach(SqlLines& sql, Date Dt_Inicial, Date Dt_Final,
                                                std::string_view movement, AbrangenciaEnum No_Abrangencia,
                                                const std::string& Sg_UFLocal) {
  sql << "WHERE    A.Dt_Movimento Between '" + DayText(Dt_Inicial) + "' And '" + DayText(Dt_Final) + "'"
      << "         AND A." + std::string(movement) + " > 0";
  switch (No_Abrangencia) {
    case AbrangenciaIntermunicipal:
      RequireNoApostrophe("Sg_UFLocal", Sg_UFLocal);
      sql << "     AND C.Sg_UF = '" + Sg_UFLocal + "'";
      break;
    case AbrangenciaInterestadual:
      RequireNoApostrophe("Sg_UFLocal", Sg_UFLocal);
      sql << "     AND C.Sg_UF <> '" + Sg_UFLocal + "'";
      break;
    default:
      break;
  }
}

std::shared_ptr<Recordset> cgdItensMapaMovimentoED::ConsultarItensMapaPorEmpresa(Date Dt_Movimento) {
  return Run("ConsultarItensMapaPorEmpresa", [&] {
    ds_sql_ = SqlLines() << "SELECT *"
                         << "FROM   TbItemMapaMovimentoED"
                         << "WHERE  Dt_Movimento = '" + DayText(Dt_Movimento) + "'";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdItensMapaMovimentoED::ConsultarEmpresasComEmbarque(Date Dt_Inicial, Date Dt_Final,
                                                                                 AbrangenciaEnum No_Abrangencia,
                                                                                 const std::string& Sg_UFLocal) {
  return Run("ConsultarEmpresasComEmbarque", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_EmpresaOnibus,"
        << "         B.Nm_EmpresaOnibus,"
        << "         C.Cd_Cidade,"
        << "         C.Nm_Cidade,"
        << "         C.Sg_UF"
        << "FROM     TbItemMapaMovimentoED A"
        << "         INNER JOIN TbEmpresaOnibus B On A.Cd_EmpresaOnibus = B.Cd_EmpresaOnibus"
        << "         INNER JOIN TbCidade C On A.Cd_Cidade = C.Cd_Cidade";
    AddPeriodAndReach(sql, Dt_Inicial, Dt_Final, "Qt_Embarques", No_Abrangencia, Sg_UFLocal);
    sql << "GROUP BY A.Cd_EmpresaOnibus,"
        << "         B.Nm_EmpresaOnibus,"
        << "         C.Cd_Cidade,"
        << "         C.Nm_Cidade,"
        << "         C.Sg_UF";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdItensMapaMovimentoED::ConsultarEmpresasComDesembarque(Date Dt_Inicial, Date Dt_Final,
                                                                                    AbrangenciaEnum No_Abrangencia,
                                                                                    const std::string& Sg_UFLocal) {
  return Run("ConsultarEmpresasComDesembarque", [&] {
    SqlLines sql;
    sql << "SELECT   DISTINCT"
        << "         A.Cd_EmpresaOnibus,"
        << "         B.Nm_Pessoa,"
        << "         C.Cd_Cidade,"
        << "         C.Nm_Cidade,"
        << "         C.Sg_UF";
    for (const char* line : kAlightingJoins) sql << line;
    AddPeriodAndReach(sql, Dt_Inicial, Dt_Final, "Qt_Desembarques", No_Abrangencia, Sg_UFLocal);
    sql << "GROUP BY A.Cd_EmpresaOnibus,"
        << "         B.Nm_Pessoa,"
        << "         C.Cd_Cidade,"
        << "         C.Nm_Cidade,"
        << "         C.Sg_UF";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdItensMapaMovimentoED::ConsultarEmpresasComDesembarque2(Date Dt_Inicial, Date Dt_Final,
                                                                                     AbrangenciaEnum No_Abrangencia,
                                                                                     const std::string& Sg_UFLocal) {
  return Run("ConsultarEmpresasComDesembarque2", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_EmpresaOnibus,"
        << "         B.Nm_Pessoa";
    for (const char* line : kAlightingJoins) sql << line;
    AddPeriodAndReach(sql, Dt_Inicial, Dt_Final, "Qt_Desembarques", No_Abrangencia, Sg_UFLocal);
    sql << "GROUP BY A.Cd_EmpresaOnibus,"
        << "         b.Nm_Pessoa";
    ds_sql_ = sql;
    return OpenReport();
  });
}

int32_t cgdItensMapaMovimentoED::DayTotal(std::string_view column, std::string_view total, int32_t Cd_EmpresaOnibus,
                                          int32_t Cd_Cidade, Date Dt_Movimento) {
  const std::string day = DayText(Dt_Movimento);
  ds_sql_ = SqlLines() << "SELECT   Sum(" + std::string(column) + ") As " + std::string(total)
                       << "FROM     TbItemMapaMovimentoED"
                       << "WHERE    Dt_Movimento Between '" + day + " 00:00:00' And '" + day + " 23:59:59'"
                       << "         AND Cd_Cidade = " + std::to_string(Cd_Cidade)
                       << "         AND Cd_EmpresaOnibus = " + std::to_string(Cd_EmpresaOnibus);
  Recordset rows;
  OpenStatement(rows);
  // The sum of no item is Null: a day without movement counts 0.
  const Variant value = rows.Eof() ? Variant() : rows.Fields().Item(std::string(total)).Value();
  rows.Close();
  return value.IsNull() || value.IsEmpty() ? 0 : CLng(value);
}

int32_t cgdItensMapaMovimentoED::ConsultarEmbarques(int32_t Cd_EmpresaOnibus, int32_t Cd_Cidade, Date Dt_Movimento) {
  return Run("ConsultarEmbarques", [&] {
    return DayTotal("Qt_Embarques", "Qt_TotalEmbarques", Cd_EmpresaOnibus, Cd_Cidade, Dt_Movimento);
  });
}

int32_t cgdItensMapaMovimentoED::ConsultarDesembarques(int32_t Cd_EmpresaOnibus, int32_t Cd_Cidade,
                                                       Date Dt_Movimento) {
  return Run("ConsultarDesembarques", [&] {
    return DayTotal("Qt_Desembarques", "Qt_TotalDesembarques", Cd_EmpresaOnibus, Cd_Cidade, Dt_Movimento);
  });
}

}  // namespace vek
