#pragma once
// The terminal's database, defined once: tables, columns, keys, indexes and
// fixed rows of the terminal's own database and of the access-control
// database MDESTACIONAMENTO. The DDL of every dialect and the property
// objects of the records are derived from this catalogue.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vek::schema {

enum class ColumnType {
  Int,       // 32-bit integer
  SmallInt,  // 16-bit integer
  TinyInt,   // 0 to 255
  Bit,       // boolean
  Money,     // four decimal places
  DateTime,  // date and time of day
  VarChar,   // text of at most `size` characters
  Char,      // text of exactly `size` characters
  Float,     // double precision
};

struct ColumnDef {
  std::string_view name;
  ColumnType type = ColumnType::Int;
  int32_t size = 0;  // characters, for VarChar and Char
  bool nullable = true;
  // A key column numbered by the system: the identity of a one-column key,
  // or a column of a composite key numbered through TbSequenciadores.
  bool numbered = false;
};

struct ForeignKeyDef {
  std::vector<std::string_view> columns;
  std::string_view table;  // in the same database
  std::vector<std::string_view> references;
};

struct IndexDef {
  std::vector<std::string_view> columns;
  bool unique = false;
  // When above 0, the index is on the first `prefix` characters of its one
  // text column, for the statements that match on SUBSTRING(column, 1, prefix).
  int32_t prefix = 0;
};

struct TableDef {
  std::string_view database{};  // empty for the terminal's own, or "MDESTACIONAMENTO"
  std::string_view name{};
  std::vector<ColumnDef> columns{};
  std::vector<std::string_view> primary_key{};
  std::vector<ForeignKeyDef> foreign_keys{};
  std::vector<IndexDef> indexes{};
  // Rows every terminal has, as SQL Server value lists ("1, 'EMBARQUE'").
  std::vector<std::string_view> fixed_rows{};
  // The columns that each value list of fixed_rows fills, in order.
  std::vector<std::string_view> fixed_row_columns{};
  // A work table of the report file bdTemp, which the report feeds empty and
  // fill; the terminal's own database holds a copy of it too.
  bool report_file = false;

  // True when the key is one numbered column, which the database numbers itself.
  bool HasIdentity() const;
  const ColumnDef* FindColumn(std::string_view column) const;  // any case
};

// Every table, the terminal's own first, in an order that creates
// referenced tables before the tables that refer to them.
const std::vector<TableDef>& Tables();
// A table by name in any case; nullptr when there is none.
const TableDef* FindTable(std::string_view name);

}  // namespace vek::schema
