#include "vek/bus/cgdViagemOnibus.h"

#include "vek/foundation/ListLoader.h"
#include "vek/platform/Format.h"

namespace vek {

bool cgdViagemOnibus::Has(std::string_view column) {
  const Variant value = Ob_cgp()->Get(column);
  return !value.IsNull() && !value.IsEmpty() && CDbl(value) != 0;
}

bool cgdViagemOnibus::KeyMissing() { return !Has("Cd_ViagemOnibus") && !Has("Hr_Previsto"); }

bool cgdViagemOnibus::LookupKeyMissing() {
  return !Has("Cd_ViagemOnibus") && !Has("No_Plataforma") && !Has("Cd_HorarioLinha");
}

bool cgdViagemOnibus::UpdateKeyMissing() { return !Has("Cd_ViagemOnibus") && !Has("Cd_HorarioLinha"); }

std::string cgdViagemOnibus::ExpectedTime(std::string_view format) {
  return Format(Ob_cgp()->Get("Hr_Previsto"), format);
}

std::string cgdViagemOnibus::ByKey() {
  return SqlLines() << "SELECT A.* "
                    << "FROM   TbViagemOnibus A"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And Cd_ViagemOnibus = " + KeyLiteral("Cd_ViagemOnibus")
                    << ";";
}

std::string cgdViagemOnibus::AroundNow() {
  // Lopsided on purpose: 11 hours back, 12 ahead, on the client's clock.
  const cgpSistema& session = *Ob_cgpSistema();
  const Date now = session.Now();
  const std::string format = CStr(session.Get("Ds_FormatoData")) + " hh:Nn:ss";
  return SqlLines() << "SELECT TOP 1 A.*"
                    << "FROM   TbViagemOnibus A"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And Cd_HorarioLinha = " + KeyLiteral("Cd_HorarioLinha")
                    << "And Hr_Previsto Between '" + Format(Variant(DateAdd("h", -11, now)), format) + "' And '" +
                           Format(Variant(DateAdd("h", 12, now)), format) + "'"
                    << "-- (Data Atual - 11 horas) And (Data Atual + 12 horas)";
}

std::string cgdViagemOnibus::ConsultarStatement() {
  if (Has("Cd_ViagemOnibus")) return ByKey();
  if (Has("No_Plataforma")) {
    return SqlLines() << "SELECT TOP 1 A.*"
                      << "FROM     TbViagemOnibus A"
                      << "WHERE    Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                      << "And No_Plataforma = " + KeyLiteral("No_Plataforma", false)
                      << "And No_Andamento = " + KeyLiteral("No_Andamento", false)
                      << "ORDER BY Hr_ChegadaRodoviaria Desc";
  }
  if (!Has("Hr_Previsto")) return AroundNow();
  const std::string format = CStr(Ob_cgpSistema()->Get("Ds_FormatoData")) + " hh:Nn:ss";
  return SqlLines() << "SELECT A.* "
                    << "FROM   TbViagemOnibus A"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And Cd_Linha = " + KeyLiteral("Cd_Linha", false)
                    << "And Cd_HorarioLinha = " + KeyLiteral("Cd_HorarioLinha")
                    << "And A.Hr_Previsto = '" + ExpectedTime(format) + "'";
}

std::string cgdViagemOnibus::SelectStatement() {
  if (Has("Cd_ViagemOnibus")) return ByKey();
  if (!Has("Hr_Previsto")) return AroundNow();
  const Date expected = CDate(Ob_cgp()->Get("Hr_Previsto"));
  return SqlLines() << "SELECT A.* "
                    << "FROM   TbViagemOnibus A"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And Cd_Linha = " + KeyLiteral("Cd_Linha", false)
                    << "And Cd_HorarioLinha = " + KeyLiteral("Cd_HorarioLinha")
                    << "And Day(Hr_Previsto) = " + std::to_string(Day(expected))
                    << "And Month(Hr_Previsto) = " + std::to_string(Month(expected))
                    << "And Year(Hr_Previsto) = " + std::to_string(Year(expected));
}

std::string cgdViagemOnibus::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbViagemOnibus A"
                    << "WHERE  Cd_EmpresaUsuariaSistema = 0"
                    << "And Cd_ViagemOnibus = 0"
                    << ";";
}

std::string cgdViagemOnibus::DeleteStatement() {
  if (Has("Cd_ViagemOnibus")) {
    return SqlLines() << "DELETE "
                      << "FROM   TbViagemOnibus"
                      << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                      << "And Cd_ViagemOnibus = " + KeyLiteral("Cd_ViagemOnibus");
  }
  return SqlLines() << "DELETE "
                    << "FROM   TbViagemOnibus A"
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "And Hr_Previsto = '" + ExpectedTime("yyyy-mm-dd hh:Nn:ss") + "'"
                    << ";";
}

void cgdViagemOnibus::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_ViagemOnibus,"
        << "B.Nm_Cidade As Nm_CidadeOrigem,"
        << "C.Nm_Cidade As Nm_CidadeDestino,"
        << "A.Hr_Previsto"
        << "FROM     TbViagemOnibus A"
        << "INNER JOIN TbHorariosLinha D On A.Cd_EmpresaUsuariaSistema = D.Cd_EmpresaUsuariaSistema"
        << "And A.Cd_HorarioLinha =  D.Cd_HorarioLinha"
        << "INNER JOIN TbLinha E On D.Cd_Linha = E.Cd_Linha"
        << "INNER JOIN TbCidade B On E.Cd_CidadeOrigem = B.Cd_Cidade"
        << "INNER JOIN TbCidade C On E.Cd_CidadeDestino = C.Cd_Cidade";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY A.Hr_Previsto,"
        << "A.No_Plataforma";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                   {{"Cd_ViagemOnibus"}, {"Nm_CidadeOrigem"}, {"Nm_CidadeDestino"}, {"Hr_Previsto", "dd/mm/yyyy hh:Nn:Ss"}});
  });
}

void cgdViagemOnibus::ApagarAgendaSom() {
  Run("ApagarAgendaSom", [&] {
    ds_sql_ = SqlLines() << "DELETE"
                         << "FROM   TbAgendaSom"
                         << "WHERE  Cd_ViagemOnibus = " + KeyLiteral("Cd_ViagemOnibus");
    ExecuteStatement();
  });
}

}  // namespace vek
