// The bus side's look-ups as the terminal grows: the board
// (rsUltimasPartidas(10)) and the day's timetables (rsViagensDoDia) on
// 10,000 and on 1,000,000 trips, and the passengers' timetable search
// (adoRsHorariosLinha, Goiânia/GO to Campinas/SP) on 1,000 and on 100,000
// timetables. Each library run is paired with raw sqlite3 stepping through
// the same translated statement (prepared once) on the same file, in the
// same process; a pair's rows are checked equal before timing.
//
//   build/bench/bus_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//
// Compare, for each member, the time at 100 times the rows with the time at
// the smaller size, and each library time with its raw sqlite3 pair.
// VEK_BENCH_ANALYZE=1 runs ANALYZE on the files once filled, so that SQLite's
// planner knows the tables' sizes; VEK_BENCH_PLAN=1 prints the plans.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "ScratchTerminal.h"
#include "vek/bus/cgdHorariosLinha.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Clock.h"
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

namespace {

const vek::Date kNow = vek::DateSerial(2026, 11, 21) + vek::TimeSerial(10, 30, 0);
constexpr int kCities = 1000;
constexpr int kTripsPerDay = 1000;

sqlite3_stmt* Prepare(sqlite3* db, const std::string& text) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, text.c_str(), static_cast<int>(text.size()), &statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(db));
  }
  return statement;
}
void Step(sqlite3* db, sqlite3_stmt* statement) {
  if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db));
  sqlite3_reset(statement);
}
std::string Moment(vek::Date date) {
  const vek::DateParts p = vek::SplitDate(date);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", p.year, p.month, p.day, p.hour, p.minute,
                p.second);
  return text;
}

// A terminal with `timetables` timetables of operating company 1 on
// timetables / 10 lines between 1,000 cities (line 1, Goiânia/GO to
// Campinas/SP, always has 10 of them; a tenth have two stops), and `trips`
// trips, a thousand a day, the last two days ahead of now.
class BusTerminal : public vek::bench::ScratchTerminal {
 public:
  BusTerminal(int timetables, int trips) : timetables_(timetables), trips_(trips) { Fill(); }

  static const BusTerminal& Get(int timetables, int trips) {
    static std::map<std::pair<int, int>, std::unique_ptr<BusTerminal>> made;
    auto& terminal = made[{timetables, trips}];
    if (!terminal) terminal = std::make_unique<BusTerminal>(timetables, trips);
    return *terminal;
  }

