#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "cli/ToolRun.h"
#include "support/TestSupport.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::RunTool;

size_t Count(const std::string& text, const std::string& needle) {
  size_t count = 0;
  for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) ++count;
  return count;
}

// The lines of a text that hold `needle`.
std::vector<std::string> LinesWith(const std::string& text, std::string_view needle) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.find(needle) != std::string::npos) lines.push_back(line);
  }
  return lines;
}

TEST(BusCommandsTest, AFolderWithoutATerminalIsRefusedWithoutMakingAnything) {
  testing::ScratchApp app;
  const fs::path empty = app.Path() / "empty";
  fs::create_directories(empty);
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"board", empty.string()},
        std::vector<std::string>{"timetable", empty.string(), "--from", "Goiânia", "--to", "Brasília"}}) {
    const testing::ToolRun run = RunTool(args);
    EXPECT_EQ(run.code, 1) << args[0];
    EXPECT_NE(run.err.find("holds no terminal: there is no Vek.ini"), std::string::npos) << run.err;
    EXPECT_EQ(Count(run.err, "\n"), 1u) << run.err;  // one line
  }
  // Vek.ini naming a database file that is gone: refused, and none is made.
  std::ostringstream ignored;
  cli::InitTerminalFolder(empty, false, ignored);
  fs::remove(empty / "Vek.db");
  const testing::ToolRun gone = RunTool({"board", empty.string()});
  EXPECT_EQ(gone.code, 1);
  EXPECT_NE(gone.err.find("is not there"), std::string::npos) << gone.err;
  EXPECT_FALSE(fs::exists(empty / "Vek.db"));

  EXPECT_EQ(RunTool({"board", empty.string(), "--rows", "-1"}).code, 2);
  EXPECT_EQ(RunTool({"timetable", empty.string(), "--to", "Brasília"}).code, 2);
}

TEST(BusCommandsTest, BoardAndTimetableReadTheTerminalOfTheFolder) {
  testing::ScratchApp app;
  const fs::path folder = app.Path() / "terminal";
  std::ostringstream ignored;
  cli::RunDemo(folder, {}, ignored);
  SetAppPath({});

  const testing::ToolRun board = RunTool({"board", folder.string(), "--rows", "2"});
  ASSERT_EQ(board.code, 0) << board.err;
  const size_t departures = board.out.find("PARTIDAS");
  ASSERT_NE(departures, std::string::npos) << board.out;
  const size_t arrivals = board.out.find("CHEGADAS");
  ASSERT_LT(arrivals, departures) << board.out;
  const std::string arrivals_part = board.out.substr(arrivals, departures - arrivals);
  const std::string departures_part = board.out.substr(departures);
  // Two trips on each board, the newest first: the passing bus of 10:15 is
  // on both, the 21:00 to São Paulo leads the departures.
  EXPECT_EQ(LinesWith(arrivals_part, ":").size(), 2u) << board.out;
  EXPECT_EQ(LinesWith(departures_part, ":").size(), 2u) << board.out;
  EXPECT_NE(LinesWith(arrivals_part, "10:15")[0].find("Uberlândia/MG"), std::string::npos);
  EXPECT_NE(LinesWith(departures_part, ":")[0].find("21:00"), std::string::npos) << board.out;
  EXPECT_NE(LinesWith(departures_part, ":")[0].find("São Paulo/SP"), std::string::npos) << board.out;
  EXPECT_NE(LinesWith(departures_part, ":")[1].find("Uberlândia/MG"), std::string::npos) << board.out;

  // Goiânia to Uberlândia is a stop of the 07:00 to São Paulo: only with --stops.
  const testing::ToolRun direct = RunTool({"timetable", folder.string(), "--from", "Goiânia/GO", "--to", "uberl"});
  ASSERT_EQ(direct.code, 0) << direct.err;
  EXPECT_NE(direct.out.find("0 timetables from \"Goiânia/GO\" to \"uberl\""), std::string::npos) << direct.out;
  const testing::ToolRun stops =
      RunTool({"timetable", folder.string(), "--from", "Goiânia/GO", "--to", "uberl", "--stops"});
  ASSERT_EQ(stops.code, 0) << stops.err;
  const auto found = LinesWith(stops.out, "São Paulo/SP");
  ASSERT_EQ(found.size(), 2u) << stops.out;
  EXPECT_NE(found[0].find("07:00"), std::string::npos) << found[0];
  EXPECT_NE(found[0].find("DSTQQSS"), std::string::npos) << found[0];
  EXPECT_NE(found[1].find("21:00"), std::string::npos) << found[1];
  EXPECT_NE(found[1].find("-STQQS-"), std::string::npos) << found[1];
  // A state that does not match leaves the side out.
  const testing::ToolRun other_state =
      RunTool({"timetable", folder.string(), "--from", "Goiânia/SP", "--to", "uberl", "--stops"});
  EXPECT_NE(other_state.out.find("0 timetables"), std::string::npos) << other_state.out;
}

}  // namespace
}  // namespace vek
