#include "vek/foundation/cgdCripto.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <random>
#include <string>

#include "vek/foundation/VekError.h"
#include "vek/foundation/cgdSistema.h"
#include "vek/platform/AppPath.h"
#include "vek/platform/ProfileFile.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

VekError Caught(const std::function<void()>& body) {
  try {
    body();
  } catch (const VekError& error) {
    return error;
  }
  ADD_FAILURE() << "no error was raised";
  return VekError(0, "", "");
}

TEST(cgdCripto, CriptoWritesThreeUpperCaseHexDigitsPerCharacter) {
  EXPECT_EQ(Cripto("Ab"), "041062");
  EXPECT_EQ(Cripto(""), "");
  EXPECT_EQ(Cripto("\n~"), "00A07E");
  // Accented letters are one character each, not their UTF-8 bytes.
  EXPECT_EQ(Cripto("çãé"), "0E70E30E9");
  EXPECT_EQ(Cripto("ÿ"), "0FF");
  EXPECT_EQ(Cripto("ő"), "151");
  // A second text means nothing is encoded.
  EXPECT_EQ(Cripto("A", "x"), "");
  EXPECT_EQ(Cripto("", "x"), "");
}

TEST(cgdCripto, DesCriptoUndoesCripto) {
  EXPECT_EQ(DesCripto("041062"), "Ab");
  for (const std::string text : {"", "Ação é ótima", "senha 123", "ÿ~ő", " a "}) {
    EXPECT_EQ(DesCripto(Cripto(text)), text) << text;
  }
  EXPECT_EQ(DesCripto("0e7"), "ç");
  // A short last group is read as it is.
  EXPECT_EQ(DesCripto("04106"), std::string("A\x06"));
  EXPECT_EQ(DesCripto("04141"), "AA");
  EXPECT_EQ(DesCripto("041062", "x"), "");
}

TEST(cgdCripto, CodesThatDoNotFitAndGroupsThatAreNotHexRaiseThroughTheChain) {
  const VekError wide = Caught([] { Cripto("a€"); });
  EXPECT_EQ(wide.Number(), kInvalidProcedureCall);
  EXPECT_EQ(wide.Source(), " -> cgdCripto.Cripto, ");

  const VekError bad_group = Caught([] { DesCripto("0410G2"); });
  EXPECT_EQ(bad_group.Number(), kTypeMismatch);
  EXPECT_EQ(bad_group.Source(), " -> cgdCripto.DesCripto, ");
  EXPECT_EQ(Caught([] { DesCripto("-01"); }).Number(), kTypeMismatch);
}

class ConfigurarVariaveisConexaoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::random_device random;
    folder_ = fs::temp_directory_path() /
              ("vek_cripto_" + std::to_string(::getpid()) + "_" + std::to_string(random()));
    fs::create_directories(folder_);
    if (const char* old = std::getenv("XDG_CONFIG_HOME")) old_xdg_ = old;
    ::setenv("XDG_CONFIG_HOME", (folder_ / "config").c_str(), 1);
    SetAppPath(folder_);
  }
  void TearDown() override {
    SetAppPath({});
    if (old_xdg_) {
      ::setenv("XDG_CONFIG_HOME", old_xdg_->c_str(), 1);
    } else {
      ::unsetenv("XDG_CONFIG_HOME");
    }
    std::error_code error;
    fs::remove_all(folder_, error);
  }

  // Saves a session whose own cursor and lock differ from what the loaders get.
  std::shared_ptr<cgpSistema> SaveSession(int32_t kind) {
    auto session = std::make_shared<cgpSistema>();
    session->Let("Cursor", Variant(int32_t{3}));
    session->Let("LockType", Variant(int32_t{1}));
    session->Let("Cd_DB", Variant(kind));
    session->Let("Nm_ServidorDB", Variant("servidor"));
    session->Let("Ds_CaminhoDB", Variant("/srv/vek/terminal.db"));
    session->Let("Ds_SenhaDB", Variant("segredo"));
    cgdSistema sistema;
    sistema.Ob_cgp(session);
    sistema.Salvar();
    WritePrivateProfileString("VisualizadorViagens", "Qt_TempoMilesegundosAcionarCatraca", "0",
                              folder_ / "Vek.ini");
    return session;
  }

  fs::path folder_;
  std::optional<std::string> old_xdg_;
};

TEST_F(ConfigurarVariaveisConexaoTest, LoadersGetKeysetOptimisticAndTheSessionsConnection) {
  for (const int32_t kind : {int32_t{BancoDadosSQLite3}, int32_t{BancoDadosSqlServer2000}}) {
    const std::shared_ptr<cgpSistema> saved = SaveSession(kind);
    DataControlSettings target;
    target.Let("Cursor", Variant(int32_t{2}));
    ConfigurarVariaveisConexao(target);
    EXPECT_EQ(target.Get("Cursor"), Variant(int32_t{1}));
    EXPECT_EQ(target.Get("LockType"), Variant(int32_t{3}));
    EXPECT_EQ(target.Get("Ds_CaminhoBD"), Variant("/srv/vek/terminal.db"));
    // The password went through the file scrambled and came back clear.
    EXPECT_EQ(target.Get("Ds_StringConexaoDB"), Variant(saved->Ds_StringConexaoDB()));
  }
}

TEST_F(ConfigurarVariaveisConexaoTest, FailuresCarryTheWholeChain) {
  DataControlSettings target;
  const VekError no_file = Caught([&] { ConfigurarVariaveisConexao(target); });
  EXPECT_EQ(no_file.Number(), kTypeMismatch);
  EXPECT_EQ(no_file.Source(),
            " -> cgdSistema.Consultar,  -> cgdCripto.ConfigurarVariaveisConexao, ");

  SaveSession(BancoDadosSQLite3);
  class WithoutPath : public cgp {
   public:
    WithoutPath()
        : cgp(std::make_shared<const PropertyList>(
              std::vector<PropertyDef>{{"Ds_StringConexaoDB", PropertyType::String},
                                       {"Cursor", PropertyType::Long},
                                       {"LockType", PropertyType::Long}})) {}
  } partial;
  const VekError missing = Caught([&] { ConfigurarVariaveisConexao(partial); });
  EXPECT_EQ(missing.Number(), kObjectDoesNotSupportProperty);
  EXPECT_EQ(missing.Source(), " -> cgdCripto.ConfigurarVariaveisConexao, ");
  EXPECT_EQ(partial.Get("LockType"), Variant(int32_t{3}));
}

}  // namespace
}  // namespace vek
