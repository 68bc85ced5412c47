// What the cashier waits for at the end of her shift: the six till reports
// of one till and the till-closing feed, on terminals of 10,000 and of
// 1,000,000 parking tickets. The till measured holds the same takings in
// both (300 exits on the day, each with a charge line, 100 restroom sales,
// two cash assessments); every other ticket left earlier through other
// tills. A report that reads an index costs about the same on both: compare
// each pair's items_per_second (the larger terminal may take at most 1.5
// times as long).
//
//   build/bench/till_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "ScratchTerminal.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/vek.h"

namespace {

constexpr int kTill = 7;         // the till measured
constexpr int kTillExits = 300;  // its exits, whatever the size of the terminal
constexpr int kTillSales = 100;  // its restroom sales

void Run(sqlite3* db, const char* text) { sqlite3_exec(db, text, nullptr, nullptr, nullptr); }

// Writes `tickets` closed tickets with one charge line each in one
// transaction: the last kTillExits left through till kTill on 21/11/2026,
// the others one a minute back from 20/11/2026 through tills of 200 exits
// each. Restroom sales: kTillSales of the till, one per ten tickets of others.
void Fill(const std::string& file, int tickets) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::DateSerial(2026, 11, 21); });
  Run(db, "BEGIN");
  Run(db, "INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES "
          "(1, 1, 'HORA', 4.35, 2), (2, 1, 'FRACAO', 0.145, 2), (3, 1, 'SANITARIO', 1.5, 3)");
  Run(db, "INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (1, 'PRATA')");
  Run(db, "INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (1, 'VW Gol')");
  Run(db, "INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (1, 'MARIA'), (2, 'TERMINAL')");
  Run(db, "INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, Cd_Pessoa, "
          "Dt_Movimento, Vl_ApuracaoReceita, No_Parcela, Cd_Caixa, Dt_Inicial, Ic_TotalizacaoDeCaixa) VALUES "
          "(1, 1, 2, 1, '2026-11-21 00:00:00', 180, 1, 7, '2026-11-01 00:00:00', 0), "
          "(1, 2, 2, 2, '2026-11-21 00:00:00', 1500, 1, 7, '2026-11-21 00:00:00', 1)");
  sqlite3_stmt* ticket = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
                     "Cd_Placa, No_Situacao, Dt_Entrada, Dt_Saida, Ds_Ticket, Cd_Caixa, Ic_Mensalista, "
                     "Ic_TicketRevalidado, Vl_Tarifa, Qt_TempoPermanenciaMinutos) VALUES (1, ?, ?, 2, ?, ?, ?, ?, 0, 0, "
                     "4.35, 50)",
                     -1, &ticket, nullptr);
  sqlite3_stmt* line = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO TbTicketEstacionamento_TbTarifa (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
                     "Cd_Tarifa, Qt_Unidade, Vl_Tarifa) VALUES (1, ?, ?, 1, ?)",
                     -1, &line, nullptr);
  sqlite3_stmt* sale = nullptr;
  sqlite3_prepare_v2(db,
                     "INSERT INTO TbTicketSanitario (Cd_EmpresaUsuariaSistema, Cd_TicketSanitario, Dt_Entrada, "
                     "Cd_Tarifa, Vl_Tarifa, Qt_Unidade, Cd_Caixa) VALUES (1, ?, '2026-11-21 09:00:00', 3, 1.5, 1, ?)",
                     -1, &sale, nullptr);
  const vek::Date day_before = vek::DateSerial(2026, 11, 20);
  const vek::Date till_day = vek::DateSerial(2026, 11, 21) + vek::TimeSerial(6, 0, 0);
  int sales = 0;
  for (int i = 1; i <= tickets; ++i) {
    const int from_end = tickets - i;  // 0 for the newest
    const bool of_till = from_end < kTillExits;
    const vek::Date exit = of_till ? till_day + from_end / 1440.0 : day_before - (from_end - kTillExits) / 1440.0;
    const std::string exit_text = vek::Format(vek::Variant(exit), "yyyy-mm-dd hh:Nn:Ss");
    const std::string entry_text = vek::Format(vek::Variant(exit - 50 / 1440.0), "yyyy-mm-dd hh:Nn:Ss");
    char plate[16], code[24];
    std::snprintf(plate, sizeof plate, "P%06d", i % 900000);
    std::snprintf(code, sizeof code, "%014d", i);
    sqlite3_bind_int(ticket, 1, i);
    sqlite3_bind_text(ticket, 2, plate, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(ticket, 3, entry_text.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(ticket, 4, exit_text.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(ticket, 5, code, -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(ticket, 6, of_till ? kTill : 100 + i / 200);
    sqlite3_step(ticket);
    sqlite3_reset(ticket);
    sqlite3_bind_int(line, 1, i);
    sqlite3_bind_int(line, 2, 1 + i % 2);
    sqlite3_bind_double(line, 3, i % 2 == 0 ? 4.35 : 0.145);
    sqlite3_step(line);
    sqlite3_reset(line);
    if (!of_till && i % 10 == 0) {
      sqlite3_bind_int(sale, 1, ++sales);
      sqlite3_bind_int(sale, 2, 100 + i / 200);
      sqlite3_step(sale);
      sqlite3_reset(sale);
    }
  }
  for (int i = 0; i < kTillSales; ++i) {
    sqlite3_bind_int(sale, 1, ++sales);
    sqlite3_bind_int(sale, 2, kTill);
    sqlite3_step(sale);
    sqlite3_reset(sale);
  }
  sqlite3_finalize(ticket);
  sqlite3_finalize(line);
  sqlite3_finalize(sale);
  Run(db, "COMMIT");
  Run(db, "ANALYZE");
  sqlite3_close(db);
}

struct Terminal {
  std::unique_ptr<vek::bench::ScratchTerminal> folder;
  std::shared_ptr<vek::cgpSistema> session;
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
    terminal.session->SetClock(
        std::make_shared<vek::FixedClock>(vek::DateSerial(2026, 11, 21) + vek::TimeSerial(18, 0, 0)));
    terminal.session->AbrirConexao();
  }
  return terminal;
}

// Runs one report per iteration and checks it returns `expected` rows.
void Report(benchmark::State& state, int32_t expected,
            const std::function<std::shared_ptr<vek::Recordset>(vek::cgdEmpresaUsuariaSistema&)>& report) {
  Terminal& terminal = TerminalOf(static_cast<int>(state.range(0)));
  vek::cgdEmpresaUsuariaSistema empresa;
  empresa.Ob_cgpSistema(terminal.session);
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  for (auto _ : state) {
    int32_t rows = 0;
    for (auto rs = report(empresa); !rs->Eof(); rs->MoveNext()) ++rows;
    if (rows != expected) state.SkipWithError(("the report returned " + std::to_string(rows) + " rows").c_str());
  }
  state.SetItemsProcessed(state.iterations());
}

void BM_SaidasCaixa(benchmark::State& state) {
  Report(state, kTillExits, [](auto& empresa) { return empresa.rsSaidasCaixa(kTill); });
}
BENCHMARK(BM_SaidasCaixa)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_SaidasPeriodo(benchmark::State& state) {
  const vek::Date day = vek::DateSerial(2026, 11, 21);
  Report(state, kTillExits, [day](auto& empresa) { return empresa.rsSaidasPeriodo(day, day); });
}
BENCHMARK(BM_SaidasPeriodo)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_SaidasCaixaAgrupadoPorTarifa(benchmark::State& state) {
  Report(state, 3, [](auto& empresa) { return empresa.rsSaidasCaixaAgrupadoPorTarifa(kTill); });
}
BENCHMARK(BM_SaidasCaixaAgrupadoPorTarifa)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_RecebimentoDeMensalistas(benchmark::State& state) {
  Report(state, 1, [](auto& empresa) { return empresa.rsRecebimentoDeMensalistas(kTill); });
}
BENCHMARK(BM_RecebimentoDeMensalistas)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_ApuracaoReceitaCaixa(benchmark::State& state) {
  Report(state, 1, [](auto& empresa) { return empresa.rsApuracaoReceitaCaixa(kTill); });
}
BENCHMARK(BM_ApuracaoReceitaCaixa)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_RecebimentoSanitario(benchmark::State& state) {
  Report(state, kTillSales, [](auto& empresa) { return empresa.rsRecebimentoSanitario(kTill); });
}
BENCHMARK(BM_RecebimentoSanitario)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_TillClosingFeed(benchmark::State& state) {
  Terminal& terminal = TerminalOf(static_cast<int>(state.range(0)));
  vek::cgdCaixa caixa;
  caixa.Ob_cgpSistema(terminal.session);
  caixa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  caixa.Ob_cgp()->Let("Cd_Caixa", vek::Variant(kTill));
  for (auto _ : state) caixa.PreparaDadosParaRelatorioApuracaoReceita7();
  // Two parking tariffs, the restroom's, the payment and the totalling.
  auto rows = terminal.session->Ob_Conexao()->Execute("SELECT Count(*) FROM TempApuracaoReceita7");
  if (vek::CLng(rows->Fields().Item(0).Value()) != 5) state.SkipWithError("the feed does not hold the till");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_TillClosingFeed)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
