#include "vek/maintenance/cgdManutencaoBD.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "support/TestSupport.h"
#include "vek/maintenance/BackupMedia.h"
#include "vek/platform/Format.h"
#include "vek/platform/Settings.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::Lines;

const std::string kFullBackupTail =
    "' WITH NOFORMAT, NOINIT,Name = N'Valor-Cheio Banco de Dados Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10";
const std::string kDifferentialWith =
    "WITH  DIFFERENTIAL , NOFORMAT, NOINIT,  NAME = N'Valor-Diferencial Banco de Dados Backup', SKIP, NOREWIND, "
    "NOUNLOAD,  STATS = 10";

Date At(int32_t year, int32_t month, int32_t day, int32_t hour, int32_t minute = 0) {
  return DateSerial(year, month, day) + TimeSerial(hour, minute, 0);
}

// Sets a file's modification time to a local date and time.
void SetModified(const fs::path& file, Date when) {
  const DateParts parts = SplitDate(when);
  std::tm local{};
  local.tm_year = parts.year - 1900;
  local.tm_mon = parts.month - 1;
  local.tm_mday = parts.day;
  local.tm_hour = parts.hour;
  local.tm_min = parts.minute;
  local.tm_sec = parts.second;
  local.tm_isdst = -1;
  const auto system = std::chrono::system_clock::from_time_t(std::mktime(&local));
  fs::last_write_time(file, std::chrono::time_point_cast<fs::file_time_type::duration>(
                                system - std::chrono::system_clock::now() + fs::file_time_type::clock::now()));
}

fs::perms Permissions(const fs::path& file) { return fs::status(file).permissions() & fs::perms::all; }

// The session of a terminal whose backup folders lie in a scratch
// application folder, which also holds Backup.log and the settings store.
class cgdManutencaoBDTest : public ::testing::Test {
 protected:
  cgdManutencaoBDTest() {
    db.session->Let("Ds_PathBkpLocal", Variant((app.Path() / "Backup Local").string()));
    db.session->Let("Ds_PathBkpEspelho", Variant((app.Path() / "Espelho").string()));
    db.session->SetProgress(progress);
    manager.Ob_cgpSistema(db.session);
  }

  fs::path Local() const { return app.Path() / "Backup Local"; }
  fs::path Mirror() const { return app.Path() / "Espelho"; }
  std::string BakFile() const { return (Local() / "VekBkp.bak").string(); }

  // Runs Backup at the given time; returns the log lines it wrote, each
  // without the time in front (which must be that time).
  std::vector<std::string> BackupAt(Date when) {
    db.clock->Set(when);
    db.statements.clear();
    const size_t before = LogLines().size();
    manager.Backup();
    std::vector<std::string> written;
    const std::vector<std::string> lines = LogLines();
    const std::string stamp = Format(Variant(when), "dd/mm/yyyy hh:Nn:ss") + " - ";
    for (size_t i = before; i < lines.size(); ++i) {
      EXPECT_EQ(lines[i].substr(0, stamp.size()), stamp) << lines[i];
      written.push_back(lines[i].substr(std::min(stamp.size(), lines[i].size())));
    }
    return written;
  }

  std::vector<std::string> LogLines() const {
    std::vector<std::string> lines;
    std::ifstream in(app.Path() / "Backup.log");
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }

  std::string FullStatement() const {
    return Lines({"BACKUP DATABASE Vek", "TO  DISK = N'" + BakFile() + kFullBackupTail}) + "\r";
  }
  std::string DifferentialStatement() const {
    return Lines({"BACKUP DATABASE Vek", "TO  DISK = N'" + BakFile() + "'", kDifferentialWith}) + "\r";
  }

  std::vector<std::string> SetKinds(const fs::path& file) const {
    std::vector<std::string> kinds;
    for (const BackupSetInfo& set : VerifyBackup(file).sets) kinds.push_back(set.kind);
    return kinds;
  }

  testing::ScratchApp app;
  testing::TerminalDatabase db;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  cgdManutencaoBD manager;
};

