#include "vek/schema/Ddl.h"

#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/platform/Text.h"
#include "vek/schema/DdlText.h"

namespace vek::schema {

namespace {

// A single INTEGER key would be SQLite's rowid, which numbers a Null
// instead of refusing it. Tables keyed by a code the caller gives (a
// person's code, the tenant) are kept without rowid so that a missing key
// fails as it does on SQL Server.
bool NeedsWithoutRowid(const TableDef& table) {
  if (table.primary_key.size() != 1 || table.HasIdentity()) return false;
  const ColumnDef* key = table.FindColumn(table.primary_key.front());
  return key != nullptr && key->type == ColumnType::Int;
}

std::string CreateTable(const TableDef& table, std::string_view schema) {
  static const CreateTableForm kSqliteTable{
      .column =
          [](const ColumnDef& column, bool identity) {
            // AUTOINCREMENT never hands out a number again, as an identity does.
            if (identity) return std::string("INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL");
            std::string text = SqliteTypeName(column);
            if (!column.nullable) text += " NOT NULL";
            if (IsText(column.type)) text += " COLLATE " + std::string(vek::dialect::kSqlServerCollation);
            return text;
          },
      .identity_is_the_key = true,
      // The parent lives in the same schema; SQLite refuses a qualified name there.
      .qualify_references = false};
  std::string sql = CreateTableText(table, schema, kSqliteTable);
  if (NeedsWithoutRowid(table)) sql += " WITHOUT ROWID";
  return sql;
}

std::string CreateIndex(const TableDef& table, const IndexDef& index, std::string_view schema) {
  std::string name = std::string(index.unique ? "UX_" : "IX_") + std::string(table.name) + "_" +
                     JoinNames(index.columns, "_");
  std::string sql = index.unique ? "CREATE UNIQUE INDEX IF NOT EXISTS "
                                 : "CREATE INDEX IF NOT EXISTS ";
  sql += Qualified(schema, name);
  sql += " ON ";
  sql += table.name;
  sql += " (" + JoinNames(index.columns, ", ") + ")";
  return sql;
}

// After an insert or an update that wrote a bit other than 0, 1 or Null, the
// row's bits are set to 1 for any non-zero value. The WHEN clause keeps the
// trigger's own update from firing it again.
std::vector<std::string> BitTriggers(const TableDef& table, std::string_view schema) {
  std::vector<std::string_view> bits;
  for (const ColumnDef& column : table.columns) {
    if (column.type == ColumnType::Bit) bits.push_back(column.name);
  }
  if (bits.empty()) return {};

  std::string when;
  std::string assignments;
  for (size_t i = 0; i < bits.size(); ++i) {
    std::string bit(bits[i]);
    if (i > 0) {
      when += " OR ";
      assignments += ", ";
    }
    when += "NEW." + bit + " NOT IN (0, 1)";
    assignments += bit + " = CASE WHEN " + bit + " <> 0 THEN 1 ELSE " + bit + " END";
  }
  std::string row;
  if (NeedsWithoutRowid(table)) {
    for (size_t i = 0; i < table.primary_key.size(); ++i) {
      std::string key(table.primary_key[i]);
      if (i > 0) row += " AND ";
      row += key + " = NEW." + key;
    }
  } else {
    row = "rowid = NEW.rowid";
  }
  // Unqualified: a trigger's body works in its own table's schema.
  std::string body = " FOR EACH ROW WHEN " + when + "\nBEGIN\n  UPDATE " +
                     std::string(table.name) + " SET " + assignments + " WHERE " + row +
                     ";\nEND";
  std::string prefix = "CREATE TRIGGER IF NOT EXISTS ";
  std::string table_name(table.name);
  return {
      prefix + Qualified(schema, "TR_" + table_name + "_BitInsert") + " AFTER INSERT ON " +
          table_name + body,
      prefix + Qualified(schema, "TR_" + table_name + "_BitUpdate") + " AFTER UPDATE OF " +
          JoinNames(bits, ", ") + " ON " + table_name + body,
  };
}

}  // namespace

std::string SqliteTypeName(const ColumnDef& column) {
  switch (column.type) {
    case ColumnType::Int: return "INTEGER";
    case ColumnType::SmallInt: return "SMALLINT";
    case ColumnType::TinyInt: return "TINYINT";
    case ColumnType::Bit: return "BIT";
    case ColumnType::Money: return "MONEY";
    case ColumnType::DateTime: return "DATETIME";
    case ColumnType::VarChar: return "VARCHAR(" + std::to_string(column.size) + ")";
    case ColumnType::Char: return "CHAR(" + std::to_string(column.size) + ")";
    case ColumnType::Float: return "FLOAT";
  }
  return "INTEGER";
}

std::string SqliteTableDdl(const TableDef& table) { return CreateTable(table, table.database); }

std::vector<std::string> SqliteTableStatements(const TableDef& table, std::string_view schema) {
  std::vector<std::string> statements = {CreateTable(table, schema)};
  for (const IndexDef& index : table.indexes) statements.push_back(CreateIndex(table, index, schema));
  for (std::string& trigger : BitTriggers(table, schema)) statements.push_back(std::move(trigger));
  for (std::string_view values : table.fixed_rows) {
    statements.push_back("INSERT OR IGNORE INTO " + Qualified(schema, table.name) + " (" +
                         JoinNames(table.fixed_row_columns, ", ") + ") VALUES (" +
                         std::string(values) + ")");
  }
  return statements;
}

std::vector<std::string> SqliteDdl(std::string_view database_prefix_for_access_control) {
  std::vector<std::string> statements;
  for (const TableDef& table : Tables()) {
    std::string_view schema = table.database.empty() ? std::string_view{}
                                                     : database_prefix_for_access_control;
    for (std::string& statement : SqliteTableStatements(table, schema)) {
      statements.push_back(std::move(statement));
    }
  }
  return statements;
}

}  // namespace vek::schema
