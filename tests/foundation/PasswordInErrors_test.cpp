// A password never shows in a failure: not clear, not in the scrambled form
// Vek.ini keeps, whichever database kind and way the connection fails.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/foundation/cgdCripto.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/foundation/Enums.h"
#include "vek/platform/Variant.h"

namespace vek {
namespace {

constexpr const char* kPassword = "Tr0c4-Senha";

void ExpectNoPassword(const VekError& error, const std::string& what) {
  const std::string scrambled = Cripto(kPassword);
  for (const std::string& text : {error.Description(), error.Source()}) {
    EXPECT_EQ(text.find(kPassword), std::string::npos) << what << ": " << text;
    EXPECT_EQ(text.find(scrambled), std::string::npos) << what << ": " << text;
  }
  EXPECT_FALSE(error.Description().empty()) << what;  // the failure is still explained
}

TEST(PasswordInErrors, AFailingConnectionNeverShowsThePassword) {
  // Servers where nothing answers (port 9), under every server kind.
  const struct {
    CdBancoDadosEnum kind;
    std::string server;
  } servers[] = {
      {BancoDadosPostgreSQL, "vek@127.0.0.1:9"},
      {BancoDadosPostgreSQL, "vek@no-such-host.invalid"},
      {BancoDadosSqlServer2000, "sa@127.0.0.1:9"},
  };
  for (const auto& server : servers) {
    auto session = std::make_shared<cgpSistema>();
    session->Let("Cd_DB", Variant(static_cast<int32_t>(server.kind)));
    session->Let("Nm_ServidorDB", Variant(server.server));
    session->Let("Ds_CaminhoDB", Variant("terminal"));
    session->Let("Ds_SenhaDB", Variant(kPassword));
    ASSERT_NE(CStr(session->Get("Ds_StringConexaoDB")).find(kPassword), std::string::npos);
    ExpectNoPassword(testing::ErrorOf([&] { session->AbrirConexao(); }), server.server);
  }
  // A connection string given whole, to a driver that is not installed too.
  for (const std::string& text :
       {"Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=9;Database=t;Uid=vek;Pwd=" + std::string(kPassword),
        "Driver={No Such Driver};Server=127.0.0.1;Database=t;Uid=vek;Pwd=" + std::string(kPassword),
        "DSN=nosuchdsn;Uid=vek;Pwd=" + std::string(kPassword)}) {
    Connection connection;
    ExpectNoPassword(testing::ErrorOf([&] { connection.Open(text); }), text.substr(0, 20));
  }
}

}  // namespace
}  // namespace vek
