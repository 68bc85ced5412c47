#pragma once
// A tariff line of a revenue assessment (TbApuracaoReceita_TbTarifa, key
// company, No_ApuracaoReceita and Cd_Tarifa; nothing numbered of its own):
// the quantity charged and the unit price copied from the tariff at
// assessment time, kept with three decimals while the header's amount has
// two. Inserted by a statement of its own.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdApuracaoReceita_Tarifa : public cgdRecord<cgpApuracaoReceita_Tarifa> {
 public:
  cgdApuracaoReceita_Tarifa() : cgdRecord("TbApuracaoReceita_TbTarifa") {}

 protected:
  std::string SelectStatement() override;
  std::string InsertStatement() override { return instrucaoInsert(); }

 private:
  std::string instrucaoInsert();
};

}  // namespace vek
