// What the automatic backup costs on a terminal of about 200 MB: a full set
// plus its zip (vek) against the sqlite3 client's .backup followed by
// zip -6 on the same file, in the same run (vek may take at most 1.5 times
// as long); and the size of a differential set after 1% of the tickets
// changed, as the recent tickets of a day change (contiguous) and spread
// over the whole table (one in a hundred), against the full set's.
//
// One iteration per repetition; repetitions interleaved, so that a machine
// busy with other work slows both sides of the ratio alike:
//
//   build/bench/backup_bench --benchmark_repetitions=3 --benchmark_enable_random_interleaving=true
//       --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "ScratchTerminal.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/vek.h"

namespace {

namespace fs = std::filesystem;

constexpr int kTickets = 640'000;  // about 200 MB with the table's indexes (some 315 bytes a ticket)

void Run(sqlite3* db, const char* text) { sqlite3_exec(db, text, nullptr, nullptr, nullptr); }

void Fill(const std::string& file) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::DateSerial(2026, 11, 21); });
  Run(db, "BEGIN");
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
                     "Cd_Placa, No_Situacao, Dt_Entrada, Dt_Saida, Ds_Ticket, Cd_CartaoEstacionamento, "
                     "Ic_Mensalista, Ic_TicketRevalidado, Vl_Tarifa) VALUES (1, ?, ?, 2, ?, ?, ?, ?, 0, 0, 8)",
                     -1, &insert, nullptr);
  for (int i = 1; i <= kTickets; ++i) {
    char plate[16], code[24], entry[24];
    std::snprintf(plate, sizeof plate, "P%06d", i % 900000);
    std::snprintf(code, sizeof code, "%014d", i);
    std::snprintf(entry, sizeof entry, "2026-%02d-%02d %02d:%02d:00", 1 + (i / 28 / 24 / 60) % 11,
                  1 + (i / 24 / 60) % 28, (i / 60) % 24, i % 60);
    sqlite3_bind_int(insert, 1, i);
    sqlite3_bind_text(insert, 2, plate, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(insert, 3, entry, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(insert, 4, entry, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(insert, 5, code, -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(insert, 6, i % 5000);
    sqlite3_step(insert);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  Run(db, "COMMIT");
  sqlite3_close(db);
}

vek::bench::ScratchTerminal& Terminal() {
  static vek::bench::ScratchTerminal terminal([](vek::Connection& connection) {
    const std::string file = connection.ConnectionString();
    connection.Close();
    Fill(file.substr(file.find('=') == std::string::npos ? 0 : file.find('=') + 1));
    connection.Open();
  });
  return terminal;
}

fs::path Folder() { return fs::path(Terminal().File()).parent_path(); }

std::string BackupText(const fs::path& media, bool differential) {
  return "BACKUP DATABASE Vek\rTO  DISK = N'" + media.string() + "'\rWITH " +
         (differential ? "DIFFERENTIAL, NOINIT" : "INIT") + ", NAME = N'bench'";
}

void VekFullBackupAndZip(benchmark::State& state) {
  auto connection = std::make_shared<vek::Connection>();
  connection->Open(Terminal().File());
  const fs::path media = Folder() / "VekBkp.bak";
  const fs::path zip = Folder() / "VekBkp.zip";
  for (auto _ : state) {
    connection->Execute(BackupText(media, false));
    vek::Compacta(media.string(), zip.string());
  }
  state.counters["database_MB"] = static_cast<double>(fs::file_size(Terminal().File())) / 1e6;
  state.counters["zip_MB"] = static_cast<double>(fs::file_size(zip)) / 1e6;
}

void Sqlite3BackupThenZip(benchmark::State& state) {
  const fs::path copy = Folder() / "plain.db";
  const fs::path zip = Folder() / "plain.zip";
  const std::string backup = "sqlite3 '" + Terminal().File() + "' \".backup '" + copy.string() + "'\"";
  const std::string compress = "rm -f '" + zip.string() + "' && zip -6 -q -j '" + zip.string() + "' '" +
                               copy.string() + "'";
  for (auto _ : state) {
    if (std::system(backup.c_str()) != 0 || std::system(compress.c_str()) != 0) {
      state.SkipWithError("sqlite3 or zip failed");
      break;
    }
  }
  state.counters["zip_MB"] = static_cast<double>(fs::file_size(zip)) / 1e6;
}

// The differential set's size against the full set's after 1% of the
// tickets changed: state.range(0) 0 for the most recent 1%, 1 for one
// ticket in a hundred across the table.
void DifferentialAfterOnePercent(benchmark::State& state) {
  const fs::path source = Folder() / (state.range(0) == 0 ? "recent.db" : "spread.db");
  fs::copy_file(Terminal().File(), source, fs::copy_options::overwrite_existing);
  auto connection = std::make_shared<vek::Connection>();
  connection->Open("Driver=SQLite3;Database=" + source.string());
  const fs::path media = Folder() / (source.stem().string() + ".bak");
  connection->Execute(BackupText(media, false));
  const uintmax_t full = fs::file_size(media);
  connection->Execute(state.range(0) == 0
                          ? "UPDATE TbTicketEstacionamento SET Vl_Tarifa = 9 WHERE Cd_TicketEstacionamento > " +
                                std::to_string(kTickets - kTickets / 100)
                          : "UPDATE TbTicketEstacionamento SET Vl_Tarifa = 9 WHERE Cd_TicketEstacionamento % 100 = 0");
  for (auto _ : state) {
    fs::resize_file(media, full);
    connection->Execute(BackupText(media, true));
  }
  const double differential = static_cast<double>(fs::file_size(media) - full);
  state.counters["full_MB"] = static_cast<double>(full) / 1e6;
  state.counters["differential_MB"] = differential / 1e6;
  state.counters["differential_pct_of_full"] = 100.0 * differential / static_cast<double>(full);
  connection->Close();
  fs::remove(source);
  fs::remove(media);
}

BENCHMARK(VekFullBackupAndZip)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(Sqlite3BackupThenZip)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(DifferentialAfterOnePercent)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
