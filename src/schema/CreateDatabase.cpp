#include "vek/schema/CreateDatabase.h"

#include <filesystem>

#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/platform/Text.h"
#include "vek/schema/Ddl.h"
#include "vek/schema/PostgresDdl.h"

namespace vek::schema {
namespace {

constexpr const char* kAccessControl = "MDESTACIONAMENTO";

// Attaches the access-control database when it is not attached yet.
void AttachAccessControl(Connection& connection) {
  std::string main_file;
  auto databases = connection.Execute("SELECT name, file FROM pragma_database_list");
  for (; !databases->Eof(); databases->MoveNext()) {
    const std::string name = CStr(databases->Fields().Item(0).Value());
    if (EqualsIgnoreCase(name, kAccessControl)) return;
    if (name == "main") main_file = CStr(databases->Fields().Item(1).Value());
  }
  const std::string file =
      main_file.empty() ? std::string(":memory:")
                        : (std::filesystem::path(main_file).parent_path() / "MDESTACIONAMENTO.db").string();
  connection.ExecuteNative("ATTACH DATABASE '" + Replace(file, "'", "''") + "' AS " + kAccessControl);
}

}  // namespace

void CreateDatabase(Connection& connection) {
  switch (connection.SqlDialect()) {
    case Dialect::SQLite:
      AttachAccessControl(connection);
      for (const std::string& statement : SqliteDdl()) connection.ExecuteNative(statement);
      return;
    case Dialect::PostgreSQL:
      for (const std::string& statement : PostgresDdl()) connection.ExecuteNative(statement);
      return;
    case Dialect::SqlServer:
      RaiseDbError(adErrFeatureNotAvailable, "vek", "The database can't be created on SQL Server from here.");
    case Dialect::Access:
      RaiseDbError(adErrFeatureNotAvailable, "vek", "The terminal's database is not made in a report database.");
  }
}

}  // namespace vek::schema
