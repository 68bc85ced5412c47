#include "vek/registry/cgdUsuario.h"

#include "vek/db/Recordset.h"

namespace vek {

cgdUsuario::Lookup cgdUsuario::ChooseLookup() {
  const cgpUsuario& user = *Ob_cgp();
  if (CLng(user.Get("Cd_Usuario")) != 0) return Lookup::ByCode;
  const bool has_password = !CStr(user.Get("Ds_CriptoSenha")).empty();
  if (has_password && !CStr(user.Get("Nm_Usuario")).empty()) return Lookup::ByLogin;
  if (has_password && CLng(user.Get("Cd_Pessoa")) != 0) return Lookup::ByPerson;
  return Lookup::None;
}

bool cgdUsuario::KeyMissing() { return CLng(Ob_cgp()->Get("Cd_Usuario")) == 0; }

bool cgdUsuario::LookupKeyMissing() { return ChooseLookup() == Lookup::None; }

std::string cgdUsuario::DeleteStatement() {
  return SqlLines() << "DELETE "
                    << "FROM   TbUsuario"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And  Cd_Usuario = " + KeyLiteral("Cd_Usuario");
}

std::string cgdUsuario::SelectStatement() {
  SqlLines sql;
  sql << "SELECT A.*"
      << "FROM   TbUsuario A"
      << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema");
  switch (ChooseLookup()) {
    case Lookup::ByCode:
      sql << "       And  A.Cd_Usuario = " + KeyLiteral("Cd_Usuario") << ";";
      break;
    case Lookup::ByLogin:
      sql << "       And  A.Nm_Usuario = " + KeyLiteral("Nm_Usuario")
          << "       And  A.Ds_CriptoSenha = " + KeyLiteral("Ds_CriptoSenha");
      break;
    case Lookup::ByPerson:
      sql << "       And  A.Cd_Pessoa = " + KeyLiteral("Cd_Pessoa")
          << "       And  A.Ds_CriptoSenha = " + KeyLiteral("Ds_CriptoSenha");
      break;
    case Lookup::None:
      break;
  }
  return sql;
}

std::string cgdUsuario::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbUsuario A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = 0"
                    << "       And  A.Cd_Usuario = 0"
                    << ";";
}

bool cgdUsuario::EPrimeiroAcesso() {
  return Run("EPrimeiroAcesso", [&] {
    ds_sql_ = SqlLines() << "SELECT A.*"
                         << "FROM   TbUsuario A";
    auto users = OpenStatement();
    const bool none = users->Bof() && users->Eof();
    users->Close();
    return none;
  });
}

}  // namespace vek
