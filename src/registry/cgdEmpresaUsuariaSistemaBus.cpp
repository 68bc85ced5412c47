// The operating company's queries of the bus side: the day's timetables,
// the board, the announcements and the cities served.

#include "vek/db/Recordset.h"
#include "vek/platform/Format.h"
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

namespace vek {
namespace {

constexpr std::string_view kWeekdayFlags[] = {"Ic_ViagemNoDomingo", "Ic_ViagemNaSegunda", "Ic_ViagemNaTerca",
                                              "Ic_ViagemNaQuarta",  "Ic_ViagemNaQuinta",  "Ic_ViagemNaSexta",
                                              "Ic_ViagemNoSabado"};

// The board shows trips expected up to the viewer's look-ahead from now.
std::string BoardLimit(const cgpSistema& session) {
  const Date limit =
      DateAdd("n", CLng(session.Get("Qt_TempoAntecedenciaMostrarViagensVisualizador")), session.Now());
  return Format(Variant(limit), CStr(session.Get("Ds_FormatoData")) + " hh:NN");
}

// The board's two queries differ in the flag that puts a trip on it.
std::string BoardStatement(int32_t rows, const std::string& tenant, const std::string& limit,
                           std::string_view flag_line) {
  return SqlLines() << "SELECT   TOP " + std::to_string(rows)
                    << "A.Cd_ViagemOnibus,"
                    << "D.Nm_Cidade + '/' + F.Sg_Uf As Nm_CidadeOrigem,"
                    << "E.Nm_Cidade + '/' + G.Sg_Uf As Nm_CidadeDestino,"
                    << "H.Cd_EmpresaOnibus,"
                    << "H.Nm_EmpresaOnibus,"
                    << "A.No_Andamento,"
                    << "B.Hr_Saida,"
                    << "B.Hr_Chegada,"
                    << "A.Hr_Previsto,"
                    << "B.Ic_TemDesembarque,"
                    << "B.Ic_TemEmbarques,"
                    << "B.No_Plataforma,"
                    << "A.Qt_EmbarquesComPassagem,"
                    << "A.Qt_EmbarquesSemPassagem,"
                    << "A.Hr_SaidaRodoviaria"
                    << "FROM     TbViagemOnibus A"
                    << "INNER JOIN TbHorariosLinha B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
                    << "And A.Cd_HorarioLinha = B.Cd_HorarioLinha"
                    << "INNER JOIN TbLinha C On B.Cd_Linha = C.Cd_Linha"
                    << "INNER JOIN TbCidade D On C.Cd_CidadeOrigem = D.Cd_Cidade"
                    << "INNER JOIN TbCidade E On C.Cd_CidadeDestino = E.Cd_Cidade"
                    << "INNER JOIN TbUf F On D.Cd_Uf = F.Cd_Uf"
                    << "INNER JOIN TbUf G On E.Cd_Uf = G.Cd_Uf"
                    << "INNER JOIN TbEmpresaOnibus H On B.Cd_EmpresaOnibus = H.Cd_EmpresaOnibus"
                    << "Where    A.Cd_EmpresaUsuariaSistema = " + tenant
                    << "And A.Hr_Previsto <= '" + limit + "'"
                    << flag_line
                    // An end on or before 1900 counts as empty, and one empty end is enough.
                    << "And ((getDate() >= B.Dt_Inicial And getDate() <= B.Dt_Final) "
                    << "Or B.Dt_Inicial Is Null "
                    << "Or B.Dt_Inicial <= '1900-01-01' "
                    << "Or B.Dt_Final Is Null "
                    << "Or B.Dt_Final <= '1900-01-01') "
                    << "ORDER BY A.Hr_Previsto Desc,"
                    << "B.No_Plataforma";
}

// The INSERT of the cities of one kind of reference into TempCidade.
std::string InsertCities(std::string_view from, std::string_view join) {
  return SqlLines() << "INSERT INTO TempCidade"
                    << "SELECT   B.Cd_Cidade,"
                    << "B.Nm_Cidade,"
                    << "B.Sg_Cidade,"
                    << "B.Sg_UF,"
                    << "B.Cd_UF,"
                    << "B.Qt_DistanciaEmKm,"
                    << "0" << from << join;
}

}  // namespace

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsViagensDoDia(Date Dt_Processamento) {
  return Run("rsViagensDoDia", [&] {
    const std::string flag(kWeekdayFlags[Weekday(Dt_Processamento) - 1]);
    ds_sql_ = SqlLines() << "SELECT * "
                         << "FROM   TbHorariosLinha "
                         << "WHERE  " + flag + " <> 0 "
                         << "And ("
                         << "getDate() >= Dt_Inicial "
                         << "Or Dt_Inicial Is Null) "
                         << "And ("
                         << "getDate() <= Dt_Final "
                         << "Or Dt_Final Is Null) ";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsOnibus() {
  return Run("rsOnibus", [&] {
    ds_sql_ = SqlLines() << "SELECT * "
                         << "FROM   TbVeiculoOnibus ";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsUltimasChegadas(int32_t Qt_Linhas) {
  return Run("rsRecebimentoDeMensalistas", [&] {
    ds_sql_ = BoardStatement(Qt_Linhas, KeyLiteral("Cd_EmpresaUsuariaSistema"), BoardLimit(*Ob_cgpSistema()),
                             "And B.Ic_TemDesembarque <> 0");
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsUltimasPartidas(int32_t Qt_Linhas) {
  return Run("rsRecebimentoDeMensalistas", [&] {
    ds_sql_ = BoardStatement(Qt_Linhas, KeyLiteral("Cd_EmpresaUsuariaSistema"), BoardLimit(*Ob_cgpSistema()),
                             "And B.Ic_TemEmbarques <> 0");
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsAgendaSom() {
  return Run("rsAgendaSom", [&] {
    const cgpSistema& session = *Ob_cgpSistema();
    const std::string format = CStr(session.Get("Ds_FormatoData")) + " hh:Nn:ss";
    const Date now = session.Now();
    ds_sql_ = SqlLines() << "SELECT   *"
                         << "FROM     TbAgendaSom"
                         << "WHERE    Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "And Dt_Agendamento Between '" + Format(Variant(DateAdd("n", -10, now)), format) +
                                "' And '" + Format(Variant(now), format) + "'"
                         << "And Ic_Feito = 0"
                         << "ORDER BY Dt_Agendamento";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsCidadesAtendidas() {
  return Run("rsCidadesAtendidas", [&] {
    ds_sql_ = SqlLines() << "Delete"
                         << "from TempCidade";
    ExecuteStatement();
    ds_sql_ = InsertCities("FROM     TbLinha A", "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_CidadeOrigem");
    ExecuteStatement();
    ds_sql_ = InsertCities("FROM     TbLinha A", "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_CidadeDestino");
    ExecuteStatement();
    ds_sql_ = InsertCities("FROM     TbEscalasHorarioLinha A", "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_Cidade");
    ExecuteStatement();
    ds_sql_ = SqlLines() << "SELECT   DISTINCT *"
                         << "from TempCidade"
                         << "ORDER BY Cd_Cidade";
    return OpenReport();
  });
}

void cgdEmpresaUsuariaSistema::AtualizarCidadeAtendidaExisteArquivoSom(int32_t Cd_Cidade, bool Ic_ExisteArquivoSom) {
  Run("AtualizarCidadeAtendidaExisteArquivoSom", [&] {
    ds_sql_ = SqlLines() << "Update TempCidade"
                         << (Ic_ExisteArquivoSom ? "Set    Ic_ExisteArquivoSom = 1" : "Set    Ic_ExisteArquivoSom = 0")
                         << "Where  Cd_Cidade = " + std::to_string(Cd_Cidade);
    ExecuteStatement();
  });
}

bool cgdEmpresaUsuariaSistema::ExisteBancoDeDados(const std::string& Nm_BancoDeDados) {
  return Run("rsRecebimentoDeMensalistas", [&] {
    RequireNoApostrophe("Nm_BancoDeDados", Nm_BancoDeDados);
    ds_sql_ = SqlLines() << "SELECT name, database_id, create_date"
                         << "From   sys.databases"
                         << "WHERE  name = '" + Nm_BancoDeDados + "'";
    Recordset rows;
    OpenStatement(rows);
    const bool found = rows.RecordCount() > 0;
    rows.Close();
    return found;
  });
}

}  // namespace vek
