// vek backup: the automatic backup run once for a terminal folder, for a
// scheduler (cron, a systemd timer); --verify restores the newest sets into
// a scratch database and compares it with the live one; --status tells a
// monitoring system when the last verified backup was taken.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "cli/ProgressBar.h"
#include "vek/vek.h"

namespace vek::cli {
namespace {

namespace fs = std::filesystem;

// The settings store's place for what a verification found; the other
// backup times live in the same section.
constexpr const char* kApplication = "VEK";
constexpr const char* kSection = "Backup";
constexpr const char* kLastVerified = "LastVerifiedBackup";
constexpr const char* kVerifiedAt = "LastVerification";
constexpr const char* kTimeFormat = "dd/mm/yyyy hh:Nn:Ss";

std::vector<std::string> LogLines() {
  std::vector<std::string> lines;
  std::ifstream in(AppPath() / "Backup.log");
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

fs::path MediaFile(const cgpSistema& session) {
  const std::string local = CStr(session.Get("Ds_PathBkpLocal"));
  if (local.empty()) throw VekError(kBusinessError, std::string(), "Não foi configurado o diretório de backup");
  return fs::path(local) / "VekBkp.bak";
}

// The connection string with its Database part replaced: the scratch copy
// lives beside the live database, on the same engine.
std::string WithDatabase(const std::string& connection_string, const std::string& database) {
  std::string result;
  bool replaced = false;
  size_t start = 0;
  while (start <= connection_string.size()) {
    size_t end = connection_string.find(';', start);
    if (end == std::string::npos) end = connection_string.size();
    std::string part = connection_string.substr(start, end - start);
    const size_t equals = part.find('=');
    if (equals != std::string::npos && EqualsIgnoreCase(Trim(part.substr(0, equals)), "Database")) {
      part = part.substr(0, equals + 1) + database;
      replaced = true;
    }
    if (!part.empty()) result += (result.empty() ? "" : ";") + part;
    start = end + 1;
  }
  if (!replaced) result += (result.empty() ? "" : ";") + std::string("Database=") + database;
  return result;
}

int64_t RowCount(Connection& connection, std::string_view table) {
  auto rows = connection.Execute("SELECT COUNT(*) FROM " + std::string(table));
  return static_cast<int64_t>(CDbl(rows->Fields().Item(0).Value()));
}

// Removes a scratch SQLite database with its journal files.
void RemoveSqliteFiles(const fs::path& file) {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) fs::remove(file.string() + suffix, ignored);
}

}  // namespace

void RunTerminalBackup(const fs::path& folder, bool progress_bar, std::ostream& out) {
  auto session = OpenTerminal(folder);
  std::shared_ptr<TerminalProgressBar> bar;
  if (progress_bar) {
    bar = std::make_shared<TerminalProgressBar>();
    session->SetProgress(bar);
  }
  const size_t logged = LogLines().size();
  cgdManutencaoBD manager;
  manager.Ob_cgpSistema(session);
  try {
    manager.Backup();
  } catch (...) {
    session->Ob_Conexao()->Close();
    throw;
  }
  session->Ob_Conexao()->Close();
  const std::vector<std::string> lines = LogLines();
  for (size_t i = logged; i < lines.size(); ++i) out << "  Backup.log  " << lines[i] << "\n";
  const fs::path media = MediaFile(*session);
  const BackupCheck check = VerifyBackup(media);
  out << media.string() << ": " << check.sets.size() << (check.sets.size() == 1 ? " set\n" : " sets\n");
  PrintBackupSets(check, out);
}

bool VerifyTerminalBackup(const fs::path& folder, std::ostream& out) {
  auto session = OpenTerminal(folder);
  std::shared_ptr<Connection> live = session->Ob_Conexao();
  const fs::path media = MediaFile(*session);
  const BackupCheck check = VerifyBackup(media);
  out << media.string() << ": " << check.sets.size() << (check.sets.size() == 1 ? " set\n" : " sets\n");
  PrintBackupSets(check, out);

  const bool on_server = live->SqlDialect() != Dialect::SQLite;
  RestoreOptions options;
  options.force = true;
  if (on_server) {
    options.to = CStr(session->Get("Ds_CaminhoDB")) + "_vek_verify";
    options.server = CStr(session->Get("Nm_ServidorDB"));
    // The server's tools read the password from their environment.
    const std::string password = CStr(session->Get("Ds_SenhaDB"));
    if (!password.empty()) ::setenv("PGPASSWORD", password.c_str(), 1);
  } else {
    options.to = (media.parent_path() / ("VekBkp-verify-" + std::to_string(::getpid()) + ".db")).string();
    RemoveSqliteFiles(options.to);
  }
  // The scratch database goes away whatever happens.
  struct Scratch {
    std::shared_ptr<Connection> live;
    std::string name;
    bool on_server;
    bool dropped = false;
    void Drop() noexcept {
      if (dropped) return;
      dropped = true;
      if (!on_server) {
        RemoveSqliteFiles(name);
        return;
      }
      try {
        live->ExecuteNative("DROP DATABASE IF EXISTS " + name);
      } catch (...) {  // one left behind is replaced by the next run's restore
      }
    }
    ~Scratch() { Drop(); }
  } scratch{live, options.to, on_server};

  const std::vector<BackupSetInfo> used = RestoreBackup(media, options);
  out << "Restored into " << options.to << " from set " << used.front().number << " (" << used.front().kind << ")";
  if (used.size() > 1) out << " and set " << used.back().number << " (" << used.back().kind << ")";
  out << (on_server ? "; pg_restore: ok\n" : "; SQLite's integrity check: ok\n");

  auto restored = std::make_shared<Connection>();
  restored->Open(WithDatabase(live->ConnectionString(), options.to));
  int32_t tables = 0;
  int64_t rows = 0;
  std::vector<std::string> different;
  for (const schema::TableDef& table : schema::Tables()) {
    if (!table.database.empty()) continue;
    const int64_t in_live = RowCount(*live, table.name);
    const int64_t in_copy = RowCount(*restored, table.name);
    if (in_live != in_copy) {
      different.push_back(std::string(table.name) + ": " + std::to_string(in_live) + " rows live, " +
                          std::to_string(in_copy) + " in the backup");
    }
    ++tables;
    rows += in_copy;
  }
  restored->Close();
  scratch.Drop();
  live->Close();
  out << tables << " tables, " << rows << " rows in the backup; row counts "
      << (different.empty() ? "equal the live database's\n" : "differ:\n");
  for (const std::string& line : different) out << "  " << line << "\n";
  const bool ok = different.empty();
  if (ok) {
    const BackupSetInfo& newest = used.back();
    const std::string set = newest.kind + " set " + std::to_string(newest.number);
    SaveSetting(kApplication, kSection, kLastVerified, Format(Variant(newest.time), kTimeFormat) + " " + set);
    SaveSetting(kApplication, kSection, kVerifiedAt, Format(Variant(session->Now()), kTimeFormat));
    RestrictToOwner(SettingsFilePath());
  }
  out << (ok ? "ok" : "failed") << "\n";
  return ok;
}

bool PrintBackupStatus(const fs::path& folder, double max_age_hours, std::ostream& out) {
  // The times live in the settings store; the folder only has to be a terminal's.
  if (!fs::is_regular_file(folder / "Vek.ini")) {
    throw VekError(kBusinessError, std::string(),
                   folder.string() + " holds no terminal: there is no Vek.ini (make one with vek init)");
  }
  const std::string verified = GetSetting(kApplication, kSection, kLastVerified);
  const std::optional<Date> taken = ParseDate(verified.substr(0, 19));
  if (!taken) {
    out << "No verified backup: run vek backup --verify after a backup\n";
    return false;
  }
  const double hours = (SystemClock().Now() - *taken) * 24.0;
  out << "Last verified backup: " << verified << ", taken " << Format(Variant(hours), "0.0") << " hours ago"
      << " (verified " << GetSetting(kApplication, kSection, kVerifiedAt) << ")\n";
  const bool ok = hours <= max_age_hours;
  std::ostringstream allowed;
  allowed << max_age_hours;
  out << (ok ? "ok" : "too old: more than " + allowed.str() + " hours") << "\n";
  return ok;
}

void AddBackupCommand(CLI::App& app) {
  struct Arguments {
    std::string folder = ".";
    bool verify = false;
    bool status = false;
    double max_age = 24.0;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand(
      "backup", "Run the terminal's automatic backup once (full or differential, and the zipped mirror copy), "
                "for cron or a systemd timer");
  command->add_option("dir", arguments->folder, "The terminal folder (holding Vek.ini; default: the current folder)");
  CLI::Option* verify = command->add_flag(
      "--verify", arguments->verify,
      "Restore the newest sets into a scratch database, check it and compare every table's row count with the "
      "live database; print ok or failed (exit 0 or 1)");
  CLI::Option* status = command->add_flag(
      "--status", arguments->status,
      "Print when the last verified backup was taken; exit 1 when it is older than --max-age");
  command->add_option("--max-age", arguments->max_age, "With --status: the age allowed, in hours (default 24)")
      ->check(CLI::PositiveNumber)
      ->needs(status);
  verify->excludes(status);
  command->callback([arguments] {
    if (arguments->status) {
      if (!PrintBackupStatus(arguments->folder, arguments->max_age, std::cout)) {
        throw VekError(kBusinessError, "vek backup", "Não há backup verificado recente");
      }
    } else if (arguments->verify) {
      if (!VerifyTerminalBackup(arguments->folder, std::cout)) {
        throw VekError(kBusinessError, "vek backup", "O backup restaurado difere do banco de dados");
      }
    } else {
      RunTerminalBackup(arguments->folder, ::isatty(STDOUT_FILENO) == 1, std::cout);
    }
  });
}

}  // namespace vek::cli
