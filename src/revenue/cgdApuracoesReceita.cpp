#include "vek/revenue/cgdApuracoesReceita.h"

#include <algorithm>
#include <cmath>

#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/ReportDatabase.h"
#include "vek/foundation/SqlLiterals.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/platform/Text.h"

namespace vek {

namespace {

constexpr int32_t kBoardingSlots = 6;

// How much of the company's name the progress line shows.
constexpr int32_t kNameInProgress = 30;

// Closes what a member opened, on the way out of an error too.
struct OpenedObjects {
  std::shared_ptr<Recordset> rows;
  std::shared_ptr<Connection> report;
  ProgressWindow* progress = nullptr;
  ~OpenedObjects() {
    if (rows && rows->State() == adStateOpen) rows->Close();
    if (report && report->State() == adStateOpen) report->Close();
    if (progress) progress->Close();
  }
};

Variant ZeroWhenNull(const Variant& value) { return value.IsNull() || value.IsEmpty() ? Variant(0) : value; }

}  // namespace

void cgdApuracoesReceita::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                    const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.No_ApuracaoReceita,"
        << "         B.Nm_Pessoa,"
        << "         A.Dt_Movimento,"
        << "         A.Vl_ApuracaoReceita"
        << "FROM     TbApuracaoReceita A"
        << "         Join TbPessoa B on A.Cd_Pessoa = B.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Nm_Pessoa,"
        << "         A.Dt_Movimento";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                   {{"No_ApuracaoReceita", "###,###,##0"},
                    {"Nm_Pessoa"},
                    {"Dt_Movimento", "dd/mm/yyyy"},
                    {"Vl_ApuracaoReceita", "###,###,##0.00"}},
                   false);
  });
}

std::string cgdApuracoesReceita::DateLiteral(Date day) const {
  return DateSemHoraToSql(day, *Ob_cgpSistema());
}

