#pragma once
// Monthly clients of the car park (TbClienteEstacionamento, key company and
// Cd_ClienteEstacionamento, the client's Cd_Pessoa). The class name is one
// letter short of its table, as it always was. Consultar reads the client
// with Qt_VagasEmUso, the vacancies the access-control database counts in
// use (0 for a client it does not know); Alterar and Incluir read the
// client alone.

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"
#include "vek/platform/Date.h"

namespace vek {

class FlexGrid;
class Recordset;
class TextControl;

class cgdClienteEstacionament : public cgdRecord<cgpClienteEstacionament> {
 public:
  cgdClienteEstacionament() : cgdRecord("TbClienteEstacionamento") {}

  // The client's monthly stays inside now (pending, Ic_Mensalista set). More
  // than 255 is error 6 (overflow), a limit kept as it is.
  uint8_t VagasUtilizadas();
  // One line per client after the grid's empty first cell: the code as
  // "###,###,##0" and the name; the row count goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
  // Push the client to the gates, or remove it and its cards there, through
  // the database's procedures; Ds_Aviso gets the warning, a refusal raises
  // 0x80040458 with the procedure's text.
  void AtualizarClienteMadis(std::string& Ds_Aviso);
  void ExcluirClienteMadis(std::string& Ds_Aviso);
  // The last 30 passages of one card of the client at the gates, newest
  // first (event name, moment, card, holder, real time, card again).
  std::shared_ptr<Recordset> EntradasMadisRs(int32_t Cd_CartaoEstacionamento);
  // The client's cards by number, the vehicle kind as text ('VEICULO',
  // 'MOTO'; kind 2 shows empty, as it always has).
  std::shared_ptr<Recordset> CartaoEstacionamentoRs();
  // The end of the client's last paid monthly fee (a parking assessment with
  // a till); the empty date when there is none.
  Date ObterDataFinalUltimaMensalidadeEstacionamento();

 protected:
  std::string ConsultarStatement() override;
};

}  // namespace vek
