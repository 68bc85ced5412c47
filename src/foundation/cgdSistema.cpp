#include "vek/foundation/cgdSistema.h"

#include <filesystem>

#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/SessionSettings.h"
#include "vek/foundation/cgdCripto.h"
#include "vek/platform/AppPath.h"
#include "vek/platform/ProfileFile.h"
#include "vek/platform/Settings.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr std::string_view kSettingsFile = "Vek.ini";
constexpr std::string_view kPasswordProperty = "Ds_SenhaDB";
// What a store that never saved the parking clock flag reads as.
constexpr std::string_view kUserStoreDefault = "False";
// The size of the buffer the platform call fills, NUL included.
constexpr int32_t kBufferSize = 255;

std::filesystem::path SettingsFile() { return AppPath() / kSettingsFile; }

// Numbers in plain decimal whatever the locale, booleans "True"/"False".
std::string SettingText(const Variant& value, PropertyType type) {
  switch (type) {
    case PropertyType::Boolean: return CBool(value) ? "True" : "False";
    case PropertyType::Byte: return std::to_string(CByte(value));
    case PropertyType::Integer: return std::to_string(CInt(value));
    case PropertyType::Long: return std::to_string(CLng(value));
    default: return CStr(value);
  }
}

bool IsPassword(const SettingDef& setting) {
  return EqualsIgnoreCase(setting.property, kPasswordProperty);
}

}  // namespace

cgdSistema::cgdSistema() : ob_cgp_(std::make_shared<cgpSistema>()) {}

std::shared_ptr<cgpSistema> cgdSistema::Ob_cgp() {
  return Trap(RuntimeTypeName(*this), "Ob_cgp", [&] {
    if (!ob_cgp_) ob_cgp_ = std::make_shared<cgpSistema>();
    return ob_cgp_;
  });
}

void cgdSistema::Ob_cgp(std::shared_ptr<cgpSistema> session) {
  Trap(RuntimeTypeName(*this), "Ob_cgp", [&] { ob_cgp_ = std::move(session); });
}

Variant cgdSistema::Salvar() {
  return Trap(RuntimeTypeName(*this), "Salvar", [&] {
    const std::shared_ptr<cgpSistema> session = Ob_cgp();
    for (const SettingDef& setting : SessionSettings()) {
      std::string text = SettingText(session->Get(setting.property), setting.type);
      if (IsPassword(setting)) text = Cripto(text, "");
      if (setting.in_user_store) {
        SaveSetting(kUserStoreApplication, setting.write_section, setting.key, text);
      } else {
        GravarRegistro(setting.write_section, setting.key, text);
      }
    }
    // The file holds the database password, scrambled but not secret.
    RestrictToOwner(SettingsFile());
    return Variant();
  });
}

std::shared_ptr<cgpSistema> cgdSistema::Consultar(
    bool /*Ic_RestaurarDefaulSeNaoEcontrarRegistro*/) {
  return Trap(RuntimeTypeName(*this), "Consultar", [&] {
    const std::shared_ptr<cgpSistema> session = Ob_cgp();
    for (const SettingDef& setting : SessionSettings()) {
      std::string text;
      if (setting.in_user_store) {
        text = GetSetting(kUserStoreApplication, setting.read_section, setting.key,
                          kUserStoreDefault);
      } else {
        text = LerRegistro(setting.read_section, setting.key);
      }
      if (IsPassword(setting)) text = DesCripto(text, "");
      // No defaults: an empty text under a number or a flag fails right here.
      session->Let(setting.property, ConvertToProperty(Variant(std::move(text)), setting.type));
    }
    return session;
  });
}

std::string cgdSistema::LerRegistro(std::string_view section, std::string_view key) {
  return Trap(RuntimeTypeName(*this), "LerRegistro", [&] {
    std::string buffer = Space(kBufferSize);
    GetPrivateProfileString(section, key, "", buffer, kBufferSize, SettingsFile());
    // The NUL stays after trimming and guards the value's own trailing blanks.
    const std::string trimmed = Trim(buffer);
    if (trimmed.empty() || trimmed == std::string_view("\0", 1)) return std::string();
    return Left(trimmed, Len(trimmed) - 1);
  });
}

Variant cgdSistema::GravarRegistro(std::string_view section, std::string_view key,
                                   std::string_view value, std::string_view file) {
  return Trap(RuntimeTypeName(*this), "GravarRegistro", [&] {
    const std::filesystem::path target =
        file.empty() ? SettingsFile() : std::filesystem::path(file);
    const bool written = WritePrivateProfileString(section, key, value, target);
    return Variant(int32_t{written ? 1 : 0});
  });
}

}  // namespace vek
