// What the data-access layer costs on top of SQLite: the same statement texts
// run through Connection::Execute and through raw sqlite3 prepare/step/finalize
// of their translation, in the same process. Compare the pairs as ratios.
//
//   build/bench/db_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <memory>
#include <functional>
#include <string>
#include <vector>

#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/platform/Clock.h"

namespace {

constexpr int kRows = 1000;

const char* const kSchema =
    "CREATE TABLE TbCidade (Cd_Cidade INTEGER PRIMARY KEY, Nm_Cidade VARCHAR(50), Sg_UF CHAR(2));"
    "CREATE TABLE TbBairro (Cd_Bairro INTEGER PRIMARY KEY, Nm_Bairro VARCHAR(50), Cd_Cidade INT,"
    " Dt_Cadastro DATETIME, Vl_Taxa MONEY);";

std::string KeyQuery(int key) {
  return "SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = " + std::to_string(key) + "\r;";
}

const std::string kListQuery =
    "SELECT   TOP 50 A.Cd_Bairro,\r         A.Nm_Bairro,\r         B.Nm_Cidade,\r         B.Sg_UF\r"
    "FROM     TbBairro A\r                Join TbCidade B On A.Cd_Cidade = B.Cd_Cidade\r"
    "WHERE    A.Dt_Cadastro >= '01/01/2026 00:00:00'\r"
    "ORDER BY A.Nm_Bairro,\r         B.Nm_Cidade\r;";

void Fill(const std::function<void(const std::string&)>& run) {
  run("INSERT INTO TbCidade VALUES (1, 'Goiânia', 'GO')");
  for (int i = 1; i <= kRows; ++i) {
    run("INSERT INTO TbBairro VALUES (" + std::to_string(i) + ", 'Bairro " + std::to_string(i) +
        "', 1, '2026-11-21 10:30:00', 12.5)");
  }
}

std::shared_ptr<vek::Connection> LayerDatabase() {
  auto connection = std::make_shared<vek::Connection>();
  connection->Open(":memory:");
  connection->Execute("CREATE TABLE TbCidade (Cd_Cidade INTEGER PRIMARY KEY, Nm_Cidade VARCHAR(50), Sg_UF CHAR(2))");
  connection->Execute("CREATE TABLE TbBairro (Cd_Bairro INTEGER PRIMARY KEY, Nm_Bairro VARCHAR(50), Cd_Cidade INT, Dt_Cadastro DATETIME, Vl_Taxa MONEY)");
  Fill([&](const std::string& text) { connection->Execute(text); });
  return connection;
}

struct RawDatabase {
  RawDatabase() {
    sqlite3_open(":memory:", &db);
    vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::DateSerial(2026, 11, 21); });
    sqlite3_exec(db, kSchema, nullptr, nullptr, nullptr);
    Fill([&](const std::string& text) { sqlite3_exec(db, text.c_str(), nullptr, nullptr, nullptr); });
  }
  ~RawDatabase() { sqlite3_close(db); }

  // Prepare, step through every row reading every column, finalize.
  int64_t Query(const std::string& translated) const {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, translated.c_str(), static_cast<int>(translated.size()), &statement, nullptr);
    int64_t cells = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const int columns = sqlite3_column_count(statement);
      for (int i = 0; i < columns; ++i) {
        if (sqlite3_column_type(statement, i) == SQLITE_TEXT) sqlite3_column_text(statement, i);
        ++cells;
      }
    }
    sqlite3_finalize(statement);
    return cells;
  }

  sqlite3* db = nullptr;
};

int64_t ReadAll(vek::Recordset& rows) {
  int64_t cells = 0;
  for (; !rows.Eof(); rows.MoveNext()) {
    for (int32_t i = 0; i < rows.Fields().Count(); ++i) {
      benchmark::DoNotOptimize(rows.Fields().Item(i).Value());
      ++cells;
    }
  }
  return cells;
}

// One key look-up, the same text every time (the translation is cached).
void BM_Layer_SameKeyQuery(benchmark::State& state) {
  auto connection = LayerDatabase();
  const std::string text = KeyQuery(500);
  for (auto _ : state) {
    auto rows = connection->Execute(text);
    benchmark::DoNotOptimize(ReadAll(*rows));
  }
}
BENCHMARK(BM_Layer_SameKeyQuery);

void BM_Raw_SameKeyQuery(benchmark::State& state) {
  RawDatabase raw;
  const std::string translated = vek::dialect::TranslateToSqlite(KeyQuery(500));
  for (auto _ : state) benchmark::DoNotOptimize(raw.Query(translated));
}
BENCHMARK(BM_Raw_SameKeyQuery);

// Key look-ups with a new literal each time, as the data managers build them.
void BM_Layer_NewKeyQuery(benchmark::State& state) {
  auto connection = LayerDatabase();
  int key = 0;
  for (auto _ : state) {
    auto rows = connection->Execute(KeyQuery(key++ % kRows + 1));
    benchmark::DoNotOptimize(ReadAll(*rows));
  }
}
BENCHMARK(BM_Layer_NewKeyQuery);

void BM_Raw_NewKeyQuery(benchmark::State& state) {
  RawDatabase raw;
  std::vector<std::string> translated;
  for (int key = 1; key <= kRows; ++key) translated.push_back(vek::dialect::TranslateToSqlite(KeyQuery(key)));
  size_t next = 0;
  for (auto _ : state) benchmark::DoNotOptimize(raw.Query(translated[next++ % translated.size()]));
}
BENCHMARK(BM_Raw_NewKeyQuery);

// A search-grid query: join, date literal, TOP, 50 rows.
void BM_Layer_ListQuery(benchmark::State& state) {
  auto connection = LayerDatabase();
  for (auto _ : state) {
    auto rows = connection->Execute(kListQuery);
    benchmark::DoNotOptimize(ReadAll(*rows));
  }
}
BENCHMARK(BM_Layer_ListQuery);

void BM_Raw_ListQuery(benchmark::State& state) {
  RawDatabase raw;
  const std::string translated = vek::dialect::TranslateToSqlite(kListQuery);
  for (auto _ : state) benchmark::DoNotOptimize(raw.Query(translated));
}
BENCHMARK(BM_Raw_ListQuery);

// Translation alone of a typical ten-line statement.
void BM_TranslateTenLines(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(vek::dialect::TranslateToSqlite(kListQuery));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TranslateTenLines);

}  // namespace

BENCHMARK_MAIN();
