// The monthly movement workbook of 31 days against the 31 x 6 queries that
// feed it, on a terminal with a year of assessments (40 bus companies a day,
// three tariff lines each, the restroom, the car park, type 4 and the daily
// closing). Three measures in one run:
//   BM_FeedingQueries  the baseline: per day the export's six queries, read
//                      as the export reads them;
//   BM_WorkbookWrites  the writing alone: the Jet connection on a fresh copy
//                      of the template, "[DADOS$]", and the 31 UPDATEs;
//   BM_ExportarExcel2000  the export whole (queries and writing).
// The goal: BM_WorkbookWrites takes at most as long as BM_FeedingQueries.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "ScratchTerminal.h"
#include "vek/vek.h"

namespace {

namespace fs = std::filesystem;
using vek::Date;
using vek::DateSerial;

constexpr int kYear = 2026;
constexpr int kMonth = 3;

void Fill(vek::Connection& connection) {
  std::mt19937 random(20260302);
  const char* tariffs[] = {"(1, 1, 'Intermunicipal', 4.5, 1)", "(2, 1, 'Interestadual', 7.25, 1)",
                           "(3, 1, 'Metropolitano', 3.1, 1)",  "(4, 1, 'Leito', 12.345, 1)",
                           "(5, 1, 'Executivo', 9.9, 1)",      "(6, 1, 'Semi-leito', 10.5, 1)",
                           "(7, 1, 'Especial', 15, 1)",        "(10, 1, 'Sanitario', 1.5, 3)",
                           "(11, 1, 'Estacionamento', 8, 2)",  "(12, 1, 'Malex', 3.333, 4)"};
  for (const char* tariff : tariffs) {
    connection.Execute(std::string("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, "
                                   "Cd_TipoReceita) VALUES ") + tariff);
  }
  connection.ExecuteNative("BEGIN");
  int number = 0;
  for (Date day = DateSerial(kYear, 1, 1); day < DateSerial(kYear + 1, 1, 1); day = day + 1.0) {
    const std::string when = "'" + vek::Format(vek::Variant(day), "yyyy-mm-dd") + "'";
    std::string headers;
    std::string lines;
    auto assess = [&](int person, int type, std::initializer_list<std::pair<int, const char*>> details) {
      ++number;
      headers += std::string(headers.empty() ? "" : ", ") + "(1, " + std::to_string(number) + ", " + std::to_string(type) +
                 ", " + std::to_string(person) + ", " + when + ", 1)";
      for (const auto& [tariff, price] : details) {
        lines += std::string(lines.empty() ? "" : ", ") + "(1, " + std::to_string(number) + ", " + std::to_string(tariff) +
                 ", " + std::to_string(1 + random() % 60) + ", " + price + ")";
      }
    };
    for (int company = 1; company <= 40; ++company) {
      const int first = 1 + static_cast<int>(random() % 5);
      assess(100 + company, 1, {{first, "4.5"}, {first + 1, "7.25"}, {7, "15"}});
    }
    assess(1, 3, {{10, "1.5"}});
    assess(1, 2, {{11, "8"}});
    assess(1, 4, {{12, "3.333"}});
    connection.Execute("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, "
                       "Cd_Pessoa, Dt_Movimento, No_Parcela) VALUES " + headers);
    connection.Execute("INSERT INTO TbApuracaoReceita_TbTarifa (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, "
                       "Cd_Tarifa, Qt_Tarifa, Vl_Tarifa) VALUES " + lines);
    connection.Execute("INSERT INTO TbFechamentoDiario (Cd_EmpresaUsuariaSistema, Dt_FechamentoDiario, Vl_Deposito) "
                       "VALUES (1, " + when + ", " + std::to_string(1000 + random() % 9000) + ".37)");
  }
  connection.ExecuteNative("COMMIT");
}

struct Terminal {
  vek::bench::ScratchTerminal database{Fill};
  fs::path folder = fs::path(database.File()).parent_path();
  fs::path model = folder / "MovimentoMensal.xlsx";
  fs::path workbook = folder / "Movimento.xlsx";
  std::shared_ptr<vek::cgpSistema> session;

