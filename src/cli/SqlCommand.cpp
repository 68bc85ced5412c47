// vek sql: shows how a SQL Server statement reads in another dialect and,
// with --run, runs it on a database and prints the rows.

#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "cli/Commands.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Variant.h"

namespace vek::cli {
namespace {

struct SqlOptions {
  std::string statement;
  std::string dialect = "sqlite";
  std::string database;
};

// Rows as tab-separated lines under a header of the field names.
void PrintRows(Recordset& rows) {
  Fields& fields = rows.Fields();
  for (int32_t i = 0; i < fields.Count(); ++i) std::cout << (i ? "\t" : "") << fields.Item(i).Name();
  std::cout << "\n";
  for (; !rows.Eof(); rows.MoveNext()) {
    for (int32_t i = 0; i < fields.Count(); ++i) {
      const Variant& value = fields.Item(i).Value();
      std::cout << (i ? "\t" : "") << (value.IsNull() ? "NULL" : CStr(value));
    }
    std::cout << "\n";
  }
  std::cout << "(" << rows.RecordCount() << (rows.RecordCount() == 1 ? " row)\n" : " rows)\n");
}

// A database given as a path must be there: opening a mistyped path would
// make an empty database file in its place.
void RequireExistingDatabase(const std::string& database) {
  if (database.find('=') != std::string::npos || database == ":memory:") return;  // a connection string
  std::error_code error;
  if (!std::filesystem::is_regular_file(database, error)) {
    throw VekError(kBusinessError, std::string(), "no database file at " + database);
  }
}

void RunSql(const SqlOptions& options) {
  if (!options.database.empty()) RequireExistingDatabase(options.database);
  std::string statement = options.statement;
  if (statement == "-") {
    statement.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  }
  if (options.dialect == "sqlite") {
    std::cout << dialect::TranslateToSqlite(statement) << "\n";
  } else {
    std::cout << statement << "\n";  // SQL Server text passes as it is
  }
  if (options.database.empty()) return;
  auto connection = std::make_shared<Connection>();
  connection->Open(options.database);
  int32_t affected = -1;
  auto rows = connection->Execute(statement, affected);
  if (rows->State() == adStateOpen) {
    PrintRows(*rows);
  } else {
    std::cout << "(" << affected << (affected == 1 ? " row affected)\n" : " rows affected)\n");
  }
}

}  // namespace

void AddSqlCommand(CLI::App& app) {
  auto options = std::make_shared<SqlOptions>();
  CLI::App* command = app.add_subcommand(
      "sql", "Show a SQL Server statement as a dialect runs it; --run also runs it");
  command->add_option("statement", options->statement,
                      "The statement (SQL Server text); '-' reads standard input")
      ->required();
  command->add_option("-d,--dialect", options->dialect, "Dialect to translate for")
      ->check(CLI::IsMember({"sqlite", "sqlserver"}))
      ->capture_default_str();
  command->add_option("-r,--run", options->database,
                      "Run it on this database (a SQLite file, or a connection string)");
  command->callback([options] { RunSql(*options); });
}

}  // namespace vek::cli
