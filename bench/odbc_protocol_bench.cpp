// The persistence protocol on a neighbourhood on the PostgreSQL server, against
// hand-written unixODBC statements prepared once and doing the same work on
// the same database, in one process: a look-up (Consultar), an update (Salvar
// of a stored key: its SELECT and UPDATE) and an insert followed by a delete
// (Salvar of key 0: the empty SELECT, the INSERT, then Excluir). Compare
// items_per_second of the pairs: all of them in wall time, since the
// server's share of the work is not in this process's CPU time.
//
// Every benchmark works on a fresh database of its own on the server that
// VEK_PG_CONNECTION names (an ODBC connection string; VEK_PG_PORT is its
// port), dropped at the end. Without the two, nothing runs.
//
//   scripts/pg-test-cluster start /tmp/bench-pg
//   scripts/with-pg-env /tmp/bench-pg build/bench/odbc_protocol_bench --benchmark_repetitions=3 --benchmark_report_aggregates_only=true
//   scripts/pg-test-cluster stop /tmp/bench-pg

#include <benchmark/benchmark.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ProtocolLoop.h"
#include "vek/db/Connection.h"
#include "vek/foundation/Enums.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Text.h"
#include "vek/schema/CreateDatabase.h"

namespace {

using vek::bench::kRows;
// Nm_Bairro holds at most 60 characters.
constexpr size_t kMaxText = 60;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// ---- raw ODBC ------------------------------------------------------------------

using WideString = std::basic_string<SQLWCHAR>;

// The Unicode driver takes UTF-16 text.
WideString Wide(std::string_view text) {
  WideString out;
  size_t pos = 0;
  while (pos < text.size()) {
    char32_t c = vek::NextCodePoint(text, pos);
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<SQLWCHAR>(0xD800 + (c >> 10)));
      out.push_back(static_cast<SQLWCHAR>(0xDC00 + (c & 0x3FF)));
    } else {
      out.push_back(static_cast<SQLWCHAR>(c));
    }
  }
  return out;
}

// A failed call ends the benchmark with the driver's message, not with
// figures of work that was never done.
void Check(SQLRETURN code, SQLSMALLINT type, SQLHANDLE handle, std::string_view call) {
  if (SQL_SUCCEEDED(code)) return;
  SQLCHAR state[6] = {};
  SQLINTEGER native = 0;
  SQLCHAR message[1024] = {};
  SQLSMALLINT length = 0;
  std::string text = std::string(call) + " failed";
  if (handle != SQL_NULL_HANDLE &&
      SQL_SUCCEEDED(SQLGetDiagRec(type, handle, 1, state, &native, message, sizeof message, &length))) {
    text += std::string(" [") + reinterpret_cast<const char*>(state) + "] " + reinterpret_cast<const char*>(message);
  }
  throw std::runtime_error(text);
}

template <SQLSMALLINT kType>
class Handle {
 public:
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(kType, handle_);
  }
  void Allocate(SQLSMALLINT parent_type, SQLHANDLE parent) {
    Check(SQLAllocHandle(kType, parent, &handle_), parent_type, parent, "SQLAllocHandle");
  }
  SQLHANDLE Get() const { return handle_; }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

// A connection in autocommit, as the library's is.
class OdbcConnection {
 public:
  explicit OdbcConnection(const std::string& connection_string) {
    environment_.Allocate(SQL_HANDLE_ENV, SQL_NULL_HANDLE);
    Check(SQLSetEnvAttr(environment_.Get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0),
          SQL_HANDLE_ENV, environment_.Get(), "SQLSetEnvAttr");
    connection_.Allocate(SQL_HANDLE_ENV, environment_.Get());
    Check(SQLSetConnectAttr(connection_.Get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON),
                            SQL_IS_UINTEGER),
          SQL_HANDLE_DBC, connection_.Get(), "SQLSetConnectAttr");
    WideString text = Wide(connection_string);
    Check(SQLDriverConnectW(connection_.Get(), nullptr, text.data(), static_cast<SQLSMALLINT>(text.size()), nullptr,
                            0, nullptr, SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, connection_.Get(), "SQLDriverConnectW");
    connected_ = true;
  }
  OdbcConnection(const OdbcConnection&) = delete;
  OdbcConnection& operator=(const OdbcConnection&) = delete;
  ~OdbcConnection() {
    if (connected_) SQLDisconnect(connection_.Get());
  }

  SQLHDBC Get() const { return connection_.Get(); }

