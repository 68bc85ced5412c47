// The billing part of the demo day: the payment terms, the daily closing
// (what is to be billed today becomes receivables, checked against the
// deposit) and the receivables written into the ERP's dBase title table in
// the terminal folder.
//
// What is billed today is last week's boarding fees: the assessments of
// Wednesday to Saturday fall, by the weekly term, into the period billed on
// Monday, and were recorded with those billing and due days on their own
// days (written here as the assessment program left them).

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

namespace fs = std::filesystem;
using Align = TextTable::Align;
using Values = std::initializer_list<std::pair<std::string_view, Variant>>;

constexpr int16_t kWeekly = 1;
constexpr int16_t kMonthly = 2;

template <class Manager>
auto Save(const DayContext& day, Values values) {
  auto manager = day.Use<Manager>();
  auto record = manager.Ob_cgp();
  for (const auto& [name, value] : values) record->Let(name, value);
  manager.Salvar();
  return record;
}

// The terms saved this morning, and what the closing issued.
struct BillingFacts {
  int32_t weekly = 0;
  int32_t monthly = 0;
  int32_t issued = 0;
};
BillingFacts& Facts() {
  static BillingFacts facts;
  return facts;
}

Date Today(const DayContext& day) {
  const Date now = day.session->Now();
  return DateSerial(Year(now), Month(now), Day(now));
}
std::string DayText(Date date) { return Format(Variant(date), "dd/mm/yyyy"); }
std::string WeekdayName(Date date) {
  static const char* const kNames[] = {"", "domingo", "segunda", "terça", "quarta", "quinta", "sexta", "sábado"};
  return kNames[Weekday(date)];
}

// The first day after `from` that is weekday `number` (weekly) or day
// `number` of its month (monthly).
Date NextDayNumbered(Date from, int32_t number, int16_t type) {
  Date date = from + 1.0;
  for (int32_t i = 0; i < 62; ++i, date = date + 1.0) {
    if ((type == kWeekly ? Weekday(date) : Day(date)) == number) break;
  }
  return date;
}

struct Period {
  int32_t first = 0, last = 0;
  Date billed, due;
};
// The period of a movement by EncontrarPeriodo, with its billing and due dates.
Period PeriodOf(const DayContext& day, int32_t term, Date movement, int16_t type) {
  auto finder = day.Use<cgdItemCondicaoPagamento>();
  finder.Ob_cgp()->Let("Cd_CondicaoPagamento", term);
  auto item = finder.EncontrarPeriodo(movement, type);
  if (!item) return {};
  Period period{CLng(item->Get("No_InicioPeriodo")), CLng(item->Get("No_FinalPeriodo")), {}, {}};
  period.billed = NextDayNumbered(movement, CLng(item->Get("No_Faturamento")), type);
  period.due = NextDayNumbered(period.billed, CLng(item->Get("No_Vencimento")), type);
  return period;
}

// ---- the steps -------------------------------------------------------------

void PaymentTerms(DayContext& day) {
  Facts() = {};
  struct Item {
    int32_t first, last, billing, due;
  };
  const auto save_term = [&](int16_t type, const char* name, std::vector<Item> items) {
    auto term = Save<cgdCondicaoPagamento>(day, {{"Cd_TipoCondicaoPagamento", type}, {"Ds_CondicaoPagamento", name}});
    const int32_t code = CLng(term->Get("Cd_CondicaoPagamento"));
    for (const Item& item : items) {
      Save<cgdItemCondicaoPagamento>(day, {{"Cd_CondicaoPagamento", code},
                                           {"No_InicioPeriodo", item.first},
                                           {"No_FinalPeriodo", item.last},
                                           {"No_Faturamento", item.billing},
                                           {"No_Vencimento", item.due}});
    }
    return code;
  };
  // Weekly: Sunday to Tuesday billed Wednesday, due Friday; Wednesday to
  // Saturday billed Monday, due Wednesday. Monthly: three spans of the month.
  Facts().weekly = save_term(kWeekly, "Semanal", {{1, 3, 4, 6}, {4, 7, 2, 4}});
  Facts().monthly = save_term(kMonthly, "Mensal", {{1, 10, 11, 20}, {11, 20, 21, 30}, {21, 31, 1, 10}});

  day.out << "  Payment terms and their periods (cgdItensCondicaoPagamento.CarregarMSFlexGridDeBusca):\n";
  auto items = day.Use<cgdItensCondicaoPagamento>();
  ListGrid grid;
  TextBox count;
  items.CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid,
            {{"Term", Align::Right}, {"Type", Align::Right}, {"From", Align::Right}, {"To", Align::Right},
             {"Billed", Align::Right}, {"Due", Align::Right}},
            count);
  day.out << "  Type 1 counts weekdays (1 domingo ... 7 sábado), type 2 days of the month.\n";

  day.out << "\n  The period of a movement (cgdItemCondicaoPagamento.EncontrarPeriodo):\n";
  TextTable table({{"Movement"}, {"Term"}, {"Period"}, {"Billed on"}, {"Due on"}});
  const Date today = Today(day);
  const std::pair<Date, int16_t> movements[] = {{today, kWeekly},
                                                {today - 2.0, kWeekly},
                                                {today, kMonthly},
                                                {DateSerial(2026, 3, 31), kMonthly}};
  for (const auto& [movement, type] : movements) {
    const Period period = PeriodOf(day, type == kWeekly ? Facts().weekly : Facts().monthly, movement, type);
    const std::string when = DayText(movement) + " " + WeekdayName(movement);
    if (period.first == 0) {
      table.AddRow({when, type == kWeekly ? "Semanal" : "Mensal", "none", "", ""});
      continue;
    }
    table.AddRow({when, type == kWeekly ? "Semanal" : "Mensal",
                  std::to_string(period.first) + " to " + std::to_string(period.last),
                  DayText(period.billed) + " " + WeekdayName(period.billed),
                  DayText(period.due) + " " + WeekdayName(period.due)});
  }
  table.Print(day.out);
  day.out << "  (the monthly term's last span ends at 31; a term whose last span ended at 30 would find none)\n";
}

