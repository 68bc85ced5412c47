#pragma once
// The assessments as lists and reports: the search grid, what is to be
// billed on a billing date, and the per-company boarding report written
// into the report database (table cgrApuracaoReceita3 of bdTemp).

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/ListLoader.h"
#include "vek/platform/Date.h"

namespace vek {

class Connection;
class Recordset;

class cgdApuracoesReceita : public ListCollection {
 public:
  // One line per assessment, by payer's name and day: the number as
  // "###,###,##0", the payer, the day as "dd/mm/yyyy" and the amount as
  // "###,###,##0.00", tab-separated; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
  // Per payer and due date, the sum of the assessments billed on the date
  // (Cd_Pessoa, Dt_Vencimento, Vl_TotalApuracaoReceita), of every operating
  // company. An open, detached, read-only record set.
  std::shared_ptr<Recordset> ConsultarApuracoesAFaturarPorEmpresa(Date Dt_Faturamento);
  // Empties cgrApuracaoReceita3 in the report database and writes, for
  // every company with boarding assessments in the period, one row per day
  // of the period with its quantities and values of boarding tariffs 1 to 6,
  // the day's totals and the running totals, then each tariff's share of
  // the company's boardings (cut to four decimals, 0 for a company that
  // boarded nobody); last the same for all companies under Cd_Pessoa 0,
  // "Total Geral". Stops at the first error; the rows written stay.
  void GerarArqTempApuracaoPorEmpresa(Date Dt_Inicial, Date Dt_Final);

 private:
  // The companies (Cd_Pessoa, Nm_Pessoa) with boarding assessments in the period.
  std::shared_ptr<Recordset> ConsultasPessasComApuracaoNoPeriodo(Date Dt_Inicial, Date Dt_Final);
  // Qt_Total and Vl_Total of one tariff on one day, for one company or, with
  // Cd_Pessoa 0, for all of them.
  std::shared_ptr<Recordset> ConsultarTotalTarifaDeUmEmpresaEmUmDia(int32_t Cd_Pessoa, int32_t Cd_Tarifa,
                                                                     Date Dt_Movimento);
  // The rows of one payer (0: the grand total) for every day of the period,
  // then the tariffs' shares on them.
  void WriteCompanyRows(Connection& report, Recordset& rows, int32_t Cd_Pessoa, const std::string& Nm_Empresa,
                        Date Dt_Inicial, Date Dt_Final, int32_t& step, int32_t steps);
  std::string DateLiteral(Date day) const;
};

}  // namespace vek
