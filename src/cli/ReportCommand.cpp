// vek report till: what one till of a terminal took, as the cashier's
// reports list it, and the till-closing feed.

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "cli/TillScreens.h"
#include "cli/demo/Day.h"

namespace vek::cli {
namespace {

using Align = demo::TextTable::Align;
using demo::Money;

// A date property the record held Null in reads 30/12/1899: no date either.
bool NoDate(const Variant& value) { return value.IsNull() || value.IsEmpty() || CDate(value) <= DateSerial(1900, 1, 1); }
std::string Moment(const Variant& value) { return NoDate(value) ? std::string() : Format(value, "dd/mm/yyyy hh:Nn"); }
std::string DayText(const Variant& value) { return value.IsNull() ? std::string() : Format(value, "dd/mm/yyyy"); }
std::string Text(const Variant& value) { return value.IsNull() ? std::string() : Format(value); }
std::string Amount(const Variant& value) { return value.IsNull() ? std::string() : Money(CCur(value)); }

void PrintCount(std::ostream& out, int32_t count, const char* one, const char* many) {
  out << "  (" << count << " " << (count == 1 ? one : many) << ")\n";
}

// Parking exits, from rsSaidasCaixa or rsSaidasPeriodo.
void PrintExits(std::ostream& out, Recordset& rows, bool with_till) {
  std::vector<demo::TextTable::Column> columns = {{"Ticket", Align::Right}, {"Cd_Placa"},   {"Ds_MarcaModelo"},
                                                  {"Nm_Cor"},               {"Entrada"},    {"Saída"},
                                                  {"Min", Align::Right},    {"Vl_Tarifa", Align::Right}};
  if (with_till) columns.push_back({"Caixa", Align::Right});
  demo::TextTable table(std::move(columns));
  Currency total;
  for (Fields& f = rows.Fields(); !rows.Eof(); rows.MoveNext()) {
    const Variant value = f.Item("Vl_Tarifa").Value();
    if (!value.IsNull()) total = total + CCur(value);
    table.AddRow({Text(f.Item("Cd_TicketEstacionamento").Value()), Text(f.Item("Cd_Placa").Value()),
                  Text(f.Item("Ds_MarcaModelo").Value()), Text(f.Item("Nm_Cor").Value()),
                  Moment(f.Item("Dt_Entrada").Value()), Moment(f.Item("Dt_Saida").Value()),
                  Text(f.Item("Qt_TempoPermanenciaMinutos").Value()), Amount(value), Text(f.Item("Cd_Caixa").Value())});
  }
  table.Print(out);
  out << "  (" << table.RowCount() << (table.RowCount() == 1 ? " exit, " : " exits, ") << Money(total) << ")\n";
}

// Cash assessments, from rsRecebimentoDeMensalistas or rsApuracaoReceitaCaixa.
void PrintAssessments(std::ostream& out, Recordset& rows) {
  demo::TextTable table({{"No_ApuracaoReceita", Align::Right}, {"nm_pessoa"}, {"Dt_Movimento"}, {"Dt_Inicial"},
                         {"Dt_Final"}, {"Vl_ApuracaoReceita", Align::Right}});
  for (Fields& f = rows.Fields(); !rows.Eof(); rows.MoveNext()) {
    table.AddRow({Text(f.Item("No_ApuracaoReceita").Value()), Text(f.Item("nm_pessoa").Value()),
                  DayText(f.Item("Dt_Movimento").Value()), DayText(f.Item("Dt_Inicial").Value()),
                  DayText(f.Item("Dt_Final").Value()), Amount(f.Item("Vl_ApuracaoReceita").Value())});
  }
  table.Print(out);
  PrintCount(out, table.RowCount(), "assessment", "assessments");
}

}  // namespace

void PrintTill(const std::shared_ptr<cgpSistema>& session, int32_t company, int32_t till, std::ostream& out) {
  cgdCaixa caixa;
  caixa.Ob_cgpSistema(session);
  auto record = caixa.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(company));
  record->Let("Cd_Caixa", Variant(till));
  if (till == 0 || CLng(caixa.Consultar()->Get("Cd_Caixa")) == 0) {
    throw VekError(kBusinessError, std::string(),
                   "Company " + std::to_string(company) + " has no till " + std::to_string(till));
  }
  const Variant opening = record->Get("Dt_Abertura");
  const Variant closing = record->Get("Dt_Fechamento");
  out << "Till " << till << " of company " << company << ": opened " << Moment(opening) << " by user "
      << Text(record->Get("Cd_Usuario")) << " (sequence " << Text(record->Get("No_Sequencial")) << ")"
      << (NoDate(closing) ? std::string(", open") : ", closed " + Moment(closing)) << "\n";