  void Execute(const std::string& text) {
    Handle<SQL_HANDLE_STMT> statement;
    statement.Allocate(SQL_HANDLE_DBC, connection_.Get());
    WideString wide = Wide(text);
    const SQLRETURN code = SQLExecDirectW(statement.Get(), wide.data(), static_cast<SQLINTEGER>(wide.size()));
    if (code != SQL_NO_DATA) Check(code, SQL_HANDLE_STMT, statement.Get(), text);
  }

 private:
  Handle<SQL_HANDLE_ENV> environment_;
  Handle<SQL_HANDLE_DBC> connection_;
  bool connected_ = false;
};

// One statement prepared once; its parameters are bound once to buffers
// that each run fills anew.
class Prepared {
 public:
  Prepared(const OdbcConnection& connection, std::string_view text) {
    statement_.Allocate(SQL_HANDLE_DBC, connection.Get());
    WideString wide = Wide(text);
    Check(SQLPrepareW(Get(), wide.data(), static_cast<SQLINTEGER>(wide.size())), SQL_HANDLE_STMT, Get(),
          "SQLPrepareW");
  }
  SQLHSTMT Get() const { return statement_.Get(); }

  void BindInteger(SQLUSMALLINT number, SQLINTEGER& value) {
    Check(SQLBindParameter(Get(), number, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, &value, 0, nullptr),
          SQL_HANDLE_STMT, Get(), "SQLBindParameter");
  }
  void BindText(SQLUSMALLINT number, SQLWCHAR* text, SQLLEN& length) {
    Check(SQLBindParameter(Get(), number, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, kMaxText, 0, text,
                           static_cast<SQLLEN>((kMaxText + 1) * sizeof(SQLWCHAR)), &length),
          SQL_HANDLE_STMT, Get(), "SQLBindParameter");
  }

  // Runs the statement; false when it touched no row.
  bool Execute() {
    const SQLRETURN code = SQLExecute(Get());
    if (code == SQL_NO_DATA) return false;
    Check(code, SQL_HANDLE_STMT, Get(), "SQLExecute");
    return true;
  }
  bool Fetch() {
    const SQLRETURN code = SQLFetch(Get());
    if (code == SQL_NO_DATA) return false;
    Check(code, SQL_HANDLE_STMT, Get(), "SQLFetch");
    return true;
  }
  void Close() { SQLFreeStmt(Get(), SQL_CLOSE); }
  // For a statement that returns no rows.
  void ExecuteAndClose() {
    Execute();
    Close();
  }
  // A column of the fetched row into buffer.
  void GetData(SQLUSMALLINT number, SQLSMALLINT c_type, SQLPOINTER buffer, SQLLEN size) {
    SQLLEN indicator = 0;
    Check(SQLGetData(Get(), number, c_type, buffer, size, &indicator), SQL_HANDLE_STMT, Get(), "SQLGetData");
  }

 private:
  Handle<SQL_HANDLE_STMT> statement_;
};

// A text parameter's buffer, in UTF-16 as the Unicode driver takes it.
struct TextParameter {
  void Set(std::string_view text) {
    const WideString wide = Wide(text);
    const size_t count = std::min(wide.size(), kMaxText);
    std::copy_n(wide.begin(), count, data);
    data[count] = 0;
    length = static_cast<SQLLEN>(count * sizeof(SQLWCHAR));
  }
  SQLWCHAR data[kMaxText + 1] = {};
  SQLLEN length = 0;
};

// The connection string of VEK_PG_CONNECTION on another database.
std::string WithDatabase(std::string_view connection_string, std::string_view database) {
  std::string text;
  size_t pos = 0;
  while (pos < connection_string.size()) {
    size_t end = connection_string.find(';', pos);
    // A value between braces may hold semicolons.
    if (const size_t brace = connection_string.find('{', pos); brace < end) {
      end = connection_string.find(';', connection_string.find('}', brace));
    }
    if (end == std::string_view::npos) end = connection_string.size();
    const std::string_view pair = connection_string.substr(pos, end - pos);
    pos = end + 1;
    const std::string key = vek::Trim(pair.substr(0, pair.find('=')));
    if (key.empty() || vek::EqualsIgnoreCase(key, "Database")) continue;
    text += std::string(pair) + ";";
  }
  return text + "Database=" + std::string(database);
}

// ---- the database ----------------------------------------------------------------

