#include "vek/schema/Ddl.h"

#include <algorithm>
#include <utility>

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

std::string IndexName(const TableDef& table, const IndexDef& index) {
  return std::string(index.unique ? "UX_" : "IX_") + std::string(table.name) + "_" + JoinNames(index.columns, "_") +
         (index.prefix > 0 ? "_" + std::to_string(index.prefix) : std::string());
}

std::string CreateIndex(const TableDef& table, const IndexDef& index, std::string_view schema) {
  std::string sql = index.unique ? "CREATE UNIQUE INDEX IF NOT EXISTS "
                                 : "CREATE INDEX IF NOT EXISTS ";
  sql += Qualified(schema, IndexName(table, index));
  sql += " ON ";
  sql += table.name;
  // A prefix is what the translation writes for SUBSTRING(column, 1, n),
  // compared under the column's collation.
  sql += index.prefix > 0 ? " (CAST(substr(" + std::string(index.columns.front()) + ",1," +
                                std::to_string(index.prefix) + ") AS TEXT) COLLATE " +
                                std::string(vek::dialect::kSqlServerCollation) + ")"
                          : " (" + JoinNames(index.columns, ", ") + ")";
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

// How many rows the tables of a busy terminal hold after some years; any
// other table holds a hundred or so. SQLite's planner reads these sizes
// from sqlite_stat1 until ANALYZE measures the real ones.
constexpr std::pair<std::string_view, int64_t> kTypicalRows[] = {
    {"TbViagemOnibus", 1'000'000},   {"TbAgendaSom", 1'000'000},
    {"TbTicketEstacionamento", 1'000'000}, {"TbTicketEstacionamento_TbTarifa", 1'000'000},
    {"TbTicketSanitario", 1'000'000}, {"TbApuracaoReceita", 100'000},
    {"TbApuracaoReceita_TbTarifa", 300'000}, {"TbItemMapaMovimentoED", 100'000},
    {"TbContaReceber", 10'000},      {"TbPessoa", 10'000},
    {"TbVeiculo", 10'000},           {"TbCaixa", 10'000},
    {"TbCidade", 5'000},             {"TbEscalasHorarioLinha", 2'000},
    {"TbHorariosLinha", 1'000},      {"TbLinha", 1'000},
    {"TbUF", 27},
};

int64_t TypicalRows(std::string_view table) {
  for (const auto& [name, rows] : kTypicalRows) {
    if (name == table) return rows;
  }
  return 100;
}

// How many rows share one value of a column that refers to another table
// on its own (a line's origin city: lines over cities); 10 for any other
// column, as SQLite guesses without statistics.
int64_t RowsPerValue(const TableDef& table, std::string_view column, int64_t rows) {
  for (const ForeignKeyDef& key : table.foreign_keys) {
    if (key.columns.size() == 1 && EqualsIgnoreCase(key.columns.front(), column)) {
      return std::max<int64_t>(1, rows / TypicalRows(key.table));
    }
  }
  return std::min<int64_t>(rows, 10);
}

// sqlite_stat1's "rows, then rows per value of each leading part of the
// key". An equality on the first column of a key selects RowsPerValue, on
// each further column half as many, and on the whole of a unique key one
// row; but an equality on the tenant selects every row: a terminal holds
// one operating company.
std::string NominalStat(const TableDef& table, const std::vector<std::string_view>& columns, bool unique) {
  const int64_t rows = TypicalRows(table.name);
  std::string stat = std::to_string(rows);
  int64_t per_value = rows;
  bool narrowed = false;
  for (size_t i = 0; i < columns.size(); ++i) {
    if (!EqualsIgnoreCase(columns[i], "Cd_EmpresaUsuariaSistema")) {
      per_value = narrowed ? std::max<int64_t>(1, per_value / 2) : RowsPerValue(table, columns[i], rows);
      narrowed = true;
    }
    if (unique && i + 1 == columns.size()) per_value = 1;
    stat += " " + std::to_string(per_value);
  }
  return stat;
}

std::string NominalStatRow(const TableDef& table, const std::string& index, const std::string& stat) {
  return "INSERT INTO sqlite_stat1 (tbl, idx, stat) SELECT '" + std::string(table.name) + "', '" + index +
         "', '" + stat + "' WHERE NOT EXISTS (SELECT 1 FROM sqlite_stat1 WHERE tbl = '" +
         std::string(table.name) + "' AND idx = '" + index + "')";
}

}  // namespace

std::vector<std::string> SqliteNominalStatistics() {
  // ANALYZE of sqlite_schema makes sqlite_stat1 when it is missing and, run
  // again at the end, has the planner read the rows written here. A table
  // that has statistics already (measured by ANALYZE) keeps them.
  std::vector<std::string> statements = {"ANALYZE sqlite_schema"};
  for (const TableDef& table : Tables()) {
    if (!table.database.empty()) continue;
    if (!table.HasIdentity() && !table.primary_key.empty()) {
      // A table without rowid is its key's index and bears its name.
      const std::string key_index = NeedsWithoutRowid(table) ? std::string(table.name)
                                                              : "sqlite_autoindex_" + std::string(table.name) + "_1";
      statements.push_back(NominalStatRow(table, key_index, NominalStat(table, table.primary_key, true)));
    } else if (table.indexes.empty()) {
      // A table with indexes has its size in their rows.
      statements.push_back("INSERT INTO sqlite_stat1 (tbl, idx, stat) SELECT '" + std::string(table.name) +
                           "', NULL, '" + std::to_string(TypicalRows(table.name)) +
                           "' WHERE NOT EXISTS (SELECT 1 FROM sqlite_stat1 WHERE tbl = '" +
                           std::string(table.name) + "' AND idx IS NULL)");
    }
    for (const IndexDef& index : table.indexes) {
      statements.push_back(
          NominalStatRow(table, IndexName(table, index), NominalStat(table, index.columns, index.unique)));
    }
  }
  statements.push_back("ANALYZE sqlite_schema");
  return statements;
}

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
  for (std::string& statement : SqliteNominalStatistics()) statements.push_back(std::move(statement));
  return statements;
}

}  // namespace vek::schema
