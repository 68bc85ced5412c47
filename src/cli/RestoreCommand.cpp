// vek restore: the other half of the automatic backup. Checks every set of
// a backup file (VekBkp.bak, or the VekBkp.zip of the mirror folder) and
// rebuilds the database from the last full set plus the latest differential
// set after it.

#include <iostream>
#include <memory>
#include <string>

#include "cli/Commands.h"
#include "vek/vek.h"

namespace vek::cli {
namespace fs = std::filesystem;
namespace {

std::string Size(uint64_t bytes) {
  if (bytes < 10 * 1024) return std::to_string(bytes) + " B";
  if (bytes < 10 * 1024 * 1024) return std::to_string(bytes / 1024) + " KB";
  return std::to_string(bytes / (1024 * 1024)) + " MB";
}

std::string Describe(const BackupSetInfo& set) {
  return "set " + std::to_string(set.number) + " (" + set.kind + ", " +
         Format(Variant(set.time), "dd/mm/yyyy hh:Nn:ss") + ", " + Size(set.bytes) + ")";
}

}  // namespace

void PrintBackupSets(const BackupCheck& check, std::ostream& out) {
  for (const BackupSetInfo& set : check.sets) {
    out << "  " << set.number << "  " << set.kind << "  " << Format(Variant(set.time), "dd/mm/yyyy hh:Nn:ss") << "  "
        << Size(set.bytes);
    if (set.pages > 0) out << "  " << set.pages << (set.pages == 1 ? " page" : " pages");
    if (!set.name.empty()) out << "  \"" << set.name << "\"";
    out << "  " << (set.usable ? "ok" : set.problem) << "\n";
  }
}

int RunRestore(const RestoreArguments& arguments, std::ostream& out) {
  const fs::path file(arguments.file);
  const BackupCheck check = VerifyBackup(file);
  out << file.string() << ": " << check.sets.size() << (check.sets.size() == 1 ? " set\n" : " sets\n");
  PrintBackupSets(check, out);
  if (arguments.verify_only) {
    out << (check.ok ? "ok" : "failed") << "\n";
    return check.ok ? 0 : 1;
  }
  RestoreOptions options;
  options.to = arguments.to;
  options.server = arguments.server;
  options.force = arguments.force;
  const std::vector<BackupSetInfo> used = RestoreBackup(file, options);
  const std::string target = !arguments.to.empty() ? arguments.to : fs::path(file).replace_extension(".db").string();
  out << "Restored " << target << " from " << Describe(used.front());
  if (used.size() > 1) out << " and " << Describe(used.back());
  out << "\n";
  return 0;
}

void AddRestoreCommand(CLI::App& app) {
  auto arguments = std::make_shared<RestoreArguments>();
  CLI::App* command = app.add_subcommand(
      "restore", "Check a backup file's sets and rebuild the database from the last full set and the latest "
                 "differential set after it");
  command->add_option("backupfile", arguments->file, "VekBkp.bak, or the VekBkp.zip of the mirror folder")->required();
  command->add_option("--to", arguments->to,
                      "The database to write: a SQLite file (default: the backup file's name with .db), or, for a "
                      "PostgreSQL backup, a database on the server");
  command->add_option("--server", arguments->server,
                      "PostgreSQL backups: the server as [user@]host[:port] (default: libpq's PGHOST, PGPORT, PGUSER)");
  command->add_flag("--verify-only", arguments->verify_only,
                    "Only check every set's checksum; exit 1 when one fails");
  command->add_flag("--force", arguments->force, "Replace a database that is already there");
  command->callback([arguments] {
    const int code = RunRestore(*arguments, std::cout);
    if (code != 0) {
      throw VekError(kBusinessError, "vek restore",
                     "O arquivo " + arguments->file + " tem conjuntos danificados ou incompletos");
    }
  });
}

}  // namespace vek::cli
