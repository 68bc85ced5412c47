// The assessments' part of the demo day: each bus company's boarding fee
// for the day, counted from its trips; the monthly clients paying their fee
// at the cashier's till; and the till's totalling, one line per tariff it
// took (car-park exits, restroom sales, monthly fees); later, the
// per-company boarding report written into the report database.

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

using Align = TextTable::Align;

// The boarding fee the registry's morning set up.
constexpr const char* kBoardingTariff = "Taxa de embarque intermunicipal";

Date Today(const DayContext& day) { return Date(static_cast<double>(static_cast<int64_t>(day.session->Now().Serial()))); }
std::string Shown(Date date) { return Format(Variant(date), "dd/mm/yyyy"); }

Currency PriceOf(const DayContext& day, int32_t tariff) {
  auto read = day.Use<cgdTarifa>();
  read.Ob_cgp()->Let("Cd_Tarifa", tariff);
  return CCur(read.Consultar()->Get("Vl_Tarifa"));
}

struct Line {
  int32_t tariff;
  int32_t quantity;
  Currency price;
};

// Saves an assessment (numbered by Salvar) with its tariff lines; the
// amount is the lines' total. Returns its number.
int32_t Assess(const DayContext& day, int32_t type, int32_t payer, Date first, Date last, bool till_total,
               const std::vector<Line>& lines) {
  const Date today = Today(day);
  Currency amount;
  for (const Line& line : lines) amount = amount + line.price * line.quantity;
  auto header = day.Use<cgdApuracaoReceita>();
  auto record = header.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  record->Let("Cd_TipoReceita", type);
  record->Let("Cd_Pessoa", payer);
  record->Let("Dt_Movimento", today);
  // What the till took is paid already: only the boarding fees are billed.
  record->Let("Dt_Faturamento", type == 1 ? today : Date());
  record->Let("Dt_Vencimento", type == 1 ? DateAdd("d", 7, today) : today);
  record->Let("Vl_ApuracaoReceita", amount);
  record->Let("Dt_Inicial", first);
  record->Let("Dt_Final", last);
  record->Let("Cd_Caixa", type == 1 ? 0 : day.facts.till);
  record->Let("Ic_TotalizacaoDeCaixa", till_total);
  header.Salvar();
  const int32_t number = CLng(record->Get("No_ApuracaoReceita"));
  for (const Line& line : lines) {
    auto detail = day.Use<cgdApuracaoReceita_Tarifa>();
    auto item = detail.Ob_cgp();
    item->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    item->Let("No_ApuracaoReceita", number);
    item->Let("Cd_Tarifa", line.tariff);
    item->Let("Qt_Tarifa", CInt(Variant(line.quantity)));
    item->Let("Vl_Tarifa", line.price);
    detail.Incluir();
  }
  return number;
}

// The day's assessments of one revenue type, from the assessments' search grid.
void PrintAssessments(DayContext& day, const std::string& condition) {
  ListGrid grid;
  TextBox count;
  day.Use<cgdApuracoesReceita>().CarregarMSFlexGridDeBusca(
      grid, count, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company) + " And " + condition);
  PrintGrid(day.out, grid,
            {{"No_ApuracaoReceita", Align::Right}, {"Nm_Pessoa"}, {"Dt_Movimento"}, {"Vl_ApuracaoReceita", Align::Right}},
            count);
}

// Assesses every bus company not yet assessed today; returns how many it assessed.
int32_t AssessBoardings(DayContext& day, TextTable* table) {
  const Date today = Today(day);
  const int32_t tariff = day.facts.tariffs.at(kBoardingTariff);
  const Currency price = PriceOf(day, tariff);
  ListGrid companies;
  TextBox count;
  day.Use<cgdEmpresasOnibus>().CarregarMSFlexGridDeBusca(companies, count);
  int32_t assessed = 0;
  for (const auto& cells : GridRows(companies)) {
    const int32_t company = std::stoi(cells.at(0));
    auto check = day.Use<cgdApuracaoReceita>();
    check.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    check.Ob_cgp()->Let("Cd_Pessoa", company);
    check.Ob_cgp()->Let("Dt_Movimento", today);
    if (check.ConsultarApuracoesPorDataEEmpresa()->RecordCount() > 0) continue;

    auto bus_company = day.Use<cgdEmpresaOnibus>();
    bus_company.Ob_cgp()->Let("Cd_EmpresaOnibus", company);
    const int32_t boardings = bus_company.ConsultarQuantidadeDeEmbarques(today);
    const int32_t number = Assess(day, 1, company, today, today, false, {{tariff, boardings, price}});
    ++assessed;
    if (table) {
      table->AddRow({std::to_string(company), cells.at(2), std::to_string(boardings), std::to_string(number),
                     Money(price), Money(price * boardings)});
    }
  }
  return assessed;
}

