// The media file that BACKUP DATABASE writes on SQLite, and its restore,
// checked with the sqlite3 client (a program that did not write either).
#include "vek/maintenance/BackupMedia.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/maintenance/ZqModulo.h"
#include "vek/platform/Clock.h"
#include "vek/platform/Format.h"
#include "vek/schema/CreateDatabase.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;

// What the sqlite3 client prints for a command on a database file.
std::string Client(const fs::path& database, const std::string& command) {
  const std::string line = "sqlite3 '" + database.string() + "' \"" + command + "\" 2>&1";
  FILE* pipe = ::popen(line.c_str(), "r");
  EXPECT_NE(pipe, nullptr);
  std::string out;
  char buffer[4096];
  size_t read;
  while (pipe != nullptr && (read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) out.append(buffer, read);
  if (pipe != nullptr) {
    EXPECT_EQ(::pclose(pipe), 0) << out;
  }
  return out;
}

// Every table's schema and rows, as the client dumps them.
std::string Dump(const fs::path& database) { return Client(database, ".dump"); }

RestoreOptions Into(const fs::path& database) {
  RestoreOptions options;
  options.to = database.string();
  return options;
}

void FlipByte(const fs::path& file, uint64_t offset) {
  std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
  stream.seekg(static_cast<std::streamoff>(offset));
  const char byte = static_cast<char>(stream.get());
  stream.seekp(static_cast<std::streamoff>(offset));
  stream.put(static_cast<char>(byte ^ 0x20));
}

class BackupMediaTest : public ::testing::Test {
 protected:
  BackupMediaTest() {
    connection->Open("Driver=SQLite3;Database=" + source.string());
    connection->SetClock(clock);
    schema::CreateDatabase(*connection);
    AddBusCompanies(1, 400);
  }

  void AddBusCompanies(int32_t first, int32_t last) {
    for (int32_t code = first; code <= last; ++code) {
      connection->Execute("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (" +
                          std::to_string(code) + ", 'Tipo " + std::to_string(code) + " " + std::string(60, 'x') +
                          "')");
    }
  }

  void Backup(bool differential, const std::string& extra = "") {
    connection->Execute("BACKUP DATABASE Vek\rTO  DISK = N'" + media.string() + "'\rWITH " +
                        (differential ? "DIFFERENTIAL, " : "") + "NOINIT, NAME = N'" +
                        (differential ? "Diferencial" : "Cheio") + "'" + extra);
  }

  testing::ScratchFolder folder;
  fs::path source = folder.Path() / "Vek.db";
  fs::path media = folder.Path() / "VekBkp.bak";
  fs::path restored = folder.Path() / "Restaurado.db";
  std::shared_ptr<FixedClock> clock = std::make_shared<FixedClock>(DateSerial(2026, 11, 21) + TimeSerial(3, 0, 0));
  std::shared_ptr<Connection> connection = std::make_shared<Connection>();
};

TEST_F(BackupMediaTest, RestoresTheLastFullSetPlusTheLatestDifferentialAfterIt) {
  Backup(false);
  connection->Execute("UPDATE TbTipoOnibus SET Ds_TipoOnibus = 'Leito' WHERE Cd_TipoOnibus = 7");
  connection->Execute("DELETE FROM TbTipoOnibus WHERE Cd_TipoOnibus > 390");
  clock->Advance(3600);
  Backup(true);
  connection->Execute("UPDATE TbTipoOnibus SET Ds_TipoOnibus = 'Executivo' WHERE Cd_TipoOnibus = 8");
  AddBusCompanies(401, 900);
  clock->Advance(3600);
  Backup(true);
  const std::string at_backup = Dump(source);
  // Later changes are in no set.
  connection->Execute("DELETE FROM TbTipoOnibus");

  const BackupCheck check = VerifyBackup(media);
  ASSERT_TRUE(check.ok);
  ASSERT_EQ(check.sets.size(), 3u);
  EXPECT_EQ(check.sets[0].kind, "full");
  EXPECT_EQ(check.sets[0].name, "Cheio");
  EXPECT_EQ(check.sets[0].database, "Vek");
  EXPECT_EQ(Format(Variant(check.sets[0].time), "dd/mm/yyyy hh:Nn:ss"), "21/11/2026 03:00:00");
  EXPECT_EQ(check.sets[2].kind, "differential");
  EXPECT_EQ(Format(Variant(check.sets[2].time), "dd/mm/yyyy hh:Nn:ss"), "21/11/2026 05:00:00");
  // A differential holds only what changed since the full set.
  EXPECT_LT(check.sets[1].pages, check.sets[0].pages / 4);
  EXPECT_LT(check.sets[1].bytes, check.sets[0].bytes / 4);

  const std::vector<BackupSetInfo> used = RestoreBackup(media, Into(restored));
  ASSERT_EQ(used.size(), 2u);
  EXPECT_EQ(used[0].number, 1);
  EXPECT_EQ(used[1].number, 3);
  EXPECT_EQ(Dump(restored), at_backup);
  EXPECT_EQ(Client(restored, "SELECT Ds_TipoOnibus FROM TbTipoOnibus WHERE Cd_TipoOnibus IN (7, 8) ORDER BY Cd_TipoOnibus"),
            "Leito\nExecutivo\n");
  EXPECT_EQ(fs::status(restored).permissions() & fs::perms::all, fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(BackupMediaTest, ADifferentialHoldsTheChangedBytesOfRowsSpreadOverTheWholeTable) {
  AddBusCompanies(401, 8000);
  Backup(false);
  // One row in a hundred, across every page of the table; one column of each
  // is longer afterwards, so the rest of its page moves too.
  connection->Execute("UPDATE TbTipoOnibus SET Ds_TipoOnibus = 'Leito' WHERE Cd_TipoOnibus % 100 = 0");
  connection->Execute("UPDATE TbTipoOnibus SET Ds_TipoOnibus = Ds_TipoOnibus || '!' WHERE Cd_TipoOnibus = 7950");
  Backup(true);
  const std::string at_backup = Dump(source);

  const BackupCheck check = VerifyBackup(media);
  ASSERT_EQ(check.sets.size(), 2u);
  // Many pages hold a changed row, but the set holds only the bytes that changed.
  EXPECT_GE(check.sets[1].pages, 70u);
  const uint64_t page = check.sets[0].bytes / check.sets[0].pages;
  EXPECT_LT(check.sets[1].bytes, check.sets[1].pages * page / 10);
  EXPECT_LT(check.sets[1].bytes, check.sets[0].bytes / 20);
  RestoreBackup(media, Into(restored));
  EXPECT_EQ(Dump(restored), at_backup);
  // (|| '' leaves the column's collation, which the client does not know, out.)
  EXPECT_EQ(Client(restored, "SELECT COUNT(*) FROM TbTipoOnibus WHERE Ds_TipoOnibus || '' = 'Leito'"), "80\n");
}

TEST_F(BackupMediaTest, AFullSetIsAConsistentSnapshotWhileAnotherConnectionWrites) {
  auto other = std::make_shared<Connection>();
  other->Open("Driver=SQLite3;Database=" + source.string());
  other->ExecuteNative("BEGIN IMMEDIATE");
  other->ExecuteNative("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (5000, 'Pendente')");
  const std::string committed = Dump(source);
  // The writer holds its transaction open: the backup neither waits for it nor sees it.
  Backup(false);
  other->ExecuteNative("COMMIT");
  RestoreBackup(media, Into(restored));
  EXPECT_EQ(Dump(restored), committed);
  EXPECT_EQ(Client(restored, "SELECT COUNT(*) FROM TbTipoOnibus WHERE Cd_TipoOnibus = 5000"), "0\n");
}

TEST_F(BackupMediaTest, AFlippedByteInAnySetIsDetectedAndRefused) {
  Backup(false);
  connection->Execute("UPDATE TbTipoOnibus SET Ds_TipoOnibus = 'Leito' WHERE Cd_TipoOnibus = 7");
  Backup(true);
  const std::vector<BackupSetInfo> sets = VerifyBackup(media).sets;
  ASSERT_EQ(sets.size(), 2u);
  const uint64_t first = sets[0].bytes;
  const uint64_t total = first + sets[1].bytes;
  // The header's name, the first set's pages, its trailer, the second set's
  // header, its page numbers and pages, its checksum.
  for (const uint64_t offset : {uint64_t{14}, uint64_t{200}, first / 2, first - 3, first + 30, first + 100,
                                total - 20, total - 1}) {
    SCOPED_TRACE(offset);
    fs::copy_file(media, folder.Path() / "good.bak", fs::copy_options::overwrite_existing);
    FlipByte(media, offset);
    const BackupCheck check = VerifyBackup(media);
    EXPECT_FALSE(check.ok);
    const size_t damaged = offset < first ? 0 : 1;
    ASSERT_GT(check.sets.size(), damaged);
    EXPECT_FALSE(check.sets[damaged].usable);
    EXPECT_NE(check.sets[damaged].problem.find("damaged"), std::string::npos) << check.sets[damaged].problem;
    const VekError error = ErrorOf([&] { RestoreBackup(media, Into(restored)); });
    EXPECT_EQ(error.Number(), adErrUnspecified);
    EXPECT_NE(error.Description().find("damaged"), std::string::npos) << error.Description();
    EXPECT_FALSE(fs::exists(restored));
    fs::copy_file(folder.Path() / "good.bak", media, fs::copy_options::overwrite_existing);
  }
  EXPECT_TRUE(VerifyBackup(media).ok);
}

TEST_F(BackupMediaTest, ASetCutShortLeavesTheEarlierOnesRestorableAndTheNextBackupRepairsTheFile) {
  Backup(false);
  const std::string at_full = Dump(source);
  connection->Execute("UPDATE TbTipoOnibus SET Ds_TipoOnibus = 'Leito' WHERE Cd_TipoOnibus = 7");
  Backup(true);
  const uint64_t first = VerifyBackup(media).sets[0].bytes;
  // What a backup killed while writing leaves: half a set at the end.
  fs::resize_file(media, first + (fs::file_size(media) - first) / 2);

  BackupCheck check = VerifyBackup(media);
  EXPECT_FALSE(check.ok);
  ASSERT_EQ(check.sets.size(), 2u);
  EXPECT_TRUE(check.sets[0].usable);
  EXPECT_NE(check.sets[1].problem.find("interrupted"), std::string::npos) << check.sets[1].problem;
  RestoreBackup(media, Into(restored));
  EXPECT_EQ(Dump(restored), at_full);

  Backup(true);
  check = VerifyBackup(media);
  EXPECT_TRUE(check.ok);
  ASSERT_EQ(check.sets.size(), 2u);
  EXPECT_EQ(check.sets[1].kind, "differential");
}

TEST_F(BackupMediaTest, AProcessKilledDuringABackupLeavesTheFileRestorable) {
  AddBusCompanies(401, 20000);
  Backup(false);
  const std::string at_full = Dump(source);
  connection->Close();
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Full sets over and over, until killed.
    Connection writer;
    writer.Open("Driver=SQLite3;Database=" + source.string());
    for (;;) writer.Execute("BACKUP DATABASE Vek TO DISK = N'" + media.string() + "' WITH NOINIT");
  }
  const uint64_t one_set = fs::file_size(media);
  // Killed while its third set is somewhere on the way.
  while (fs::file_size(media) < one_set * 2 + one_set / 3) ::usleep(1000);
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));

  const BackupCheck check = VerifyBackup(media);
  ASSERT_GE(check.sets.size(), 3u);
  for (size_t i = 0; i + 1 < check.sets.size(); ++i) EXPECT_TRUE(check.sets[i].usable) << i;
  RestoreBackup(media, Into(restored));
  EXPECT_EQ(Dump(restored), at_full);

  connection->Open();
  Backup(true);
  EXPECT_TRUE(VerifyBackup(media).ok);
}

