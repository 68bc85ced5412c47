#pragma once
// The subcommands of the vek tool. Each adds itself to the application; its
// callback raises VekError on failure, which main reports with exit code 1.

#include <CLI/CLI.hpp>

#include <filesystem>
#include <string>
#include <ostream>

namespace vek::cli {

void AddSqlCommand(CLI::App& app);
void AddInitCommand(CLI::App& app);

// vek init's work: makes `folder` (and its parents), writes Vek.ini for the
// embedded database, creates Vek.db and MDESTACIONAMENTO.db with every table
// and the Modelos folder, and writes one line per file or folder to `out`.
// Raises 0x80040458 when Vek.db is there and `force` is false; with `force`
// the database keeps its data and gets what it misses.
void InitTerminalFolder(const std::filesystem::path& folder, bool force, std::ostream& out);

// Where a terminal's database lives when it is on a server.
struct ServerDatabase {
  std::string server;    // "[user@]host[:port]"
  std::string database;  // an existing database on that server
};
// The same for a PostgreSQL server: Vek.ini names the server and the
// database, and the schema is created there (safe to run again).
void InitTerminalFolder(const std::filesystem::path& folder, const ServerDatabase& postgres,
                        std::ostream& out);

}  // namespace vek::cli
