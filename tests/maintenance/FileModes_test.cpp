// Backups and exports are files people keep and hand on: whatever umask the
// program runs under, only their owner may change them.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/TestSupport.h"
#include "vek/db/workbook/WorkbookFile.h"
#include "vek/maintenance/ZqModulo.h"
#include "vek/platform/Variant.h"
#include "vek/revenue/MicrosigaTitles.h"
#include "vek/revenue/MonthlyWorkbookTemplate.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

class UmaskGuard {
 public:
  explicit UmaskGuard(mode_t mask) : saved_(::umask(mask)) {}
  ~UmaskGuard() { ::umask(saved_); }
  UmaskGuard(const UmaskGuard&) = delete;
  UmaskGuard& operator=(const UmaskGuard&) = delete;

 private:
  mode_t saved_;
};

bool OthersMayWrite(const fs::path& file) {
  return (fs::status(file).permissions() & (fs::perms::group_write | fs::perms::others_write)) != fs::perms::none;
}

TEST(ExportFileModes, BackupsAndExportsAreNeverWritableByOthers) {
  testing::ScratchFolder scratch;
  const UmaskGuard everyone_writes(0);
  const fs::path bak = scratch.Path() / "VekBkp.bak";
  std::ofstream(bak) << "a backup set";
  ASSERT_TRUE(OthersMayWrite(bak));  // what the umask alone gives

  Compacta(bak.string(), (scratch.Path() / "VekBkp.zip").string());
  EXPECT_FALSE(OthersMayWrite(scratch.Path() / "VekBkp.zip"));

  const fs::path workbook = scratch.Path() / "MovimentoMensal.xlsx";
  WriteMonthlyWorkbookTemplate(workbook);
  EXPECT_FALSE(OthersMayWrite(workbook));
  // A save rewrites the package; someone had opened it to the group.
  fs::permissions(workbook, fs::perms::group_write, fs::perm_options::add);
  workbook::WorkbookFile file(workbook);
  file.Worksheet("DADOS").SetValue(2, 1, Variant(int32_t{7}));
  file.Save();
  EXPECT_FALSE(OthersMayWrite(workbook));

  CreateMicrosigaTitleTable(scratch.Path(), "SE1");
  EXPECT_FALSE(OthersMayWrite(scratch.Path() / "SE1.dbf"));
  EXPECT_FALSE(OthersMayWrite(scratch.Path() / "SE1.cpg"));
}

}  // namespace
}  // namespace vek
