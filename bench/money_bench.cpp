// Money arithmetic over 100,000 charge lines: the library's typed, exact
// results (each line's total as Currency, and the totals by tariff) against
// hand-written sqlite3 code reading the same values as doubles, on the same
// file, in one process. Compare items_per_second (rows read) of each pair.
//
//   build/bench/money_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <random>
#include <stdexcept>
#include <string>

#include "ScratchTerminal.h"
#include "vek/db/Connection.h"
#include "vek/db/Field.h"
#include "vek/db/Recordset.h"

namespace {

constexpr int kLines = 100000;
constexpr int kTariffs = 50;

constexpr const char* kLineTotals = "SELECT Vl_Tarifa * Qt_Tarifa AS Vl_Total FROM TbApuracaoReceita_TbTarifa";
constexpr const char* kTariffTotals =
    "SELECT Cd_Tarifa, SUM(Vl_Tarifa * Qt_Tarifa) AS Vl_Total FROM TbApuracaoReceita_TbTarifa GROUP BY Cd_Tarifa";
// What SQLite itself runs for the same question, read as doubles.
constexpr const char* kPlainLineTotals = "SELECT Vl_Tarifa * Qt_Tarifa FROM TbApuracaoReceita_TbTarifa";
constexpr const char* kPlainTariffTotals =
    "SELECT Cd_Tarifa, SUM(Vl_Tarifa * Qt_Tarifa) FROM TbApuracaoReceita_TbTarifa GROUP BY Cd_Tarifa";

// Charge lines of 2,000 assessments over 50 tariffs, prices in cents.
class ChargeLines : public vek::bench::ScratchTerminal {
 public:
  ChargeLines() {
    sqlite3* db = nullptr;
    sqlite3_open(File().c_str(), &db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* insert = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO TbApuracaoReceita_TbTarifa (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, "
                       "Cd_Tarifa, Qt_Tarifa, Vl_Tarifa) VALUES (1, ?, ?, ?, ?)",
                       -1, &insert, nullptr);
    std::mt19937 generator(20261124);
    for (int line = 0; line < kLines; ++line) {
      sqlite3_bind_int(insert, 1, line / kTariffs + 1);
      sqlite3_bind_int(insert, 2, line % kTariffs + 1);
      sqlite3_bind_int(insert, 3, static_cast<int>(generator() % 40) + 1);
      sqlite3_bind_double(insert, 4, static_cast<double>(generator() % 9000 + 100) / 100.0);
      if (sqlite3_step(insert) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db));
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
  }

  static const ChargeLines& Shared() {
    static const ChargeLines lines;
    return lines;
  }
};

void ReadWithLibrary(benchmark::State& state, const char* text, int rows_per_run) {
  auto connection = std::make_shared<vek::Connection>();
  connection->Open(ChargeLines::Shared().File());
  for (auto _ : state) {
    auto rows = connection->Execute(text);
    vek::Field& total = rows->Fields().Item("Vl_Total");
    int64_t sum = 0;
    for (; !rows->Eof(); rows->MoveNext()) sum += total.Value().Get<vek::Currency>()->Raw();
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * rows_per_run);
}

void ReadHandWritten(benchmark::State& state, const char* text, int column, int rows_per_run) {
  sqlite3* db = nullptr;
  sqlite3_open_v2(ChargeLines::Shared().File().c_str(), &db, SQLITE_OPEN_READONLY, nullptr);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(db, text, -1, &statement, nullptr);
  for (auto _ : state) {
    double sum = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) sum += sqlite3_column_double(statement, column);
    sqlite3_reset(statement);
    benchmark::DoNotOptimize(sum);
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  state.SetItemsProcessed(state.iterations() * rows_per_run);
}

void BM_Library_LineTotals(benchmark::State& state) { ReadWithLibrary(state, kLineTotals, kLines); }
void BM_HandWritten_LineTotals(benchmark::State& state) { ReadHandWritten(state, kPlainLineTotals, 0, kLines); }
// The totals by tariff read every line once: items are the lines added.
void BM_Library_TariffTotals(benchmark::State& state) { ReadWithLibrary(state, kTariffTotals, kLines); }
void BM_HandWritten_TariffTotals(benchmark::State& state) {
  ReadHandWritten(state, kPlainTariffTotals, 1, kLines);
}

BENCHMARK(BM_Library_LineTotals)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandWritten_LineTotals)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Library_TariffTotals)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HandWritten_TariffTotals)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
