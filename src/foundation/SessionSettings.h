#pragma once
// The installation's settings, in the order in which cgdSistema writes and
// reads them: the section and key of Vek.ini (or of the per-user store), the
// property of cgpSistema that holds the value, and its type.

#include <string_view>
#include <vector>

#include "vek/foundation/cgp.h"

namespace vek {

struct SettingDef {
  std::string_view write_section;  // where Salvar writes the key
  std::string_view read_section;   // where Consultar reads it (the same but for one key)
  std::string_view key;
  std::string_view property;
  PropertyType type;
  bool in_user_store = false;  // kept in the per-user settings store, not in Vek.ini
};

const std::vector<SettingDef>& SessionSettings();

// The per-user store's application and section of the settings it keeps.
inline constexpr std::string_view kUserStoreApplication = "VEK";
inline constexpr std::string_view kUserStoreSection = "Execucao";

}  // namespace vek
