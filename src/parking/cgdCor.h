#pragma once
// Vehicle colours (TbCor, key Cd_Cor, numbered by the database), with their
// pick list and search grid. The pick list's caption, "Carregando as cores",
// is this library's own.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;
class FlexGrid;
class TextControl;

class cgdCor : public cgdRecord<cgpCor> {
 public:
  cgdCor() : cgdRecord("TbCor") {}

  // Nm_Cor as text and Cd_Cor as item data, by name ("--ESCOLHA-->" first
  // when there is more than one). With no colour at all the list holds the
  // single entry "NENHUM" and the session's message box shows "Não existe
  // nenhuma cor cadastrada".
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per colour after the grid's empty first cell: the code as
  // "###,###,##0" and the name; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