std::shared_ptr<Recordset> cgdApuracoesReceita::ConsultarApuracoesAFaturarPorEmpresa(Date Dt_Faturamento) {
  return Run("ConsultarApuracoesAFaturarPorEmpresa", [&] {
    ds_sql_ = SqlLines() << "SELECT   Cd_Pessoa,"
                         << "         Dt_Vencimento,"
                         << "         Sum(Vl_ApuracaoReceita) as Vl_TotalApuracaoReceita"
                         << "FROM     TbApuracaoReceita"
                         << "WHERE    Dt_Faturamento = " + DateLiteral(Dt_Faturamento)
                         << "GROUP BY Cd_Pessoa,"
                         << "         Dt_Vencimento;";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdApuracoesReceita::ConsultasPessasComApuracaoNoPeriodo(Date Dt_Inicial, Date Dt_Final) {
  return Run("ConsultasPessasComApuracaoNoPeriodo", [&] {
    ds_sql_ = SqlLines()
              << "SELECT   C.Cd_Pessoa,"
              << "         C.Nm_Pessoa"
              << "FROM     TbApuracaoReceita A"
              << "         JOIN TbApuracaoReceita_TbTarifa B on A.Cd_EmpresaUsuariaSistema = "
                 "B.Cd_EmpresaUsuariaSistema and"
              << "                                              A.No_ApuracaoReceita = B.No_ApuracaoReceita"
              << "         JOIN TbPessoa C on A.Cd_Pessoa = C.Cd_Pessoa"
              << "         JOIN TbTarifa D on B.Cd_Tarifa = D.Cd_Tarifa"
              << "         JOIN TbTipoReceita E on D.cd_tiporeceita = E.cd_tiporeceita"
              << "WHERE    A.Dt_Movimento BETWEEN " + DateLiteral(Dt_Inicial) + " AND " + DateLiteral(Dt_Final)
              << "         And E.Nm_TipoReceita = 'EMBARQUE'"
              << "GROUP BY C.Cd_Pessoa,"
              << "         C.Nm_Pessoa;";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdApuracoesReceita::ConsultarTotalTarifaDeUmEmpresaEmUmDia(int32_t Cd_Pessoa,
                                                                                        int32_t Cd_Tarifa,
                                                                                        Date Dt_Movimento) {
  return Run("ConsultarTotalTarifaDeUmEmpresaEmUmDia", [&] {
    SqlLines sql;
    sql << "SELECT    C.Ds_Tarifa,"
        << "          SUM(A.Qt_Tarifa) As Qt_Total,"
        << "          SUM(A.Qt_Tarifa * A.Vl_Tarifa) As Vl_Total"
        << "FROM      TbApuracaoReceita_TbTarifa A"
        << "          JOIN TbApuracaoReceita B ON A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema and"
        << "                                     A.No_ApuracaoReceita = B.No_ApuracaoReceita"
        << "          JOIN TbTarifa C ON A.Cd_Tarifa = C.Cd_Tarifa";
    // Payer 0 is the grand total: every company's boardings.
    if (Cd_Pessoa != 0) {
      sql << "WHERE B.Cd_Pessoa = " + std::to_string(Cd_Pessoa) << "      AND A.Cd_Tarifa = " + std::to_string(Cd_Tarifa);
    } else {
      sql << "WHERE A.Cd_Tarifa = " + std::to_string(Cd_Tarifa);
    }
    sql << "      AND B.Dt_Movimento = " + DateLiteral(Dt_Movimento) << "GROUP BY  C.Ds_Tarifa;";
    ds_sql_ = sql;
    return OpenReport();
  });
}

void cgdApuracoesReceita::WriteCompanyRows(Connection& report, Recordset& rows, int32_t Cd_Pessoa,
                                           const std::string& Nm_Empresa, Date Dt_Inicial, Date Dt_Final,
                                           int32_t& step, int32_t steps) {
  ProgressWindow& progress = Ob_cgpSistema()->Progress();
  int32_t accumulated_quantity = 0;
  Currency accumulated_value;
  for (Date day = Dt_Inicial; day <= Dt_Final; day = day + 1) {
    const std::string shown = Format(Variant(day), "dd/mm/yyyy");
    progress.Label(Cd_Pessoa != 0 ? "Empresa:" + Mid(Trim(Nm_Empresa), 1, kNameInProgress) + " em:" + shown
                                  : "Total geral em:" + shown);
    rows.AddNew();
    Fields& fields = rows.Fields();
    fields.Item("Cd_Pessoa").Value(Variant(Cd_Pessoa));
    fields.Item("Nm_Empresa").Value(Variant(Nm_Empresa));
    fields.Item("Dt_Movimento").Value(Variant(shown));
    int32_t day_quantity = 0;
    Currency day_value;
    for (int32_t tariff = 1; tariff <= kBoardingSlots; ++tariff) {
      auto total = ConsultarTotalTarifaDeUmEmpresaEmUmDia(Cd_Pessoa, tariff, day);
      int32_t quantity = 0;
      Currency value;
      if (!total->Eof()) {
        quantity = CLng(ZeroWhenNull(total->Fields().Item("Qt_Total").Value()));
        value = CCur(ZeroWhenNull(total->Fields().Item("Vl_Total").Value()));
      }
      total->Close();
      fields.Item("Qt_Tarifa" + std::to_string(tariff)).Value(Variant(quantity));
      fields.Item("Vl_Tarifa" + std::to_string(tariff)).Value(Variant(value));
      day_quantity += quantity;
      day_value = day_value + value;
    }
    accumulated_quantity += day_quantity;
    accumulated_value = accumulated_value + day_value;
    fields.Item("Qt_TarifaDia").Value(Variant(day_quantity));
    fields.Item("Vl_TarifaDia").Value(Variant(day_value));
    fields.Item("Qt_AcumTarifaDia").Value(Variant(accumulated_quantity));
    fields.Item("Vl_AcumTarifaDia").Value(Variant(accumulated_value));
    rows.Update();
    progress.Percentage(100.0 * ++step / steps);
  }

  // Each tariff's share of the company's boardings over the period, cut
  // (not rounded) to four decimals; the report database divides as decimals.
  const std::string where = Cd_Pessoa != 0
                                ? "WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)=" + std::to_string(Cd_Pessoa) + "));"
                                : std::string("WHERE  (((cgrApuracaoReceita3.Cd_Pessoa)= 0));");
  for (int32_t tariff = 1; tariff <= kBoardingSlots; ++tariff) {
    const std::string n = std::to_string(tariff);
    auto sum = report.Execute(SqlLines() << "SELECT  Sum(cgrApuracaoReceita3.Qt_Tarifa" + n + ") AS Qt_TotalTarifa"
                                         << "FROM    cgrApuracaoReceita3" << where);
    const double tariff_quantity = sum->Eof() ? 0 : CDbl(ZeroWhenNull(sum->Fields().Item(0).Value()));
    sum->Close();
    const int64_t share = accumulated_quantity == 0
                              ? 0
                              : static_cast<int64_t>(std::floor(10000 * (tariff_quantity / accumulated_quantity)));
    report.Execute(SqlLines() << "UPDATE cgrApuracaoReceita3 "
                              << "SET    cgrApuracaoReceita3.In_Tarifa" + n + " = " + std::to_string(share) +
                                     " / 10000"
                              << where);
  }
}

void cgdApuracoesReceita::GerarArqTempApuracaoPorEmpresa(Date Dt_Inicial, Date Dt_Final) {
  Run("GerarArqTempApuracaoPorEmpresa", [&] {
    OpenedObjects opened;
    opened.report = OpenSideConnection(PrepareReportDatabase(*Ob_cgpSistema()));
    opened.report->Execute(SqlLines() << "DELETE " << "FROM cgrApuracaoReceita3;");
    opened.rows = std::make_shared<Recordset>();
    opened.rows->Open("cgrApuracaoReceita3", opened.report, adOpenKeyset, adLockOptimistic, adCmdTable);

    ProgressWindow& progress = Ob_cgpSistema()->Progress();
    opened.progress = &progress;
    progress.Caption("Verificando Movimentos");
    progress.Show();
    auto companies = ConsultasPessasComApuracaoNoPeriodo(Dt_Inicial, Dt_Final);
    progress.Caption("Verificando Apurações de Receita");
    const int32_t days = Dt_Final < Dt_Inicial ? 0 : static_cast<int32_t>(Dt_Final - Dt_Inicial) + 1;
    const int32_t steps = std::max(1, (companies->RecordCount() + 1) * days);
    int32_t step = 0;
    while (!companies->Eof()) {
      Fields& company = companies->Fields();
      WriteCompanyRows(*opened.report, *opened.rows, CLng(company.Item("Cd_Pessoa").Value()),
                       CStr(company.Item("Nm_Pessoa").Value()), Dt_Inicial, Dt_Final, step, steps);
      companies->MoveNext();
    }
    companies->Close();
    WriteCompanyRows(*opened.report, *opened.rows, 0, "Total Geral", Dt_Inicial, Dt_Final, step, steps);
  });
}

}  // namespace vek
