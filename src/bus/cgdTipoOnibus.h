#pragma once
// Bus types (TbTipoOnibus, key Cd_TipoOnibus, numbered by the database),
// shown by description in the timetables' lists and search.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;

class cgdTipoOnibus : public cgdRecord<cgpTipoOnibus> {
 public:
  cgdTipoOnibus() : cgdRecord("TbTipoOnibus") {}

  // Ds_TipoOnibus as text and Cd_TipoOnibus as item data, by description,
  // under the caption "Carregando Tipo de Onibus":
  // "SELECT Cd_TipoOnibus," / "       Ds_TipoOnibus" / "FROM   TbTipoOnibus" /
  // ["WHERE  " + filter] / "ORDER BY Ds_TipoOnibus".
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
};

}  // namespace vek
