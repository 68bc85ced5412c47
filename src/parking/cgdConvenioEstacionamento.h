#pragma once
// Parking agreements (TbConvenioEstacionamento, key company and
// Cd_ClienteConvenio, the agreement client's Cd_Pessoa): a client whose
// vehicles may hold Qt_Vagas vacancies at once. Hr_Inicial and Hr_Final are
// times of day, stored as "hh:Nn:ss" text by the generic copy.

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"
#include "vek/platform/Date.h"

namespace vek {

class ComboBox;
class FlexGrid;
class Recordset;
class TextControl;

class cgdConvenioEstacionamento : public cgdRecord<cgpConvenioEstacionamento> {
 public:
  cgdConvenioEstacionamento() : cgdRecord("TbConvenioEstacionamento") {}

  // The agreement's vehicles inside now: pending tickets that are not
  // monthly stays. More than 255 is error 6 (overflow), kept as it is.
  uint8_t VagasUtilizadas();
  // Those tickets themselves, open.
  std::shared_ptr<Recordset> rsVagasUtilizadas();
  // Every ticket of the agreement whose exit is later than the moment or
  // missing (state, monthly flag and entry are not looked at). The moment
  // is written "dd/mm/yyyy hh:Nn:ss", day first.
  std::shared_ptr<Recordset> rsVagasUtilizadasEmDeterminadoHorario(Date Hr_Referencia);
  // Qt_Vagas less the tickets counted as above, leaving out the ticket
  // Cd_TicketEstacionamento (0 for a new entry): negative when more overlap
  // than the agreement owns, 0 when the agreement is not there.
  int32_t VagasDisponiveis(Date Hr_Referencia, int32_t Cd_TicketEstacionamento);
  // One line per agreement after the grid's empty first cell: the code as
  // "###,###,##0" and the name; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
  // The company's agreements by name (Nm_Pessoa as text, Cd_ClienteConvenio
  // as item data), Ds_Condicao added with "And". With none the list holds
  // "NENHUM" and the session's message box shows "Não existe nenhuma cor
  // cadastrada", the colours' message, as it always has. The caption,
  // "Carregando os convênios", is this library's own.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");

 private:
  std::string InUseFilter();
};

}  // namespace vek
