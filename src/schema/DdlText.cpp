#include "vek/schema/DdlText.h"

#include "vek/platform/Text.h"

namespace vek::schema {

std::string CreateTableText(const TableDef& table, std::string_view schema, const CreateTableForm& form) {
  const bool has_identity = table.HasIdentity();
  std::string sql = "CREATE TABLE IF NOT EXISTS " + Qualified(schema, table.name) + " (";
  bool first = true;
  auto next_line = [&] {
    sql += first ? "\n  " : ",\n  ";
    first = false;
  };
  for (const ColumnDef& column : table.columns) {
    next_line();
    sql += column.name;
    sql += ' ';
    sql += form.column(column, has_identity && EqualsIgnoreCase(column.name, table.primary_key.front()));
  }
  if (!table.primary_key.empty() && !(has_identity && form.identity_is_the_key)) {
    next_line();
    sql += "PRIMARY KEY (" + JoinNames(table.primary_key, ", ") + ")";
  }
  for (const ForeignKeyDef& key : table.foreign_keys) {
    next_line();
    sql += "FOREIGN KEY (" + JoinNames(key.columns, ", ") + ") REFERENCES ";
    sql += form.qualify_references ? Qualified(schema, key.table) : std::string(key.table);
    sql += " (" + JoinNames(key.references, ", ") + ")";
  }
  return sql + "\n)";
}

}  // namespace vek::schema