void DailyClosing(DayContext& day) {
  const Date today = Today(day);
  const int32_t company = day.facts.company;
  auto connection = day.session->Ob_Conexao();

  // Last week's boarding fees of each bus company, as the assessment
  // program recorded them day by day with the weekly term's billing and due days.
  day.out << "  Last week's boarding fees, billed by the weekly term:\n";
  TextTable fees({{"Movement"}, {"Company"}, {"Fees", Align::Right}, {"Billed on"}, {"Due on"}});
  auto companies = connection->Execute(
      "SELECT A.Cd_EmpresaOnibus, A.Nm_EmpresaOnibus FROM TbEmpresaOnibus A ORDER BY A.Nm_EmpresaOnibus");
  std::vector<std::pair<int32_t, std::string>> payers;
  for (; !companies->Eof(); companies->MoveNext()) {
    payers.emplace_back(CLng(companies->Fields().Item(0).Value()), CStr(companies->Fields().Item(1).Value()));
  }
  companies->Close();
  for (double back = 5.0; back >= 2.0; back -= 1.0) {  // Wednesday to Saturday
    const Date movement = today - back;
    const Period period = PeriodOf(day, Facts().weekly, movement, kWeekly);
    for (const auto& [payer, name] : payers) {
      const int64_t boardings = 40 + static_cast<int64_t>(day.random() % 60);
      const Currency value = Currency::FromRaw(boardings * 2 * 27500);  // two platforms' fees of R$ 2,75
      Save<cgdApuracaoReceita>(day, {{"Cd_EmpresaUsuariaSistema", company},
                                     {"Cd_TipoReceita", int16_t{1}},
                                     {"Cd_Pessoa", payer},
                                     {"Dt_Faturamento", period.billed},
                                     {"Dt_Movimento", movement},
                                     {"Dt_Vencimento", period.due},
                                     {"Vl_ApuracaoReceita", value}});
      fees.AddRow({DayText(movement) + " " + WeekdayName(movement), name, Money(value), DayText(period.billed),
                   DayText(period.due)});
    }
  }
  fees.Print(day.out);

  // What is to be billed today, per payer and due date, becomes receivables.
  day.out << "\n  To be billed today, per payer and due date, issued as receivables (cgdContaReceber.Salvar):\n";
  auto to_bill = day.Use<cgdApuracoesReceita>().ConsultarApuracoesAFaturarPorEmpresa(today);
  TextTable issued({{"No_ContaReceber", Align::Right}, {"Payer", Align::Right}, {"Due on"}, {"Amount", Align::Right}});
  for (; !to_bill->Eof(); to_bill->MoveNext()) {
    Fields& f = to_bill->Fields();
    auto receivable = Save<cgdContaReceber>(
        day, {{"Cd_EmpresaUsuariaSistema", company},
              {"No_Parcela", int16_t{1}},
              {"Cd_Pessoa", f.Item("Cd_Pessoa").Value()},
              {"Dt_Emissao", today},
              {"Dt_Vencimento", f.Item("Dt_Vencimento").Value()},
              {"Vl_ContaReceber", CCur(f.Item("Vl_TotalApuracaoReceita").Value())},
              {"Qt_DiasProrrogacao", 0},
              {"Ds_Historico", "Tarifas de embarque faturadas em " + DayText(today)},
              {"Ic_GeradoPeloSistema", true}});
    issued.AddRow({Format(receivable->Get("No_ContaReceber")), Format(receivable->Get("Cd_Pessoa")),
                   Format(receivable->Get("Dt_Vencimento"), "dd/mm/yyyy"),
                   Money(CCur(receivable->Get("Vl_ContaReceber")))});
    ++Facts().issued;
  }
  to_bill->Close();
  issued.Print(day.out);

  // The closing: what was billed, checked against the day's bank deposit.
  auto closing = day.Use<cgdFechamentoDiario>();
  auto record = closing.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", company);
  record->Let("Dt_FechamentoDiario", today);
  record->Let("Vl_Deposito", Currency::FromRaw(3'480'0000));
  closing.Salvar();
  day.out << "\n  The closing's check of today's billing (cgdFechamentoDiario.VerificarFaturamentos):\n";
  ListGrid grid;
  TextBox total;
  closing.VerificarFaturamentos(grid, total);
  TextTable check({{"Number", Align::Right}, {"Instalment", Align::Right}, {"Payer"}, {"Due on"}, {"Amount", Align::Right}});
  for (auto& row : GridRows(grid)) check.AddRow(std::move(row));
  check.Print(day.out);
  auto latest = day.Use<cgdFechamentoDiario>().ConsultarUltimaDataFechamento();
  auto generated = day.Use<cgdContasReceber>().ConsultarContasDeFechamentoDiario(today);
  PrintFacts(day.out, {{"Billed today", "R$ " + total.Text()},
                       {"Bank deposit (Vl_Deposito)", Money(CCur(record->Get("Vl_Deposito")))},
                       {"Latest closing", latest ? DayText(CDate(latest->Get("Dt_FechamentoDiario"))) : "none"},
                       {"Receivables of the closing", std::to_string(generated->RecordCount())}});
}

