#include "vek/foundation/cgdSistema.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/TestSupport.h"
#include "vek/foundation/SessionSettings.h"
#include "vek/foundation/cgdCripto.h"
#include "vek/platform/ProfileFile.h"
#include "vek/platform/Settings.h"
#include "vek/platform/Text.h"
#include "vek/platform/Settings.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;

constexpr std::string_view kTurnstileKey = "Qt_TempoMilesegundosAcionarCatraca";
constexpr std::string_view kClockFlag = "Ic_ControleRelogioEstacionamento";

// Vek.ini and the settings store live in a scratch folder for each test.
class cgdSistemaTest : public ::testing::Test {
 protected:
  fs::path Ini() const { return app_.Ini(); }

  void WriteIni(std::string_view text) const {
    std::ofstream out(Ini(), std::ios::binary);
    out << text;
  }

  // A session whose every setting differs from its default and from the others.
  static std::shared_ptr<cgpSistema> DistinctSession() {
    auto session = std::make_shared<cgpSistema>();
    int32_t n = 0;
    for (const SettingDef& setting : SessionSettings()) {
      ++n;
      switch (setting.type) {
        case PropertyType::Long:
          session->Let(setting.property, Variant(int32_t{100000 + n}));
          break;
        case PropertyType::Byte: session->Let(setting.property, Variant(uint8_t{200})); break;
        case PropertyType::Boolean: session->Let(setting.property, Variant(n % 2 == 0)); break;
        default:
          session->Let(setting.property, Variant("C:\\Vek\\Ação " + std::to_string(n)));
          break;
      }
    }
    session->Let("Cd_DB", Variant(int32_t{21}));
    session->Let("Ds_SenhaDB", Variant("s3nh@ é"));
    session->Let(kClockFlag, Variant(true));
    return session;
  }

  // Salvar, plus the turnstile key where Consultar looks for it.
  void SaveLoadable(const std::shared_ptr<cgpSistema>& session, std::string_view turnstile = "1") {
    cgdSistema sistema;
    sistema.Ob_cgp(session);
    sistema.Salvar();
    ASSERT_TRUE(WritePrivateProfileString("VisualizadorViagens", kTurnstileKey, turnstile, Ini()));
  }

  std::string LoadedPath() {
    cgdSistema sistema;
    return CStr(sistema.Consultar()->Get("Ds_CaminhoDB"));
  }

  testing::ScratchApp app_;
};

