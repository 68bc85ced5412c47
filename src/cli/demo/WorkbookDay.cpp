// The monthly movement workbook's part of the demo day: the month so far
// written into a copy of the terminal's template through the workbook's Jet
// connection (cgdApuracaoReceita_Tarifas.ExportarExcel2000), then read back
// as the record set of its sheet DADOS.

#include <filesystem>
#include <string>
#include <vector>

#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

namespace fs = std::filesystem;
using Align = TextTable::Align;

void MonthlyWorkbook(DayContext& day) {
  const Date now = day.session->Now();
  const Date today = DateSerial(Year(now), Month(now), Day(now));
  const Date first = DateSerial(Year(now), Month(now), 1);
  const fs::path file = AppPath() / ("MovimentoMensal-" + Format(Variant(today), "yyyy-mm") + ".xlsx");
  fs::copy_file(AppPath() / "Modelos" / "MovimentoMensal.xlsx", file, fs::copy_options::overwrite_existing);

  auto tarifas = day.Use<cgdApuracaoReceita_Tarifas>();
  tarifas.ExportarExcel2000(first, today, file.string());

  auto workbook = std::make_shared<Connection>();
  workbook->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file.string() + ";Extended Properties=Excel 8.0;");
  auto rows = workbook->Execute("SELECT * FROM [DADOS$]");
  TextTable table({{"Dia", Align::Right},
                   {"Data"},
                   {"Embarques", Align::Right},
                   {"Embarque", Align::Right},
                   {"Sanitário", Align::Right},
                   {"Estacionamento", Align::Right},
                   {"Depósito", Align::Right}});
  auto money = [&](const char* column) {
    const Variant value = rows->Fields().Item(column).Value();
    return value.IsNull() ? std::string() : Money(CCur(value));
  };
  for (; !rows->Eof(); rows->MoveNext()) {
    const Variant date = rows->Fields().Item("Dt_Movimento").Value();
    if (date.IsNull()) continue;  // days of the month still to come
    const Variant boarders = rows->Fields().Item("Qt_TotalEmbarque").Value();
    table.AddRow({CStr(rows->Fields().Item("No_DiaMovimento").Value()), Format(date, "dd/mm/yyyy"),
                  Format(boarders, "###,###,##0"), money("Vl_TotalEmbarque"), money("Vl_TotalSanitario"),
                  money("Vl_TotalEstacionamento"), money("Vl_DepositoDia")});
  }
  rows->Close();
  workbook->Close();
  table.Print(day.out);
  day.out << "  one UPDATE [DADOS$] per day, money as cents/100; the Resumo sheet's totals are worked out when it opens\n"
          << "  written to " << file.string() << "\n";
}

}  // namespace

std::vector<DayStep> WorkbookDay() {
  return {
      {"The monthly movement workbook", MonthlyWorkbook},
  };
}

}  // namespace vek::cli::demo
