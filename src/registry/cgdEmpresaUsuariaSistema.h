#pragma once
// The operating company, the tenant of the terminal
// (TbEmpresaUsuariaSistema, key Cd_EmpresaUsuariaSistema, numbered by the
// database). It also hosts the terminal-wide queries that belong to no one
// record kind.

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"
#include "vek/platform/Date.h"

namespace vek {

class ComboBox;
class Recordset;

class cgdEmpresaUsuariaSistema : public cgdRecord<cgpEmpresaUsuariaSistema> {
 public:
  cgdEmpresaUsuariaSistema() : cgdRecord("TbEmpresaUsuariaSistema") {}

  // Consultar reads the company with its access-control parameter
  // Qt_MinutosMaximoSaidaAposPagamento (Null when the company has no
  // TbParametrosMadis row); Alterar and Incluir read the company alone, so
  // the parameter is never written back.

  // Every company whose person is there, by name: Nm_Pessoa as text and
  // Cd_EmpresaUsuariaSistema as item data. Unlike the other pick lists it
  // ignores Ds_Condicao, adds no "--ESCOLHA-->" entry and shows no progress
  // window, as it always has.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");

  // ---- bus operations (cgdEmpresaUsuariaSistemaBus.cpp) ----
  // Report record sets: client-side, static, read-only, detached.

  // The timetables of every company that run on the weekday of
  // Dt_Processamento and are valid now by the database's clock, date and
  // time compared (a timetable whose Dt_Final is today's midnight is already
  // out today).
  std::shared_ptr<Recordset> rsViagensDoDia(Date Dt_Processamento);
  // Every bus (TbVeiculoOnibus).
  std::shared_ptr<Recordset> rsOnibus();
  // The board: at most Qt_Linhas trips of this company expected up to the
  // session's Qt_TempoAntecedenciaMostrarViagensVisualizador minutes from
  // now (session clock, to the minute), newest first, then by platform;
  // arrivals are the timetables where passengers alight, departures those
  // where they board (a passing trip is on both). A timetable passes when
  // valid now, or when either end is empty or on or before 01/01/1900.
  // Their errors name "rsRecebimentoDeMensalistas" in the Source, as the
  // viewer has always read them.
  std::shared_ptr<Recordset> rsUltimasChegadas(int32_t Qt_Linhas);
  std::shared_ptr<Recordset> rsUltimasPartidas(int32_t Qt_Linhas);
  // The company's announcements not played yet and due within the last ten
  // minutes by the session's clock, oldest first.
  std::shared_ptr<Recordset> rsAgendaSom();
  // Rebuilds the shared work table TempCidade from the origins and
  // destinations of every line and the stops of every timetable (marks 0),
  // and returns its distinct rows by city code.
  std::shared_ptr<Recordset> rsCidadesAtendidas();
  // Marks in TempCidade whether a sound file exists for the city.
  void AtualizarCidadeAtendidaExisteArquivoSom(int32_t Cd_Cidade, bool Ic_ExisteArquivoSom);
  // True when the server holds the database of that name (on SQLite, an
  // attached file; on PostgreSQL, a schema). A name holding an apostrophe is
  // refused before any SQL.
  bool ExisteBancoDeDados(const std::string& Nm_BancoDeDados);

  // Every vehicle in the company's yard, oldest entry first, as Ds_Ticket
  // (a label), Dt_Entrada and Ic_Mensalista: the pending tickets with a
  // plate and, when the access-control database exists, the loose tickets
  // the gates let in that have no ticket row ('***' after the code) and the
  // monthly cards whose latest passage is an entry. A company of 0 is
  // 0x80040201.
  std::shared_ptr<Recordset> rsVeiculoNoPatio();
  // Every company's monthly passages at the gates not yet turned into
  // tickets, with the card's client, in log order.
  std::shared_ptr<Recordset> rsEntradaMensalistaMadisNaoProcessada();
  // Housekeeping, four statements each on its own (no transaction): loose
  // tickets older than 90 days leave the gates; the entry passages of cards
  // still inside go from the log, and pending tickets that have an exit are
  // closed, both for company 1 only, as they always have; pending tickets
  // of the company older than 90 days are deleted (DATEDIFF in days: 90
  // stays, 91 goes). A failure raises 0x80040458 "Erro na exclusão das
  // entradas antigas do estacionamento"; what already ran stays done.
  void ApagarEntradasAntigasDoEstacionamento();

  // ---- what a till took (cgdEmpresaUsuariaSistemaCaixa.cpp) ----
  // Report record sets of the company's tills; a ticket or sale of another
  // company under the same till number is never listed.

  // The parking tickets that left (No_Situacao 2) through the till, with the
  // vehicle's make and model and colour where the plate is known, by exit.
  std::shared_ptr<Recordset> rsSaidasCaixa(int32_t Cd_Caixa);
  // The tickets that left from 00:00:00 of Dt_Inicial to 23:59:59 of
  // Dt_Final (session date format), any till, by exit; Cd_Placa is '' when
  // the ticket has no plate.
  std::shared_ptr<Recordset> rsSaidasPeriodo(Date Dt_Inicial, Date Dt_Final);
  // Per tariff and unit value: the units the till took, parking
  // ("ESTACIONAMENTO", through the exits' tickets) and restroom
  // ("SANITARIO") in one UNION, by tariff.
  std::shared_ptr<Recordset> rsSaidasCaixaAgrupadoPorTarifa(int32_t Cd_Caixa);
  // The monthly-client payments taken by the till (assessments with
  // Ic_TotalizacaoDeCaixa 0), with the payer's name.
  std::shared_ptr<Recordset> rsRecebimentoDeMensalistas(int32_t Cd_Caixa);
  // The till's own totalling assessments (Ic_TotalizacaoDeCaixa 1).
  std::shared_ptr<Recordset> rsApuracaoReceitaCaixa(int32_t Cd_Caixa);
  // The restroom sales of the till, with the tariff's description.
  std::shared_ptr<Recordset> rsRecebimentoSanitario(int32_t Cd_Caixa);

 protected:
  std::string ConsultarStatement() override;

 private:
  // The till's cash assessments with their payer, ending with `flag_line`.
  std::string CashAssessmentsStatement(int32_t Cd_Caixa, const char* flag_line);
};

}  // namespace vek