TEST_F(cgdManutencaoBDTest, FirstCallMakesAFullBackupAndTheMirrorCopyAtAnyHour) {
  const std::vector<std::string> log = BackupAt(At(2026, 11, 21, 10, 30));

  EXPECT_EQ(log, (std::vector<std::string>{
                     "Iniciado", "Criou diretório", "Abriu conexão com banco de dados", "Iniciado backup completo",
                     "Pronto para iniciar o backup completo", "Concluído backup completo", "Concluiu arquivo de backup",
                     "Criou diretório para backup espelho",
                     "Copiou arquivo de backup para o diretório de espelho (compactado)",
                     "Fechou conexao com o banco de dados"}));
  EXPECT_EQ(db.statements, std::vector<std::string>{FullStatement()});
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "21/11/2026 10:30:00");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoEspelhamentoDeBackup"), "21/11/2026 10:30:00");
  EXPECT_EQ(SetKinds(BakFile()), std::vector<std::string>{testing::FullSetKind()});
  // The mirror's zip holds the same backup, whole.
  EXPECT_EQ(SetKinds(Mirror() / "VekBkp.zip"), std::vector<std::string>{testing::FullSetKind()});
  EXPECT_TRUE(VerifyBackup(Mirror() / "VekBkp.zip").ok);
  // Backups hold the whole database: only their owner may read them.
  for (const fs::path& file : {fs::path(BakFile()), Local() / "VekBkp.zip", Mirror() / "VekBkp.zip",
                               app.Path() / "Backup.log", SettingsFilePath()}) {
    EXPECT_EQ(Permissions(file), fs::perms::owner_read | fs::perms::owner_write) << file;
  }
  EXPECT_EQ(progress->Caption(), "Backup automático");
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Backup automático", "Close"}));
  EXPECT_EQ(progress->steps.front(), 0.0);
  EXPECT_EQ(progress->steps.back(), 100.0);
}

TEST_F(cgdManutencaoBDTest, TwoCallsAtThreeInTheMorningMakeOneFullAndOneDifferentialBackup) {
  BackupAt(At(2026, 11, 21, 3, 0));
  std::vector<std::string> log = BackupAt(At(2026, 11, 21, 3, 0));

  std::vector<std::string> expected = {"Iniciado", "Abriu conexão com banco de dados", "Iniciado backup parcial",
                                       "Iniciado backup diferencial", "Pronto para iniciar o backup incremental"};
  for (const std::string& note : testing::DifferentialBackupNote()) expected.push_back(note);
  // The mirror was copied today already.
  expected.insert(expected.end(), {"Concluiu arquivo de backup", "Fechou conexao com o banco de dados"});
  EXPECT_EQ(log, expected);
  EXPECT_EQ(db.statements, std::vector<std::string>{DifferentialStatement()});
  EXPECT_EQ(SetKinds(BakFile()),
            (std::vector<std::string>{testing::FullSetKind(), testing::DifferentialSetKind()}));
  EXPECT_FALSE(fs::exists(Local() / "VekBkp_Old.bak"));
}

TEST_F(cgdManutencaoBDTest, AFullBackupIsDueOnceADayBeforeFiveInTheMorning) {
  BackupAt(At(2026, 11, 20, 10, 0));

  // Yesterday's full backup, at 10:00: a differential one.
  BackupAt(At(2026, 11, 21, 10, 0));
  EXPECT_EQ(db.statements, std::vector<std::string>{DifferentialStatement()});
  // At 04:59 the next day: full; the current file becomes the old one.
  std::vector<std::string> log = BackupAt(At(2026, 11, 22, 4, 59));
  EXPECT_EQ(db.statements, std::vector<std::string>{FullStatement()});
  EXPECT_EQ(std::vector<std::string>(log.begin() + 2, log.begin() + 5),
            (std::vector<std::string>{"Iniciado backup completo", "Renomeou o backup atual para backup antigo",
                                      "Pronto para iniciar o backup completo"}));
  EXPECT_EQ(SetKinds(Local() / "VekBkp_Old.bak"),
            (std::vector<std::string>{testing::FullSetKind(), testing::DifferentialSetKind()}));
  EXPECT_EQ(SetKinds(BakFile()), std::vector<std::string>{testing::FullSetKind()});
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "22/11/2026 04:59:00");

  // 05:00 on the day after is too late for a full one.
  BackupAt(At(2026, 11, 23, 5, 0));
  EXPECT_EQ(db.statements, std::vector<std::string>{DifferentialStatement()});
  // The next dawn drops the oldest generation.
  log = BackupAt(At(2026, 11, 24, 0, 0));
  EXPECT_EQ(std::vector<std::string>(log.begin() + 2, log.begin() + 6),
            (std::vector<std::string>{"Iniciado backup completo", "Deletou backup antigo VekBkp_Old.bak",
                                      "Renomeou o backup atual para backup antigo",
                                      "Pronto para iniciar o backup completo"}));
  EXPECT_EQ(SetKinds(Local() / "VekBkp_Old.bak"),
            (std::vector<std::string>{testing::FullSetKind(), testing::DifferentialSetKind()}));
}