TEST_F(BackupMediaTest, ForeignTruncatedOrMissingFilesAreClearErrors) {
  std::ofstream(folder.Path() / "notes.bak") << "these are not the sets you are looking for";
  VekError error = ErrorOf([&] { RestoreBackup(folder.Path() / "notes.bak", Into(restored)); });
  EXPECT_EQ(error.Number(), adErrUnspecified);
  EXPECT_NE(error.Description().find("is not a backup media file"), std::string::npos) << error.Description();

  std::ofstream(folder.Path() / "empty.bak").close();
  error = ErrorOf([&] { VerifyBackup(folder.Path() / "empty.bak"); });
  EXPECT_NE(error.Description().find("is empty"), std::string::npos) << error.Description();

  error = ErrorOf([&] { VerifyBackup(folder.Path() / "missing.bak"); });
  EXPECT_NE(error.Description().find("does not exist"), std::string::npos) << error.Description();

  Backup(false);
  fs::resize_file(media, 20);
  error = ErrorOf([&] { RestoreBackup(media, Into(restored)); });
  EXPECT_NE(error.Description().find("no complete full backup set"), std::string::npos) << error.Description();
  EXPECT_FALSE(fs::exists(restored));
  EXPECT_EQ(error.Source(), " -> BackupMedia.RestoreBackup, ");
}