  cgdEmpresaUsuariaSistema empresa;
  empresa.Ob_cgpSistema(session);
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(company));

  out << "\nParking exits through the till (rsSaidasCaixa):\n";
  PrintExits(out, *empresa.rsSaidasCaixa(till), false);

  const Date first = NoDate(opening) ? session->Now() : CDate(opening);
  const Date last = NoDate(closing) ? session->Now() : CDate(closing);
  out << "\nParking exits from " << DayText(Variant(first)) << " to " << DayText(Variant(last))
      << " at any till (rsSaidasPeriodo):\n";
  PrintExits(out, *empresa.rsSaidasPeriodo(first, last), true);

  out << "\nTaken per tariff (rsSaidasCaixaAgrupadoPorTarifa):\n";
  {
    demo::TextTable table({{"Ds_Tipo"}, {"Cd_Tarifa", Align::Right}, {"Ds_Tarifa"}, {"Qt_Unidade", Align::Right},
                           {"Vl_Tarifa", Align::Right}});
    auto rows = empresa.rsSaidasCaixaAgrupadoPorTarifa(till);
    for (Fields& f = rows->Fields(); !rows->Eof(); rows->MoveNext()) {
      table.AddRow({Text(f.Item("Ds_Tipo").Value()), Text(f.Item("Cd_Tarifa").Value()),
                    Text(f.Item("Ds_Tarifa").Value()), Text(f.Item("Qt_Unidade").Value()),
                    Amount(f.Item("Vl_Tarifa").Value())});
    }
    table.Print(out);
    PrintCount(out, table.RowCount(), "line", "lines");
  }

  out << "\nMonthly-client payments (rsRecebimentoDeMensalistas):\n";
  PrintAssessments(out, *empresa.rsRecebimentoDeMensalistas(till));
  out << "\nThe till's totalling (rsApuracaoReceitaCaixa):\n";
  PrintAssessments(out, *empresa.rsApuracaoReceitaCaixa(till));

  out << "\nRestroom sales (rsRecebimentoSanitario):\n";
  {
    demo::TextTable table({{"Ticket", Align::Right}, {"Dt_Entrada"}, {"Ds_Tarifa"}, {"Qt_Unidade", Align::Right},
                           {"Vl_Tarifa", Align::Right}});
    auto rows = empresa.rsRecebimentoSanitario(till);
    for (Fields& f = rows->Fields(); !rows->Eof(); rows->MoveNext()) {
      table.AddRow({Text(f.Item("Cd_TicketSanitario").Value()), Moment(f.Item("Dt_Entrada").Value()),
                    Text(f.Item("Ds_Tarifa").Value()), Text(f.Item("Qt_Unidade").Value()),
                    Amount(f.Item("Vl_Tarifa").Value())});
    }
    table.Print(out);
    PrintCount(out, table.RowCount(), "sale", "sales");
  }

  out << "\nTill-closing feed (PreparaDadosParaRelatorioApuracaoReceita7, then TempApuracaoReceita7):\n";
  caixa.PreparaDadosParaRelatorioApuracaoReceita7();
  {
    // The report reads the work table's columns by position.
    demo::TextTable table({{"Ds_Tipo"}, {"Code", Align::Right}, {"Description"}, {"Ds_Observacao"},
                           {"Unit", Align::Right}, {"Vl_Total", Align::Right}});
    Currency total;
    auto rows = session->Ob_Conexao()->Execute("SELECT * FROM TempApuracaoReceita7 ORDER BY 1, 2");
    for (Fields& f = rows->Fields(); !rows->Eof(); rows->MoveNext()) {
      const Variant line_total = f.Item(5).Value();
      if (!line_total.IsNull()) total = total + CCur(line_total);
      table.AddRow({Text(f.Item(0).Value()), Text(f.Item(1).Value()), Text(f.Item(2).Value()),
                    Text(f.Item(3).Value()), Amount(f.Item(4).Value()), Amount(line_total)});
    }
    table.Print(out);
    out << "  Total " << Money(total) << "\n";
  }
}

void PrintTillReport(const std::filesystem::path& folder, int32_t till, std::ostream& out) {
  auto session = OpenTerminal(folder);
  const int32_t company = CLng(session->Get("Cd_EmpresaUsuariaSistema"));
  if (company == 0) {
    throw VekError(kBusinessError, std::string(),
                   "Vek.ini of " + folder.string() +
                       " names no operating company ([EmpresaUsuaria] Cd_EmpresaUsuariaSistema)");
  }
  PrintTill(session, company, till, out);
  session->Ob_Conexao()->Close();
}

void AddReportCommand(CLI::App& app) {
  struct TillArguments {
    std::vector<std::string> positionals;  // [DIR] N
  };
  auto arguments = std::make_shared<TillArguments>();
  CLI::App* report = app.add_subcommand("report", "Print a terminal's reports");
  report->require_subcommand(1);
  CLI::App* till = report->add_subcommand(
      "till", "Print what a till took: its six reports and the till-closing feed, for the company of Vek.ini");
  till->add_option("DIR N", arguments->positionals,
                   "The terminal folder (holding Vek.ini; the current one when left out) and the till's number")
      ->expected(1, 2)
      ->required();
  till->callback([arguments] {
    const std::vector<std::string>& given = arguments->positionals;
    const std::string folder = given.size() == 2 ? given[0] : ".";
    const std::string& number = given.back();
    int32_t till_number = 0;
    try {
      size_t used = 0;
      const long value = std::stol(number, &used);
      if (used != number.size() || value <= 0 || value > INT32_MAX) throw std::out_of_range(number);
      till_number = static_cast<int32_t>(value);
    } catch (const std::logic_error&) {
      throw CLI::ValidationError("N", "the till's number must be a whole number above 0, not '" + number + "'");
    }
    PrintTillReport(folder, till_number, std::cout);
  });
}

}  // namespace vek::cli