TEST_F(cgdManutencaoBDTest, OnlyTheDayOfTheMonthOfTheLastFullBackupCounts) {
  BackupAt(At(2026, 3, 5, 3, 0));
  // A month later, on the same day of the month at 03:00: differential.
  BackupAt(At(2026, 4, 5, 3, 0));
  EXPECT_EQ(db.statements, std::vector<std::string>{DifferentialStatement()});
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "05/03/2026 03:00:00");
  // A setting that was lost (or never written) is no day: full at dawn.
  DeleteSetting("VEK", "Backup", "UltimoBackupCompleto");
  BackupAt(At(2026, 4, 5, 4, 0));
  EXPECT_EQ(db.statements, std::vector<std::string>{FullStatement()});
}

TEST_F(cgdManutencaoBDTest, TheMirrorIsCopiedAgainAtDawnAfterDroppingFilesOlderThanADay) {
  BackupAt(At(2026, 11, 20, 22, 0));
  std::ofstream(Mirror() / "antigo.zip") << "old";
  std::ofstream(Mirror() / "ontem.zip") << "yesterday";
  SetModified(Mirror() / "antigo.zip", At(2026, 11, 19, 23, 59));
  SetModified(Mirror() / "ontem.zip", At(2026, 11, 20, 0, 0));
  SetModified(Mirror() / "VekBkp.zip", At(2026, 11, 20, 22, 0));

  // Not at 10:00: the mirror was copied on another day, but it is too late.
  std::vector<std::string> log = BackupAt(At(2026, 11, 21, 10, 0));
  EXPECT_EQ(std::count(log.begin(), log.end(), "Copiou arquivo de backup para o diretório de espelho (compactado)"), 0);

  log = BackupAt(At(2026, 11, 21, 2, 0));
  // Two midnights since the 19th: dropped; one since the 20th: kept.
  EXPECT_FALSE(fs::exists(Mirror() / "antigo.zip"));
  EXPECT_TRUE(fs::exists(Mirror() / "ontem.zip"));
  EXPECT_EQ(std::count(log.begin(), log.end(), "Apagou arquivo antigo de backup"), 1);
  const auto copied = std::find(log.begin(), log.end(), "Copiou arquivo de backup para o diretório de espelho (compactado)");
  ASSERT_NE(copied, log.end());
  EXPECT_EQ(*(copied + 1), "Fechou conexao com o banco de dados");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoEspelhamentoDeBackup"), "21/11/2026 02:00:00");
  // The copy is today's backup: the full set and the differential after it.
  EXPECT_EQ(SetKinds(Mirror() / "VekBkp.zip"), SetKinds(BakFile()));
}

TEST_F(cgdManutencaoBDTest, AMissingOrUnusableFolderStopsBeforeAnythingIsWritten) {
  db.session->Let("Ds_PathBkpLocal", Variant(""));
  db.clock->Set(At(2026, 11, 21, 3, 0));
  VekError error = ErrorOf([&] { manager.Backup(); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040458u));
  EXPECT_EQ(error.Description(), "Não foi configurado o diretório de backup");
  EXPECT_EQ(error.Source(), " -> cgdManutencaoBD.Backup, ");
  EXPECT_EQ(LogLines(), std::vector<std::string>{"21/11/2026 03:00:00 - Iniciado"});
  EXPECT_TRUE(db.statements.empty());
  EXPECT_FALSE(progress->Visible());
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "");

  // A folder that can't be made (a file stands in its way, whoever runs this).
  std::ofstream(app.Path() / "arquivo") << "x";
  db.session->Let("Ds_PathBkpLocal", Variant((app.Path() / "arquivo" / "bkp").string()));
  error = ErrorOf([&] { manager.Backup(); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040458u));
  EXPECT_EQ(error.Description(), "Erro na criAção do diretório de backup ");
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(LogLines().size(), 2u);

  // The mirror folder likewise, after the backup itself was made.
  db.session->Let("Ds_PathBkpLocal", Variant(Local().string()));
  db.session->Let("Ds_PathBkpEspelho", Variant((app.Path() / "arquivo" / "espelho").string()));
  error = ErrorOf([&] { manager.Backup(); });
  EXPECT_EQ(error.Description(), "Erro na criAção do diretório de backup ");
  EXPECT_EQ(SetKinds(BakFile()), std::vector<std::string>{testing::FullSetKind()});
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "21/11/2026 03:00:00");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoEspelhamentoDeBackup"), "");
  EXPECT_FALSE(progress->Visible());
}

