#include "vek/parking/cgdVeiculo.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {

bool cgdVeiculo::Existe() {
  return Run("Existe", [&] {
    if (KeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Existe");
    ds_sql_ = SqlLines() << "SELECT A.*"
                         << "FROM   TbVeiculo A"
                         << "WHERE  A.Cd_Placa = " + KeyLiteral("Cd_Placa");
    auto rows = OpenStatement();
    const bool found = !rows->Eof();
    rows->Close();
    return found;
  });
}

}  // namespace vek