// ---- the steps -------------------------------------------------------------

void BoardingAssessments(DayContext& day) {
  day.out << "  Passengers boarded today by each bus company, counted from its trips "
             "(cgdEmpresaOnibus.ConsultarQuantidadeDeEmbarques), assessed at \""
          << kBoardingTariff << "\" (cgdApuracaoReceita.Salvar, cgdApuracaoReceita_Tarifa.Incluir):\n";
  TextTable table({{"Cd_Pessoa", Align::Right},
                   {"Nm_EmpresaOnibus"},
                   {"Qt_Embarques", Align::Right},
                   {"No_ApuracaoReceita", Align::Right},
                   {"Vl_Tarifa", Align::Right},
                   {"Vl_ApuracaoReceita", Align::Right}});
  AssessBoardings(day, &table);
  table.Print(day.out);
  day.out << "  The same step run again: " << AssessBoardings(day, nullptr)
          << " assessments made: each company was found assessed for the day "
             "(cgdApuracaoReceita.ConsultarApuracoesPorDataEEmpresa)\n";
  day.out << "\n  Boarding assessments' search grid (cgdApuracoesReceita.CarregarMSFlexGridDeBusca):\n";
  PrintAssessments(day, "A.Cd_TipoReceita = 1");
}

void MonthlyPayments(DayContext& day) {
  const Date today = Today(day);
  const Date first = DateSerial(Year(today), Month(today), 1);
  const Date last = DateAdd("d", -1, DateAdd("m", 1, first));
  ListGrid clients;
  TextBox count;
  day.Use<cgdClienteEstacionament>().CarregarMSFlexGridDeBusca(
      clients, count, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company));
  TextTable table({{"Cd_Pessoa", Align::Right}, {"Nm_Pessoa"}, {"No_ApuracaoReceita", Align::Right},
                   {"Vl_ApuracaoReceita", Align::Right}, {"Paid until"}});
  for (const auto& cells : GridRows(clients)) {
    const int32_t person = CLng(Variant(cells.at(0)));
    auto client = day.Use<cgdClienteEstacionament>();
    client.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    client.Ob_cgp()->Let("Cd_ClienteEstacionamento", person);
    const int32_t tariff = CLng(client.Consultar()->Get("Cd_Tarifa"));
    const Currency fee = PriceOf(day, tariff);
    const int32_t number = Assess(day, 2, person, first, last, false, {{tariff, 1, fee}});
    table.AddRow({std::to_string(person), cells.at(1), std::to_string(number), Money(fee),
                  Shown(client.ObterDataFinalUltimaMensalidadeEstacionamento())});
  }
  day.out << "  The monthly clients pay " << Shown(first) << " to " << Shown(last) << " at till " << day.facts.till
          << " (revenue type 2, Ic_TotalizacaoDeCaixa 0), and the paid period is read back "
             "(cgdClienteEstacionament.ObterDataFinalUltimaMensalidadeEstacionamento):\n";
  table.Print(day.out);
}

