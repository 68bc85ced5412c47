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

 protected:
  std::string ConsultarStatement() override;
};

}  // namespace vek
