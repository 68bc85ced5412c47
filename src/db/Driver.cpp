#include "vek/db/Driver.h"

#include <map>

#include "vek/db/DbError.h"
#include "vek/db/dbase/DbaseDriver.h"
#include "vek/db/odbc/OdbcDriver.h"
#include "vek/db/sqlite/SqliteDriver.h"
#include "vek/db/workbook/WorkbookDriver.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

// "Key=Value;Key=Value" with keys in any case; a text without "=" is a path.
std::map<std::string, std::string> ParseConnectionString(const std::string& text) {
  std::map<std::string, std::string> parts;
  if (text.find('=') == std::string::npos) {
    parts["database"] = Trim(text);
    return parts;
  }
  size_t pos = 0;
  while (pos <= text.size()) {
    size_t end = text.find(';', pos);
    if (end == std::string::npos) end = text.size();
    const std::string_view part(text.data() + pos, end - pos);
    const size_t equals = part.find('=');
    if (equals != std::string_view::npos) {
      std::string value = Trim(part.substr(equals + 1));
      if (value.size() >= 2 && value.front() == '{' && value.back() == '}') {
        value = value.substr(1, value.size() - 2);
      }
      parts[FoldCase(Trim(part.substr(0, equals)))] = value;
    }
    pos = end + 1;
  }
  return parts;
}

std::string FirstOf(const std::map<std::string, std::string>& parts,
                    std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    if (auto hit = parts.find(key); hit != parts.end()) return hit->second;
  }
  return std::string();
}

}  // namespace

ColumnSet::ColumnSet(std::vector<ColumnInfo> columns) : columns_(std::move(columns)) {
  // The first of two equal names wins, as a look-up by name always did.
  for (size_t i = 0; i < columns_.size(); ++i) by_name_.emplace(columns_[i].name, static_cast<int32_t>(i));
}

int32_t ColumnSet::IndexOf(std::string_view name) const {
  const auto hit = by_name_.find(name);
  return hit == by_name_.end() ? -1 : hit->second;
}

QueryResult Driver::Backup(const std::string& /*text*/) {
  RaiseDbError(adErrUnspecified, "vek", "This provider can't run BACKUP DATABASE.");
}

std::string InsertText(const RowWrite& row, const std::string& table, const NameQuoter& quote) {
  std::string text = "INSERT INTO " + table;
  if (row.columns.empty()) return text + " DEFAULT VALUES";
  std::string names;
  std::string marks;
  for (const std::string& column : row.columns) {
    names += (names.empty() ? "" : ", ") + quote(column);
    marks += marks.empty() ? "?" : ", ?";
  }
  return text + " (" + names + ") VALUES (" + marks + ")";
}

WriteStatement UpdateStatement(const RowWrite& row, const std::string& table, const NameQuoter& quote,
                               const std::vector<std::string>& table_keys, const char* source) {
  bool covered = !row.key_columns.empty();
  for (const std::string& key : table_keys) {
    bool present = false;
    for (const std::string& given : row.key_columns) present = present || EqualsIgnoreCase(key, given);
    covered = covered && present;
  }
  if (!covered) {
    RaiseDbError(adErrUnspecified, source, "Insufficient key column information for updating or refreshing.");
  }
  WriteStatement update{"UPDATE " + table + " SET ", row.values};
  for (size_t i = 0; i < row.columns.size(); ++i) {
    update.text += (i ? ", " : "") + quote(row.columns[i]) + " = ?";
  }
  update.text += " WHERE ";
  for (size_t i = 0; i < row.key_columns.size(); ++i) {
    update.text += (i ? " AND " : "") + quote(row.key_columns[i]);
    const Variant& original = i < row.key_values.size() ? row.key_values[i] : Variant::Null();
    if (original.IsNull() || original.IsEmpty()) {
      update.text += " IS NULL";
    } else {
      update.text += " = ?";
      update.values.push_back(original);
    }
  }
  return update;
}

std::unique_ptr<Driver> OpenDriver(const std::string& connection_string, std::function<Date()> now) {
  const auto parts = ParseConnectionString(connection_string);
  const std::string driver = FoldCase(FirstOf(parts, {"driver", "provider"}));
  const std::string database = FirstOf(parts, {"database", "data source", "dbq"});
  // Jet's Excel connection: the workbook file itself is the database.
  if (FoldCase(FirstOf(parts, {"extended properties"})).starts_with("excel")) {
    return OpenWorkbookDriver(database);
  }
  // Any other Jet connection opens the report database.
  if (driver.starts_with("microsoft.jet.oledb")) return OpenReportDatabaseDriver(database, std::move(now));
  // The Visual FoxPro driver on a folder of free tables is the dBase provider.
  if (driver.find("visual foxpro") != std::string::npos) {
    const std::string source_type = FoldCase(FirstOf(parts, {"sourcetype"}));
    if (!source_type.empty() && source_type != "dbf") {
      RaiseDbError(adErrUnspecified, "dBase", "Only free tables are supported (SourceType=DBF).");
    }
    return OpenDbaseDriver(FirstOf(parts, {"sourcedb"}), std::move(now));
  }
  // A data source name, or any driver but SQLite's, is reached through ODBC.
  const bool odbc = driver.empty() ? parts.contains("dsn") : driver.find("sqlite") == std::string::npos;
  if (odbc) return OpenOdbcDriver(connection_string, std::move(now));
  if (database.empty()) {
    RaiseDbError(adErrUnspecified, "vek", "The connection string names no database file (Database=...).");
  }
  return OpenSqliteDriver(database, std::move(now));
}

}  // namespace vek
