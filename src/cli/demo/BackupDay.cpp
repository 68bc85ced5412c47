// The end of the demo day: the automatic backup as the terminal's programs
// call it (a full backup and the zipped mirror copy, then a differential
// call), and a restore of the backup into a scratch file, checked table by
// table against the live database.

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

namespace fs = std::filesystem;

std::string Size(const fs::path& file) {
  std::error_code error;
  const uintmax_t bytes = fs::file_size(file, error);
  return error ? "-" : Format(Variant(static_cast<double>(bytes)), "###,###,##0") + " bytes";
}

// The lines the backup wrote to Backup.log from `from` on.
std::vector<std::string> LogLines(size_t from) {
  std::vector<std::string> lines;
  std::ifstream in(AppPath() / "Backup.log");
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return std::vector<std::string>(lines.begin() + static_cast<std::ptrdiff_t>(std::min(from, lines.size())), lines.end());
}

void RunBackup(DayContext& day) {
  const size_t logged = LogLines(0).size();
  auto manager = day.Use<cgdManutencaoBD>();
  manager.Backup();
  for (const std::string& line : LogLines(logged)) day.out << "  Backup.log  " << line << "\n";
}

void AutomaticBackup(DayContext& day) {
  const fs::path local(CStr(day.session->Get("Ds_PathBkpLocal")));
  const fs::path mirror(CStr(day.session->Get("Ds_PathBkpEspelho")));
  day.out << "  The backup's programs call cgdManutencaoBD.Backup() again and again; it decides what to do.\n"
          << "  First call of the day (no VekBkp.bak yet): full backup and the zipped mirror copy.\n";
  RunBackup(day);
  day.Advance(30);
  day.out << "  Half an hour later, the next call: a differential backup appended to the same file.\n";
  RunBackup(day);

  const fs::path bak = local / "VekBkp.bak";
  day.out << "  " << bak.string() << ", its sets:\n";
  const BackupCheck check = VerifyBackup(bak);
  PrintBackupSets(check, day.out);
  if (check.sets.size() > 1) {
    day.out << "  The differential set holds the pages changed since the full set: " << check.sets.back().pages
            << (check.sets.back().pages == 0 ? " (nothing was written in between)" : "") << "\n";
  }
  PrintFacts(day.out, {{"VekBkp.bak", Size(bak)},
                       {"VekBkp.zip", Size(local / "VekBkp.zip")},
                       {"mirror copy", (mirror / "VekBkp.zip").string() + ", " + Size(mirror / "VekBkp.zip")},
                       {"log", (AppPath() / "Backup.log").string()}});
}

void VerifiedRestore(DayContext& day) {
  const fs::path local(CStr(day.session->Get("Ds_PathBkpLocal")));
  const fs::path scratch = local / "Restaurado.db";
  if (day.session->Ob_Conexao()->SqlDialect() != Dialect::SQLite) {
    day.out << "  The terminal's database is on a server: restore it with vek restore --to DATABASE.\n";
    return;
  }
  RestoreOptions options;
  options.to = scratch.string();
  options.force = true;
  const std::vector<BackupSetInfo> used = RestoreBackup(local / "VekBkp.bak", options);
  day.out << "  vek restore " << (local / "VekBkp.bak").string() << " --to " << scratch.string() << "\n"
          << "  rebuilt from set " << used.front().number << " (" << used.front().kind << ")";
  if (used.size() > 1) day.out << " and set " << used.back().number << " (" << used.back().kind << ")";
  day.out << "; SQLite's integrity check: ok\n";

  // Every table of the terminal, row for row, against the live database.
  auto restored_connection = std::make_shared<Connection>();  // connections are shared objects
  Connection& restored = *restored_connection;
  restored.Open("Driver=SQLite3;Database=" + scratch.string());
  int32_t tables = 0;
  int64_t rows = 0;
  std::vector<std::string> different;
  for (const schema::TableDef& table : schema::Tables()) {
    if (!table.database.empty()) continue;
    const std::string text = "SELECT * FROM " + std::string(table.name);
    auto live = day.session->Ob_Conexao()->Execute(text);
    auto copy = restored.Execute(text);
    bool same = true;
    for (; !live->Eof() && !copy->Eof(); live->MoveNext(), copy->MoveNext()) {
      for (int32_t i = 0; i < live->Fields().Count(); ++i) {
        same = same && Format(live->Fields().Item(i).Value()) == Format(copy->Fields().Item(i).Value());
      }
      ++rows;
    }
    same = same && live->Eof() && copy->Eof();
    if (!same) different.emplace_back(table.name);
    ++tables;
  }
  restored.Close();
  day.out << "  " << tables << " tables, " << rows << " rows compared with the live database: "
          << (different.empty() ? "all equal" : "some differ") << "\n";
  for (const std::string& name : different) day.out << "  differs: " << name << "\n";
}

}  // namespace

std::vector<DayStep> BackupDay() {
  return {
      {"End of the day: the automatic backup", AutomaticBackup},
      {"A backup nobody restored is only a hope: restore and compare", VerifiedRestore},
  };
}

}  // namespace vek::cli::demo
