#pragma once
// Small pieces of DDL text that every dialect's schema statements share.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vek/schema/Catalogue.h"

namespace vek::schema {

inline bool IsText(ColumnType type) { return type == ColumnType::VarChar || type == ColumnType::Char; }

// "schema.name", or the name alone when there is no schema.
inline std::string Qualified(std::string_view schema, std::string_view name) {
  std::string text;
  if (!schema.empty()) {
    text += schema;
    text += '.';
  }
  text += name;
  return text;
}

inline std::string JoinNames(const std::vector<std::string_view>& names, std::string_view separator) {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += separator;
    text += names[i];
  }
  return text;
}

// The frame of CREATE TABLE IF NOT EXISTS that every dialect shares: one
// line per column, the primary key and the foreign keys.
struct CreateTableForm {
  // What follows a column's name; `identity` for the table's identity column.
  std::function<std::string(const ColumnDef& column, bool identity)> column;
  // The identity column declares the primary key itself (SQLite's rowid).
  bool identity_is_the_key = false;
  // Foreign keys name their parent with the table's schema.
  bool qualify_references = true;
};
std::string CreateTableText(const TableDef& table, std::string_view schema, const CreateTableForm& form);

}  // namespace vek::schema
