// The people's search grid over 100,000 people: cgdPessoas filling an
// in-memory ListGrid, against hand-written sqlite3 code that runs the same
// SQLite statement (prepared once) and builds the same tab-separated lines
// into a vector, on the same file, in one process. Compare items_per_second
// (rows) of the pair.
//
//   build/bench/grid_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "vek/db/Connection.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "ScratchTerminal.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Controls.h"
#include "vek/registry/cgdPessoas.h"
#include "vek/schema/CreateDatabase.h"

namespace {

constexpr int kPeople = 100000;

// A terminal database in a file of its own holding kPeople people: every
// second one a natural person with a CPF, every fourth (of the others) a
// legal person with a CNPJ, the rest neither. Names carry accents and repeat
// across people, so the grid's order needs the code as well.
class PeopleDatabase : public vek::bench::ScratchTerminal {
 public:
  PeopleDatabase() { Fill(); }


  // Made once per process, on first use.
  static const PeopleDatabase& Shared() {
    static const PeopleDatabase database;
    return database;
  }

 private:
  void Fill() const {
    static constexpr std::array<const char*, 12> kFirst = {"José",   "João",  "Antônio", "Conceição", "Inês",
                                                           "Mário",  "Lúcia", "Sebastião", "Ângela",  "Cláudio",
                                                           "Márcia", "Luís"};
    static constexpr std::array<const char*, 10> kLast = {"Gonçalves", "Araújo", "Simões",   "Magalhães", "Conceição",
                                                          "Brandão",   "Lima",   "Nogueira", "Falcão",    "Estevão"};
    sqlite3* db = nullptr;
    sqlite3_open(File().c_str(), &db);
    vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::DateSerial(2026, 11, 21); });
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* person = Prepare(db, "INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa, No_TipoPessoa) VALUES (?, ?, ?)");
    sqlite3_stmt* natural = Prepare(db, "INSERT INTO TbPessoaFisica (Cd_Pessoa, No_CPF) VALUES (?, ?)");
    sqlite3_stmt* legal = Prepare(db, "INSERT INTO TbPessoaJuridica (Cd_Pessoa, No_CNPJ) VALUES (?, ?)");
    std::mt19937 generator(20261121);
    for (int code = 1; code <= kPeople; ++code) {
      const std::string name = std::string(kFirst[generator() % kFirst.size()]) + " " +
                               kLast[generator() % kLast.size()] + " " + kLast[generator() % kLast.size()] +
                               " " + std::to_string(generator() % 5000);
      const bool is_natural = code % 2 == 0;
      const bool is_legal = !is_natural && code % 4 == 1;
      sqlite3_bind_int(person, 1, code);
      sqlite3_bind_text(person, 2, name.c_str(), -1, SQLITE_TRANSIENT);
      if (is_natural || is_legal) {
        sqlite3_bind_int(person, 3, is_natural ? 1 : 2);
      } else {
        sqlite3_bind_null(person, 3);
      }
      Step(db, person);
      char number[24];
      if (is_natural) {
        const unsigned digits = generator() % 1000000000u;
        std::snprintf(number, sizeof number, "%03u.%03u.%03u-%02u", digits / 1000000, digits / 1000 % 1000,
                      digits % 1000, digits % 97);
        sqlite3_bind_int(natural, 1, code);
        sqlite3_bind_text(natural, 2, number, -1, SQLITE_TRANSIENT);
        Step(db, natural);
      } else if (is_legal) {
        const unsigned digits = generator() % 100000000u;
        std::snprintf(number, sizeof number, "%02u.%03u.%03u/0001-%02u", digits / 1000000, digits / 1000 % 1000,
                      digits % 1000, digits % 89);
        sqlite3_bind_int(legal, 1, code);
        sqlite3_bind_text(legal, 2, number, -1, SQLITE_TRANSIENT);
        Step(db, legal);
      }
    }
    for (sqlite3_stmt* statement : {person, natural, legal}) sqlite3_finalize(statement);
    if (sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(db));
    }
    sqlite3_close(db);
  }

  static sqlite3_stmt* Prepare(sqlite3* db, const char* text) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, text, -1, &statement, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(db));
    }
    return statement;
  }
  static void Step(sqlite3* db, sqlite3_stmt* statement) {
    if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db));
    sqlite3_reset(statement);
  }
};

