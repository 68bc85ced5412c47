#pragma once
// A fresh PostgreSQL database per test, through libpq, on the server that
// VEK_PG_CONNECTION names (an ODBC-style string: Server, Port, Database,
// Uid, Pwd). The database is made from template0 and dropped at the end; it
// holds the support collations and functions of PostgresSupportDdl(), and
// its "now" is 21/11/2026 10:30:15 until the test sets another.
//
// Without libpq (libpq-dev not installed) or without VEK_PG_CONNECTION the
// tests that use it are skipped.

#include <gtest/gtest.h>

#if __has_include(<libpq-fe.h>)
#include <libpq-fe.h>
#define VEK_TEST_HAS_LIBPQ 1
#endif

#include <atomic>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "vek/db/dialect/PostgresTranslator.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Text.h"
#include "vek/schema/PostgresDdl.h"

namespace vek::dialect::testing {

using PgRows = std::vector<std::vector<std::string>>;

// The libpq conninfo for an ODBC-style string; "" when the text has no server.
inline std::string PgConnInfo(std::string_view odbc, std::string_view database_override = {}) {
  std::string info;
  const auto add = [&info](std::string_view key, std::string_view value) {
    info += std::string(key) + "='";
    for (char c : value) {
      if (c == '\'' || c == '\\') info.push_back('\\');
      info.push_back(c);
    }
    info += "' ";
  };
  bool has_server = false;
  size_t pos = 0;
  while (pos <= odbc.size()) {
    size_t end = odbc.find(';', pos);
    if (end == std::string_view::npos) end = odbc.size();
    const std::string_view pair = odbc.substr(pos, end - pos);
    pos = end + 1;
    const size_t equals = pair.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string_view key = pair.substr(0, equals);
    std::string_view value = pair.substr(equals + 1);
    if (value.size() >= 2 && value.front() == '{' && value.back() == '}')
      value = value.substr(1, value.size() - 2);
    if (EqualsIgnoreCase(key, "Server")) {
      add("host", value);
      has_server = true;
    } else if (EqualsIgnoreCase(key, "Port")) {
      add("port", value);
    } else if (EqualsIgnoreCase(key, "Database") && database_override.empty()) {
      add("dbname", value);
    } else if (EqualsIgnoreCase(key, "Uid")) {
      add("user", value);
    } else if (EqualsIgnoreCase(key, "Pwd") && !value.empty()) {
      add("password", value);
    }
  }
  if (!database_override.empty()) add("dbname", database_override);
  return has_server ? info : std::string();
}

inline const char* PgConnectionString() { return std::getenv("VEK_PG_CONNECTION"); }

#ifdef VEK_TEST_HAS_LIBPQ

// A PostgreSQL error with its SQLSTATE.
class PgError : public std::runtime_error {
 public:
  PgError(const std::string& message, std::string sqlstate)
      : std::runtime_error(message), sqlstate_(std::move(sqlstate)) {}
  const std::string& SqlState() const { return sqlstate_; }

 private:
  std::string sqlstate_;
};

class PgConnection {
 public:
  explicit PgConnection(const std::string& conninfo)
      : connection_(PQconnectdb(conninfo.c_str()), &PQfinish) {
    if (PQstatus(connection_.get()) != CONNECTION_OK)
      throw std::runtime_error(std::string("cannot connect: ") + PQerrorMessage(connection_.get()));
    Exec("SET client_min_messages = warning");
  }

  // Runs text as it stands; every statement's rows but the last are dropped.
  PgRows Query(const std::string& sql) {
    std::unique_ptr<PGresult, void (*)(PGresult*)> result(PQexec(connection_.get(), sql.c_str()),
                                                          &PQclear);
    const ExecStatusType status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
      const char* state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
      throw PgError("PostgreSQL refused [" + sql + "]: " + PQresultErrorMessage(result.get()),
                    state != nullptr ? state : "");
    }
    PgRows rows;
    for (int r = 0; r < PQntuples(result.get()); ++r) {
      std::vector<std::string> row;
      for (int c = 0; c < PQnfields(result.get()); ++c) {
        row.emplace_back(PQgetisnull(result.get(), r, c) ? "NULL" : PQgetvalue(result.get(), r, c));
      }
      rows.push_back(std::move(row));
    }
    return rows;
  }

  void Exec(const std::string& sql) { Query(sql); }

 private:
  std::unique_ptr<PGconn, void (*)(PGconn*)> connection_;
};

class PgTestDb {
 public:
  // Skips the test (returns false) when there is no server to use.
  bool Open() {
    const char* odbc = PgConnectionString();
    if (odbc == nullptr || *odbc == '\0') return false;
    static std::atomic<int> counter{0};
    name_ = "vek_t_" + std::to_string(getpid()) + "_" + std::to_string(++counter);
    admin_ = std::make_unique<PgConnection>(PgConnInfo(odbc));
    admin_->Exec("DROP DATABASE IF EXISTS " + name_);
    admin_->Exec("CREATE DATABASE " + name_ + " TEMPLATE template0 ENCODING 'UTF8'");
    db_ = std::make_unique<PgConnection>(PgConnInfo(odbc, name_));
    for (const std::string& statement : schema::PostgresSupportDdl()) db_->Exec(statement);
    SetNow("2026-11-21 10:30:15");
    return true;
  }

  ~PgTestDb() {
    db_.reset();
    if (admin_) {
      try {
        admin_->Exec("DROP DATABASE IF EXISTS " + name_ + " WITH (FORCE)");
      } catch (const std::exception&) {
        // A database left behind goes with the throwaway cluster.
      }
    }
  }

  PgConnection& Connection() { return *db_; }
  const std::string& Name() const { return name_; }

  // The server's "now" as vek_getdate() reads it ('yyyy-mm-dd hh:mm:ss').
  void SetNow(std::string_view iso) {
    Exec(std::string("SET ") + kPostgresNowSetting + " = '" + std::string(iso) + "'");
  }

  void Exec(const std::string& sql) { db_->Exec(sql); }
  PgRows Query(const std::string& sql) { return db_->Query(sql); }
  std::string Scalar(const std::string& sql) {
    const PgRows rows = Query(sql);
    return rows.empty() || rows[0].empty() ? "<no row>" : rows[0][0];
  }

  // Translates SQL Server text and runs it.
  PgRows Run(std::string_view tsql) { return Query(TranslateToPostgres(tsql)); }
  std::string Value(std::string_view tsql) { return Scalar(TranslateToPostgres(tsql)); }
  std::vector<std::string> Column(std::string_view tsql) {
    std::vector<std::string> values;
    for (const auto& row : Run(tsql)) values.push_back(row.at(0));
    return values;
  }
  // The error PostgreSQL raises running the translated text ("" if none).
  std::string RunError(std::string_view tsql) {
    try {
      Run(tsql);
    } catch (const PgError& error) {
      return error.what();
    }
    return "";
  }

 private:
  std::string name_;
  std::unique_ptr<PgConnection> admin_;
  std::unique_ptr<PgConnection> db_;
};

#endif  // VEK_TEST_HAS_LIBPQ

// The description of the translation error for `tsql`; "" when it translates.
inline std::string PgTranslationError(std::string_view tsql) {
  try {
    TranslateToPostgres(tsql);
  } catch (const VekError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u)) << error.Description();
    EXPECT_EQ(error.Source(), "PostgresTranslator");
    return error.Description();
  }
  return "";
}

}  // namespace vek::dialect::testing
