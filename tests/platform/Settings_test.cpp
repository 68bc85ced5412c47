#include "vek/platform/Settings.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>

#include "vek/foundation/VekError.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

// Sets an environment variable for one test and puts the old value back.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    if (value == nullptr) {
      ::unsetenv(name);
    } else {
      ::setenv(name, value, 1);
    }
  }
  ~ScopedEnv() {
    if (old_) {
      ::setenv(name_, old_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

class SettingsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::random_device random;
    folder_ = fs::temp_directory_path() /
              ("vek_settings_" + std::to_string(::getpid()) + "_" + std::to_string(random()));
    fs::create_directories(folder_);
  }
  void TearDown() override {
    std::error_code error;
    fs::remove_all(folder_, error);
  }

  static std::string ReadRaw(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

  fs::path folder_;
};

TEST_F(SettingsTest, StoreLivesUnderXdgConfigHomeOrHome) {
  const std::string home = (folder_ / "home").string();
  const std::string config = (folder_ / "config").string();
  ScopedEnv home_env("HOME", home.c_str());
  {
    ScopedEnv xdg("XDG_CONFIG_HOME", config.c_str());
    EXPECT_EQ(SettingsFilePath(), folder_ / "config" / "vek" / "settings.ini");
  }
  {
    ScopedEnv xdg("XDG_CONFIG_HOME", "");
    EXPECT_EQ(SettingsFilePath(), folder_ / "home" / ".config" / "vek" / "settings.ini");
  }
  {
    ScopedEnv xdg("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(SettingsFilePath(), folder_ / "home" / ".config" / "vek" / "settings.ini");
    SaveSetting("VEK", "Execucao", "Ic_ControleRelogioEstacionamento", "True");
    EXPECT_TRUE(fs::exists(folder_ / "home" / ".config" / "vek" / "settings.ini"));
  }
}

TEST_F(SettingsTest, SavedValuesComeBackExactly) {
  const std::string config = (folder_ / "config").string();
  ScopedEnv xdg("XDG_CONFIG_HOME", config.c_str());
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
  const std::string config = (folder_ / "config").string();
  ScopedEnv xdg("XDG_CONFIG_HOME", config.c_str());

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
  ScopedEnv xdg("XDG_CONFIG_HOME", config.c_str());
  try {
    SaveSetting("VEK", "Execucao", "K", "v");
    FAIL() << "no error raised";
  } catch (const VekError& error) {
    EXPECT_EQ(error.Number(), 75);
    EXPECT_EQ(error.Description(), "Path/File access error");
  }
  EXPECT_EQ(GetSetting("VEK", "Execucao", "K", "d"), "d");

  const auto number_of = [](auto&& call) {
    try {
      call();
    } catch (const VekError& error) {
      return error.Number();
    }
    return 0;
  };
  EXPECT_EQ(number_of([] { SaveSetting("", "S", "K", "v"); }), 5);
  EXPECT_EQ(number_of([] { SaveSetting("VEK", "S", " ", "v"); }), 5);
  EXPECT_EQ(number_of([] { SaveSetting("VEK", "S", "A=B", "v"); }), 5);
  EXPECT_EQ(number_of([] { SaveSetting("VEK", "S", "K", "two\nlines"); }), 5);
}

}  // namespace
}  // namespace vek
