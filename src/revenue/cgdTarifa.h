#pragma once
// Tariffs (TbTarifa, key Cd_Tarifa, numbered by the database): a named unit
// price of one revenue type. Its look-ups close the WHERE line with ";"
// ("WHERE  A.Cd_Tarifa = 5;"), and no tenant condition is added. Deleting a
// tariff that other rows still refer to fails in the database.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;
class FlexGrid;
class TextControl;

class cgdTarifa : public cgdRecord<cgpTarifa> {
 public:
  cgdTarifa() : cgdRecord("TbTarifa") {}

  // Ds_Tarifa as text and Cd_Tarifa as item data, by description, under the
  // caption "Carregando Tipo de Onibus" (the bus types' caption, kept as it is).
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per tariff: the code as "###,###,##0", a tab, the description;
  // the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");

 protected:
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;
};

}  // namespace vek