std::shared_ptr<vek::cgpSistema> OpenSession(const std::string& database) {
  auto session = std::make_shared<vek::cgpSistema>();
  session->Let("Cd_DB", vek::Variant(static_cast<int32_t>(vek::BancoDadosPostgreSQL)));
  session->Let("Nm_ServidorDB", vek::Variant("postgres@127.0.0.1:" + Environment("VEK_PG_PORT")));
  session->Let("Ds_CaminhoDB", vek::Variant(database));
  session->AbrirConexao();
  return session;
}

// A terminal database of its own on the server, filled with neighbourhoods,
// dropped at the end.
class BenchDatabase {
 public:
  BenchDatabase() : admin_(Environment("VEK_PG_CONNECTION")) {
    static int counter = 0;
    name_ = "vek_bench_" + std::to_string(getpid()) + "_" + std::to_string(++counter);
    // CREATE DATABASE refuses to run inside a transaction: the connection is in autocommit.
    admin_.Execute("DROP DATABASE IF EXISTS " + name_);
    admin_.Execute("CREATE DATABASE " + name_ + " TEMPLATE template0 ENCODING 'UTF8'");
    try {
      Fill();
    } catch (...) {
      Drop();
      throw;
    }
  }
  BenchDatabase(const BenchDatabase&) = delete;
  BenchDatabase& operator=(const BenchDatabase&) = delete;
  ~BenchDatabase() { Drop(); }

  const std::string& Name() const { return name_; }
  std::string ConnectionString() const { return WithDatabase(Environment("VEK_PG_CONNECTION"), name_); }

 private:
  void Fill() {
    const auto connection = OpenSession(name_)->Ob_Conexao();
    vek::schema::CreateDatabase(*connection);
    connection->ExecuteNative("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (1, 'Goiás', 'GO')");
    connection->ExecuteNative("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF) VALUES (1, 'Goiânia', 1)");
    std::string rows;
    for (int i = 1; i <= kRows; ++i) {
      rows += (i > 1 ? ", (" : "(") + std::to_string(i) + ", 'Bairro " + std::to_string(i) + "', 1)";
    }
    connection->ExecuteNative("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES " + rows);
  }

  void Drop() noexcept {
    try {
      // FORCE ends a session a failed benchmark left open.
      admin_.Execute("DROP DATABASE IF EXISTS " + name_ + " WITH (FORCE)");
    } catch (const std::exception&) {
      // A database left behind goes with the throwaway cluster.
    }
  }

  OdbcConnection admin_;
  std::string name_;
};

// A failure (a refused statement, a server gone) ends the benchmark with its
// message instead of the process.
template <class Body>
void Guarded(benchmark::State& state, Body body) {
  try {
    body();
  } catch (const std::exception& error) {
    state.SkipWithError(error.what());
  }
}

// ---- the library ---------------------------------------------------------------

// Each on a database of its own.
void OnFreshDatabase(benchmark::State& state, vek::bench::LibraryLoop loop) {
  Guarded(state, [&] {
    BenchDatabase db;
    loop(state, OpenSession(db.Name()));
  });
}

void BM_Protocol_Consultar(benchmark::State& state) { OnFreshDatabase(state, vek::bench::ProtocolConsultar); }
BENCHMARK(BM_Protocol_Consultar)->UseRealTime();

void BM_Protocol_SalvarUpdate(benchmark::State& state) { OnFreshDatabase(state, vek::bench::ProtocolSalvarUpdate); }
BENCHMARK(BM_Protocol_SalvarUpdate)->UseRealTime();

void BM_Protocol_SalvarInsertExcluir(benchmark::State& state) {
  OnFreshDatabase(state, vek::bench::ProtocolSalvarInsertExcluir);
}
BENCHMARK(BM_Protocol_SalvarInsertExcluir)->UseRealTime();

void BM_Protocol_Loop(benchmark::State& state) { OnFreshDatabase(state, vek::bench::ProtocolLoop); }
BENCHMARK(BM_Protocol_Loop)->UseRealTime();

// ---- the same work by hand ---------------------------------------------------

