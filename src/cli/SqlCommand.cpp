// vek sql: shows how a SQL Server statement reads in another dialect and,
// with --run, runs it on a database and prints the rows.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/dialect/PostgresTranslator.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/foundation/cgdSistema.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/AppPath.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Text.h"
#include "vek/platform/Variant.h"

namespace vek::cli {
namespace {

struct SqlOptions {
  std::string statement;
  std::string dialect = "sqlite";
  std::string database;
  bool types = false;
};

std::string_view TypeName(DataTypeEnum type) {
  switch (type) {
    case adSmallInt: return "adSmallInt";
    case adInteger: return "adInteger";
    case adSingle: return "adSingle";
    case adDouble: return "adDouble";
    case adCurrency: return "adCurrency";
    case adDate: return "adDate";
    case adBoolean: return "adBoolean";
    case adVariant: return "adVariant";
    case adDecimal: return "adDecimal";
    case adTinyInt: return "adTinyInt";
    case adUnsignedTinyInt: return "adUnsignedTinyInt";
    case adBigInt: return "adBigInt";
    case adNumeric: return "adNumeric";
    case adDBDate: return "adDBDate";
    case adDBTime: return "adDBTime";
    case adDBTimeStamp: return "adDBTimeStamp";
    case adChar: return "adChar";
    case adWChar: return "adWChar";
    case adVarChar: return "adVarChar";
    case adLongVarChar: return "adLongVarChar";
    case adVarWChar: return "adVarWChar";
    case adLongVarWChar: return "adLongVarWChar";
    default: return "adEmpty";
  }
}

// Rows as tab-separated lines under a header of the field names (and, asked,
// a line of their types).
void PrintRows(Recordset& rows, bool types) {
  Fields& fields = rows.Fields();
  for (int32_t i = 0; i < fields.Count(); ++i) std::cout << (i ? "\t" : "") << fields.Item(i).Name();
  std::cout << "\n";
  if (types) {
    for (int32_t i = 0; i < fields.Count(); ++i) std::cout << (i ? "\t" : "") << TypeName(fields.Item(i).Type());
    std::cout << "\n";
  }
  for (; !rows.Eof(); rows.MoveNext()) {
    for (int32_t i = 0; i < fields.Count(); ++i) {
      const Variant& value = fields.Item(i).Value();
      std::cout << (i ? "\t" : "") << (value.IsNull() ? "NULL" : CStr(value));
    }
    std::cout << "\n";
  }
  std::cout << "(" << rows.RecordCount() << (rows.RecordCount() == 1 ? " row)\n" : " rows)\n");
}

bool IsTerminalFolder(const std::string& target) {
  std::error_code error;
  return std::filesystem::is_directory(target, error) && std::filesystem::exists(std::filesystem::path(target) / "Vek.ini", error);
}

// A database given as a path must be there: opening a mistyped path would
// make an empty database file in its place.
void RequireExistingDatabase(const std::string& target) {
  if (target == ":memory:") return;
  std::string database = target;
  if (target.find('=') != std::string::npos) {
    // A connection string: a server's is the server's business, SQLite's
    // names its file.
    if (LCase(target).find("sqlite") == std::string::npos) return;
    database.clear();
    size_t start = 0;
    while (start <= target.size()) {
      const size_t end = std::min(target.find(';', start), target.size());
      const std::string part = target.substr(start, end - start);
      const size_t equals = part.find('=');
      if (equals != std::string::npos && EqualsIgnoreCase(Trim(part.substr(0, equals)), "Database")) {
        database = Trim(part.substr(equals + 1));
      }
      start = end + 1;
    }
    if (database == ":memory:") return;
  }
  if (IsTerminalFolder(database)) return;
  std::error_code error;
  if (!std::filesystem::is_regular_file(database, error) || !IsSqliteFile(database)) {
    throw VekError(kBusinessError, std::string(), "no database file or terminal folder at " + database);
  }
}

// A terminal folder opens as its programs open it, through its Vek.ini;
// anything else is a database file or a connection string.
std::shared_ptr<Connection> OpenTarget(const std::string& target) {
  if (IsTerminalFolder(target)) {
    return OpenTerminal(std::filesystem::canonical(target))->Ob_Conexao();
  }
  auto connection = std::make_shared<Connection>();
  connection->Open(target);
  return connection;
}

void RunSql(const SqlOptions& options) {
  if (!options.database.empty()) RequireExistingDatabase(options.database);
  std::string statement = options.statement;
  if (statement == "-") {
    statement.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  }
  if (options.database.empty()) {
    if (options.dialect == "sqlite") {
      std::cout << dialect::TranslateToSqlite(statement) << "\n";
    } else if (options.dialect == "postgresql") {
      std::cout << dialect::TranslateToPostgres(statement) << "\n";
    } else {
      std::cout << statement << "\n";  // SQL Server text passes as it is
    }
    return;
  }
  // The connection's own dialect decides what runs, and that is shown.
  std::shared_ptr<Connection> connection = OpenTarget(options.database);
  std::cout << connection->TextAsRun(statement) << "\n";
  int32_t affected = -1;
  auto rows = connection->Execute(statement, affected);
  if (rows->State() == adStateOpen) {
    PrintRows(*rows, options.types);
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
      ->check(CLI::IsMember({"sqlite", "postgresql", "sqlserver"}))
      ->capture_default_str();
  command->add_option("-r,--run", options->database,
                      "Run it on this database (a terminal folder, a SQLite file, or a connection string); "
                      "the text shown is then the one its connection runs");
  command->add_flag("-t,--types", options->types, "With --run, print each column's type under its name");
  command->callback([options] { RunSql(*options); });
}

}  // namespace vek::cli
