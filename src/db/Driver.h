#pragma once
// The boundary between the data-access objects and a database engine. The
// objects (Connection, Recordset, Command) hold everything ADO-like; a driver
// only runs text in its own dialect and writes rows back. Drivers are
// internal: the public headers never name an engine's API.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "vek/db/Enums.h"
#include "vek/platform/Text.h"
#include "vek/platform/Variant.h"

namespace vek {

class Clock;
class Parameters;
namespace dialect {
class ColumnKinds;
struct ResultTypes;
}  // namespace dialect

// What a driver knows of one column of a result.
struct ColumnInfo {
  std::string name;
  DataTypeEnum type = adVarChar;
  int32_t defined_size = 0;
  std::string base_database;  // empty for expressions
  std::string base_table;
  std::string base_column;
  bool is_key = false;
  bool is_autoincrement = false;
};

using Row = std::vector<Variant>;

// The columns of a result with their look-up by name in any case; shared by
// every result of the same prepared statement.
class ColumnSet {
 public:
  explicit ColumnSet(std::vector<ColumnInfo> columns);
  const std::vector<ColumnInfo>& Columns() const { return columns_; }
  // The first column of the name, or -1.
  int32_t IndexOf(std::string_view name) const;

 private:
  std::vector<ColumnInfo> columns_;
  CaseInsensitiveMap<int32_t> by_name_;
};

struct QueryResult {
  bool returns_rows = false;
  std::shared_ptr<const ColumnSet> columns;
  std::vector<Row> rows;
  int64_t records_affected = -1;
};

// One row to write back into a base table.
struct RowWrite {
  std::string database;
  std::string table;
  std::vector<std::string> columns;  // the columns to set
  std::vector<Variant> values;
  std::vector<std::string> key_columns;  // UPDATE only: the row's key
  std::vector<Variant> key_values;       // the key as it was read
  std::string identity_column;           // INSERT only: the column to read back
};

class Driver {
 public:
  virtual ~Driver() = default;

  virtual Dialect SqlDialect() const = 0;
  // Runs one statement already in the driver's dialect, with positional
  // parameters. Raises VekError with the database's message.
  QueryResult Run(const std::string& text, std::span<const Variant> parameters) {
    return RunTyped(text, parameters, nullptr);
  }
  // The same, with the types the translation gives the result's columns:
  // a column the database can't type itself (an expression) takes its type.
  virtual QueryResult RunTyped(const std::string& text, std::span<const Variant> parameters,
                               const dialect::ResultTypes* types) = 0;
  // The declared kinds of the database's columns, which the translation
  // types names by; nullptr when the driver doesn't read them.
  virtual const dialect::ColumnKinds* DeclaredKinds() { return nullptr; }
  // Inserts; returns the identity value when identity_column is set.
  virtual std::optional<int64_t> Insert(const RowWrite& row) = 0;
  // Updates the row with the given key; returns the rows affected.
  virtual int64_t Update(const RowWrite& row) = 0;
  // Calls a stored procedure of the database with the parameters in order
  // and sets the output ones; raises VekError when there is no such procedure.
  virtual void CallProcedure(const std::string& name, Parameters& parameters) = 0;
  // Carries out SQL Server's BACKUP DATABASE text as built (the server runs
  // it; an engine without it writes the backup media file itself). Raises
  // 0x80004005 on a provider that can't back up.
  virtual QueryResult Backup(const std::string& text);
  // Releases the engine's handles; never throws.
  virtual void Close() noexcept = 0;
};

// The write-back statements of a row, the same on every engine but for the
// quoting of names: `quote` writes a column's name, `table` is the table's
// qualified name. An UPDATE finds the row by its key as it was read ("= ?",
// which keeps the key's index in use; IS NULL for a key read as NULL), and
// is refused (error 0x80004005, Source `source`) unless the row names every
// column of `table_keys`.
struct WriteStatement {
  std::string text;
  std::vector<Variant> values;
};
using NameQuoter = std::function<std::string(std::string_view name)>;
std::string InsertText(const RowWrite& row, const std::string& table, const NameQuoter& quote);
WriteStatement UpdateStatement(const RowWrite& row, const std::string& table, const NameQuoter& quote,
                               const std::vector<std::string>& table_keys, const char* source);

// Opens a driver from a connection string; raises VekError when it can't.
// `now` is the clock of the connection's owner (the server's "now").
std::unique_ptr<Driver> OpenDriver(const std::string& connection_string,
                                   std::function<Date()> now);

}  // namespace vek
