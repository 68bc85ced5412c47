// The persistence protocol on a neighbourhood, against hand-written sqlite3
// prepared statements doing the same work on the same file, in one process:
// a look-up (Consultar), an update (Salvar of a stored key: its SELECT and
// UPDATE) and an insert followed by a delete (Salvar of key 0: the empty
// SELECT, the INSERT, then Excluir). Compare items_per_second of the pairs.
//
//   build/bench/protocol_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "ProtocolLoop.h"
#include "ScratchTerminal.h"
#include "vek/db/Connection.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/schema/CreateDatabase.h"

namespace {

using vek::bench::kRows;

// A terminal database in a file of its own, filled with neighbourhoods.
class BenchDatabase : public vek::bench::ScratchTerminal {
 public:
  BenchDatabase()
      : ScratchTerminal([](vek::Connection& connection) {
          connection.Execute("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (1, 'Goiás', 'GO')");
          connection.Execute("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF) VALUES (1, 'Goiânia', 1)");
          for (int i = 1; i <= kRows; ++i) {
            connection.Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (" +
                               std::to_string(i) + ", 'Bairro " + std::to_string(i) + "', 1)");
          }
        }) {}
};

std::shared_ptr<vek::cgpSistema> OpenSession(const std::string& file) {
  auto session = std::make_shared<vek::cgpSistema>();
  session->Let("Ds_CaminhoDB", vek::Variant(file));
  session->AbrirConexao();
  return session;
}

// Each on a database of its own.
void OnFreshDatabase(benchmark::State& state, vek::bench::LibraryLoop loop) {
  BenchDatabase db;
  loop(state, OpenSession(db.File()));
}

void BM_Protocol_Consultar(benchmark::State& state) { OnFreshDatabase(state, vek::bench::ProtocolConsultar); }
BENCHMARK(BM_Protocol_Consultar);

void BM_Protocol_SalvarUpdate(benchmark::State& state) { OnFreshDatabase(state, vek::bench::ProtocolSalvarUpdate); }
BENCHMARK(BM_Protocol_SalvarUpdate);

void BM_Protocol_SalvarInsertExcluir(benchmark::State& state) {
  OnFreshDatabase(state, vek::bench::ProtocolSalvarInsertExcluir);
}
BENCHMARK(BM_Protocol_SalvarInsertExcluir);

void BM_Protocol_Loop(benchmark::State& state) { OnFreshDatabase(state, vek::bench::ProtocolLoop); }
BENCHMARK(BM_Protocol_Loop)->UseRealTime();

// ---- the same work by hand ---------------------------------------------------

class HandWritten {
 public:
  explicit HandWritten(const std::string& file) {
    sqlite3_open(file.c_str(), &db_);
    sqlite3_busy_timeout(db_, 30000);
    sqlite3_exec(db_, "PRAGMA foreign_keys=ON", nullptr, nullptr, nullptr);
    vek::dialect::RegisterSqlServerFunctions(db_, [] { return vek::DateSerial(2026, 11, 21); });
    select_ = Prepare("SELECT A.* FROM TbBairro A WHERE A.Cd_Bairro = ?");
    update_ = Prepare("UPDATE TbBairro SET Nm_Bairro = ?, Cd_Cidade = ? WHERE Cd_Bairro = ?");
    insert_ = Prepare("INSERT INTO TbBairro (Nm_Bairro, Cd_Cidade) VALUES (?, ?)");
    delete_ = Prepare("DELETE FROM TbBairro WHERE Cd_Bairro = ?");
  }
  ~HandWritten() {
    for (sqlite3_stmt* statement : {select_, update_, insert_, delete_}) sqlite3_finalize(statement);
    sqlite3_close(db_);
  }

