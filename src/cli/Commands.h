#pragma once
// The subcommands of the vek tool. Each adds itself to the application; its
// callback raises VekError on failure, which main reports with exit code 1.

#include <CLI/CLI.hpp>

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>

#include "vek/platform/Date.h"

namespace vek {
struct BackupCheck;
}

namespace vek::cli {

void AddSqlCommand(CLI::App& app);
void AddInitCommand(CLI::App& app);
void AddDemoCommand(CLI::App& app);
void AddBoardCommand(CLI::App& app);
void AddTimetableCommand(CLI::App& app);
void AddYardCommand(CLI::App& app);
void AddReportCommand(CLI::App& app);
// "vek export", the group of the exports, and its commands.
CLI::App& AddExportGroup(CLI::App& app);
void AddExportDbfCommand(CLI::App& export_group);
void AddExportWorkbookCommand(CLI::App& export_group);
void AddRestoreCommand(CLI::App& app);
void AddServeCommand(CLI::App& app);
void AddBackupCommand(CLI::App& app);

// The whole tool: parses the arguments, runs the command and returns the
// exit code (0 done, 1 a failure, reported in one line on `err`, 2 bad
// usage). Help and version go to `out`, as the command's own output does.
int RunTool(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

// vek init's work: makes `folder` (and its parents), writes Vek.ini for the
// embedded database, creates Vek.db and MDESTACIONAMENTO.db with every table
// and the Modelos folder, and writes one line per file or folder to `out`.
// Raises 0x80040458 when Vek.db is there and `force` is false; with `force`
// the database keeps its data and gets what it misses. A Vek.ini already
// there keeps every key it holds (only missing keys are written), so a
// terminal whose database is on a server stays there and only its schema is
// completed.
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

// vek serve's work: opens the terminal of `folder` as its programs do and
// serves its board and yard on `listen` ("host:port") until SIGINT or
// SIGTERM, printing the address to `out` first. Raises 0x80040458 for a bad
// address, a folder without a terminal or company, or an address in use.
struct ServeArguments {
  std::string listen = "127.0.0.1:8080";
  int32_t rows = 10;
};
void ServeFolder(const std::filesystem::path& folder, const ServeArguments& arguments, std::ostream& out);

// How vek demo runs the day.
struct DemoOptions {
  bool system_clock = false;  // else a fixed clock at 02/03/2026 06:00
  bool progress_bar = false;  // a bar on stderr (when stdout is a terminal)
};
// vek demo's work: makes `folder` a fresh terminal folder (as vek init
// --force does, after emptying it when an earlier demo made it) and lives
// one day at the terminal on it through the library, printing each step to
// `out`. The folder becomes the application folder (SetAppPath), as it is
// for a desktop program started there. Raises 0x80040458 when the folder
// holds a terminal the demo did not make, and whatever a step raises.
void RunDemo(const std::filesystem::path& folder, const DemoOptions& options, std::ostream& out);

// vek yard's work: opens the terminal of `folder` as its programs do (its
// Vek.ini, then the database it names) and prints the vehicles in the yard
// of the operating company Vek.ini names, oldest entry first. Raises
// 0x80040458 when the folder has no Vek.ini.
void PrintYard(const std::filesystem::path& folder, std::ostream& out);

// vek report till's work: opens the terminal of `folder` as its programs do
// and prints till `till` of the operating company Vek.ini names (see
// PrintTill). Raises 0x80040458 when the folder has no Vek.ini, Vek.ini
// names no company, or the company has no such till.
void PrintTillReport(const std::filesystem::path& folder, int32_t till, std::ostream& out);
// vek export dbf's work: opens the terminal of `terminal` as its programs do
// and writes the receivables issued from `from` to `to` into `table` in
// `folder` (cgdContasReceber::ExportarDBF), then prints how many it wrote.
// The session's progress window is a bar on stderr when `progress_bar`.
void ExportDbf(const std::filesystem::path& terminal, Date from, Date to, const std::filesystem::path& folder,
               const std::string& table, std::ostream& out, bool progress_bar);
// vek export workbook's work: opens the terminal of `folder` as its programs
// do and writes the monthly movement workbook of the days `from` to `to`
// into `file` (made from the folder's Modelos/MovimentoMensal.xlsx when it
// is not there), one day at a time, with a bar on stderr when asked. Raises
// 0x80040458 for a folder without Vek.ini, and what the export raises.
void ExportMonthlyWorkbook(const std::filesystem::path& folder, Date from, Date to, const std::filesystem::path& file,
                           bool progress_bar, std::ostream& out);
// vek restore's work: prints every set of the backup file with its state,
// then (unless verify_only) restores it; returns 0, or 1 when verify_only
// found a set damaged or cut short. Raises what RestoreBackup raises.
struct RestoreArguments {
  std::string file;
  std::string to;
  std::string server;
  bool verify_only = false;
  bool force = false;
};
int RunRestore(const RestoreArguments& arguments, std::ostream& out);
// One line per set: number, kind, time, size, pages, name, and "ok" or what is wrong.
void PrintBackupSets(const BackupCheck& check, std::ostream& out);
// vek backup's work: opens the terminal of `folder` as its programs do, runs
// cgdManutencaoBD.Backup() once (a bar on stderr when `progress_bar`) and
// prints the log lines it wrote and the sets of VekBkp.bak. Raises what
// Backup raises.
void RunTerminalBackup(const std::filesystem::path& folder, bool progress_bar, std::ostream& out);
// vek backup --verify: restores the newest sets of the terminal's
// VekBkp.bak into a scratch database beside the live one (a file on SQLite,
// a database on the server), which the restore checks, and compares every
// table's row count with the live database; the scratch database is removed.
// Returns true and stores the verified set's time in the settings store
// when every count is equal. Raises what the restore raises.
bool VerifyTerminalBackup(const std::filesystem::path& folder, std::ostream& out);
// vek backup --status: prints when the last verified backup was taken;
// false when none was verified or it is older than `max_age_hours`. Raises
// 0x80040458 when `folder` holds no Vek.ini.
bool PrintBackupStatus(const std::filesystem::path& folder, double max_age_hours, std::ostream& out);

}  // namespace vek::cli
