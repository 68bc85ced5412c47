#pragma once
// The data manager of the session settings. It never touches the database:
// it reads and writes the workstation's settings in Vek.ini, in the
// application folder, plus one flag in the per-user settings store, and hands
// them over in its cgpSistema.
//
// Errors leave every member with " -> cgdSistema.<Member>, " on their Source.

#include <memory>
#include <string>
#include <string_view>

#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Variant.h"

namespace vek {

class cgdSistema {
 public:
  cgdSistema();

  // The session object; read after being cleared, a fresh one is made.
  std::shared_ptr<cgpSistema> Ob_cgp();
  void Ob_cgp(std::shared_ptr<cgpSistema> session);

  // Writes every setting of Ob_cgp, in order, to Vek.ini (the password in
  // its Cripto form) and the parking clock flag to the settings store.
  // Returns Empty. A write that the file refuses is not reported; a store
  // that cannot be written raises 75.
  Variant Salvar();

  // Reads every setting into Ob_cgp and returns it. There are no defaults:
  // a missing numeric or boolean key raises 13. The flag is kept for the
  // callers of the entity data managers; settings have no not-found case.
  std::shared_ptr<cgpSistema> Consultar(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro = true);

 private:
  // One key of Vek.ini, empty when missing; values are cut at 254 characters.
  std::string LerRegistro(std::string_view section, std::string_view key);
  // Writes one key into `file`, Vek.ini when empty; returns the platform
  // call's result (1 written, 0 refused) without raising on a refusal.
  Variant GravarRegistro(std::string_view section, std::string_view key, std::string_view value,
                         std::string_view file = "");

  std::shared_ptr<cgpSistema> ob_cgp_;
};

}  // namespace vek
