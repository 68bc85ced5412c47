#pragma once
// An in-memory SQLite database with the SQL Server functions registered on a
// clock that the test sets, for running translated statements.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "support/TestSupport.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Date.h"

namespace vek::dialect::testing {

using Rows = std::vector<std::vector<std::string>>;
using vek::testing::Lines;

inline vek::Date DateOf(std::string_view text) {
  const auto date = vek::ParseDate(text);
  if (!date) throw std::invalid_argument("bad test date " + std::string(text));
  return *date;
}

class SqliteTestDb {
 public:
  // The server's "now" is 21/11/2026 10:30:15 (a Saturday) unless set.
  SqliteTestDb() : now_(DateOf("21/11/2026 10:30:15")) {
    if (sqlite3_open(":memory:", &db_) != SQLITE_OK) throw std::runtime_error("cannot open SQLite");
    RegisterSqlServerFunctions(db_, [this] { return now_; });
  }
  ~SqliteTestDb() { sqlite3_close(db_); }
  SqliteTestDb(const SqliteTestDb&) = delete;
  SqliteTestDb& operator=(const SqliteTestDb&) = delete;

  sqlite3* Handle() const { return db_; }
  void SetNow(std::string_view text) { now_ = DateOf(text); }

  // Runs SQLite text as it stands (schema and fixtures).
  void Exec(const std::string& sqlite_text) {
    char* error = nullptr;
    if (sqlite3_exec(db_, sqlite_text.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
      const std::string message = error != nullptr ? error : "?";
      sqlite3_free(error);
      throw std::runtime_error("SQLite refused [" + sqlite_text + "]: " + message);
    }
  }

  // SQLite's result code for running SQLite text.
  int Code(const std::string& sqlite_text) {
    return sqlite3_exec(db_, sqlite_text.c_str(), nullptr, nullptr, nullptr);
  }

  // Runs SQLite text and returns its rows, every value as text ("NULL" for NULL).
  Rows Query(const std::string& sqlite_text) {
    Rows rows;
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    if (sqlite3_prepare_v2(db_, sqlite_text.c_str(), -1, &statement, &tail) != SQLITE_OK) {
      throw std::runtime_error("SQLite refused [" + sqlite_text + "]: " + sqlite3_errmsg(db_));
    }
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> owner(statement, &sqlite3_finalize);
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(statement)) == SQLITE_ROW) {
      std::vector<std::string> row;
      for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        const unsigned char* text = sqlite3_column_text(statement, i);
        row.emplace_back(text == nullptr ? "NULL" : reinterpret_cast<const char*>(text));
      }
      rows.push_back(std::move(row));
    }
    if (rc != SQLITE_DONE) {
      throw std::runtime_error("SQLite failed [" + sqlite_text + "]: " + sqlite3_errmsg(db_));
    }
    return rows;
  }

  // The first value of the first row of SQLite text.
  std::string Scalar(const std::string& sqlite_text) {
    const Rows rows = Query(sqlite_text);
    return rows.empty() || rows[0].empty() ? "<no row>" : rows[0][0];
  }

  // The first value of every row of SQLite text.
  std::vector<std::string> Column(const std::string& sqlite_text) {
    std::vector<std::string> values;
    for (const auto& row : Query(sqlite_text)) values.push_back(row.at(0));
    return values;
  }

  // Translates SQL Server text and runs it.
  Rows Run(std::string_view tsql) { return Query(TranslateToSqlite(tsql)); }

  // The first value of the first row of the translated text.
  std::string Value(std::string_view tsql) { return Scalar(TranslateToSqlite(tsql)); }

  // The error that SQLite raises running the translated text ("" if none).
  std::string RunError(std::string_view tsql) {
    try {
      Run(tsql);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

  // SQLite's error text for a SQLite statement ("" if none).
  std::string QueryError(const std::string& sqlite_text) {
    try {
      Query(sqlite_text);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "";
  }

 private:
  sqlite3* db_ = nullptr;
  vek::Date now_;
};

// The description of the translation error for `tsql`; "" when it translates.
inline std::string TranslationError(std::string_view tsql) {
  try {
    TranslateToSqlite(tsql);
  } catch (const VekError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u)) << error.Description();
    return error.Description();
  }
  return "";
}

}  // namespace vek::dialect::testing