void ErpTitles(DayContext& day) {
  const Date today = Today(day);
  const int32_t company = day.facts.company;
  // The ERP's parameters of the company, and its customer codes of the bus companies.
  Save<cgdParametrosMicrosiga>(day, {{"Cd_EmpresaUsuariaSistema", company},
                                     {"Ds_Filial", "01"},
                                     {"Ds_Prefixo", "ROD"},
                                     {"Ds_Tipo", "NF"},
                                     {"Ds_Natureza", "1101"},
                                     {"Ds_CCusto", "300100"},
                                     {"Ds_Portador", "341"},
                                     {"Ds_Agencia", "0123"},
                                     {"Ds_Conta", "45678-9"},
                                     {"No_Moeda", 1},
                                     {"Ds_Status", "A"},
                                     {"Ds_Origem", "FINA040"},
                                     {"Ds_Fluxo", "S"},
                                     {"Ds_FiloRig", "01"},
                                     {"Ds_MultNat", "2"},
                                     {"Ds_MsFil", "01"},
                                     {"Ds_MsEmp", "01"},
                                     {"Ds_RatNCC", "2"}});
  auto companies = day.session->Ob_Conexao()->Execute("SELECT A.Cd_EmpresaOnibus FROM TbEmpresaOnibus A");
  for (; !companies->Eof(); companies->MoveNext()) {
    auto bus_company = day.Use<cgdEmpresaOnibus>();
    auto record = bus_company.Ob_cgp();
    record->Let("Cd_EmpresaOnibus", companies->Fields().Item(0).Value());
    bus_company.Consultar(false);
    char client[16];
    std::snprintf(client, sizeof client, "%06d", CLng(record->Get("Cd_EmpresaOnibus")));
    record->Let("Cd_ClienteIntegracao", std::string(client));
    record->Let("Cd_LojaIntegracao", "01");
    bus_company.Salvar();
  }
  companies->Close();

  // The ERP reads its title table from a folder of its own: vek init's empty
  // one is copied there, and the export replaces the titles it holds.
  const fs::path erp = AppPath() / "ERP";
  fs::create_directories(erp);
  for (const char* file : {"SE1.dbf", "SE1.cpg"}) {
    fs::copy_file(AppPath() / "Modelos" / file, erp / file, fs::copy_options::overwrite_existing);
  }
  auto contas = day.Use<cgdContasReceber>();
  contas.ExportarDBF(today, today, erp.string(), "SE1");
  PrintFacts(day.out, {{"Titles exported", std::to_string(Facts().issued) + " (cgdContasReceber.ExportarDBF)"},
                       {"ERP title table", (erp / "SE1.dbf").string()},
                       {"Code page", "Windows-1252 (SE1.cpg)"}});
}

}  // namespace

std::vector<DayStep> BillingDay() {
  return {
      {"Payment terms", PaymentTerms},
      {"The daily closing", DailyClosing},
      {"Receivables into the ERP's dBase table", ErpTitles},
  };
}

}  // namespace vek::cli::demo