void TillTotalling(DayContext& day) {
  const Date today = Today(day);
  const std::string company = std::to_string(day.facts.company);
  const std::string till = std::to_string(day.facts.till);
  // What the till took: the car park's charge lines, the restroom's sales and the monthly fees.
  auto rows = day.session->Ob_Conexao()->Execute(
      "SELECT A.Cd_Tarifa, A.Qt_Unidade As Qt, A.Vl_Tarifa FROM TbTicketEstacionamento_TbTarifa A "
      "INNER JOIN TbTicketEstacionamento C On A.Cd_EmpresaUsuariaSistema = C.Cd_EmpresaUsuariaSistema "
      "And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento "
      "WHERE A.Cd_EmpresaUsuariaSistema = " + company + " And C.Cd_Caixa = " + till +
      " UNION ALL SELECT Cd_Tarifa, Qt_Unidade, Vl_Tarifa FROM TbTicketSanitario "
      "WHERE Cd_EmpresaUsuariaSistema = " + company + " And Cd_Caixa = " + till +
      " UNION ALL SELECT B.Cd_Tarifa, B.Qt_Tarifa, B.Vl_Tarifa FROM TbApuracaoReceita A "
      "INNER JOIN TbApuracaoReceita_TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema "
      "And A.No_ApuracaoReceita = B.No_ApuracaoReceita "
      "WHERE A.Cd_EmpresaUsuariaSistema = " + company + " And A.Cd_Caixa = " + till +
      " And A.Ic_TotalizacaoDeCaixa = 0");
  std::map<int32_t, Line> taken;
  for (; !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    const int32_t tariff = CLng(f.Item(0).Value());
    Line& line = taken.try_emplace(tariff, Line{tariff, 0, CCur(f.Item(2).Value())}).first->second;
    line.quantity += CLng(f.Item(1).Value());
  }
  std::vector<Line> lines;
  TextTable table({{"Cd_Tarifa", Align::Right}, {"Qt_Tarifa", Align::Right}, {"Vl_Tarifa", Align::Right},
                   {"Total", Align::Right}});
  Currency total;
  for (const auto& [tariff, line] : taken) {
    lines.push_back(line);
    total = total + line.price * line.quantity;
    table.AddRow({std::to_string(tariff), std::to_string(line.quantity), Money(line.price),
                  Money(line.price * line.quantity)});
  }
  const int32_t number = Assess(day, 2, day.facts.company_person, today, today, true, lines);
  day.out << "  Till " << day.facts.till << " totalled as assessment " << number
          << " of the operating company (Ic_TotalizacaoDeCaixa 1), one line per tariff it took:\n";
  table.Print(day.out);
  day.out << "  Total " << Money(total) << "\n\n  The till's assessments (cgdApuracoesReceita.CarregarMSFlexGridDeBusca, "
          << "A.Cd_Caixa = " << day.facts.till << "):\n";
  PrintAssessments(day, "A.Cd_Caixa = " + till);

  auto billed = day.Use<cgdApuracoesReceita>().ConsultarApuracoesAFaturarPorEmpresa(today);
  day.out << "\n  To be billed today, per payer and due date, the boarding fees "
             "(cgdApuracoesReceita.ConsultarApuracoesAFaturarPorEmpresa):\n";
  TextTable to_bill({{"Cd_Pessoa", Align::Right}, {"Dt_Vencimento"}, {"Vl_TotalApuracaoReceita", Align::Right}});
  for (; !billed->Eof(); billed->MoveNext()) {
    Fields& f = billed->Fields();
    to_bill.AddRow({Format(f.Item("Cd_Pessoa").Value()), Format(f.Item("Dt_Vencimento").Value(), "dd/mm/yyyy"),
                    Money(CCur(f.Item("Vl_TotalApuracaoReceita").Value()))});
  }
  to_bill.Print(day.out);
}

void ReportDatabase(DayContext& day) {
  const Date today = Today(day);
  day.Use<cgdApuracoesReceita>().GerarArqTempApuracaoPorEmpresa(today, today);
  const std::filesystem::path file = std::filesystem::path(ApplicationFolder(*day.session)) / "bdTemp.db";
  day.out << "  The day's boardings per company and tariff, with each tariff's share "
             "(cgdApuracoesReceita.GerarArqTempApuracaoPorEmpresa), written into the report database\n  "
          << file.string() << " (table cgrApuracaoReceita3, read back through SQL):\n";
  auto report = std::make_shared<Connection>();
  report->Open("Driver=SQLite3;Database=" + file.string());
  auto rows = report->Execute("SELECT Cd_Pessoa, Nm_Empresa, Dt_Movimento, Qt_Tarifa1, Vl_Tarifa1, Qt_TarifaDia, "
                             "Vl_TarifaDia, In_Tarifa1 FROM cgrApuracaoReceita3 ORDER BY Cd_Pessoa DESC");
  TextTable table({{"Cd_Pessoa", Align::Right}, {"Nm_Empresa"}, {"Dt_Movimento"}, {"Qt_Tarifa1", Align::Right},
                   {"Vl_Tarifa1", Align::Right}, {"Qt_TarifaDia", Align::Right}, {"Vl_TarifaDia", Align::Right},
                   {"In_Tarifa1", Align::Right}});
  for (; !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    table.AddRow({Format(f.Item(0).Value()), Format(f.Item(1).Value()), Format(f.Item(2).Value()),
                  Format(f.Item(3).Value()), Money(CCur(f.Item(4).Value())), Format(f.Item(5).Value()),
                  Money(CCur(f.Item(6).Value())), Format(f.Item(7).Value(), "0.0000")});
  }
  table.Print(day.out);
}

}  // namespace

std::vector<DayStep> AssessmentDay() {
  return {
      {"Boarding assessments of the bus companies", BoardingAssessments},
      {"Monthly clients pay at the till", MonthlyPayments},
      {"The till's totalling", TillTotalling},
  };
}

std::vector<DayStep> AssessmentReportDay() {
  return {
      {"The boarding report in the report database", ReportDatabase},
  };
}

}  // namespace vek::cli::demo