  Terminal() {
    vek::WriteMonthlyWorkbookTemplate(model);
    session = std::make_shared<vek::cgpSistema>();
    session->Let("Ds_CaminhoDB", vek::Variant(database.File()));
    session->Let("Ds_FormatoData", vek::Variant("yyyy-mm-dd"));
    session->Let("Cursor", vek::Variant(1));
    session->Let("LockType", vek::Variant(3));
    session->AbrirConexao();
  }
  void FreshWorkbook() const { fs::copy_file(model, workbook, fs::copy_options::overwrite_existing); }
};

Terminal& TheTerminal() {
  static Terminal terminal;
  return terminal;
}

double Read(vek::Recordset& rows, const char* column) {
  return rows.Eof() ? 0.0 : vek::CDbl(rows.Fields().Item(column).Value());
}

void BM_FeedingQueries(benchmark::State& state) {
  Terminal& terminal = TheTerminal();
  vek::cgdApuracaoReceita_Tarifas tarifas;
  tarifas.Ob_cgpSistema(terminal.session);
  double checksum = 0.0;
  for (auto _ : state) {
    for (int d = 1; d <= 31; ++d) {
      const Date day = DateSerial(kYear, kMonth, d);
      for (int type : {1, 3, 2, 4}) {
        auto totals = tarifas.ConsultarPorPeriodoAgrupadaDia(day, day, type);
        checksum += Read(*totals, "Qt_TotalTarifa") + Read(*totals, "Vl_TotalTarifa");
      }
      vek::Recordset closing;
      closing.Open("SELECT *\rFROM   TbFechamentoDiario\rWHERE  Dt_FechamentoDiario = '" +
                       vek::Format(vek::Variant(day), "yyyy-mm-dd") + "'\r",
                   terminal.session->Ob_Conexao(), vek::adOpenKeyset, vek::adLockOptimistic);
      checksum += Read(closing, "Vl_Deposito");
      closing.Close();
      auto tariffs = tarifas.ConsultarPorPeriodoAgrupadaDiaTarifa(day, day, 1);
      for (; !tariffs->Eof(); tariffs->MoveNext()) checksum += Read(*tariffs, "Vl_TotalTarifa");
    }
  }
  benchmark::DoNotOptimize(checksum);
}
BENCHMARK(BM_FeedingQueries)->Unit(benchmark::kMillisecond);

void BM_WorkbookWrites(benchmark::State& state) {
  Terminal& terminal = TheTerminal();
  // The statements the export writes, made once from a real export's text.
  std::vector<std::string> updates;
  terminal.FreshWorkbook();
  auto connection = terminal.session->Ob_Conexao();
  connection->OnStatement([&](const std::string& text) {
    if (text.starts_with("UPDATE [DADOS$]")) updates.push_back(text);
  });
  vek::cgdApuracaoReceita_Tarifas tarifas;
  tarifas.Ob_cgpSistema(terminal.session);
  tarifas.ExportarExcel2000(DateSerial(kYear, kMonth, 1), DateSerial(kYear, kMonth, 31), terminal.workbook.string());
  connection->OnStatement(nullptr);
  if (updates.size() != 31) state.SkipWithError("the export did not write 31 days");
  for (auto _ : state) {
    state.PauseTiming();
    terminal.FreshWorkbook();
    state.ResumeTiming();
    auto workbook = std::make_shared<vek::Connection>();
    workbook->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + terminal.workbook.string() +
                   ";Extended Properties=Excel 8.0;");
    vek::Recordset sheet;
    sheet.Open("[DADOS$]", workbook, vek::adOpenKeyset, vek::adLockOptimistic);
    for (const std::string& update : updates) workbook->Execute(update);
    sheet.Close();
    workbook->Close();
  }
}
BENCHMARK(BM_WorkbookWrites)->Unit(benchmark::kMillisecond);

void BM_ExportarExcel2000(benchmark::State& state) {
  Terminal& terminal = TheTerminal();
  vek::cgdApuracaoReceita_Tarifas tarifas;
  tarifas.Ob_cgpSistema(terminal.session);
  for (auto _ : state) {
    state.PauseTiming();
    terminal.FreshWorkbook();
    state.ResumeTiming();
    tarifas.ExportarExcel2000(DateSerial(kYear, kMonth, 1), DateSerial(kYear, kMonth, 31), terminal.workbook.string());
  }
}
BENCHMARK(BM_ExportarExcel2000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
