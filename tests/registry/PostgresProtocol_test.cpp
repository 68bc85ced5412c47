// The persistence protocol on a PostgreSQL server over ODBC: the same
// statements as on the embedded database, translated on the way.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/TerminalDatabase.h"
#include "db/dialect/PgTestDb.h"
#include "support/TestSupport.h"
#include "vek/foundation/Sequences.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Clock.h"
#include "vek/registry/cgdBairro.h"
#include "vek/schema/CreateDatabase.h"

namespace vek {
namespace {

#ifdef VEK_TEST_HAS_LIBPQ

std::shared_ptr<cgpSistema> ServerSession(const std::string& database) {
  auto session = std::make_shared<cgpSistema>();
  session->Let("Cd_DB", Variant(static_cast<int32_t>(BancoDadosPostgreSQL)));
  session->Let("Nm_ServidorDB", Variant("postgres@127.0.0.1:" + std::string(std::getenv("VEK_PG_PORT"))));
  session->Let("Ds_CaminhoDB", Variant(database));
  session->SetClock(std::make_shared<FixedClock>(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0)));
  session->AbrirConexao();
  return session;
}

TEST(PostgresProtocol, ANeighbourhoodIsSavedLoadedChangedAndDeletedWithTheSameStatements) {
  dialect::testing::PgTestDb server;
  if (!server.Open() || std::getenv("VEK_PG_PORT") == nullptr) VEK_SKIP_WITHOUT_SERVER("no PostgreSQL server");
  auto session = ServerSession(server.Name());
  schema::CreateDatabase(*session->Ob_Conexao());
  schema::CreateDatabase(*session->Ob_Conexao());  // safe twice
  // A key written by hand: the identity keeps ahead of it, as SQL Server's does.
  session->Ob_Conexao()->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (40, 'Centro')");
  std::vector<std::string> seen;
  session->Ob_Conexao()->OnStatement([&](const std::string& text) { seen.push_back(text); });

  cgdBairro bairro;
  bairro.Ob_cgpSistema(session);
  bairro.Ob_cgp()->Let("Nm_Bairro", Variant("Setor Oeste d'Ávila"));
  bairro.Salvar();
  const int32_t code = CLng(bairro.Ob_cgp()->Get("Cd_Bairro"));
  EXPECT_EQ(code, 41);
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0], "SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = 0\r;\r");

  // Another workstation, in a process of its own, sees what the first saved
  // and changes it.
  const pid_t workstation = fork();
  ASSERT_GE(workstation, 0);
  if (workstation == 0) {
    int status = 1;
    try {
      cgdBairro other;
      other.Ob_cgpSistema(ServerSession(server.Name()));
      other.Ob_cgp()->Let("Cd_Bairro", Variant(code));
      if (CStr(other.Consultar(false)->Get("Nm_Bairro")) == "Setor Oeste d'Ávila") {
        other.Ob_cgp()->Let("Nm_Bairro", Variant("Setor Sul"));
        other.Salvar();
        status = 0;
      }
    } catch (...) {
      status = 2;
    }
    _exit(status);
  }
  int status = -1;
  ASSERT_EQ(waitpid(workstation, &status, 0), workstation);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0) << "1: the other workstation read another name; 2: it failed";
  auto other_session = ServerSession(server.Name());

  bairro.Consultar();
  EXPECT_EQ(CStr(bairro.Ob_cgp()->Get("Nm_Bairro")), "Setor Sul");
  EXPECT_EQ(seen.back(), "SELECT A.*\rFROM   TbBairro A\rWHERE  A.Cd_Bairro = " + std::to_string(code) + "\r;\r");

  bairro.Excluir();
  EXPECT_EQ(seen.back(), "DELETE \rFROM   TbBairro\rWHERE  Cd_Bairro = " + std::to_string(code) + "\r");
  bairro.Ob_cgp()->Let("Cd_Bairro", Variant(code));
  EXPECT_EQ(testing::ErrorOf([&] { bairro.Consultar(false); }).Number(), static_cast<int32_t>(0x80040202u));

  // A city that does not exist is refused by the database, with its message.
  bairro.Ob_cgp()->RestaurarDefault();
  bairro.Ob_cgp()->Let("Nm_Bairro", Variant("Órfão"));
  bairro.Ob_cgp()->Let("Cd_Cidade", Variant(999));
  const VekError refused = testing::ErrorOf([&] { bairro.Salvar(); });
  EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040E2Fu));
  EXPECT_EQ(refused.Source(), "ODBC -> cgdBairro.Incluir,  -> cgdBairro.Salvar, ");

  // Sequence numbers on the server: the first of an attribute, then the next.
  EXPECT_EQ(NextSequenceValue(*session, "Cd_Horario"), 1);
  EXPECT_EQ(NextSequenceValue(*other_session, "Cd_Horario"), 2);

  // getdate() is the session's clock on the server too.
  auto now = session->Ob_Conexao()->Execute("SELECT getdate() AS Agora");
  EXPECT_EQ(now->Fields().Item("Agora").Value(), Variant(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0)));
}

#endif

}  // namespace
}  // namespace vek
