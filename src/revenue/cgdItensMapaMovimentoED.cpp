#include "vek/revenue/cgdItensMapaMovimentoED.h"

#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/ReportDatabase.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {

namespace {

constexpr const char* kAlightingJoins[] = {"FROM     TbItemMapaMovimentoED A",
                                           "         LEFT JOIN TbPessoa B On A.Cd_EmpresaOnibus = B.Cd_Pessoa",
                                           "         LEFT JOIN TbCidade C On A.Cd_Cidade = C.Cd_Cidade"};

// Closes what a monthly map opened, whether it finished or failed.
struct MapResources {
  MapResources() = default;
  MapResources(const MapResources&) = delete;
  MapResources& operator=(const MapResources&) = delete;
  ~MapResources() {
    try {
      if (table && table->State() == adStateOpen) table->Close();
      if (report && report->State() == adStateOpen) report->Close();
      if (progress) progress->Close();
    } catch (...) {
      // Closing must not hide the error on its way out.
    }
  }
  std::shared_ptr<Connection> report;
  std::shared_ptr<Recordset> table;
  ProgressWindow* progress = nullptr;
};

}  // namespace

struct cgdItensMapaMovimentoED::MonthlyMap {
  const char* table;
  const char* caption;
  const char* company_name;  // the pair query's column that names the company
  bool boardings;
};

void cgdItensMapaMovimentoED::FillMonthlyMap(const MonthlyMap& map, Date Dt_Inicial, Date Dt_Final,
                                             AbrangenciaEnum No_Abrangencia, const std::string& Sg_UFLocal) {
  cgpSistema& session = *Ob_cgpSistema();
  MapResources resources;
  resources.report = OpenSideConnection(PrepareReportDatabase(session));
  ds_sql_ = SqlLines() << "DELETE "
                       << "FROM " + std::string(map.table) + ";";
  resources.report->Execute(ds_sql_);
  resources.table = std::make_shared<Recordset>();
  resources.table->Open(map.table, resources.report, adOpenKeyset, adLockOptimistic, adCmdTable);
  resources.progress = &session.Progress();
  resources.progress->Caption(map.caption);
  resources.progress->Label(std::string());
  resources.progress->Percentage(0.0);
  resources.progress->Show();

  auto pairs = map.boardings ? ConsultarEmpresasComEmbarque(Dt_Inicial, Dt_Final, No_Abrangencia, Sg_UFLocal)
                             : ConsultarEmpresasComDesembarque(Dt_Inicial, Dt_Final, No_Abrangencia, Sg_UFLocal);
  Recordset& table = *resources.table;
  const int32_t count = pairs->RecordCount();
  int32_t done = 0;
  while (!pairs->Eof()) {
    Fields& pair = pairs->Fields();
    const int32_t company = CLng(pair.Item("Cd_EmpresaOnibus").Value());
    const int32_t city = CLng(pair.Item("Cd_Cidade").Value());
    table.AddNew();
    Fields& row = table.Fields();
    row.Item("Nm_EmpresaOnibus").Value(pair.Item(map.company_name).Value());
    row.Item("Nm_Cidade").Value(Variant(CStr(pair.Item("Nm_Cidade").Value()) + "-" +
                                        CStr(pair.Item("Sg_Uf").Value())));
    row.Item("Cd_EmpresaOnibus").Value(Variant(company));
    row.Item("Cd_Cidade").Value(Variant(city));
    int32_t total = 0;
    for (Date day = Dt_Inicial; day <= Dt_Final; day = day + 1.0) {
      const int32_t moved =
          map.boardings ? ConsultarEmbarques(company, city, day) : ConsultarDesembarques(company, city, day);
      row.Item("Qt_Dia" + Format(Variant(Day(day)), "00")).Value(Variant(moved));
      total += moved;
    }
    row.Item("Qt_Total").Value(Variant(total));
    table.Update();
    ++done;
    resources.progress->Percentage(100.0 * done / count);
    pairs->MoveNext();
  }
}

void cgdItensMapaMovimentoED::GerarArqTempMapaEmbarqueMensal(Date Dt_Inicial, Date Dt_Final,
                                                             AbrangenciaEnum No_Abrangencia,
                                                             const std::string& Sg_UFLocal) {
  Run("GerarArqTempMapaEmbarqueMensal", [&] {
    FillMonthlyMap({"cgrMapaControleEmbarque1", "Gerando item mapa movimento Embarque", "Nm_EmpresaOnibus", true},
                   Dt_Inicial, Dt_Final, No_Abrangencia, Sg_UFLocal);
  });
}

void cgdItensMapaMovimentoED::GerarArqTempMapaDesembarqueMensal(Date Dt_Inicial, Date Dt_Final,
                                                                AbrangenciaEnum No_Abrangencia,
                                                                const std::string& Sg_UFLocal) {
  Run("GerarArqTempMapaDesembarqueMensal", [&] {
    FillMonthlyMap({"cgrMapaControleDesembarque1", "Gerando item mapa movimento Desembarque", "Nm_Pessoa", false},
                   Dt_Inicial, Dt_Final, No_Abrangencia, Sg_UFLocal);
  });
}

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
