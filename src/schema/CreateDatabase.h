#pragma once
// Creates the terminal's database on an open connection.

namespace vek {
class Connection;
}

namespace vek::schema {

// Creates every table, index, trigger and fixed row of the catalogue for the
// connection's dialect, the access-control database's tables included (on
// SQLite in the attached MDESTACIONAMENTO: the file beside the main one,
// created when missing, or a database in memory beside one in memory). Safe
// to run on a database that has them already: it adds only what is missing.
// Raises the database's error (VekError) when a statement fails.
void CreateDatabase(Connection& connection);

}  // namespace vek::schema