  // Reads every column of the row into values, as the protocol copies them
  // into its record.
  int Select(int key) {
    sqlite3_bind_int(select_, 1, key);
    int columns = 0;
    while (sqlite3_step(select_) == SQLITE_ROW) {
      const int count = sqlite3_column_count(select_);
      values_.resize(static_cast<size_t>(count));
      for (int i = 0; i < count; ++i) {
        Value& value = values_[static_cast<size_t>(i)];
        switch (sqlite3_column_type(select_, i)) {
          case SQLITE_INTEGER: value = sqlite3_column_int64(select_, i); break;
          case SQLITE_FLOAT: value = sqlite3_column_double(select_, i); break;
          case SQLITE_TEXT:
            value = std::string(reinterpret_cast<const char*>(sqlite3_column_text(select_, i)),
                                static_cast<size_t>(sqlite3_column_bytes(select_, i)));
            break;
          default: value = std::monostate{};
        }
        ++columns;
      }
    }
    sqlite3_reset(select_);
    return columns;
  }
  void Update(int key, const std::string& name) {
    sqlite3_bind_text(update_, 1, name.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(update_, 2, 1);
    sqlite3_bind_int(update_, 3, key);
    Step(update_);
  }
  sqlite3_int64 Insert() {
    sqlite3_bind_text(insert_, 1, "Novo", -1, SQLITE_STATIC);
    sqlite3_bind_int(insert_, 2, 1);
    Step(insert_);
    return sqlite3_last_insert_rowid(db_);
  }
  void Delete(sqlite3_int64 key) {
    sqlite3_bind_int64(delete_, 1, key);
    Step(delete_);
  }

 private:
  sqlite3_stmt* Prepare(const char* text) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db_, text, -1, &statement, nullptr);
    return statement;
  }
  static void Step(sqlite3_stmt* statement) {
    sqlite3_step(statement);
    sqlite3_reset(statement);
  }

  using Value = std::variant<std::monostate, sqlite3_int64, double, std::string>;
  std::vector<Value> values_;  // the last row read
  sqlite3* db_ = nullptr;
  sqlite3_stmt* select_ = nullptr;
  sqlite3_stmt* update_ = nullptr;
  sqlite3_stmt* insert_ = nullptr;
  sqlite3_stmt* delete_ = nullptr;
};

// Each on a database of its own, with a connection of its own.
template <class Loop>
void OnHandWritten(benchmark::State& state, Loop loop) {
  BenchDatabase db;
  HandWritten hand(db.File());
  loop(hand);
  state.SetItemsProcessed(state.iterations());
}

void BM_HandWritten_Consultar(benchmark::State& state) {
  OnHandWritten(state, [&](HandWritten& hand) {
    int key = 0;
    for (auto _ : state) benchmark::DoNotOptimize(hand.Select(key++ % kRows + 1));
  });
}
BENCHMARK(BM_HandWritten_Consultar);

void BM_HandWritten_SalvarUpdate(benchmark::State& state) {
  OnHandWritten(state, [&](HandWritten& hand) {
    int key = 0;
    for (auto _ : state) {
      const int row = key % kRows + 1;
      hand.Select(row);
      hand.Update(row, "Renomeado " + std::to_string(key++));
    }
  });
}
BENCHMARK(BM_HandWritten_SalvarUpdate);

void BM_HandWritten_SalvarInsertExcluir(benchmark::State& state) {
  OnHandWritten(state, [&](HandWritten& hand) {
    for (auto _ : state) {
      hand.Select(0);
      hand.Delete(hand.Insert());
    }
  });
}
BENCHMARK(BM_HandWritten_SalvarInsertExcluir);

void BM_HandWritten_Loop(benchmark::State& state) {
  OnHandWritten(state, [&](HandWritten& hand) {
    int key = 0;
    for (auto _ : state) {
      const int row = key % kRows + 1;
      hand.Select(row);
      hand.Select(row);
      hand.Update(row, "Renomeado " + std::to_string(key++));
      hand.Select(0);
      hand.Delete(hand.Insert());
    }
  });
}
BENCHMARK(BM_HandWritten_Loop)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
