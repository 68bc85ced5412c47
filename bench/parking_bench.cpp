// What the car park's cashier and yard screen wait for, on terminals of
// 10,000 and of 1,000,000 tickets (the same 200 vehicles inside in both, the
// rest closed stays): the pending ticket of a plate, of a card and of a
// printed code, and the yard list. A look-up that reads an index costs about
// the same on both; compare each pair's items_per_second (the larger
// terminal may take at most 1.5 times as long). The band of a stay is
// measured against a hand-written sqlite3 query doing the same work
// (prepared once, every column read).
//
//   build/bench/parking_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "ScratchTerminal.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/vek.h"

namespace {

constexpr int kInside = 200;  // pending tickets, whatever the size of the terminal

void Run(sqlite3* db, const char* text) { sqlite3_exec(db, text, nullptr, nullptr, nullptr); }

// Writes `tickets` tickets in one transaction: the last kInside pending (plates
// P00000.., cards 1.., codes of 14 digits), the others closed long ago.
void Fill(const std::string& file, int tickets) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::DateSerial(2026, 11, 21); });
  const std::string gates = (std::filesystem::path(file).parent_path() / "MDESTACIONAMENTO.db").string();
  Run(db, ("ATTACH DATABASE '" + gates + "' AS MDESTACIONAMENTO").c_str());
  Run(db, "BEGIN");
  Run(db, "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES "
          "(1, 1, 'A', 3, 2), (2, 1, 'B', 8, 2), (3, 1, 'C', 15, 2), (4, 1, 'D', 30, 2)");
  Run(db, "INSERT INTO TbPrecoEstacionamento (Cd_EmpresaUsuariaSistema, Cd_PrecoEstacionamento, Qt_TempoInicial, "
          "Qt_TempoFinal, Cd_Tarifa) VALUES (1, 1, 1, 15, 1), (1, 2, 16, 60, 2), (1, 3, 61, 180, 3), "
          "(1, 4, 181, 1440, 4)");
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
                     "Cd_Placa, No_Situacao, Dt_Entrada, Dt_Saida, Ds_Ticket, Cd_CartaoEstacionamento, "
                     "Ic_Mensalista, Ic_TicketRevalidado, Vl_Tarifa) VALUES (1, ?, ?, ?, ?, ?, ?, ?, 0, 0, 8)",
                     -1, &insert, nullptr);
  for (int i = 1; i <= tickets; ++i) {
    const bool inside = i > tickets - kInside;
    char plate[16], code[24], entry[24];
    std::snprintf(plate, sizeof plate, "P%06d", i % 900000);
    std::snprintf(code, sizeof code, "%014d", i);
    std::snprintf(entry, sizeof entry, "2026-%02d-%02d %02d:%02d:00", 1 + (i / 28 / 24 / 60) % 11, 1 + (i / 24 / 60) % 28,
                  (i / 60) % 24, i % 60);
    sqlite3_bind_int(insert, 1, i);
    sqlite3_bind_text(insert, 2, plate, -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(insert, 3, inside ? 1 : 2);
    sqlite3_bind_text(insert, 4, inside ? "2026-11-21 08:00:00" : entry, -1, SQLITE_TRANSIENT);
    if (inside) {
      sqlite3_bind_null(insert, 5);
    } else {
      sqlite3_bind_text(insert, 5, entry, -1, SQLITE_TRANSIENT);
    }
    sqlite3_bind_text(insert, 6, code, -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(insert, 7, i % 5000);
    sqlite3_step(insert);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  // A few loose tickets the gates know, two of them without a ticket here.
  Run(db, "INSERT INTO MDESTACIONAMENTO.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES "
          "('9999999999901', '2026-11-21 07:00:00'), ('9999999999902', '2026-11-21 07:30:00')");
  Run(db, "COMMIT");
  Run(db, "ANALYZE");
  sqlite3_close(db);
}

struct Terminal {
  std::unique_ptr<vek::bench::ScratchTerminal> folder;
  std::shared_ptr<vek::cgpSistema> session;
  int tickets = 0;
};

// One terminal per size, made on first use and kept for the whole run.
Terminal& TerminalOf(int tickets) {
  static std::map<int, Terminal> terminals;
  Terminal& terminal = terminals[tickets];
  if (!terminal.folder) {
    terminal.folder = std::make_unique<vek::bench::ScratchTerminal>();
    Fill(terminal.folder->File(), tickets);
    terminal.session = std::make_shared<vek::cgpSistema>();
    terminal.session->Let("Ds_CaminhoDB", vek::Variant(terminal.folder->File()));
    terminal.session->Let("Ds_FormatoData", vek::Variant("yyyy-mm-dd"));
    terminal.session->SetClock(std::make_shared<vek::FixedClock>(vek::DateSerial(2026, 11, 21) + vek::TimeSerial(10, 0, 0)));
    terminal.session->AbrirConexao();
    terminal.tickets = tickets;
  }
  return terminal;
}

// A pending ticket drawn at random: its number.
int PendingTicket(const Terminal& terminal, std::mt19937& random) {
  return terminal.tickets - std::uniform_int_distribution<int>(0, kInside - 1)(random);
}

void BM_PendingByPlate(benchmark::State& state) {
  Terminal& terminal = TerminalOf(static_cast<int>(state.range(0)));
  vek::cgdTicketEstacionamento ticket;
  ticket.Ob_cgpSistema(terminal.session);
  auto record = ticket.Ob_cgp();
  std::mt19937 random(7);
  for (auto _ : state) {
    char plate[16];
    std::snprintf(plate, sizeof plate, "P%06d", PendingTicket(terminal, random) % 900000);
    record->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
    record->Let("Cd_Placa", vek::Variant(std::string(plate)));
    ticket.ConsultarTicketPendentePorPlaca(false);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PendingByPlate)->Arg(10000)->Arg(1000000);

void BM_PendingByCard(benchmark::State& state) {
  Terminal& terminal = TerminalOf(static_cast<int>(state.range(0)));
  vek::cgdTicketEstacionamento ticket;
  ticket.Ob_cgpSistema(terminal.session);
  auto record = ticket.Ob_cgp();
  std::mt19937 random(7);
  for (auto _ : state) {
    record->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
    record->Let("Cd_CartaoEstacionamento", vek::Variant(PendingTicket(terminal, random) % 5000));
    if (!ticket.ConsultarTicketPendentePorCartao()) state.SkipWithError("no pending entry of the card");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PendingByCard)->Arg(10000)->Arg(1000000);

void BM_TicketByPrintedCode(benchmark::State& state) {
  Terminal& terminal = TerminalOf(static_cast<int>(state.range(0)));
  vek::cgdTicketEstacionamento ticket;
  ticket.Ob_cgpSistema(terminal.session);
  auto record = ticket.Ob_cgp();
  std::mt19937 random(7);
  for (auto _ : state) {
    char code[24];
    std::snprintf(code, sizeof code, "%014d", PendingTicket(terminal, random));
    record->RestaurarDefault();
    record->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
    record->Let("Ds_Ticket", vek::Variant(std::string(code)));
    ticket.Consultar(false);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TicketByPrintedCode)->Arg(10000)->Arg(1000000);

void BM_YardList(benchmark::State& state) {
  Terminal& terminal = TerminalOf(static_cast<int>(state.range(0)));
  vek::cgdEmpresaUsuariaSistema empresa;
  empresa.Ob_cgpSistema(terminal.session);
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  for (auto _ : state) {
    int32_t rows = 0;
    for (auto yard = empresa.rsVeiculoNoPatio(); !yard->Eof(); yard->MoveNext()) ++rows;
    if (rows != kInside + 2) state.SkipWithError("the yard does not hold every vehicle inside");
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_YardList)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// ---- the band of a stay, by the library and by hand ------------------------

void BM_Band_Library(benchmark::State& state) {
  Terminal& terminal = TerminalOf(10000);
  vek::cgdPrecoEstacionamento preco;
  preco.Ob_cgpSistema(terminal.session);
  preco.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  int32_t minutes = 0;
  int64_t total = 0;
  for (auto _ : state) {
    minutes = (minutes + 37) % 2000;
    auto band = preco.rsObterTarifaAplicavelAoTempo(minutes);
    if (!band->Eof()) total += vek::CLng(band->Fields().Item("Cd_Tarifa").Value());
  }
  benchmark::DoNotOptimize(total);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Band_Library);

void BM_Band_HandWrittenSqlite(benchmark::State& state) {
  Terminal& terminal = TerminalOf(10000);
  sqlite3* db = nullptr;
  sqlite3_open(terminal.folder->File().c_str(), &db);
  vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::DateSerial(2026, 11, 21); });
  sqlite3_stmt* band = nullptr;
  sqlite3_prepare_v2(db,
                     "SELECT P.*, T.Vl_Tarifa, T.Cd_Tarifa FROM TbPrecoEstacionamento P "
                     "JOIN TbTarifa T ON P.Cd_EmpresaUsuariaSistema = T.Cd_EmpresaUsuariaSistema "
                     "AND P.Cd_Tarifa = T.Cd_Tarifa WHERE P.Cd_EmpresaUsuariaSistema = ? "
                     "AND (? BETWEEN P.Qt_TempoInicial AND P.Qt_TempoFinal OR P.Qt_TempoFinal <= ?) "
                     "ORDER BY P.Qt_TempoFinal DESC LIMIT 1",
                     -1, &band, nullptr);
  int minutes = 0;
  int64_t total = 0;
  for (auto _ : state) {
    minutes = (minutes + 37) % 2000;
    sqlite3_bind_int(band, 1, 1);
    sqlite3_bind_int(band, 2, minutes);
    sqlite3_bind_int(band, 3, minutes);
    while (sqlite3_step(band) == SQLITE_ROW) {
      // Every column read, as the record set does.
      for (int i = 0; i < sqlite3_column_count(band); ++i) {
        if (sqlite3_column_type(band, i) == SQLITE_FLOAT) {
          benchmark::DoNotOptimize(sqlite3_column_double(band, i));
        } else {
          benchmark::DoNotOptimize(sqlite3_column_int64(band, i));
        }
      }
      total += sqlite3_column_int(band, 7);
    }
    sqlite3_reset(band);
  }
  benchmark::DoNotOptimize(total);
  sqlite3_finalize(band);
  sqlite3_close(db);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Band_HandWrittenSqlite);

}  // namespace

BENCHMARK_MAIN();
