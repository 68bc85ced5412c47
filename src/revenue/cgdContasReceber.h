#pragma once
// The lists of receivables, the closing's receivables, and their export to
// the ERP ("Microsiga") as a dBase table of titles.

#include <memory>
#include <string>

#include "vek/foundation/ListLoader.h"
#include "vek/platform/Date.h"

namespace vek {

class Recordset;

class cgdContasReceber : public ListCollection {
 public:
  // One line per receivable that the filter selects (qualify with A. for
  // receivables, B. for the payer), by payer name then due date: number and
  // instalment "###,###,##0", payer, issue, due and payment dates
  // "dd/mm/yyyy" (empty when not paid) and amount "###,###,##0.00", after
  // the grid's empty first cell; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
  // The receivables that the daily closing generated for that day
  // (Ic_GeradoPeloSistema = 1), of any operating company. A report record set.
  std::shared_ptr<Recordset> ConsultarContasDeFechamentoDiario(Date Dt_FechamentoDiario);
  // Writes every receivable issued from Dt_Inicio to Dt_Fim, of any
  // operating company, into the ERP's title table Nm_Tabela (a .dbf file in
  // the folder Nm_ArquivoDestino) through the Visual FoxPro connection
  // string: first "DELETE  FROM " + Nm_Tabela (the old titles are marked
  // deleted), then one "INSERT Into" per receivable with the company's
  // TbParametrosMicrosiga values and the bus company's ERP customer and
  // store codes (empty when missing; a missing currency number is written
  // Null, which leaves the field blank). Amounts go as whole cents
  // "12345 / 100 ", dates as 'dd/mm/yyyy'.
  // Every INSERT is built before the table is touched: a value that would
  // go between quotes holding an apostrophe is refused (0x80040458 naming
  // the column) and the table stays as it was. A folder or table that can't
  // be opened raises 0x80040458 "Para exportar para o formato DBF é
  // necessário instalar o BDE, provavelmente esse arquivo não foi instalado.
  // Retornou a seguinte mensagem: " followed by the provider's message.
  // The first INSERT that fails (a number too wide for its field, ...) stops
  // the export with the provider's error: the titles written before it stay
  // in the table. The session's progress window shows the titles written.
  void ExportarDBF(Date Dt_Inicio, Date Dt_Fim, const std::string& Nm_ArquivoDestino,
                   const std::string& Nm_Tabela);
};

}  // namespace vek