TEST_F(cgdSistemaTest, SalvarWritesTheTableAndConsultarReadsItBackButForTheTurnstileKey) {
  const testing::LocaleGuard locale(testing::kBrazilLocale);  // grouping by "." must not reach the file
  const std::shared_ptr<cgpSistema> saved = DistinctSession();
  {
    cgdSistema sistema;
    sistema.Ob_cgp(saved);
    EXPECT_TRUE(sistema.Salvar().IsEmpty());
  }
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Cursor", "", Ini()), "100001");
  EXPECT_EQ(GetPrivateProfileString("MineImpressora", "No_LPT", "", Ini()), "200");
  EXPECT_EQ(GetPrivateProfileString("Sanitario", "Ic_ImprimirTicketSanitario", "", Ini()), "True");
  EXPECT_EQ(GetPrivateProfileString("Estacionamento", "Ic_MostrarEntradaSanitarioNoEstacionamento",
                                    "", Ini()),
            "False");
  EXPECT_EQ(GetPrivateProfileString("ImpressoraRelatório", "Nm_ImpressoraRelatório", "", Ini()),
            "C:\\Vek\\Ação 10");
  EXPECT_EQ(GetPrivateProfileString("Persistencia", "Ds_SenhaDB", "", Ini()), Cripto("s3nh@ é"));
  // It holds the password: its owner alone reads it, and a later write keeps that.
  EXPECT_EQ(std::filesystem::status(Ini()).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Cursor", "100001", Ini()));
  EXPECT_EQ(std::filesystem::status(Ini()).permissions() & std::filesystem::perms::others_read,
            std::filesystem::perms::none);
  EXPECT_EQ(GetPrivateProfileString("Sanitario", kTurnstileKey, "", Ini()), "100031");
  EXPECT_FALSE(FindProfileValue("VisualizadorViagens", kTurnstileKey, Ini()));
  // The clock flag lives in the user's store only.
  EXPECT_EQ(GetSetting("VEK", "Execucao", kClockFlag), "True");
  EXPECT_FALSE(FindProfileValue("Execucao", kClockFlag, Ini()));

  // Just saved, the turnstile key is not where it is read from.
  const VekError error = ErrorOf([] { cgdSistema().Consultar(); });
  EXPECT_EQ(error.Number(), kTypeMismatch);

  ASSERT_TRUE(WritePrivateProfileString("VisualizadorViagens", kTurnstileKey, "750", Ini()));
  cgdSistema sistema;
  const std::shared_ptr<cgpSistema> loaded = sistema.Consultar();
  EXPECT_EQ(loaded, sistema.Ob_cgp());
  for (const SettingDef& setting : SessionSettings()) {
    const Variant expected =
        setting.key == kTurnstileKey ? Variant(int32_t{750}) : saved->Get(setting.property);
    EXPECT_EQ(loaded->Get(setting.property), expected) << setting.property;
  }
  EXPECT_EQ(loaded->Ds_StringConexaoDB(), saved->Ds_StringConexaoDB());
}

TEST_F(cgdSistemaTest, ConsultarReadsAHandWrittenFile) {
  WriteIni(
      "[Persistencia]\r\nCursor=2\r\nLockType=4\r\nCd_Provedor=1\r\nCd_DB=31\r\n"
      "Ds_CaminhoDB=/srv/vek/terminal.db\r\nNm_ServidorDB=\r\n"
      "Ds_SenhaDB=07306506E068061\r\nDs_FormatoData=yyyy-mm-dd\r\nDs_CaminhoAplicacao=/srv/vek\r\n"
      "[ImpressoraRelatório]\r\nNm_ImpressoraRelatório=Laser Rodoviária\r\n"
      "Nm_DriverImpressoraRelatório=winspool\r\nNm_PortaImpressoraRelatório=LPT1:\r\n"
      "[MineImpressora]\r\nNo_ModeloImpressora=3\r\nNo_LPT=2\r\nNm_FonteImpressoraE=Courier\r\n"
      "Qt_TamanhoFonteImpressoraE=10\r\n"
      "[Aparencia]\r\nNo_CorFrameSuperior=16777215\r\nNm_ArquivoFrameSuperior=\r\n"
      "No_CorRealceFoco=-1\r\n"
      "Nm_ArquivoFrameLateral=\r\nNo_CorFundo=0\r\nNm_ArquivoFundoTelaPrincipal=\r\n"
      "Nm_ArquivoFundoTelasFilhas=\r\n"
      "[EmpresaUsuaria]\r\nCd_EmpresaUsuariaSistema=1\r\n"
      "[ApuracaoReceita]\r\nNo_TipoValidacaoApuracaoReceitaEmbarque=2\r\n"
      "[VisualizadorViagens]\r\nQt_TempoAntecedenciaMostrarViagensVisualizador=30\r\n"
      "Qt_TempoMilesegundosAcionarCatraca=800\r\n"
      "[Sanitario]\r\nQt_TempoMilesegundosAcionarCatraca=500\r\nIc_ImprimirTicketSanitario=True\r\n"
      "[Estacionamento]\r\nIc_MostrarEntradaSanitarioNoEstacionamento=false\r\n"
      "Ic_EntradaAutomatizadaNoEstacionamento=-1\r\n");
  cgdSistema sistema;
  const std::shared_ptr<cgpSistema> session = sistema.Consultar();
  EXPECT_EQ(session->Get("Cursor"), Variant(int32_t{2}));
  EXPECT_EQ(session->Get("No_LPT"), Variant(uint8_t{2}));
  EXPECT_EQ(session->Get("No_CorRealceFoco"), Variant(int32_t{-1}));
  EXPECT_EQ(session->Get("Ds_SenhaDB"), Variant("senha"));
  EXPECT_EQ(session->Get("Nm_ImpressoraRelatorio"), Variant("Laser Rodoviária"));
  EXPECT_EQ(session->Get("Nm_PortaImpressoraRelatorio"), Variant("LPT1:"));
  EXPECT_EQ(session->Get(kTurnstileKey), Variant(int32_t{800}));
  EXPECT_EQ(session->Get("Ic_ImprimirTicketSanitario"), Variant(true));
  EXPECT_EQ(session->Get("Ic_MostrarEntradaSanitarioNoEstacionamento"), Variant(false));
  EXPECT_EQ(session->Get("Ic_EntradaAutomatizadaNoEstacionamento"), Variant(true));
  // Never saved in the store: the flag reads as False.
  EXPECT_EQ(session->Get(kClockFlag), Variant(false));
  // Missing text keys read as empty text.
  EXPECT_EQ(session->Get("Ds_PathBkpLocal"), Variant(""));
  EXPECT_EQ(session->Ds_StringConexaoDB(), "Driver=SQLite3;Database=/srv/vek/terminal.db");
}

// A missing file is one whose every key is empty: see cgdCripto's tests.
TEST_F(cgdSistemaTest, EmptyNumericOrBooleanKeysEndConsultarWithTypeMismatch) {
  SaveLoadable(DistinctSession());
  ASSERT_TRUE(WritePrivateProfileString("Sanitario", "Ic_ImprimirTicketSanitario", "", Ini()));
  const VekError empty_flag = ErrorOf([] { cgdSistema().Consultar(); });
  EXPECT_EQ(empty_flag.Number(), kTypeMismatch);
  EXPECT_EQ(empty_flag.Source(), " -> cgdSistema.Consultar, ");

  // A byte key out of its range overflows instead.
  SaveLoadable(DistinctSession());
  ASSERT_TRUE(WritePrivateProfileString("MineImpressora", "No_LPT", "256", Ini()));
  EXPECT_EQ(ErrorOf([] { cgdSistema().Consultar(); }).Number(), kOverflow);
}

TEST_F(cgdSistemaTest, LongValuesAreCutAt254CharactersAndTrailingBlanksSurvive) {
  SaveLoadable(DistinctSession());
  const std::string exact = String(250, "ç") + "/db/";  // 254 characters, 504 bytes
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_CaminhoDB", exact, Ini()));
  EXPECT_EQ(LoadedPath(), exact);

  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_CaminhoDB", exact + "longo", Ini()));
  EXPECT_EQ(LoadedPath(), exact);

  // Quoted blanks at the end belong to the value.
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_CaminhoDB", "\"/dados/  \"", Ini()));
  EXPECT_EQ(LoadedPath(), "/dados/  ");

  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_CaminhoDB", "", Ini()));
  EXPECT_EQ(LoadedPath(), "");
}

