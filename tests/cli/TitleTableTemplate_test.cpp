#include "vek/revenue/MicrosigaTitles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "support/DbfFile.h"
#include "support/TestSupport.h"
#include "vek/db/DbError.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

TEST(MicrosigaTitles, TheEmptyTitleTableHasTheThirtyFieldsInWindows1252AndVekInitLeavesOneInModelos) {
  testing::ScratchApp app;
  std::ostringstream out;
  cli::InitTerminalFolder(app.Path() / "terminal", false, out);
  const fs::path table = fs::canonical(app.Path() / "terminal") / "Modelos" / "SE1.dbf";
  EXPECT_NE(out.str().find("template  " + table.string() + "\n"), std::string::npos) << out.str();

  const testing::DbfFile file(table);
  EXPECT_EQ(file.Records(), 0u);
  EXPECT_EQ(file.LanguageByte(), 0x03);
  EXPECT_EQ(file.Word(8, 2), 32u + 30 * 32 + 1);  // thirty field descriptors
  std::string layout;
  for (int i = 0; i < 30; ++i) {
    const std::string descriptor = file.bytes.substr(32 + 32 * static_cast<size_t>(i), 32);
    const std::string name = descriptor.substr(0, descriptor.find('\0'));
    layout += (layout.empty() ? "" : ", ") + name + " " + descriptor[11];
    const int width = static_cast<uint8_t>(descriptor[16]);
    if (descriptor[11] == 'N') {
      layout += "(" + std::to_string(width) + "," + std::to_string(static_cast<uint8_t>(descriptor[17])) + ")";
    } else if (descriptor[11] == 'C') {
      layout += "(" + std::to_string(width) + ")";
    }
  }
  EXPECT_EQ("CREATE TABLE SE1 FREE (" + layout + ")", MicrosigaTitleTableStatement());
  EXPECT_NE(layout.find("E1_VALOR N(17,2)"), std::string::npos);
  std::ifstream cpg(table.parent_path() / "SE1.cpg");
  std::string code_page;
  std::getline(cpg, code_page);
  EXPECT_EQ(code_page, "1252");

  // A second init keeps the table as it is; making it again is refused.
  std::ostringstream again;
  cli::InitTerminalFolder(app.Path() / "terminal", true, again);
  EXPECT_NE(again.str().find("SE1.dbf (already there)"), std::string::npos) << again.str();
  try {
    CreateMicrosigaTitleTable(table.parent_path());
    ADD_FAILURE() << "the table was made twice";
  } catch (const VekError& error) {
    EXPECT_EQ(error.Number(), adErrUnspecified);
    EXPECT_NE(error.Description().find("already exists"), std::string::npos);
  }
}

}  // namespace
}  // namespace vek
