#include "vek/db/Connection.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <fstream>
#include <thread>
#include <vector>

#include "support/TestSupport.h"
#include "vek/db/DbError.h"
#include "vek/platform/Clock.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::OpenMemoryDatabase;
using testing::ScratchFolder;

TEST(Connection, OpensClosesAndRefusesBadUse) {
  auto connection = std::make_shared<Connection>();
  EXPECT_EQ(connection->State(), adStateClosed);
  EXPECT_EQ(ErrorOf([&] { connection->Execute("SELECT 1"); }).Number(), 3704);
  connection->Open(":memory:");
  EXPECT_EQ(connection->State(), adStateOpen);
  EXPECT_EQ(connection->SqlDialect(), Dialect::SQLite);
  EXPECT_EQ(ErrorOf([&] { connection->Open(":memory:"); }).Number(), 3705);
  connection->Close();
  connection->Close();
  EXPECT_EQ(connection->State(), adStateClosed);

  const VekError no_driver = ErrorOf([] { Connection().Open("Driver={Nada};Server=x"); });
  EXPECT_EQ(no_driver.Number(), adErrUnspecified);
  ScratchFolder folder;
  const VekError no_folder = ErrorOf([&] {
    Connection().Open("Driver=SQLite3;Database=" + (folder.Path() / "missing" / "x.db").string());
  });
  EXPECT_EQ(no_folder.Number(), adErrUnspecified);
  EXPECT_EQ(no_folder.Source(), "SQLite");
}

TEST(Connection, ExecuteReportsRecordsAffectedAndReturnsRowsOnlyForQueries) {
  auto connection = OpenMemoryDatabase();
  int32_t affected = 99;
  auto created = connection->Execute("CREATE TABLE T (Id INT PRIMARY KEY, Nm VARCHAR(20))", affected);
  EXPECT_EQ(created->State(), adStateClosed);
  connection->Execute("INSERT INTO T VALUES (1, 'a')", affected);
  EXPECT_EQ(affected, 1);
  connection->Execute("INSERT INTO T VALUES (2, 'b')");
  connection->Execute("UPDATE T SET Nm = 'c'", affected);
  EXPECT_EQ(affected, 2);
  connection->Execute("DELETE FROM T WHERE Id = 99", affected);
  EXPECT_EQ(affected, 0);
  auto rows = connection->Execute("SELECT Nm FROM T", affected);
  EXPECT_EQ(rows->State(), adStateOpen);
  EXPECT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(affected, -1);
}

TEST(Connection, DatabaseErrorsKeepTheMessageAndTakeAdoNumbers) {
  auto connection = OpenMemoryDatabase();
  connection->Execute("CREATE TABLE TbCidade (Cd_Cidade INTEGER PRIMARY KEY, Nm_Cidade VARCHAR(50) NOT NULL)");
  connection->Execute(
      "CREATE TABLE TbBairro (Cd_Bairro INTEGER PRIMARY KEY, Cd_Cidade INT REFERENCES TbCidade (Cd_Cidade))");
  connection->Execute("INSERT INTO TbCidade VALUES (1, 'Goiânia')");
  connection->Execute("INSERT INTO TbBairro VALUES (1, 1)");

  const VekError syntax = ErrorOf([&] { connection->Execute("SELEC * FROM TbCidade"); });
  EXPECT_EQ(syntax.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_NE(syntax.Description().find("syntax error"), std::string::npos);
  EXPECT_EQ(syntax.Source(), "SQLite");
  EXPECT_EQ(ErrorOf([&] { connection->Execute("SELECT * FROM TbNada"); }).Number(), adErrSyntax);

  const VekError duplicate = ErrorOf([&] { connection->Execute("INSERT INTO TbCidade VALUES (1, 'x')"); });
  EXPECT_EQ(duplicate.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_NE(duplicate.Description().find("UNIQUE"), std::string::npos);
  // A row that others still refer to can't go.
  EXPECT_EQ(ErrorOf([&] { connection->Execute("DELETE FROM TbCidade WHERE Cd_Cidade = 1"); }).Number(),
            adErrConstraint);
  EXPECT_EQ(ErrorOf([&] { connection->Execute("INSERT INTO TbBairro VALUES (2, 5)"); }).Number(),
            adErrConstraint);
  EXPECT_EQ(ErrorOf([&] { connection->Execute("INSERT INTO TbCidade (Cd_Cidade) VALUES (3)"); }).Number(),
            adErrConstraint);
}

TEST(Connection, EveryStatementPassesTheHookAndOnlyOneRunsPerCall) {
  auto connection = OpenMemoryDatabase();
  std::vector<std::string> seen;
  connection->OnStatement([&](const std::string& text) { seen.push_back(text); });
  const std::string create = "CREATE TABLE T\r(Id INT)";
  connection->Execute(create);
  const std::string two = "INSERT INTO T VALUES (1);\rDELETE FROM T";
  const VekError refused = ErrorOf([&] { connection->Execute(two); });
  EXPECT_EQ(refused.Number(), adErrSyntax);
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0], create);
  EXPECT_EQ(seen[1], two);
  auto rows = connection->Execute("SELECT COUNT(*) AS N FROM T;  -- the count\r");
  EXPECT_EQ(CLng(rows->Fields().Item("N").Value()), 0);  // nothing of the refused text ran
  EXPECT_EQ(ErrorOf([&] { connection->Execute("SELECT 1; SELECT 2"); }).Number(), adErrSyntax);
  connection->Execute("SELECT ';' AS Ponto; ;");
  connection->OnStatement(nullptr);
  connection->Execute("SELECT 1");
  EXPECT_EQ(seen.size(), 5u);  // the last one ran after the hook was removed
}

