#pragma once
// The users of the operating company (TbUsuario, key Cd_EmpresaUsuariaSistema
// then Cd_Usuario, which is numbered). A user is found by code, by login name
// and scrambled password, or by person and scrambled password; name and
// password are written between quotes as they stand, so one holding an
// apostrophe is refused before any SQL. Passwords are scrambled by the
// caller (cgdCripto) and only compared here.
//
// Consultar (and Alterar) take the first look-up that applies: Cd_Usuario
// when it is not 0; else Nm_Usuario with Ds_CriptoSenha (the login); else
// Cd_Pessoa with Ds_CriptoSenha; with none, 0x80040201. A wrong name or
// password is a row that is not there: with the default argument Consultar
// returns the property object reset (Cd_Usuario 0) and raises nothing.
// Excluir needs Cd_Usuario.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdUsuario : public cgdRecord<cgpUsuario> {
 public:
  cgdUsuario() : cgdRecord("TbUsuario") {
    QuotedInLookups("Nm_Usuario");
    QuotedInLookups("Ds_CriptoSenha");
  }

  // True exactly when no user of any company is there yet: the
  // installation's first access.
  bool EPrimeiroAcesso();

 protected:
  bool KeyMissing() override;
  bool LookupKeyMissing() override;
  std::string DeleteStatement() override;
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;

 private:
  enum class Lookup { None, ByCode, ByLogin, ByPerson };
  Lookup ChooseLookup();
};

}  // namespace vek
