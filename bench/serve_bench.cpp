// vek serve under load: 50 clients polling /api/board over loopback at once
// for 30 seconds against a terminal of 1,000,000 trips, served from the
// snapshot one worker rebuilds every second: each client every 100 ms (500
// requests a second in all, the screens' polling), then each asking again as
// soon as it has its answer (the most the server gives). The baseline, in the same run,
// is what each request would cost if it read the board from the database
// itself (ReadBoard + BoardJson, as the worker does once a second).
//
//   build/bench/serve_bench
//
// VEK_SERVE_BENCH_SECONDS and VEK_SERVE_BENCH_CLIENTS change the load;
// VEK_BENCH_ANALYZE=1 runs ANALYZE once the file is filled.

#include <benchmark/benchmark.h>
#include <httplib.h>
#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "ScratchTerminal.h"
#include "cli/serve/Screens.h"
#include "cli/serve/Server.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/vek.h"

namespace {

const vek::Date kNow = vek::DateSerial(2026, 11, 21) + vek::TimeSerial(10, 30, 0);
constexpr int kTrips = 1000000;

int EnvInt(const char* name, int fallback) {
  const char* value = std::getenv(name);
  return value ? std::atoi(value) : fallback;
}

void Exec(sqlite3* db, const char* text) {
  char* error = nullptr;
  if (sqlite3_exec(db, text, nullptr, nullptr, &error) != SQLITE_OK) {
    const std::string message = error ? error : "sqlite3_exec";
    sqlite3_free(error);
    throw std::runtime_error(message);
  }
}

// 200 cities, 20 bus companies, 1,000 timetables of company 1 on 100 lines
// (a quarter arriving, a quarter passing), and a thousand trips a day for a
// thousand days, the last two ahead of now; a tenth of today's trips have an
// announcement.
const vek::bench::ScratchTerminal& Terminal() {
  static const vek::bench::ScratchTerminal terminal([](vek::Connection&) {});
  static const bool filled = [] {
    sqlite3* db = nullptr;
    sqlite3_open(terminal.File().c_str(), &db);
    vek::dialect::RegisterSqlServerFunctions(db, [] { return kNow; });
    Exec(db, "BEGIN");
    Exec(db, "INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (1, 'Goiás', 'GO')");
    Exec(db, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200) "
             "INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) "
             "SELECT i, 'Cidade ' || i, 1, 'GO', i FROM n");
    Exec(db, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20) "
             "INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) SELECT i, i, 'Empresa ' || i "
             "FROM n");
    Exec(db, "INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (1, 'Convencional')");
    Exec(db, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100) "
             "INSERT INTO TbLinha (Cd_Linha, Cd_CidadeOrigem, Cd_CidadeDestino) SELECT i, 1 + i % 200, 1 + (i * 7) % 199 "
             "FROM n");
    Exec(db, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
             "INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, Cd_EmpresaOnibus, "
             "Cd_TipoOnibus, Hr_Saida, Hr_Chegada, Ic_TemEmbarques, Ic_TemDesembarque, No_Plataforma, Dt_Inicial, "
             "Dt_Final) SELECT 1, 1 + i % 100, i, 1 + i % 20, 1, '2026-01-01 08:00:00', '2026-01-01 12:00:00', "
             "i % 4 <> 1, i % 4 IN (1, 2), 1 + i % 30, NULL, NULL FROM n");
    Exec(db, "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000000) "
             "INSERT INTO TbViagemOnibus (Cd_EmpresaUsuariaSistema, Cd_ViagemOnibus, Cd_Linha, Cd_HorarioLinha, "
             "Hr_Previsto, No_Plataforma, No_Andamento, Qt_EmbarquesComPassagem, Qt_EmbarquesSemPassagem) "
             "SELECT 1, i, 1 + ((i - 1) % 1000) % 100, 1 + (i - 1) % 1000, "
             "strftime('%Y-%m-%d %H:%M:00', julianday('2026-11-21') - 997 + (i - 1) / 1000 + ((i - 1) % 1000) / 1000.0), "
             "1 + i % 30, i % 4, 0, 0 FROM n");
    Exec(db, "INSERT INTO TbAgendaSom (Cd_EmpresaUsuariaSistema, Cd_AgendaSom, Cd_ViagemOnibus, Dt_Agendamento, "
             "Ic_Feito) SELECT 1, Cd_ViagemOnibus, Cd_ViagemOnibus, Hr_Previsto, 0 FROM TbViagemOnibus "
             "WHERE Hr_Previsto >= '2026-11-21' AND Hr_Previsto < '2026-11-22' AND Cd_ViagemOnibus % 10 = 0");
    if (std::getenv("VEK_BENCH_ANALYZE")) Exec(db, "ANALYZE");
    Exec(db, "COMMIT");
    sqlite3_close(db);
    return true;
  }();
  (void)filled;
  return terminal;
}