TEST_F(BackupMediaTest, ADifferentialNeedsAFullSetAndInitStartsTheFileAgain) {
  VekError error = ErrorOf([&] { Backup(true); });
  EXPECT_EQ(error.Number(), adErrUnspecified);
  EXPECT_NE(error.Description().find("because a current database backup does not exist"), std::string::npos);
  EXPECT_FALSE(fs::exists(media) && fs::file_size(media) > 0);

  Backup(false);
  Backup(true);
  Backup(false, ", INIT");
  ASSERT_EQ(VerifyBackup(media).sets.size(), 1u);

  error = ErrorOf([&] { connection->Execute("BACKUP DATABASE Vek TO DISK = N'" + media.string() + "' WITH COMPRESSION"); });
  EXPECT_EQ(error.Number(), adErrSyntax);
  EXPECT_EQ(error.Description(), "BACKUP DATABASE: the option COMPRESSION is not supported.");
  error = ErrorOf([&] { connection->Execute("BACKUP DATABASE Vek TO TAPE = N'x'"); });
  EXPECT_EQ(error.Description(), "BACKUP DATABASE: expected DISK near 'TAPE'.");
}

TEST_F(BackupMediaTest, RestoresFromTheZipCopyAndNeverOverwritesWithoutForce) {
  Backup(false);
  AddBusCompanies(401, 410);
  Backup(true);
  const std::string at_backup = Dump(source);
  const fs::path zip = folder.Path() / "VekBkp.zip";
  Compacta(media.string(), zip.string());
  // Another program finds the zip whole.
  EXPECT_EQ(std::system(("unzip -tq '" + zip.string() + "' >/dev/null").c_str()), 0);

  EXPECT_EQ(RestoreBackup(zip, Into(restored)).size(), 2u);
  EXPECT_EQ(Dump(restored), at_backup);

  const VekError error = ErrorOf([&] { RestoreBackup(zip, Into(restored)); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040458u));
  EXPECT_NE(error.Description().find("use --force"), std::string::npos);
  RestoreOptions force = Into(restored);
  force.force = true;
  connection->Execute("DELETE FROM TbTipoOnibus WHERE Cd_TipoOnibus > 100");
  Backup(true);
  Compacta(media.string(), zip.string());
  RestoreBackup(zip, force);
  EXPECT_EQ(Client(restored, "SELECT COUNT(*) FROM TbTipoOnibus"), "100\n");

  // A byte flipped in the compressed data fails the zip's own CRC.
  FlipByte(zip, fs::file_size(zip) / 2);
  EXPECT_NE(ErrorOf([&] { VerifyBackup(zip); }).Description().find("damaged"), std::string::npos);
  const VekError missing = ErrorOf([&] { Compacta((folder.Path() / "none.bak").string(), zip.string()); });
  EXPECT_EQ(missing.Description(), "Erro na compactação do arquivo");
  EXPECT_EQ(missing.Source(), " -> ZqModulo.Compacta, ");
}

}  // namespace
}  // namespace vek