TEST_F(cgdSistemaTest, ObCgpIsTheCallersObjectAndIsRemadeAfterBeingCleared) {
  SaveLoadable(DistinctSession(), "321");
  auto mine = std::make_shared<cgpSistema>();
  cgdSistema sistema;
  sistema.Ob_cgp(mine);
  EXPECT_EQ(sistema.Consultar(false), mine);
  EXPECT_EQ(mine->Get(kTurnstileKey), Variant(int32_t{321}));

  sistema.Ob_cgp(nullptr);
  const std::shared_ptr<cgpSistema> fresh = sistema.Ob_cgp();
  ASSERT_NE(fresh, nullptr);
  EXPECT_NE(fresh, mine);
  EXPECT_EQ(fresh->Get(kTurnstileKey), Variant(int32_t{0}));
  EXPECT_EQ(sistema.Ob_cgp(), fresh);
}

TEST_F(cgdSistemaTest, SalvarReportsAStoreThatCannotBeWrittenButNotARefusedIniWrite) {
  auto session = DistinctSession();
  // A line break can't be kept on one line: the platform call refuses it quietly.
  session->Let("Nm_FonteImpressoraE", Variant("Courier\nNew"));
  cgdSistema sistema;
  sistema.Ob_cgp(session);
  EXPECT_TRUE(sistema.Salvar().IsEmpty());
  EXPECT_FALSE(FindProfileValue("MineImpressora", "Nm_FonteImpressoraE", Ini()));
  EXPECT_EQ(GetPrivateProfileString("MineImpressora", "Qt_TamanhoFonteImpressoraE", "", Ini()),
            "100016");

  // The store's folder is a plain file: the store can't be written.
  std::ofstream(app_.Path() / "blocked") << "x";
  testing::EnvGuard blocked("XDG_CONFIG_HOME", (app_.Path() / "blocked").c_str());
  const VekError error = ErrorOf([&] { sistema.Salvar(); });
  EXPECT_EQ(error.Number(), kPathFileAccessError);
  EXPECT_EQ(error.Source(), " -> cgdSistema.Salvar, ");
}

}  // namespace
}  // namespace vek
