#include "vek/foundation/cgdCripto.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TestSupport.h"
#include "vek/foundation/cgdSistema.h"
#include "vek/platform/ProfileFile.h"

namespace vek {
namespace {

using testing::ErrorOf;

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
}

TEST(cgdCripto, DesCriptoUndoesCripto) {
  for (const std::string text : {"", "Ação é ótima", "senha 123", "ÿ~ő", " a "}) {
    EXPECT_EQ(DesCripto(Cripto(text)), text) << text;
  }
  EXPECT_EQ(DesCripto("0e7"), "ç");
  // A short last group is read as it is.
  EXPECT_EQ(DesCripto("04106"), std::string("A\x06"));
  EXPECT_EQ(DesCripto("041062", "x"), "");
}

TEST(cgdCripto, CodesThatDoNotFitAndGroupsThatAreNotHexRaiseThroughTheChain) {
  const VekError wide = ErrorOf([] { Cripto("a€"); });
  EXPECT_EQ(wide.Number(), kInvalidProcedureCall);
  EXPECT_EQ(wide.Source(), " -> cgdCripto.Cripto, ");

  const VekError bad_group = ErrorOf([] { DesCripto("0410G2"); });
  EXPECT_EQ(bad_group.Number(), kTypeMismatch);
  EXPECT_EQ(bad_group.Source(), " -> cgdCripto.DesCripto, ");
  EXPECT_EQ(ErrorOf([] { DesCripto("-01"); }).Number(), kTypeMismatch);
}

class ConfigurarVariaveisConexaoTest : public ::testing::Test {
 protected:

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
    WritePrivateProfileString("VisualizadorViagens", "Qt_TempoMilesegundosAcionarCatraca", "0", app_.Ini());
    return session;
  }

  testing::ScratchApp app_;
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
  const VekError no_file = ErrorOf([&] { ConfigurarVariaveisConexao(target); });
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
  const VekError missing = ErrorOf([&] { ConfigurarVariaveisConexao(partial); });
  EXPECT_EQ(missing.Number(), kObjectDoesNotSupportProperty);
  EXPECT_EQ(missing.Source(), " -> cgdCripto.ConfigurarVariaveisConexao, ");
  EXPECT_EQ(partial.Get("LockType"), Variant(int32_t{3}));
}

}  // namespace
}  // namespace vek
