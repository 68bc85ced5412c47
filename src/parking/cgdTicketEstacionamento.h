#pragma once
// Parking tickets (TbTicketEstacionamento, key company and
// Cd_TicketEstacionamento, numbered): one stay of one vehicle. A ticket is
// inserted pending (No_Situacao 1, no Dt_Saida) at the entry and closed
// (No_Situacao 2) by the exit: the charge lines are written first
// (ExcluirTarifas, then one cgdTicketEstacionamento_Tarifa each), then
// Alterar stores Dt_Saida, the minutes, the value and the till, so a failure
// midway leaves the ticket pending, never closed without its lines.
//
// The insert is a statement of its own naming the fifteen columns; a
// Dt_Saida before 01/01/2000 goes in as NULL, an empty Ds_Ticket as ''.
// Alterar stores an empty Ds_Ticket and a Dt_Saida before 01/01/2000 as
// NULL. Plates, codes and card texts holding an apostrophe are refused
// (0x80040458 naming the field) before any SQL.

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class Recordset;

class cgdTicketEstacionamento : public cgdRecord<cgpTicketEstacionamento> {
 public:
  cgdTicketEstacionamento() : cgdRecord("TbTicketEstacionamento") {
    QuotedInLookups("Cd_Placa");
    QuotedInLookups("Ds_Ticket");
  }

  // Removes every charge line of the ticket (before they are written again).
  void ExcluirTarifas();
  // By ticket number when it is not 0; else by the company and the printed
  // code Ds_Ticket, the original ticket when Ic_TicketRevalidado is false and
  // a revalidation when it is true; else 0x80040201.
  std::shared_ptr<cgpTicketEstacionamento> Consultar(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro = true) override;
  // The pending ticket of the plate Cd_Placa (with several, whichever the
  // server returns first).
  std::shared_ptr<cgpTicketEstacionamento> ConsultarTicketPendentePorPlaca(
      bool Ic_RestaurarDefaulSeNaoEcontrarRegistro = true);
  // Loads the newest pending entry of the card Cd_CartaoEstacionamento and
  // returns true; false (Ob_cgp untouched) when the card has none.
  bool ConsultarTicketPendentePorCartao();
  // Whether the plate Cd_Placa has a pending ticket; loads nothing.
  bool ExisteEntradaPendente();
  // Whether Consultar would find a row; loads nothing.
  bool Existe();
  // The charge lines: Ds_Tarifa, Qt_Unidade, Vl_Tarifa, Vl_Total, highest
  // unit value first. Open, for the caller to read.
  std::shared_ptr<Recordset> rsTarifas();
  // The minutes per day the ticket's monthly client may stay: the hours of
  // the monthly price of its tariff times 60, 1440 when it has none; 0 when
  // the ticket has no client.
  int32_t ObterMinutosPermitidoPorCadaDia();
  // The minutes already used by the closed monthly stays of the ticket's
  // client that entered on or after the ticket's entry day (session date
  // format); 0 when none.
  int32_t ObterMinutosPermanenciaoOutrosTickets();

  // Asks the database to release the ticket at the gates; Ds_Aviso gets the
  // procedure's warning, a refusal raises 0x80040458 with its text.
  void LiberarTicketMadis(std::string& Ds_Aviso);
  // Marks the gates' passage IDLOGPERMANENCIA of company IDEMPRESA as turned
  // into this ticket.
  void AssociarLogMadisAoTicket(int32_t IDEMPRESA, int32_t IDLOGPERMANENCIA);
  // Closes at no charge (exit = entry) every pending entry of the card, of
  // every company: card numbers are unique across companies. IDEMPRESA is
  // not used.
  void RegistrarSaidaDasEntradasAnterioresDessaCartao(int32_t IDEMPRESA, int32_t IDCARTAO);
  // Whether the gates logged an entry, an exit, or hold a block for the
  // loose ticket whose code is the first 13 characters of Ds_Ticket. A code
  // of 13 characters or fewer raises 0x80040458 "Erro na consulta se houve
  // saída da Madis, ..." in all three, as it always has.
  bool HouveEntradaTicketMadis(const std::string& Ds_Ticket);
  bool HouveSaidaTicketMadis(const std::string& Ds_Ticket);
  bool EstaBloqueadoTicketMadis(const std::string& Ds_Ticket);

 protected:
  bool LookupKeyMissing() override;
  bool UpdateKeyMissing() override { return KeyMissing(); }
  std::string SelectStatement() override { return SelectByKey(true); }
  std::string ConsultarStatement() override;
  std::string InsertStatement() override;
  void AdjustUpdatedRow(Recordset& row) override;

 private:
  bool GateLogHasRows(std::string_view member, const std::string& Ds_Ticket, std::string_view table,
                      std::string_view event_line);
  std::string PendingByPlateStatement();
};

}  // namespace vek
