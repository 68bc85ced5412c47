#pragma once
// A session on a fresh terminal database, with a fixed clock, and the
// statements it runs recorded as they are sent. The database is SQLite in
// memory, or, when VEK_TEST_ENGINE is "postgresql", a fresh database on the
// PostgreSQL server that VEK_PG_CONNECTION names: the same behaviour tests
// then run on both engines.

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "db/dialect/PgTestDb.h"
#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/platform/VekError.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Clock.h"
#include "vek/platform/Text.h"
#include "vek/schema/Catalogue.h"
#include "vek/schema/CreateDatabase.h"

#include <sqlite3.h>

namespace vek::testing {

// True when the behaviour tests run on the PostgreSQL server.
inline bool OnPostgres() {
  const char* engine = std::getenv("VEK_TEST_ENGINE");
  return engine != nullptr && EqualsIgnoreCase(engine, "postgresql");
}

// What differs between the engines, declared once for every behaviour test.
// The Source that a database failure starts with.
inline std::string ProviderSource() { return OnPostgres() ? "ODBC" : "SQLite"; }
// A name as the database's messages spell it (PostgreSQL folds names to
// lower case).
inline std::string NameInMessage(std::string_view name) {
  return OnPostgres() ? LCase(name) : std::string(name);
}

// For a test that needs the server: where the tests were asked to run on
// PostgreSQL, a server that can't be reached fails it (a run never passes by
// leaving the engine out); elsewhere the test is skipped.
#define VEK_SKIP_WITHOUT_SERVER(message)              \
  do {                                                 \
    if (::vek::testing::OnPostgres()) {                \
      GTEST_FAIL() << (message);                       \
    } else {                                           \
      GTEST_SKIP() << (message);                       \
    }                                                  \
  } while (0)

// What BACKUP DATABASE writes as sets: SQLite's own pages, or a dump of the
// server's tools, where a differential set is a whole dump and the backup
// log says so in one more line.
inline std::string FullSetKind() { return OnPostgres() ? "full (pg_dump)" : "full"; }
inline std::string DifferentialSetKind() {
  return OnPostgres() ? "differential taken as full (pg_dump)" : "differential";
}
inline std::vector<std::string> DifferentialBackupNote() {
  if (!OnPostgres()) return {};
  return {"Backup diferencial gravado como completo: o PostgreSQL não tem backup diferencial"};
}

struct TerminalDatabase;
// Removes the access-control database MDESTACIONAMENTO (an attached file on
// SQLite, a schema on PostgreSQL), for the tests of a terminal without it.
inline void DropAccessControlDatabase(TerminalDatabase& db);

struct TerminalDatabase {
  // On SQLite the database lives in memory, or in `sqlite_file` when given
  // (for tests that open it from another process too).
  explicit TerminalDatabase(const std::string& sqlite_file = ":memory:") : session(std::make_shared<cgpSistema>()),
                       clock(std::make_shared<FixedClock>(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0))) {
    session->Let("Ds_FormatoData", Variant("yyyy-mm-dd"));
    if (OnPostgres()) {
#ifdef VEK_TEST_HAS_LIBPQ
      server = std::make_unique<dialect::testing::PgTestDb>();
      const char* port = std::getenv("VEK_PG_PORT");
      if (!server->Open() || port == nullptr) throw std::runtime_error("VEK_TEST_ENGINE needs VEK_PG_CONNECTION");
      session->Let("Cd_DB", Variant(static_cast<int32_t>(BancoDadosPostgreSQL)));
      session->Let("Nm_ServidorDB", Variant("postgres@127.0.0.1:" + std::string(port)));
      session->Let("Ds_CaminhoDB", Variant(server->Name()));
#else
      throw std::runtime_error("VEK_TEST_ENGINE=postgresql needs libpq");
#endif
    } else {
      session->Let("Ds_CaminhoDB", Variant(sqlite_file));
    }
    session->SetClock(clock);
    connection = session->AbrirConexao();
    schema::CreateDatabase(*connection);
    connection->OnStatement([this](const std::string& text) { statements.push_back(text); });
  }

  // What another program needs to open the same database: Cd_DB,
  // Nm_ServidorDB and Ds_CaminhoDB of the session.
  std::vector<std::string> SessionArguments() const {
    return {CStr(session->Get("Cd_DB")), CStr(session->Get("Nm_ServidorDB")), CStr(session->Get("Ds_CaminhoDB"))};
  }

  // Runs a statement of the test's own, outside the recorded ones.
  std::shared_ptr<Recordset> Query(const std::string& text) {
    auto rows = connection->Execute(text);
    statements.pop_back();
    return rows;
  }

#ifdef VEK_TEST_HAS_LIBPQ
  std::unique_ptr<dialect::testing::PgTestDb> server;  // dropped after the session's connection
#endif
  std::shared_ptr<cgpSistema> session;
  std::shared_ptr<FixedClock> clock;
  std::shared_ptr<Connection> connection;
  std::vector<std::string> statements;
};

// The crash test: how many times it kills a workstation, and how long at
// most it lets one work after its first acknowledged write (a server
// connection takes longer to open and each write is a round trip).
inline int CrashKills() { return OnPostgres() ? 20 : 200; }
inline int CrashLatestKillMs() { return OnPostgres() ? 400 : 150; }

// What the database's own check says of it: "ok", or the problems found.
// Every table of the catalogue must answer a count; SQLite also checks the
// file (PRAGMA integrity_check, on a connection of its own), while the
// server keeps its files whole itself.
inline std::string DatabaseCheck(TerminalDatabase& db) {
  std::string problems;
  for (const schema::TableDef& table : schema::Tables()) {
    if (table.report_file) continue;
    const std::string name = table.database.empty() ? std::string(table.name)
                                                    : std::string(table.database) + ".dbo." + std::string(table.name);
    try {
      db.Query("SELECT Count(*) FROM " + name);
    } catch (const VekError& error) {
      problems += name + ": " + error.Description() + "\n";
    }
  }
  if (OnPostgres()) return problems.empty() ? "ok" : problems;
  sqlite3* raw = nullptr;
  const std::string file = CStr(db.session->Get("Ds_CaminhoDB"));
  if (sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
    sqlite3_close(raw);
    return "can't open " + file;
  }
  // The indexes of text columns are ordered by the terminal's collation.
  dialect::RegisterSqlServerFunctions(raw, [] { return Date(); });
  std::string result;
  sqlite3_stmt* check = nullptr;
  if (sqlite3_prepare_v2(raw, "PRAGMA integrity_check", -1, &check, nullptr) == SQLITE_OK) {
    while (sqlite3_step(check) == SQLITE_ROW) {
      if (!result.empty()) result += "\n";
      result += reinterpret_cast<const char*>(sqlite3_column_text(check, 0));
    }
  } else {
    result = sqlite3_errmsg(raw);
  }
  sqlite3_finalize(check);
  sqlite3_close(raw);
  return problems + result;
}

// Lets the session write rows whose references are not there, for checks
// of one record kind at a time.
inline void IgnoreForeignKeys(TerminalDatabase& db) {
  db.connection->ExecuteNative(OnPostgres() ? "SET session_replication_role = replica" : "PRAGMA foreign_keys = OFF");
  db.statements.pop_back();
}

inline void DropAccessControlDatabase(TerminalDatabase& db) {
  db.connection->ExecuteNative(OnPostgres() ? "DROP SCHEMA mdestacionamento CASCADE" : "DETACH DATABASE MDESTACIONAMENTO");
  db.statements.pop_back();
}

}  // namespace vek::testing
