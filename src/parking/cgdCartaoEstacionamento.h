#pragma once
// Access cards of monthly clients (TbCartaoEstacionamento, key company and
// Cd_CartaoEstacionamento, numbered). Alterar reads the row with the card
// number between quotes, while Consultar and Excluir write it bare, as they
// always have.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;
class FlexGrid;
class TextControl;

class cgdCartaoEstacionamento : public cgdRecord<cgpCartaoEstacionamento> {
 public:
  cgdCartaoEstacionamento() : cgdRecord("TbCartaoEstacionamento") { QuotedInLookups("Ds_IdentificacaoCartao"); }

  // The company's cards (Nm_CartaoEstacionamentoo as text, the doubled "o"
  // being the column's own name; Cd_CartaoEstacionamento as item data). The
  // statement takes no filter, so Ds_Condicao is not used. With no card the
  // list holds "NENHUM" and the message box shows the colours' message. The
  // caption, "Carregando os cartões", is this library's own.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // One line per card of the company after the grid's empty first cell:
  // number, identification, client's name and holder, by client and holder;
  // the row count goes into ObQt_Registros. Ds_Condicao is not used.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
  // Push the card to the gates, or remove it there, through the database's
  // procedures; Ds_Aviso gets the warning, a refusal raises 0x80040458 with
  // the procedure's text.
  void AtualizarClienteCartaoMadis(std::string& Ds_Aviso);
  void ExcluirClienteCartaoMadis(std::string& Ds_Aviso);

 protected:
  std::string SelectStatement() override;
  std::string ConsultarStatement() override { return RecordManager::SelectStatement(); }
};

}  // namespace vek
