#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>

#include "cli/Commands.h"
#include "support/DemoDay.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

int64_t Rows(Connection& connection, std::string_view table) {
  auto rows = connection.Execute("SELECT COUNT(*) FROM " + std::string(table));
  return static_cast<int64_t>(CDbl(rows->Fields().Item(0).Value()));
}

TEST(BackupDayTest, TheDayEndsWithAFullAndADifferentialSetRestoredAndComparedRowForRow) {
  testing::DemoDay day;
  const fs::path& folder = day.Folder();
  const std::string& out = day.Out();
  const size_t backup = out.find("End of the day: the automatic backup");
  ASSERT_NE(backup, std::string::npos) << out;
  const std::string day_end = out.substr(backup);

  // The first call of the day makes the full set and the mirror's zip, the next one a differential set.
  const size_t full = day_end.find(" - Iniciado backup completo\n");
  const size_t mirror = day_end.find(" - Copiou arquivo de backup para o diretório de espelho (compactado)\n");
  const size_t differential = day_end.find(" - Iniciado backup diferencial\n");
  ASSERT_NE(full, std::string::npos) << day_end;
  ASSERT_NE(mirror, std::string::npos) << day_end;
  ASSERT_NE(differential, std::string::npos) << day_end;
  EXPECT_LT(full, mirror);
  EXPECT_LT(mirror, differential);
  const fs::path bak = folder / "Backup" / "VekBkp.bak";
  const BackupCheck check = VerifyBackup(bak);
  ASSERT_TRUE(check.ok);
  ASSERT_EQ(check.sets.size(), 2u);
  std::ostringstream sets;
  cli::PrintBackupSets(check, sets);
  EXPECT_NE(day_end.find(bak.string() + ", its sets:\n" + sets.str()), std::string::npos) << day_end;
  testing::LocaleGuard brazil(testing::kBrazilLocale);  // the day prints in the Brazilian format
  EXPECT_NE(day_end.find(Format(Variant(static_cast<double>(fs::file_size(bak))), "###,###,##0") + " bytes"),
            std::string::npos)
      << day_end;
  EXPECT_TRUE(fs::is_regular_file(folder / "BackupEspelho" / "VekBkp.zip"));

  // The restored copy holds every row of the terminal's own tables.
  EXPECT_NE(day_end.find("rebuilt from set 1 (full) and set 2 (differential); SQLite's integrity check: ok\n"),
            std::string::npos)
      << day_end;
  auto live = std::make_shared<Connection>();
  live->Open("Driver=SQLite3;Database=" + (folder / "Vek.db").string());
  auto restored = std::make_shared<Connection>();
  restored->Open("Driver=SQLite3;Database=" + (folder / "Backup" / "Restaurado.db").string());
  int32_t tables = 0;
  int64_t rows = 0;
  for (const schema::TableDef& table : schema::Tables()) {
    if (!table.database.empty()) continue;
    ++tables;
    rows += Rows(*live, table.name);
    EXPECT_EQ(Rows(*restored, table.name), Rows(*live, table.name)) << table.name;
  }
  EXPECT_GT(Rows(*restored, "TbTicketEstacionamento"), 0);
  EXPECT_NE(day_end.find("  " + std::to_string(tables) + " tables, " + std::to_string(rows) +
                         " rows compared with the live database: all equal\n"),
            std::string::npos)
      << day_end;
  restored->Close();
  live->Close();
}

}  // namespace
}  // namespace vek