class HandWritten {
 public:
  explicit HandWritten(const std::string& connection_string)
      : connection_(connection_string),
        select_(connection_, "SELECT A.* FROM tbbairro A WHERE A.cd_bairro = ?"),
        update_(connection_, "UPDATE tbbairro SET nm_bairro = ?, cd_cidade = ? WHERE cd_bairro = ?"),
        insert_(connection_, "INSERT INTO tbbairro (nm_bairro, cd_cidade) VALUES (?, ?) RETURNING cd_bairro"),
        delete_(connection_, "DELETE FROM tbbairro WHERE cd_bairro = ?") {
    select_.BindInteger(1, select_key_);
    update_.BindText(1, update_name_.data, update_name_.length);
    update_.BindInteger(2, city_);
    update_.BindInteger(3, update_key_);
    insert_.BindText(1, insert_name_.data, insert_name_.length);
    insert_.BindInteger(2, city_);
    delete_.BindInteger(1, delete_key_);
    insert_name_.Set("Novo");
    // How each column of the look-up is read, decided once.
    SQLSMALLINT count = 0;
    Check(SQLNumResultCols(select_.Get(), &count), SQL_HANDLE_STMT, select_.Get(), "SQLNumResultCols");
    for (SQLUSMALLINT number = 1; number <= static_cast<SQLUSMALLINT>(count); ++number) {
      SQLWCHAR name[256];
      SQLSMALLINT name_length = 0;
      SQLSMALLINT data_type = 0;
      SQLULEN size = 0;
      SQLSMALLINT digits = 0;
      SQLSMALLINT nullable = 0;
      Check(SQLDescribeColW(select_.Get(), number, name, 256, &name_length, &data_type, &size, &digits, &nullable),
            SQL_HANDLE_STMT, select_.Get(), "SQLDescribeColW");
      integer_columns_.push_back(data_type == SQL_INTEGER || data_type == SQL_SMALLINT);
    }
  }

  // Reads every column of the row, as the protocol copies them.
  int Select(int key) {
    select_key_ = key;
    select_.Execute();
    int columns = 0;
    while (select_.Fetch()) {
      for (size_t i = 0; i < integer_columns_.size(); ++i) {
        const auto number = static_cast<SQLUSMALLINT>(i + 1);
        if (integer_columns_[i]) {
          SQLINTEGER value = 0;
          select_.GetData(number, SQL_C_SLONG, &value, sizeof value);
        } else {
          select_.GetData(number, SQL_C_WCHAR, text_, sizeof text_);
        }
        ++columns;
      }
    }
    select_.Close();
    return columns;
  }
  void Update(int key, const std::string& name) {
    update_name_.Set(name);
    update_key_ = key;
    update_.ExecuteAndClose();
  }
  int Insert() {
    insert_.Execute();
    SQLINTEGER key = 0;
    if (insert_.Fetch()) insert_.GetData(1, SQL_C_SLONG, &key, sizeof key);
    insert_.Close();
    return key;
  }
  void Delete(int key) {
    delete_key_ = key;
    delete_.ExecuteAndClose();
  }

 private:
  OdbcConnection connection_;
  Prepared select_;
  Prepared update_;
  Prepared insert_;
  Prepared delete_;
  // The buffers the parameters are bound to.
  SQLINTEGER select_key_ = 0;
  SQLINTEGER update_key_ = 0;
  SQLINTEGER delete_key_ = 0;
  SQLINTEGER city_ = 1;
  TextParameter update_name_;
  TextParameter insert_name_;
  std::vector<bool> integer_columns_;
  SQLWCHAR text_[256] = {};
};

// Each on a database of its own, with a connection of its own.
template <class Loop>
void OnHandWritten(benchmark::State& state, Loop loop) {
  Guarded(state, [&] {
    BenchDatabase db;
    HandWritten hand(db.ConnectionString());
    loop(hand);
    state.SetItemsProcessed(state.iterations());
  });
}

void BM_HandWritten_Consultar(benchmark::State& state) {
  OnHandWritten(state, [&](HandWritten& hand) {
    int key = 0;
    for (auto _ : state) benchmark::DoNotOptimize(hand.Select(key++ % kRows + 1));
  });
}
BENCHMARK(BM_HandWritten_Consultar)->UseRealTime();

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
BENCHMARK(BM_HandWritten_SalvarUpdate)->UseRealTime();

void BM_HandWritten_SalvarInsertExcluir(benchmark::State& state) {
  OnHandWritten(state, [&](HandWritten& hand) {
    for (auto _ : state) {
      hand.Select(0);
      hand.Delete(hand.Insert());
    }
  });
}
BENCHMARK(BM_HandWritten_SalvarInsertExcluir)->UseRealTime();

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

int main(int argc, char** argv) {
  // Without a server there is nothing to measure; a run in CI is not a failure.
  if (Environment("VEK_PG_CONNECTION").empty() || Environment("VEK_PG_PORT").empty()) {
    std::printf(
        "odbc_protocol_bench: no PostgreSQL server; set VEK_PG_CONNECTION and VEK_PG_PORT, e.g. "
        "scripts/pg-test-cluster start DIR && scripts/with-pg-env DIR %s\n",
        argv[0]);
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
