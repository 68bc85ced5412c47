#include "vek/schema/ReportDatabase.h"

#include <memory>
#include <string>
#include <system_error>

#include "vek/db/Connection.h"
#include "vek/schema/Catalogue.h"
#include "vek/schema/Ddl.h"

namespace vek::schema {

void WriteReportDatabaseTemplate(const std::filesystem::path& file) {
  std::error_code ignored;
  std::filesystem::remove(file, ignored);
  auto connection = std::make_shared<Connection>();
  connection->Open(file.string());
  // One file and no journal beside it: the template is copied as it is.
  connection->ExecuteNative("PRAGMA journal_mode=DELETE");
  for (const TableDef& table : Tables()) {
    if (!table.report_file) continue;
    for (const std::string& statement : SqliteTableStatements(table, {})) connection->ExecuteNative(statement);
  }
  connection->Close();
}

}  // namespace vek::schema
