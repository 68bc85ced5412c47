#pragma once
// The statements that create the terminal's database on SQLite, derived from
// the catalogue. Every statement is idempotent (IF NOT EXISTS, INSERT OR
// IGNORE), so running the whole list on an existing database adds what is
// missing and changes nothing else.
//
// Text columns are declared COLLATE SQLSERVER_CI_AS: the connection that runs
// these statements must have that collation registered first
// (vek::dialect::RegisterSqlServerFunctions), or CREATE TABLE fails.
//
// Bit columns: the system writes -1 for true, and SQL Server stores 1 for any
// non-zero bit. Each table with bit columns gets two triggers that turn any
// non-zero value written into 1 (Null and 0 stay), so "Ic_X = 1" finds rows
// written with -1.

#include <string>
#include <string_view>
#include <vector>

#include "vek/schema/Catalogue.h"

namespace vek::schema {

// Every statement, one per element, without a trailing ";": tables in the
// catalogue's order (referenced tables first), then each table's indexes, bit
// triggers and fixed rows right after it. The tables of the access-control
// database are created in the schema named by the argument (an attached
// database on SQLite); an empty argument creates them in the main database.
std::vector<std::string> SqliteDdl(
    std::string_view database_prefix_for_access_control = "MDESTACIONAMENTO");

// The sizes a busy terminal's tables reach, written into sqlite_stat1 for
// the tables that have no statistics yet, so that SQLite's planner drives
// a join from the small side (a few hundred timetables, not a million trips)
// on a new database as on a full one. Part of SqliteDdl, at its end.
std::vector<std::string> SqliteNominalStatistics();

// The CREATE TABLE statement of one table, in the schema of its database
// (none for the terminal's own tables).
std::string SqliteTableDdl(const TableDef& table);

// CREATE TABLE, indexes, bit triggers and fixed rows of one table, in
// `schema` (empty: the main database). Creates a report file's tables, too.
std::vector<std::string> SqliteTableStatements(const TableDef& table, std::string_view schema);

// The declared type of a column on SQLite ("INTEGER", "VARCHAR(60)", ...).
std::string SqliteTypeName(const ColumnDef& column);

}  // namespace vek::schema