TEST_F(cgdManutencaoBDTest, AFolderTheBackupCannotWriteIntoGivesTheFolderMessage) {
  fs::create_directories(Local());
  fs::permissions(Local(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                               fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
  // Backup.log stays writable for whoever runs the backup.
  fs::permissions(app.Path(), fs::perms::all);
  db.clock->Set(At(2026, 11, 21, 3, 0));
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Permissions bind everyone but root: the backup runs as nobody then.
    if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(3);
    try {
      manager.Backup();
    } catch (const VekError& error) {
      ::_exit(error.Description() == "Erro na criAção do diretório de backup " &&
                      error.Number() == static_cast<int32_t>(0x80040458u)
                  ? 0
                  : 1);
    }
    ::_exit(2);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  // It stopped before the connection was used: nothing in the folder.
  EXPECT_EQ(LogLines(), std::vector<std::string>{"21/11/2026 03:00:00 - Iniciado"});
  EXPECT_TRUE(fs::is_empty(Local()));
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "");
}

TEST_F(cgdManutencaoBDTest, ABackupKilledWhileWritingKeepsTheOldGenerationAndTheNextCallStartsAgain) {
  BackupAt(At(2026, 11, 20, 3, 0));
  const uintmax_t one_set = fs::file_size(BakFile());
  db.clock->Set(At(2026, 11, 21, 3, 0));
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // The day's full backup, killed by SIGKILL when its set has grown to just
    // short of a whole one: the write past the size limit raises SIGXFSZ.
    std::signal(SIGXFSZ, [](int) { ::kill(::getpid(), SIGKILL); });
    const rlimit limit{one_set - 30, one_set - 30};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    try {
      manager.Backup();
    } catch (...) {
      ::_exit(1);
    }
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  // The previous generation is whole; the current file holds a set cut short.
  const BackupCheck old_generation = VerifyBackup(Local() / "VekBkp_Old.bak");
  EXPECT_TRUE(old_generation.ok);
  EXPECT_EQ(old_generation.sets.size(), 1u);
  const BackupCheck killed = VerifyBackup(BakFile());
  ASSERT_EQ(killed.sets.size(), 1u);
  EXPECT_FALSE(killed.sets[0].usable);
  EXPECT_NE(killed.sets[0].problem.find("interrupted"), std::string::npos) << killed.sets[0].problem;
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "20/11/2026 03:00:00");

  // The next call, after five: nothing can be built on the cut set, so a full backup.
  EXPECT_EQ(BackupAt(At(2026, 11, 21, 10, 0)),
            (std::vector<std::string>{"Iniciado", "Abriu conexão com banco de dados", "Iniciado backup completo",
                                      "Apagou VekBkp.bak interrompido, sem backup completo",
                                      "Pronto para iniciar o backup completo", "Concluído backup completo",
                                      "Concluiu arquivo de backup", "Fechou conexao com o banco de dados"}));
  EXPECT_TRUE(VerifyBackup(BakFile()).ok);
  EXPECT_EQ(SetKinds(BakFile()), std::vector<std::string>{testing::FullSetKind()});
  EXPECT_TRUE(VerifyBackup(Local() / "VekBkp_Old.bak").ok);
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto"), "21/11/2026 10:00:00");
}

TEST_F(cgdManutencaoBDTest, AFailedBackupStatementStopsAtItsStepWithTheDatabasesError) {
  BackupAt(At(2026, 11, 21, 3, 0));
  // The current file turns unreadable: the differential backup has nothing to build on.
  const uintmax_t size = fs::file_size(BakFile());
  {
    std::fstream file(BakFile(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(0);
    file << "XXXXXXXX";
  }
  db.clock->Set(At(2026, 11, 22, 3, 0));
  SaveSetting("VEK", "Backup", "UltimoBackupCompleto", "22/11/2026 01:00:00");
  const VekError error = ErrorOf([&] { manager.Backup(); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80004005u));
  EXPECT_TRUE(error.Source().ends_with(" -> cgdManutencaoBD.Backup, ")) << error.Source();
  EXPECT_NE(error.Description().find("is not a backup media file"), std::string::npos) << error.Description();
  EXPECT_EQ(LogLines().back(), "22/11/2026 03:00:00 - Pronto para iniciar o backup incremental");
  EXPECT_FALSE(progress->Visible());
  // Nothing was appended to the file the backup could not read.
  EXPECT_EQ(fs::file_size(BakFile()), size);
}

}  // namespace
}  // namespace vek
