#pragma once
// Makes and models (TbMarcaModelo, key Cd_MarcaModelo, numbered by the
// database), with their pick list and search grid. With the code at 0 a make
// and model is found by its description Ds_MarcaModelo (written between
// quotes, so one holding an apostrophe is refused before any SQL). The pick
// list's caption, "Carregando as marcas/modelos", is this library's own.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;
class FlexGrid;
class TextControl;

class cgdMarcaModelo : public cgdRecordFoundByText<cgpMarcaModelo> {
 public:
  cgdMarcaModelo()
      : cgdRecordFoundByText("TbMarcaModelo", "Ds_MarcaModelo", "SELECT A.*\rFROM   TbMarcaModelo A\r", ";\r") {}

  // Ds_MarcaModelo as text and Cd_MarcaModelo as item data, by description
  // ("--ESCOLHA-->" first when there is more than one). With none at all the
  // list holds the single entry "NENHUM" and the session's message box shows
  // "Não existe nenhuma marca/modelo cadastrada".
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per make and model after the grid's empty first cell: code and
  // description; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
