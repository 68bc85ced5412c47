// The library's layers use only the layers below them: a header of the
// platform that reached up into the foundation would make the bottom depend on
// the top. Every include line under src/ is read and checked.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The layers from the bottom up; the record kinds share one level.
const std::map<std::string, int> kLevels = {
    {"platform", 0}, {"db", 1},      {"schema", 2},  {"foundation", 3},  {"registry", 4},
    {"bus", 4},      {"revenue", 4}, {"parking", 4}, {"maintenance", 4}, {"cli", 5},
};

// The layer of a path inside src/ ("db/dialect/X.h" is in db), or -1 for the
// umbrella header and anything outside the layers.
int LevelOf(const std::string& relative) {
  const size_t slash = relative.find('/');
  if (slash == std::string::npos) return -1;
  const auto found = kLevels.find(relative.substr(0, slash));
  return found == kLevels.end() ? -1 : found->second;
}

TEST(LayerIncludesTest, EveryIncludeOfTheLibraryPointsToItsOwnLayerOrOneBelow) {
  const fs::path src = fs::path(VEK_SOURCE_DIR) / "src";
  const std::regex include_line(R"re(^\s*#\s*include\s*"(?:vek/)?([^"]+)")re");
  std::vector<std::string> upward;
  int files = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(src)) {
    if (!entry.is_regular_file()) continue;
    const std::string relative = fs::relative(entry.path(), src).generic_string();
    const int level = LevelOf(relative);
    if (level < 0) continue;
    ++files;
    std::ifstream file(entry.path());
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
      std::smatch match;
      if (!std::regex_search(line, match, include_line)) continue;
      const int target = LevelOf(match[1].str());
      if (target > level) upward.push_back(relative + ":" + std::to_string(number) + " includes " + match[1].str());
    }
  }
  EXPECT_GT(files, 100);  // the walk found the library
  EXPECT_TRUE(upward.empty()) << ::testing::PrintToString(upward);
}

TEST(LayerIncludesTest, TheCheckSeesAnIncludeThatPointsUp) {
  // The levels the check relies on: the bottom, a record kind, the tool.
  EXPECT_LT(LevelOf("platform/VekError.h"), LevelOf("foundation/ErrorTrap.h"));
  EXPECT_LT(LevelOf("db/dialect/Tokenizer.h"), LevelOf("schema/Catalogue.h"));
  EXPECT_EQ(LevelOf("registry/cgdBairro.h"), LevelOf("parking/cgdCor.h"));
  EXPECT_GT(LevelOf("cli/Commands.h"), LevelOf("revenue/cgdTarifa.h"));
  EXPECT_EQ(LevelOf("vek.h"), -1);
}

}  // namespace
