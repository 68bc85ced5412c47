// The till's part of the demo day: the cashier opens her till before the
// car park opens (everything taken afterwards is paid into it), and at the
// end of the day its reports and the till-closing feed are printed.

#include <string>
#include <vector>

#include "cli/TillScreens.h"
#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

// The cashier of the registry's morning.
constexpr const char* kCashier = "maria.souza";

void OpenTill(DayContext& day) {
  const int32_t cashier = day.facts.users.at(kCashier);
  const Date today = DateSerial(Year(day.session->Now()), Month(day.session->Now()), Day(day.session->Now()));
  auto caixa = day.Use<cgdCaixa>();
  auto till = caixa.Ob_cgp();
  // The cashier's screen first looks for her till of the day by its opening.
  till->Let("Ic_ConsultarPorAbertura", true);
  till->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  till->Let("Cd_Usuario", cashier);
  till->Let("Dt_Abertura", today);
  till->Let("No_Sequencial", 1);
  caixa.Consultar();
  const bool found = CLng(till->Get("Cd_Caixa")) != 0;
  if (!found) {
    till->Let("Ic_ConsultarPorAbertura", true);
    till->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    till->Let("Cd_Usuario", cashier);
    till->Let("Dt_Abertura", today);
    till->Let("No_Sequencial", 1);
    till->Let("No_Situacao", 1);
    caixa.Salvar();
  }
  day.facts.till = CLng(till->Get("Cd_Caixa"));

  // Found again as the screen finds it after a restart.
  auto again = day.Use<cgdCaixa>();
  auto kept = again.Ob_cgp();
  kept->Let("Ic_ConsultarPorAbertura", true);
  kept->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  kept->Let("Cd_Usuario", cashier);
  kept->Let("Dt_Abertura", today);
  kept->Let("No_Sequencial", 1);
  again.Consultar(false);
  day.out << "  " << kCashier << " has no till of " << Format(Variant(today), "dd/mm/yyyy")
          << (found ? " (found one)" : " yet (Consultar by opening restores the defaults), so one is saved:") << "\n";
  PrintFacts(day.out, {{"Cd_Caixa (numbered)", Format(kept->Get("Cd_Caixa"))},
                       {"Cd_Usuario", Format(kept->Get("Cd_Usuario"))},
                       {"Dt_Abertura", Format(kept->Get("Dt_Abertura"), "dd/mm/yyyy")},
                       {"No_Sequencial", Format(kept->Get("No_Sequencial"))}});
  day.out << "  Found again by its opening (Ic_ConsultarPorAbertura = True: user, opening date, sequence);\n"
             "  the car park's exits and the restroom's sales are paid into it.\n";
}

void TillReports(DayContext& day) { PrintTill(day.session, day.facts.company, day.facts.till, day.out); }

}  // namespace

std::vector<DayStep> TillOpeningDay() { return {{"The cashier opens her till", OpenTill}}; }

std::vector<DayStep> TillReportsDay() { return {{"What the till took", TillReports}}; }

}  // namespace vek::cli::demo