std::shared_ptr<vek::cgpSistema> OpenSession(const std::string& file) {
  auto session = std::make_shared<vek::cgpSistema>();
  session->Let("Ds_CaminhoDB", vek::Variant(file));
  session->AbrirConexao();
  return session;
}

// The grid as cgdPessoas fills it, and the statement it ran.
struct LibraryGrid {
  std::vector<std::string> lines;
  std::string statement;
};

LibraryGrid FillWithLibrary(vek::cgdPessoas& people) {
  LibraryGrid result;
  const auto connection = people.Ob_cgpSistema()->Ob_Conexao();
  connection->OnStatement([&](const std::string& text) { result.statement = text; });
  vek::ListGrid grid;
  vek::TextBox count;
  people.CarregarMSFlexGridDeBusca(grid, count);
  connection->OnStatement(nullptr);
  result.lines = grid.Lines();
  return result;
}

// ---- the same work by hand ---------------------------------------------------

class HandWrittenGrid {
 public:
  HandWrittenGrid(const std::string& file, const std::string& translated) {
    sqlite3_open(file.c_str(), &db_);
    sqlite3_busy_timeout(db_, 30000);
    vek::dialect::RegisterSqlServerFunctions(db_, [] { return vek::DateSerial(2026, 11, 21); });
    sqlite3_prepare_v2(db_, translated.c_str(), static_cast<int>(translated.size()), &select_, nullptr);
  }
  ~HandWrittenGrid() {
    sqlite3_finalize(select_);
    sqlite3_close(db_);
  }
  HandWrittenGrid(const HandWrittenGrid&) = delete;
  HandWrittenGrid& operator=(const HandWrittenGrid&) = delete;

  bool Prepared() const { return select_ != nullptr; }

  // One line per row: each cell after a tab, integers in decimal, Null empty,
  // text as it is.
  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    std::string line;
    const int columns = sqlite3_column_count(select_);
    while (sqlite3_step(select_) == SQLITE_ROW) {
      line.clear();
      for (int i = 0; i < columns; ++i) {
        line.push_back('\t');
        switch (sqlite3_column_type(select_, i)) {
          case SQLITE_INTEGER: {
            char digits[24];
            const auto end = std::to_chars(digits, digits + sizeof digits, sqlite3_column_int64(select_, i)).ptr;
            line.append(digits, end);
            break;
          }
          case SQLITE_TEXT:
            line.append(reinterpret_cast<const char*>(sqlite3_column_text(select_, i)),
                        static_cast<size_t>(sqlite3_column_bytes(select_, i)));
            break;
          default: break;  // Null
        }
      }
      lines.push_back(line);
    }
    sqlite3_reset(select_);
    return lines;
  }

 private:
  sqlite3* db_ = nullptr;
  sqlite3_stmt* select_ = nullptr;
};

void BM_Library_PessoasGrid(benchmark::State& state) {
  const PeopleDatabase& db = PeopleDatabase::Shared();
  vek::cgdPessoas people;
  people.Ob_cgpSistema(OpenSession(db.File()));
  for (auto _ : state) {
    vek::ListGrid grid;
    vek::TextBox count;
    people.CarregarMSFlexGridDeBusca(grid, count);
    benchmark::DoNotOptimize(grid.Lines().data());
  }
  state.SetItemsProcessed(state.iterations() * kPeople);
}
BENCHMARK(BM_Library_PessoasGrid)->Unit(benchmark::kMillisecond);

void BM_HandWritten_PessoasGrid(benchmark::State& state) {
  const PeopleDatabase& db = PeopleDatabase::Shared();
  // The statement the grid runs, as the connection translates it; the first
  // fill also proves that both sides build the same lines.
  vek::cgdPessoas people;
  people.Ob_cgpSistema(OpenSession(db.File()));
  const LibraryGrid library = FillWithLibrary(people);
  HandWrittenGrid hand(db.File(), vek::dialect::TranslateToSqlite(library.statement));
  if (!hand.Prepared()) {
    state.SkipWithError("the grid's statement does not prepare");
    return;
  }
  if (hand.Lines() != library.lines || library.lines.size() != static_cast<size_t>(kPeople)) {
    state.SkipWithError("the hand-written lines differ from the grid's");
    return;
  }
  for (auto _ : state) {
    std::vector<std::string> lines = hand.Lines();
    benchmark::DoNotOptimize(lines.data());
  }
  state.SetItemsProcessed(state.iterations() * kPeople);
}
BENCHMARK(BM_HandWritten_PessoasGrid)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
