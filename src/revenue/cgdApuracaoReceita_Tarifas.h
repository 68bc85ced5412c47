#pragma once
// The tariff lines of the revenue assessments: the assessment's grid with
// its running total, the report queries per day and tariff, and the monthly
// movement workbook (sheet DADOS, one row per day of the month, keyed by
// No_DiaMovimento; `vek init` writes the template Modelos/MovimentoMensal.xlsx).

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/ListLoader.h"
#include "vek/platform/Date.h"

namespace vek {

class FlexGrid;
class Recordset;
class TextControl;

class cgdApuracaoReceita_Tarifas : public ListCollection {
 public:
  // Clears the grid, lays it out ("<|<Codigo|<Descrição|>Quant.|>Unitário|>Total",
  // columns 1 to 5 at 800, 3000, 900, 1100 and 1200 twips) and adds one line
  // per tariff line that the filter selects, by tariff: an empty first cell,
  // the code, the description, the quantity ("###,###"), the unit price and
  // the line total ("###,###.00"). After each line Ob_TextTotal shows the
  // running total ("###,###,##0.00"); without lines it is left as it was.
  void CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, TextControl& Ob_TextTotal, const std::string& Ds_Condicao = "");
  // The grid's statement as a report record set.
  std::shared_ptr<Recordset> ConsultaTarifas(const std::string& Ds_Condicao = "");
  // Boardings per payer on one day (Cd_Pessoa, Qt_TotalTarifa). Like the
  // system's, the query has no tenant condition and joins the lines to their
  // assessment by number alone.
  std::shared_ptr<Recordset> ConsultarMovimentoDiaPorEmpresa(Date Dt_Movimento);
  // Quantity and amount per tariff and day of one revenue type (Cd_Tarifa,
  // Dt_Movimento, Qt_TotalTarifa, Vl_TotalTarifa), by tariff then day.
  std::shared_ptr<Recordset> ConsultarPorPeriodoAgrupadaDiaTarifa(Date Dt_Inicio, Date Dt_Fim, int32_t Cd_TipoReceita);
  // The same per day only (Dt_Movimento, Qt_TotalTarifa, Vl_TotalTarifa).
  std::shared_ptr<Recordset> ConsultarPorPeriodoAgrupadaDia(Date Dt_Inicio, Date Dt_Fim, int32_t Cd_TipoReceita);

  // The monthly movement workbook, written through the worksheet object:
  // for each day from Dt_Inicio to Dt_Fim, row = day of the month + 1,
  // columns B to W (the day, boarding, restroom, parking and type-4
  // totals, the day's deposit, the six boarding tariffs), then the workbook
  // is saved. Error Source link: "ExportarExcel".
  void ExportarExcelXP(Date Dt_Inicio, Date Dt_Fim, const std::string& Ds_CaminhoEArquivo);
  // The same values through the workbook's Jet connection: "[DADOS$]" is
  // opened as a record set and each day gets one UPDATE ... WHERE
  // No_DiaMovimento = day, with money as whole cents "/100" and the day as
  // "#mm/dd/yyyy#". Error Source link: "ExportarRsExcel".
  //
  // Both exports stop at the first error; the days already written stay in
  // the file. An error the person at the screen can mend (the file missing,
  // read-only or in use, the database busy: number 0x80004005, or the
  // runtime's file errors 53, 70, 75 and 76) is shown in the session's
  // message box ("Erro", Retry and Cancel, Cancel the default): Retry runs
  // the failed step again; Cancel closes what the export opened and raises
  // the error on. Any other error (a sheet or heading the workbook lacks, a
  // query the database refuses) is raised on at once.
  void ExportarExcel2000(Date Dt_Inicio, Date Dt_Fim, const std::string& Ds_CaminhoEArquivo);

 private:
  struct DayValues;
  DayValues ReadDay(Date day);
  std::string DayText(Date day) const;
};

}  // namespace vek
