#include "vek/foundation/cgdCripto.h"

#include <memory>

#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/cgdSistema.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr std::string_view kModule = "cgdCripto";
constexpr int32_t kDigits = 3;

}  // namespace

std::string Cripto(std::string_view text, std::string_view second) {
  return Trap(kModule, "Cripto", [&] {
    std::string result;
    if (!second.empty()) return result;
    for (const char32_t code : DecodeUtf8(text)) {
      // Three digits were always enough for the old single-byte codes; a wider
      // code would shift every later group, so it is refused.
      if (code > 0xFFF) RaiseRuntimeError(kInvalidProcedureCall);
      const std::string digits = Hex(static_cast<int64_t>(code));
      result += String(kDigits - Len(digits), "0") + digits;
    }
    return result;
  });
}

std::string DesCripto(std::string_view text, std::string_view second) {
  return Trap(kModule, "DesCripto", [&] {
    std::string result;
    if (!second.empty()) return result;
    const int32_t length = Len(text);
    for (int32_t position = 1; position <= length; position += kDigits) {
      const std::string group = Mid(text, position, kDigits);
      result += Chr(CLng(Variant("&H" + group)));
    }
    return result;
  });
}

void ConfigurarVariaveisConexao(cgp& target) {
  Trap(kModule, "ConfigurarVariaveisConexao", [&] {
    auto sistema = std::make_unique<cgdSistema>();
    const std::shared_ptr<cgpSistema> session = sistema->Consultar();
    target.Let("Ds_StringConexaoDB", session->Get("Ds_StringConexaoDB"));
    target.Let("Cursor", Variant(int32_t{1}));
    target.Let("LockType", Variant(int32_t{3}));
    target.Let("Ds_CaminhoBD", session->Get("Ds_CaminhoDB"));
  });
}

namespace {

std::shared_ptr<const PropertyList> DataControlProperties() {
  static const std::shared_ptr<const PropertyList> list = std::make_shared<const PropertyList>(
      std::vector<PropertyDef>{{"Ds_StringConexaoDB", PropertyType::String},
                               {"Cursor", PropertyType::Long},
                               {"LockType", PropertyType::Long},
                               {"Ds_CaminhoBD", PropertyType::String}});
  return list;
}

}  // namespace

DataControlSettings::DataControlSettings() : cgp(DataControlProperties()) {}

}  // namespace vek
