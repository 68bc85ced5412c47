#pragma once
// The daily closing (TbFechamentoDiario, key Cd_EmpresaUsuariaSistema,
// Dt_FechamentoDiario): one row per operating company and day closed, with
// the day's bank deposit Vl_Deposito. The day is written in its key
// conditions as a date literal in the session's format
// ("       and A.Dt_FechamentoDiario = '2026-03-02'").

#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class FlexGrid;
class TextControl;

class cgdFechamentoDiario : public cgdRecord<cgpFechamentoDiario> {
 public:
  cgdFechamentoDiario() : cgdRecord("TbFechamentoDiario") {}

  // The latest closing of any operating company: loads it into Ob_cgp and
  // returns Ob_cgp; null when no day was ever closed (Ob_cgp is left as it
  // was).
  std::shared_ptr<cgpFechamentoDiario> ConsultarUltimaDataFechamento();
  // The receivables issued on the day of this closing (Dt_FechamentoDiario
  // of Ob_cgp), of any company, by payer: one grid line each with the
  // number, the instalment, the payer's name, the due date "dd/mm/yyyy" and
  // the amount "###,###,##0.00", tab-separated. Ob_TextBox gets the day's
  // total billed, "###,###,##0.00" ("0,00" when nothing was billed), which
  // the closing screen sets beside the deposit. The grid is not cleared.
  // Failures carry " -> cgdFechamentoDiario.CarregarMSFlexGridDeBusca, " in
  // their Source: the member keeps the name of the loader it came from.
  void VerificarFaturamentos(FlexGrid& Ob_MSFlexGrid, TextControl& Ob_TextBox);
};

}  // namespace vek
