#include "vek/platform/Settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TestSupport.h"
#include "vek/platform/ProfileFile.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::EnvGuard;
using testing::ErrorOf;

class SettingsTest : public ::testing::Test {
 protected:
  static std::string ReadRaw(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  // The store lives under folder_/config unless a test says otherwise.
  testing::ScratchApp app_;
  const fs::path folder_ = app_.Path();
};

TEST_F(SettingsTest, StoreLivesUnderXdgConfigHomeOrHome) {
  const std::string home = (folder_ / "home").string();
  const std::string config = (folder_ / "config").string();
  EnvGuard home_env("HOME", home.c_str());
  {
    EnvGuard xdg("XDG_CONFIG_HOME", config.c_str());
    EXPECT_EQ(SettingsFilePath(), folder_ / "config" / "vek" / "settings.ini");
  }
  {
    EnvGuard xdg("XDG_CONFIG_HOME", "");
    EXPECT_EQ(SettingsFilePath(), folder_ / "home" / ".config" / "vek" / "settings.ini");
  }
  {
    EnvGuard xdg("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(SettingsFilePath(), folder_ / "home" / ".config" / "vek" / "settings.ini");
    SaveSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "True");
    EXPECT_TRUE(fs::exists(folder_ / "home" / ".config" / "vek" / "settings.ini"));
  }
}

TEST_F(SettingsTest, SavedValuesComeBackExactly) {
  const fs::path file = folder_ / "config" / "vek" / "settings.ini";

  EXPECT_EQ(GetSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "False"), "False");
  EXPECT_FALSE(fs::exists(file));

  SaveSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "True");
  SaveSetting("VEK", "Backup", "UltimoBackupCompleto", "05/03/2024 03:00:00");
  EXPECT_EQ(ReadRaw(file),
            "[VEK\\Execucao]\r\nIc_ControleRelogioEstacionamento=True\r\n"
            "[VEK\\Backup]\r\nUltimoBackupCompleto=05/03/2024 03:00:00\r\n");
  EXPECT_EQ(GetSetting("vek", "EXECUCAO", "ic_controlerelogioestacionamento"), "True");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto", "x"), "05/03/2024 03:00:00");
  // Another application's section is another section.
  EXPECT_EQ(GetSetting("OTHER", "Execucao", "Ic_ControleRelogioEstacionamento", "none"), "none");

  SaveSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "False");
  EXPECT_EQ(GetSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "x"), "False");

  // Blanks and quotes that the profile would drop survive the round trip;
  // an empty text is a value, not a missing one.
  for (const std::string value :
       {"  padded ", "'single'", "\"double\"", "\"", "tab\t", "", "Relógio ação"}) {
    SaveSetting("VEK", "Valores", "V", value);
    EXPECT_EQ(GetSetting("VEK", "Valores", "V", "default"), value) << value;
  }
}

TEST_F(SettingsTest, DeleteSettingRemovesKeyOrSection) {

  DeleteSetting("VEK", "Backup", "UltimoBackupCompleto");  // no store yet: nothing happens
  SaveSetting("VEK", "Backup", "UltimoBackupCompleto", "a");
  SaveSetting("VEK", "Backup", "UltimoEspelhamentoDeBackup", "b");
  SaveSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "True");

  DeleteSetting("vek", "backup", "ultimobackupcompleto");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoBackupCompleto", "gone"), "gone");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoEspelhamentoDeBackup", "gone"), "b");
  DeleteSetting("VEK", "Backup", "UltimoBackupCompleto");  // already gone

  DeleteSetting("VEK", "Backup");
  EXPECT_EQ(GetSetting("VEK", "Backup", "UltimoEspelhamentoDeBackup", "gone"), "gone");
  EXPECT_EQ(GetSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento"), "True");
}

TEST_F(SettingsTest, FailedSavesRaise) {
  // A regular file where the store's folder should be.
  const fs::path blocker = folder_ / "blocker";
  std::ofstream(blocker) << "x";
  const std::string config = blocker.string();
  EnvGuard xdg("XDG_CONFIG_HOME", config.c_str());
  const VekError refused = ErrorOf([] { SaveSetting("VEK", "Execucao", "K", "v"); });
  EXPECT_EQ(refused.Number(), 75);
  EXPECT_EQ(refused.Description(), "Path/File access error");
  EXPECT_EQ(GetSetting("VEK", "Execucao", "K", "d"), "d");

  EXPECT_EQ(ErrorOf([] { SaveSetting("", "S", "K", "v"); }).Number(), 5);
  EXPECT_EQ(ErrorOf([] { SaveSetting("VEK", "S", " ", "v"); }).Number(), 5);
  EXPECT_EQ(ErrorOf([] { SaveSetting("VEK", "S", "A=B", "v"); }).Number(), 5);
  EXPECT_EQ(ErrorOf([] { SaveSetting("VEK", "S", "K", "two\nlines"); }).Number(), 5);
}

}  // namespace
}  // namespace vek

namespace vek {
namespace {

// A process that lets everyone write its files (umask 0) still makes the
// store and Vek.ini, which may hold the database password, its owner's
// alone; a file that is there keeps the mode its owner gave it.
TEST(SettingsFileModes, NewStoresAndProfilesAreTheOwnersAloneWhateverTheUmask) {
  testing::ScratchApp app;
  const mode_t saved = ::umask(0);
  SaveSetting("VEK", "Persistencia", "Ds_SenhaDB", "0A10B20C3");
  const bool written = WritePrivateProfileString("Persistencia", "Ds_SenhaDB", "0A10B20C3", app.Ini());
  ::umask(saved);
  ASSERT_TRUE(written);
  const auto owner_only = fs::perms::owner_read | fs::perms::owner_write;
  EXPECT_EQ(fs::status(SettingsFilePath()).permissions(), owner_only);
  EXPECT_EQ(fs::status(app.Ini()).permissions(), owner_only);
  EXPECT_EQ(fs::status(SettingsFilePath().parent_path()).permissions() & (fs::perms::group_all | fs::perms::others_all),
            fs::perms::none);

  fs::permissions(app.Ini(), owner_only | fs::perms::group_read, fs::perm_options::replace);
  ASSERT_TRUE(WritePrivateProfileString("Persistencia", "Ds_SenhaDB", "0B10C20D3", app.Ini()));
  EXPECT_EQ(fs::status(app.Ini()).permissions(), owner_only | fs::perms::group_read);
}

}  // namespace
}  // namespace vek