std::shared_ptr<vek::cgpSistema> OpenSession() {
  auto session = std::make_shared<vek::cgpSistema>();
  session->Let("Ds_CaminhoDB", vek::Variant(Terminal().File()));
  session->Let("Ds_FormatoData", vek::Variant("yyyy-mm-dd"));
  session->Let("Qt_TempoAntecedenciaMostrarViagensVisualizador", vek::Variant(30));
  session->SetClock(std::make_shared<vek::FixedClock>(kNow));
  session->AbrirConexao();
  return session;
}

// Baseline: reading the board from the database for one request.
void BM_BoardReadPerRequest(benchmark::State& state) {
  auto session = OpenSession();
  vek::cgdEmpresaUsuariaSistema company;
  company.Ob_cgpSistema(session);
  company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  size_t bytes = 0;
  for (auto _ : state) {
    const std::string json = vek::cli::serve::BoardJson(vek::cli::serve::ReadBoard(company, 10));
    bytes = json.size();
    benchmark::DoNotOptimize(json.data());
  }
  state.counters["json_bytes"] = static_cast<double>(bytes);
  state.counters["requests_per_s_at_most"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

// The server under load: every client asks every `interval` ms (range 0),
// or again as soon as it has its answer when 0.
void BM_ServeBoardUnderLoad(benchmark::State& state) {
  const auto interval = std::chrono::milliseconds(state.range(0));
  const int clients = EnvInt("VEK_SERVE_BENCH_CLIENTS", 50);
  const int seconds = EnvInt("VEK_SERVE_BENCH_SECONDS", 30);
  auto session = OpenSession();
  vek::cli::serve::ServeOptions options;
  options.port = 0;
  std::ostringstream log;
  vek::cli::serve::TerminalServer server(session, 1, options, log);
  const int port = server.Bind();
  std::thread serving([&] { server.Run(); });

  std::vector<std::vector<double>> latencies(static_cast<size_t>(clients));
  std::atomic<int64_t> errors{0};
  for (auto _ : state) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    std::vector<std::thread> threads;
    for (int c = 0; c < clients; ++c) {
      threads.emplace_back([&, c] {
        httplib::Client client("127.0.0.1", port);
        client.set_keep_alive(true);
        auto& mine = latencies[static_cast<size_t>(c)];
        // Clients start spread over one interval, as screens do.
        auto next = std::chrono::steady_clock::now() + interval * c / clients;
        while (std::chrono::steady_clock::now() < end) {
          if (interval.count() > 0) {
            std::this_thread::sleep_until(next);
            next += interval;
          }
          const auto start = std::chrono::steady_clock::now();
          auto result = client.Get("/api/board");
          const auto took = std::chrono::steady_clock::now() - start;
          if (!result || result->status != 200 || result->body.find("\"partidas\":[{") == std::string::npos) {
            ++errors;
            continue;
          }
          mine.push_back(std::chrono::duration<double, std::milli>(took).count());
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  server.Stop();
  serving.join();

  std::vector<double> all;
  for (const auto& mine : latencies) all.insert(all.end(), mine.begin(), mine.end());
  std::sort(all.begin(), all.end());
  const auto at = [&](double q) { return all.empty() ? 0.0 : all[static_cast<size_t>(q * static_cast<double>(all.size() - 1))]; };
  state.counters["clients"] = clients;
  state.counters["seconds"] = seconds;
  state.counters["requests"] = static_cast<double>(all.size());
  state.counters["requests_per_s"] = static_cast<double>(all.size()) / seconds;
  state.counters["p50_ms"] = at(0.50);
  state.counters["p99_ms"] = at(0.99);
  state.counters["max_ms"] = all.empty() ? 0.0 : all.back();
  state.counters["errors"] = static_cast<double>(errors.load());
  if (errors > 0) state.SkipWithError("some requests failed");
}

BENCHMARK(BM_BoardReadPerRequest)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ServeBoardUnderLoad)->Arg(100)->Arg(0)->Iterations(1)->UseRealTime()->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