TEST(Connection, GetDateReadsTheOwnersClock) {
  auto connection = OpenMemoryDatabase();
  auto clock = std::make_shared<FixedClock>(DateSerial(2026, 11, 21) + TimeSerial(23, 59, 59));
  connection->SetClock(clock);
  auto now = connection->Execute("SELECT getdate() AS Agora");
  EXPECT_EQ(now->Fields().Item("Agora").Value(), Variant(DateSerial(2026, 11, 21) + TimeSerial(23, 59, 59)));
  clock->Advance(1);
  now = connection->Execute("SELECT GETDATE() AS Agora");
  EXPECT_EQ(now->Fields().Item("Agora").Value(), Variant(DateSerial(2026, 11, 22)));
}

TEST(Connection, FileDatabaseAttachesTheAccessControlDatabaseBesideIt) {
  ScratchFolder folder;
  sqlite3* raw = nullptr;
  ASSERT_EQ(sqlite3_open((folder.Path() / "MDESTACIONAMENTO.db").c_str(), &raw), SQLITE_OK);
  sqlite3_exec(raw, "CREATE TABLE CARTAO (CODIGOCARTAO INT, NOME VARCHAR(40)); INSERT INTO CARTAO VALUES (7, 'Mensalista')",
               nullptr, nullptr, nullptr);
  sqlite3_close(raw);

  auto connection = std::make_shared<Connection>();
  connection->Open("Driver=SQLite3;Database=" + (folder.Path() / "Vek.db").string());
  auto rows = connection->Execute("SELECT NOME FROM MDESTACIONAMENTO.CARTAO WHERE CODIGOCARTAO = 7");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "Mensalista");
  auto mode = connection->Execute("PRAGMA journal_mode");
  EXPECT_EQ(CStr(mode->Fields().Item(0).Value()), "wal");
  auto keys = connection->Execute("PRAGMA foreign_keys");
  EXPECT_EQ(CLng(keys->Fields().Item(0).Value()), 1);
}

TEST(Connection, AWriteWaitsForAnotherWorkstationInsteadOfFailing) {
  ScratchFolder folder;
  const std::string file = (folder.Path() / "Vek.db").string();
  auto first = std::make_shared<Connection>();
  first->Open(file);
  first->Execute("CREATE TABLE T (Id INT)");

  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE; INSERT INTO T VALUES (1)", nullptr, nullptr, nullptr), SQLITE_OK);
  std::thread release([other] {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    sqlite3_exec(other, "COMMIT", nullptr, nullptr, nullptr);
  });
  first->Execute("INSERT INTO T VALUES (2)");
  release.join();
  sqlite3_close(other);
  auto rows = first->Execute("SELECT COUNT(*) FROM T");
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 2);
}

}  // namespace
}  // namespace vek
