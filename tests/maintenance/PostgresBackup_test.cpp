// BACKUP DATABASE on the PostgreSQL server (custom-format dumps in the media
// file) and its restore into a new database, compared table by table over
// libpq. Runs in the postgres run only.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

#include "support/TerminalDatabase.h"
#include "support/TestSupport.h"
#include "vek/maintenance/BackupMedia.h"

namespace vek {
namespace {

#ifdef VEK_TEST_HAS_LIBPQ
using dialect::testing::PgConnection;
using dialect::testing::PgConnInfo;

// Every table of the database, each as its rows in text, sorted.
std::map<std::string, dialect::testing::PgRows> Tables(PgConnection& connection) {
  std::map<std::string, dialect::testing::PgRows> tables;
  for (const auto& row : connection.Query(
           "SELECT table_schema || '.' || table_name FROM information_schema.tables "
           "WHERE table_schema IN ('public', 'mdestacionamento') AND table_type = 'BASE TABLE'")) {
    tables[row[0]] = connection.Query("SELECT t::text FROM " + row[0] + " t ORDER BY 1");
  }
  return tables;
}
#endif

TEST(PostgresBackup, AFullAndADifferentialDumpRestoreIntoANewDatabase) {
#ifdef VEK_TEST_HAS_LIBPQ
  if (!testing::OnPostgres()) VEK_SKIP_WITHOUT_SERVER("the PostgreSQL run sets VEK_TEST_ENGINE=postgresql");
  testing::ScratchFolder folder;
  testing::TerminalDatabase db;
  const std::string media = (folder.Path() / "VekBkp.bak").string();
  const std::string backup = "BACKUP DATABASE Vek\rTO  DISK = N'" + media + "'\rWITH NOINIT, NAME = N'";
  db.Query("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (1, 'Convencional')");
  db.connection->Execute(backup + "Cheio'");
  db.Query("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (2, 'Leito')");
  db.Query("UPDATE TbTipoOnibus SET Ds_TipoOnibus = 'Executivo' WHERE Cd_TipoOnibus = 1");
  db.connection->Execute(backup + "Diferencial', DIFFERENTIAL");
  EXPECT_EQ(db.statements.back(), backup + "Diferencial', DIFFERENTIAL");
  const auto at_backup = Tables(db.server->Connection());
  db.Query("DELETE FROM TbTipoOnibus");

  const BackupCheck check = VerifyBackup(media);
  ASSERT_TRUE(check.ok);
  ASSERT_EQ(check.sets.size(), 2u);
  EXPECT_EQ(check.sets[0].kind, testing::FullSetKind());
  EXPECT_EQ(check.sets[1].kind, testing::DifferentialSetKind());
  EXPECT_EQ(check.sets[1].time, db.clock->Now());

  RestoreOptions options;
  options.to = db.server->Name() + "_r";
  options.server = "postgres@127.0.0.1:" + std::string(std::getenv("VEK_PG_PORT"));
  const std::vector<BackupSetInfo> used = RestoreBackup(media, options);
  PgConnection admin(PgConnInfo(dialect::testing::PgConnectionString()));
  struct Dropper {
    PgConnection& admin;
    std::string name;
    ~Dropper() { admin.Exec("DROP DATABASE IF EXISTS " + name + " WITH (FORCE)"); }
  } dropper{admin, options.to};
  ASSERT_EQ(used.size(), 1u);
  EXPECT_EQ(used[0].number, 2);
  {
    PgConnection restored(PgConnInfo(dialect::testing::PgConnectionString(), options.to));
    const auto tables = Tables(restored);
    EXPECT_GT(tables.size(), 40u);
    EXPECT_EQ(tables, at_backup);
    EXPECT_EQ(tables.at("public.tbtipoonibus").size(), 2u);
  }
  // The database is there now: not again without force.
  const VekError error = testing::ErrorOf([&] { RestoreBackup(media, options); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040458u));
  options.force = true;
  RestoreBackup(media, options);
#else
  VEK_SKIP_WITHOUT_SERVER("the PostgreSQL backup test needs libpq");
#endif
}

}  // namespace
}  // namespace vek
