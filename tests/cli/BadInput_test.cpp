// The vek program as a new user meets it, run as a child process: wrong or
// missing arguments, folders that are not there or not terminals, and a
// Vek.ini that is broken in every way a file can be. Each must end with one
// line on stderr and exit 1 (failure) or 2 (bad usage): no crash, no stack
// trace, and no file made or changed.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "cli/Commands.h"
#include "support/TestSupport.h"
#include "vek/foundation/cgdCripto.h"
#include "vek/platform/ProfileFile.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

struct ChildRun {
  int code;  // the exit code; -signal when a signal ended it
  std::string out;
  std::string err;
};

std::string ReadWhole(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Runs the built vek in `cwd` with its settings store under `config`.
ChildRun RunVek(const std::vector<std::string>& args, const fs::path& cwd, const fs::path& config) {
  const fs::path out_file = config / "stdout";
  const fs::path err_file = config / "stderr";
  const pid_t pid = fork();
  if (pid == 0) {
    const int out = open(out_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = open(err_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int in = open("/dev/null", O_RDONLY);
    if (out < 0 || err < 0 || in < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0 || dup2(in, 0) < 0 ||
        chdir(cwd.c_str()) != 0) {
      _exit(127);
    }
    setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    setenv("HOME", config.c_str(), 1);
    unsetenv("VEK_HOME");
    std::vector<char*> argv{const_cast<char*>(VEK_PROGRAM)};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(VEK_PROGRAM, argv.data());
    _exit(127);
  }
  int status = 0;
  if (pid < 0 || waitpid(pid, &status, 0) != pid) return {-1000, "", "could not run vek"};
  const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return {code, ReadWhole(out_file), ReadWhole(err_file)};
}

// Every file under `root` with its contents (folders as an empty entry), so
// that any file made, changed or removed shows as a difference.
std::map<std::string, std::string> Snapshot(const fs::path& root) {
  std::map<std::string, std::string> files;
  for (auto it = fs::recursive_directory_iterator(root); it != fs::recursive_directory_iterator(); ++it) {
    const std::string name = fs::relative(it->path(), root).string();
    if (name.starts_with("config")) continue;  // the child's own output
    files[name] = it->is_regular_file() ? ReadWhole(it->path()) : std::string("<folder>");
  }
  return files;
}

std::string Joined(const std::vector<std::string>& args) {
  std::string text = "vek";
  for (const std::string& arg : args) text += " '" + arg + "'";
  return text;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

struct Case {
  std::string what;
  std::vector<std::string> args;
  int code;
};

class BadInputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(config_);
    std::ostringstream made;
    cli::InitTerminalFolder(terminal_, false, made);
  }

  // Runs each case and checks its exit code, its one line on stderr and
  // that nothing under the scratch folder changed.
  void Expect(const std::vector<Case>& cases, const fs::path& cwd) {
    for (const Case& tried : cases) {
      const auto before = Snapshot(root_);
      const ChildRun run = RunVek(tried.args, cwd, config_);
      const std::string label = tried.what + ": " + Joined(tried.args) + "\nstdout: " + run.out + "\nstderr: " + run.err;
      EXPECT_EQ(run.code, tried.code) << label;
      EXPECT_TRUE(run.err.starts_with("vek: ")) << label;
      EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << label;
      EXPECT_TRUE(run.err.ends_with("\n")) << label;
      EXPECT_LT(run.err.size(), 400u) << label;  // a line, not a dump
      const auto after = Snapshot(root_);
      if (after != before) {
        std::string changes;
        for (const auto& [name, contents] : after) {
          auto was = before.find(name);
          if (was == before.end()) changes += " made " + name;
          else if (was->second != contents) changes += " changed " + name;
        }
        for (const auto& [name, contents] : before) {
          if (!after.contains(name)) changes += " removed " + name;
        }
        ADD_FAILURE() << label << "\nfiles:" << changes;
      }
    }
  }

  void WriteIni(const fs::path& folder, const std::string& contents) {
    fs::remove_all(folder / "Vek.ini");
    std::ofstream(folder / "Vek.ini", std::ios::binary) << contents;
  }

  testing::ScratchFolder scratch_;
  const fs::path root_ = scratch_.Path();
  const fs::path config_ = root_ / "config";
  const fs::path terminal_ = root_ / "terminal";
  const std::string missing_ = (root_ / "no" / "such").string();
};

TEST_F(BadInputTest, WrongArgumentsAreBadUsage) {
  const std::string dir = terminal_.string();
  Expect({{"an unknown command", {"frobnicate"}, 2},
          {"an unknown option", {"--frobnicate"}, 2},
          {"an argument too many", {"board", terminal_.string(), "extra"}, 2},
          {"sql without a statement", {"sql"}, 2},
          {"sql with two statements", {"sql", "SELECT 1", "SELECT 2"}, 2},
          {"sql with an unknown dialect", {"sql", "-d", "oracle", "SELECT 1"}, 2},
          {"sql --run without a database", {"sql", "--run"}, 2},
          {"init with two folders", {"init", dir, dir}, 2},
          {"init of an unknown kind", {"init", "--kind", "oracle", dir}, 2},
          {"demo with two folders", {"demo", dir, dir}, 2},
          {"board with rows that are no number", {"board", dir, "--rows", "many"}, 2},
          {"timetable without --to", {"timetable", dir, "--from", "Goiânia"}, 2},
          {"yard with an unknown option", {"yard", dir, "--all"}, 2},
          {"report without a report", {"report"}, 2},
          {"report till without a number", {"report", "till"}, 2},
          {"report till of a number that is no number", {"report", "till", dir, "one"}, 2},
          {"report till of till 0", {"report", "till", dir, "0"}, 2},
          {"export without an export", {"export"}, 2},
          {"export workbook without days", {"export", "workbook", dir, "out.xlsx"}, 2},
          {"export dbf without a file", {"export", "dbf", "--from", "01/03/2026", "--to", "02/03/2026"}, 2},
          {"restore without a file", {"restore"}, 2}},
         root_);
}

TEST_F(BadInputTest, FoldersThatAreNotTerminalsAreRefusedAndNothingIsMade) {
  const fs::path plain = root_ / "plain";
  fs::create_directories(plain);
  std::ofstream(root_ / "file.txt") << "not a folder\n";
  const std::string file = (root_ / "file.txt").string();
  std::ofstream(root_ / "empty.db").flush();
  const std::string ddmm[] = {"--from", "01/03/2026", "--to", "02/03/2026"};
  for (const std::string& folder : {missing_, plain.string(), file}) {
    Expect({{"board", {"board", folder}, 1},
            {"timetable", {"timetable", folder, "--from", "Goiânia", "--to", "Brasília"}, 1},
            {"yard", {"yard", folder}, 1},
            {"report till", {"report", "till", folder, "1"}, 1},
            {"export workbook",
             {"export", "workbook", folder, (root_ / "out.xlsx").string(), ddmm[0], ddmm[1], ddmm[2], ddmm[3]},
             1},
            {"export dbf", {"export", "dbf", folder, root_.string(), "SE1", ddmm[0], ddmm[1], ddmm[2], ddmm[3]}, 1},
            {"sql --run", {"sql", "--run", folder, "SELECT 1"}, 1},
            {"restore", {"restore", folder}, 1}},
           root_);
  }
  // The current folder when none is given.
  Expect({{"board here", {"board"}, 1}, {"yard here", {"yard"}, 1}, {"report till here", {"report", "till", "1"}, 1}},
         plain);
  // A file that is not a database is no database to run on.
  Expect({{"sql --run on a text file", {"sql", "--run", file, "SELECT 1"}, 1},
          {"sql --run on an empty file", {"sql", "--run", (root_ / "empty.db").string(), "SELECT 1"}, 1}},
         root_);
  // init and demo do not make a terminal where a file is.
  Expect({{"init on a file", {"init", file}, 1}, {"demo on a file", {"demo", file}, 1}}, root_);
}

TEST_F(BadInputTest, ABrokenVekIniIsReportedInOneLineAndLeftAsItIs) {
  std::string binary;
  for (int i = 0; i < 4096; ++i) binary += static_cast<char>((i * 7919 + 13) % 256);
  const struct {
    std::string what;
    std::string contents;
  } inis[] = {
      {"binary", binary},
      {"a 1 MB line", "[VEK]\r\nCd_DB=" + std::string(1 << 20, '7') + "\r\n"},
      {"a 1 MB line without sections", std::string(1 << 20, 'x')},
      {"empty", ""},
      {"no sections", "Cd_DB=31\nDs_CaminhoDB=" + (terminal_ / "Vek.db").string() + "\n"},
      {"sections without keys", "[VEK]\n[ESTACIONAMENTO]\n"},
      {"a number that is no number", Replaced(ReadWhole(terminal_ / "Vek.ini"), "Cursor=1", "Cursor=um")},
      {"not UTF-8", "[VEK]\nCd_DB=31\nDs_CaminhoDB=" + (terminal_ / "Vek\xe9.db").string() + "\n"},
  };
  const std::string dir = terminal_.string();
  const std::string ddmm[] = {"--from", "01/03/2026", "--to", "02/03/2026"};
  for (const auto& ini : inis) {
    SCOPED_TRACE(ini.what);
    WriteIni(terminal_, ini.contents);
    Expect({{ini.what + ", board", {"board", dir}, 1},
            {ini.what + ", timetable", {"timetable", dir, "--from", "Goiânia", "--to", "Brasília"}, 1},
            {ini.what + ", yard", {"yard", dir}, 1},
            {ini.what + ", report till", {"report", "till", dir, "1"}, 1},
            {ini.what + ", export workbook",
             {"export", "workbook", dir, (root_ / "out.xlsx").string(), ddmm[0], ddmm[1], ddmm[2], ddmm[3]}, 1},
            {ini.what + ", export dbf", {"export", "dbf", dir, root_.string(), "SE1", ddmm[0], ddmm[1], ddmm[2], ddmm[3]}, 1},
            {ini.what + ", sql --run", {"sql", "--run", dir, "SELECT count(*) FROM TbUF"}, 1},
            {ini.what + ", demo", {"demo", dir}, 1},
            {ini.what + ", init without --force", {"init", dir}, 1}},
           root_);
  }
  // Vek.ini that cannot be read at all.
  fs::remove(terminal_ / "Vek.ini");
  fs::create_directory(terminal_ / "Vek.ini");
  Expect({{"Vek.ini is a folder, board", {"board", dir}, 1}, {"Vek.ini is a folder, yard", {"yard", dir}, 1},
          {"Vek.ini is a folder, init --force", {"init", "--force", dir}, 1}},
         root_);
}

TEST_F(BadInputTest, AServerThatDoesNotAnswerIsReportedWithoutThePassword) {
  const fs::path ini = terminal_ / "Vek.ini";
  const std::string password = "Tr0c4-Senha";
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Cd_DB", "41", ini));
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Nm_ServidorDB", "vek@127.0.0.1:9", ini));
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_CaminhoDB", "terminal", ini));
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_SenhaDB", Cripto(password), ini));
  const std::string dir = terminal_.string();
  const std::vector<std::vector<std::string>> commands = {
      {"board", dir}, {"yard", dir}, {"report", "till", dir, "1"}, {"sql", "--run", dir, "SELECT 1"},
      {"sql", "--run", "Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=9;Database=t;Uid=vek;Pwd=" + password,
       "SELECT 1"}};
  for (const auto& args : commands) {
    const ChildRun run = RunVek(args, root_, config_);
    EXPECT_EQ(run.code, 1) << Joined(args) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(run.err.find(password), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find(Cripto(password)), std::string::npos) << run.err;
    EXPECT_EQ(run.out.find(password), std::string::npos) << run.out;
  }
}

}  // namespace
}  // namespace vek