 private:
  void Fill() const {
    sqlite3* db = nullptr;
    sqlite3_open(File().c_str(), &db);
    vek::dialect::RegisterSqlServerFunctions(db, [] { return kNow; });
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    std::mt19937 random(20261121);
    sqlite3_exec(db, "INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (1, 'Goiás', 'GO'), (2, 'São Paulo', 'SP')",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* city = Prepare(db, "INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) "
                                     "VALUES (?, ?, ?, ?, ?)");
    for (int code = 1; code <= kCities; ++code) {
      const std::string name = code == 1 ? "Goiânia" : code == 2 ? "Campinas" : "Cidade " + std::to_string(code);
      sqlite3_bind_int(city, 1, code);
      sqlite3_bind_text(city, 2, name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(city, 3, code % 2 == 1 ? 1 : 2);
      sqlite3_bind_text(city, 4, code % 2 == 1 ? "GO" : "SP", -1, SQLITE_STATIC);
      sqlite3_bind_int(city, 5, code);
      Step(db, city);
    }
    for (int company = 1; company <= 20; ++company) {
      const std::string text = "INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) VALUES (" +
                               std::to_string(company) + ", " + std::to_string(company) + ", 'Empresa " +
                               std::to_string(company) + "')";
      sqlite3_exec(db, text.c_str(), nullptr, nullptr, nullptr);
    }
    sqlite3_exec(db, "INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (1, 'Convencional'), "
                     "(2, 'Executivo'), (3, 'Leito')",
                 nullptr, nullptr, nullptr);
    const int lines = timetables_ / 10;
    sqlite3_stmt* line = Prepare(db, "INSERT INTO TbLinha (Cd_Linha, Cd_CidadeOrigem, Cd_CidadeDestino) VALUES (?, ?, ?)");
    for (int code = 1; code <= lines; ++code) {
      int origin = code == 1 ? 1 : 3 + static_cast<int>(random() % (kCities - 2));
      int destination = code == 1 ? 2 : 3 + static_cast<int>(random() % (kCities - 2));
      if (origin == destination) destination = destination == kCities ? 3 : destination + 1;
      sqlite3_bind_int(line, 1, code);
      sqlite3_bind_int(line, 2, origin);
      sqlite3_bind_int(line, 3, destination);
      Step(db, line);
    }
    sqlite3_stmt* timetable = Prepare(
        db, "INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, Cd_EmpresaOnibus, "
            "Cd_TipoOnibus, Hr_Saida, Hr_Chegada, Ic_TemEmbarques, Ic_TemDesembarque, No_Plataforma, "
            "Ic_ViagemNoDomingo, Ic_ViagemNaSegunda, Ic_ViagemNaTerca, Ic_ViagemNaQuarta, Ic_ViagemNaQuinta, "
            "Ic_ViagemNaSexta, Ic_ViagemNoSabado, Dt_Inicial, Dt_Final) "
            "VALUES (1, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    sqlite3_stmt* stop = Prepare(db, "INSERT INTO TbEscalasHorarioLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, "
                                     "Cd_HorarioLinha, Cd_Cidade) VALUES (1, ?, ?, ?)");
    std::vector<int> line_of(static_cast<size_t>(timetables_) + 1);
    std::vector<double> time_of(static_cast<size_t>(timetables_) + 1);
    for (int code = 1; code <= timetables_; ++code) {
      const int on_line = (code - 1) % lines + 1;
      line_of[static_cast<size_t>(code)] = on_line;
      const double time = static_cast<double>(random() % (24 * 60)) / (24 * 60);
      time_of[static_cast<size_t>(code)] = time;
      const int kind = static_cast<int>(random() % 4);  // boards, alights, passes, boards
      sqlite3_bind_int(timetable, 1, on_line);
      sqlite3_bind_int(timetable, 2, code);
      sqlite3_bind_int(timetable, 3, 1 + static_cast<int>(random() % 20));
      sqlite3_bind_int(timetable, 4, 1 + static_cast<int>(random() % 3));
      const std::string departs = Moment(vek::DateSerial(2026, 1, 1) + time);
      const std::string arrives = Moment(vek::DateSerial(2026, 1, 1) + time + 0.2);
      sqlite3_bind_text(timetable, 5, departs.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_text(timetable, 6, arrives.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(timetable, 7, kind != 1 ? 1 : 0);
      sqlite3_bind_int(timetable, 8, kind == 1 || kind == 2 ? 1 : 0);
      sqlite3_bind_int(timetable, 9, 1 + static_cast<int>(random() % 30));
      for (int day = 0; day < 7; ++day) sqlite3_bind_int(timetable, 10 + day, random() % 10 < 7 ? 1 : 0);
      // Most are open-ended; some ended, some still to start.
      const int validity = static_cast<int>(random() % 10);
      if (validity < 7) {
        sqlite3_bind_null(timetable, 17);
        sqlite3_bind_null(timetable, 18);
      } else {
        const vek::Date start = validity == 9 ? kNow + 30.0 : kNow - 300.0;
        const vek::Date end = validity == 8 ? kNow - 10.0 : kNow + 300.0;
        const std::string from = Moment(vek::Date(static_cast<double>(static_cast<int64_t>(start.Serial()))));
        const std::string until = Moment(vek::Date(static_cast<double>(static_cast<int64_t>(end.Serial()))));
        sqlite3_bind_text(timetable, 17, from.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(timetable, 18, until.c_str(), -1, SQLITE_TRANSIENT);
      }
      Step(db, timetable);
      if (code % 10 == 3) {
        for (int stop_city : {3 + static_cast<int>(random() % 400), 500 + static_cast<int>(random() % 400)}) {
          sqlite3_bind_int(stop, 1, on_line);
          sqlite3_bind_int(stop, 2, code);
          sqlite3_bind_int(stop, 3, stop_city);
          Step(db, stop);
        }
      }
    }
    // Trips: a thousand a day over the timetables of the first thousand codes.
    sqlite3_stmt* trip = Prepare(
        db, "INSERT INTO TbViagemOnibus (Cd_EmpresaUsuariaSistema, Cd_ViagemOnibus, Cd_Linha, Cd_HorarioLinha, "
            "Hr_Previsto, No_Plataforma, No_Andamento, Qt_EmbarquesComPassagem, Qt_EmbarquesSemPassagem) "
            "VALUES (1, ?, ?, ?, ?, ?, ?, ?, 0)");
    const int days = trips_ / kTripsPerDay;
    const vek::Date first_day = vek::Date(static_cast<double>(static_cast<int64_t>(kNow.Serial()) - (days - 3)));
    for (int code = 1; code <= trips_; ++code) {
      const int of = (code - 1) % kTripsPerDay + 1;
      const int day = (code - 1) / kTripsPerDay;
      const std::string expected = Moment(first_day + static_cast<double>(day) + time_of[static_cast<size_t>(of)]);
      sqlite3_bind_int(trip, 1, code);
      sqlite3_bind_int(trip, 2, line_of[static_cast<size_t>(of)]);
      sqlite3_bind_int(trip, 3, of);
      sqlite3_bind_text(trip, 4, expected.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(trip, 5, 1 + static_cast<int>(random() % 30));
      sqlite3_bind_int(trip, 6, static_cast<int>(random() % 4));
      sqlite3_bind_int(trip, 7, static_cast<int>(random() % 45));
      Step(db, trip);
    }
    for (sqlite3_stmt* statement : {city, line, timetable, stop, trip}) sqlite3_finalize(statement);
    // With VEK_BENCH_ANALYZE set, the planner gets the tables' statistics.
    if (std::getenv("VEK_BENCH_ANALYZE")) sqlite3_exec(db, "ANALYZE", nullptr, nullptr, nullptr);
    if (sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(db));
    }
    sqlite3_close(db);
  }

  int timetables_;
  int trips_;
};

std::shared_ptr<vek::cgpSistema> OpenSession(const std::string& file) {
  auto session = std::make_shared<vek::cgpSistema>();
  session->Let("Ds_CaminhoDB", vek::Variant(file));
  session->Let("Ds_FormatoData", vek::Variant("yyyy-mm-dd"));
  session->Let("Qt_TempoAntecedenciaMostrarViagensVisualizador", vek::Variant(30));
  session->SetClock(std::make_shared<vek::FixedClock>(kNow));
  session->AbrirConexao();
  return session;
}

// The members measured, each returning its open record set.
using Member = std::function<std::shared_ptr<vek::Recordset>(const std::shared_ptr<vek::cgpSistema>&)>;

std::shared_ptr<vek::Recordset> Board(const std::shared_ptr<vek::cgpSistema>& session) {
  vek::cgdEmpresaUsuariaSistema company;
  company.Ob_cgpSistema(session);
  company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  return company.rsUltimasPartidas(10);
}
std::shared_ptr<vek::Recordset> DaysTimetables(const std::shared_ptr<vek::cgpSistema>& session) {
  vek::cgdEmpresaUsuariaSistema company;
  company.Ob_cgpSistema(session);
  company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", vek::Variant(1));
  return company.rsViagensDoDia(kNow);
}
std::shared_ptr<vek::Recordset> Search(const std::shared_ptr<vek::cgpSistema>& session) {
  vek::cgdHorariosLinha horarios;
  horarios.Ob_cgpSistema(session);
  return horarios.adoRsHorariosLinha("Goiânia", "GO", "Campinas", "SP", false, false);
}

void RunLibrary(benchmark::State& state, const Member& member, int timetables, int trips) {
  const BusTerminal& terminal = BusTerminal::Get(timetables, trips);
  auto session = OpenSession(terminal.File());
  int64_t rows = 0;
  for (auto _ : state) {
    auto recordset = member(session);
    rows = recordset->RecordCount();
    benchmark::DoNotOptimize(recordset.get());
  }
  state.counters["rows"] = static_cast<double>(rows);
}

// Raw sqlite3 stepping through the statement the member sends, as the
// connection translates it, reading every column of every row.
void RunRaw(benchmark::State& state, const Member& member, int timetables, int trips) {
  const BusTerminal& terminal = BusTerminal::Get(timetables, trips);
  auto session = OpenSession(terminal.File());
  std::string sent;
  session->Ob_Conexao()->OnStatement([&](const std::string& text) { sent = text; });
  const int32_t expected_rows = member(session)->RecordCount();
  session->Ob_Conexao()->OnStatement(nullptr);
  sqlite3* db = nullptr;
  sqlite3_open(terminal.File().c_str(), &db);
  vek::dialect::RegisterSqlServerFunctions(db, [] { return kNow; });
  sqlite3_stmt* statement = Prepare(db, vek::dialect::TranslateToSqlite(sent));
  // VEK_BENCH_PLAN prints each statement with SQLite's plan for it.
  if (std::getenv("VEK_BENCH_PLAN")) {
    sqlite3_stmt* plan = Prepare(db, "EXPLAIN QUERY PLAN " + vek::dialect::TranslateToSqlite(sent));
    std::fprintf(stderr, "%s\n", vek::dialect::TranslateToSqlite(sent).c_str());
    while (sqlite3_step(plan) == SQLITE_ROW) std::fprintf(stderr, "  %s\n", sqlite3_column_text(plan, 3));
    sqlite3_finalize(plan);
  }
  int64_t rows = 0;
  for (auto _ : state) {
    rows = 0;
    const int columns = sqlite3_column_count(statement);
    while (sqlite3_step(statement) == SQLITE_ROW) {
      for (int i = 0; i < columns; ++i) {
        if (sqlite3_column_type(statement, i) == SQLITE_TEXT) {
          benchmark::DoNotOptimize(sqlite3_column_text(statement, i));
        } else {
          benchmark::DoNotOptimize(sqlite3_column_int64(statement, i));
        }
      }
      ++rows;
    }
    sqlite3_reset(statement);
  }
  sqlite3_finalize(statement);
  sqlite3_close(db);
  if (rows != expected_rows) state.SkipWithError("raw sqlite3 read another number of rows than the member");
  state.counters["rows"] = static_cast<double>(rows);
}

constexpr int kSmallTrips = 10000, kLargeTrips = 1000000;
constexpr int kSmallTimetables = 1000, kLargeTimetables = 100000;

void BM_Library_rsUltimasPartidas(benchmark::State& s) { RunLibrary(s, Board, kSmallTimetables, static_cast<int>(s.range(0))); }
void BM_Raw_rsUltimasPartidas(benchmark::State& s) { RunRaw(s, Board, kSmallTimetables, static_cast<int>(s.range(0))); }
void BM_Library_rsViagensDoDia(benchmark::State& s) { RunLibrary(s, DaysTimetables, kSmallTimetables, static_cast<int>(s.range(0))); }
void BM_Raw_rsViagensDoDia(benchmark::State& s) { RunRaw(s, DaysTimetables, kSmallTimetables, static_cast<int>(s.range(0))); }
void BM_Library_adoRsHorariosLinha(benchmark::State& s) { RunLibrary(s, Search, static_cast<int>(s.range(0)), kSmallTrips); }
void BM_Raw_adoRsHorariosLinha(benchmark::State& s) { RunRaw(s, Search, static_cast<int>(s.range(0)), kSmallTrips); }

BENCHMARK(BM_Library_rsUltimasPartidas)->Arg(kSmallTrips)->Arg(kLargeTrips)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Raw_rsUltimasPartidas)->Arg(kSmallTrips)->Arg(kLargeTrips)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Library_rsViagensDoDia)->Arg(kSmallTrips)->Arg(kLargeTrips)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Raw_rsViagensDoDia)->Arg(kSmallTrips)->Arg(kLargeTrips)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Library_adoRsHorariosLinha)->Arg(kSmallTimetables)->Arg(kLargeTimetables)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Raw_adoRsHorariosLinha)->Arg(kSmallTimetables)->Arg(kLargeTimetables)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
