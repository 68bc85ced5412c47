#include "vek/registry/cgdUF.h"

namespace vek {

bool cgdUF::HasAbbreviation() { return !CStr(Ob_cgp()->Get("Sg_UF")).empty(); }

bool cgdUF::KeyMissing() { return !HasAbbreviation() && CLng(Ob_cgp()->Get("Cd_UF")) == 0; }

std::string cgdUF::SelectStatement() {
  if (HasAbbreviation()) return RecordManager::SelectStatement();
  SqlLines sql;
  sql << "SELECT A.*" << "FROM   TbUF A" << "WHERE  A.Cd_UF = " + CStr(Ob_cgp()->Get("Cd_UF")) << ";";
  return sql;
}

std::string cgdUF::EmptySelectStatement() {
  SqlLines sql;
  sql << "SELECT A.*" << "FROM   TbUF A" << "WHERE  A.Cd_UF = 0" << ";";
  return sql;
}

}  // namespace vek
