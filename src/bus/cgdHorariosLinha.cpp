#include "vek/bus/cgdHorariosLinha.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/ListLoader.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

// A name or state as the search writes it between quotes: apostrophes
// doubled, so that a city such as "Olhos-d'Água" is looked up as it is.
std::string Quoted(const std::string& text) { return Replace(text, "'", "''"); }

// The filter of one side of the search ("C" origin, "D" destination), or
// nothing when its city is empty.
std::string SideFilter(std::string_view alias, const std::string& city, const std::string& state, bool stops,
                       std::string_view comment) {
  if (Trim(city).empty()) return {};
  const std::string a(alias);
  const std::string n = Quoted(city);
  const std::string u = Quoted(state);
  std::string line;
  if (Trim(state).empty()) {
    line = stops ? "AND ((" + a + ".Nm_Cidade Like '%" + n + "%') Or (H.Nm_Cidade Like '%" + n + "%'))"
                 : "AND (" + a + ".Nm_Cidade Like '%" + n + "%')";
  } else {
    line = stops ? "AND (((" + a + ".Nm_Cidade Like '%" + n + "%' And " + a + ".Sg_UF = '" + u +
                       "') Or (H.Nm_Cidade Like '%" + n + "%' And H.Sg_UF = '" + u + "')))"
                 : "AND ((" + a + ".Nm_Cidade Like '%" + n + "%' And " + a + ".Sg_UF = '" + u + "'))";
  }
  return line + " " + std::string(comment) + "\r";
}

bool IsSet(const Variant& flag) { return !flag.IsNull() && CDbl(flag) != 0; }

}  // namespace

std::string cgdHorariosLinha::KeyLines(bool zero_keys) {
  auto key = [&](std::string_view column) { return zero_keys ? std::string("0") : KeyLiteral(column); };
  return SqlLines() << "WHERE  Cd_EmpresaUsuariaSistema = " + key("Cd_EmpresaUsuariaSistema")
                    << "And Cd_Linha = " + key("Cd_Linha")
                    << "And Cd_HorarioLinha = " + key("Cd_HorarioLinha");
}

std::string cgdHorariosLinha::SelectStatement() {
  return (SqlLines() << "SELECT A.*"
                     << "FROM   TbHorariosLinha A").Text() +
         KeyLines(false) + ";\r";
}

std::string cgdHorariosLinha::EmptySelectStatement() {
  return (SqlLines() << "SELECT A.*"
                     << "FROM   TbHorariosLinha A").Text() +
         KeyLines(true) + ";\r";
}

std::string cgdHorariosLinha::DeleteStatement() {
  return (SqlLines() << "DELETE "
                     << "FROM   TbHorariosLinha").Text() +
         KeyLines(false);
}

void cgdHorariosLinha::Excluir() {
  Run("Excluir", [&] {
    if (KeyMissing()) {
      RecordObject().RestaurarDefault();
      RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Excluir");
    }
    // The stops go first: they refer to the timetable.
    ds_sql_ = (SqlLines() << "DELETE "
                          << "FROM   TbEscalasHorarioLinha").Text() +
              KeyLines(false);
    ExecuteStatement();
    ds_sql_ = DeleteStatement();
    ExecuteStatement();
  });
}

std::shared_ptr<Recordset> cgdHorariosLinha::ConsultarViagensFuturasDoHorarioLinha() {
  return Run("ConsultarViagensFuturasDoHorarioLinha", [&] {
    const cgpSistema& session = *Ob_cgpSistema();
    const std::string today = Format(Variant(session.Now()), CStr(session.Get("Ds_FormatoData")));
    ds_sql_ = SqlLines() << "SELECT A.*"
                         << "FROM   TbViagemOnibus A"
                         << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "And Cd_HorarioLinha = " + KeyLiteral("Cd_HorarioLinha")
                         << "And Hr_Previsto >='" + today + " 00:00:00'";
    return OpenReport();
  });
}

void cgdHorariosLinha::CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao) {
  Run("CarregarComboBox", [&] {
    Ob_ComboBox.Clear();
    ProgressWindow& progress = Ob_cgpSistema()->Progress();
    progress.Caption("Horarios da Linha");
    progress.Label(std::string());
    progress.Percentage(0.0);
    progress.Show();
    Recordset rows;
    try {
      SqlLines sql;
      sql << "SELECT Cd_HorarioLinha,"
          << "Hr_Saida,"
          << "Hr_Chegada,"
          << "Ds_TipoOnibus,"
          << "Ic_TemEmbarques,"
          << "Ic_TemDesembarque"
          << "From   TbHorariosLinha"
          << "INNER JOIN TbTipoOnibus On TbHorariosLinha.cd_tipoonibus = TbTipoOnibus.cd_tipoonibus";
      AddFilter(sql, Ds_Condicao, "WHERE  ");
      sql << "ORDER BY Hr_Saida";
      ds_sql_ = sql;
      OpenStatement(rows);
      const int32_t count = rows.RecordCount();
      if (count > 1) {
        Ob_ComboBox.AddItem(std::string(kChooseEntry));
        Ob_ComboBox.ItemData(Ob_ComboBox.NewIndex(), 0);
      }
      Fields& fields = rows.Fields();
      int32_t done = 0;
      while (!rows.Eof()) {
        // A bit reads as True whether 1 or -1 was stored.
        const bool boards = IsSet(fields.Item("Ic_TemEmbarques").Value());
        const bool alights = IsSet(fields.Item("Ic_TemDesembarque").Value());
        const std::string bus_type = CellText(fields.Item("Ds_TipoOnibus").Value());
        if (boards && !alights) {
          Ob_ComboBox.AddItem(CellText(fields.Item("Hr_Saida").Value()) + " - " + bus_type);
        } else if (alights != 0) {
          Ob_ComboBox.AddItem(CellText(fields.Item("Hr_Chegada").Value()) + " - " + bus_type);
        }
        // Written even when no entry was added: it lands on the last entry.
        if (Ob_ComboBox.ListCount() > 0) {
          Ob_ComboBox.ItemData(Ob_ComboBox.NewIndex(), CLng(fields.Item("Cd_HorarioLinha").Value()));
        }
        progress.Percentage(100.0 * ++done / count);
        rows.MoveNext();
      }
      rows.Close();
    } catch (...) {
      if (rows.State() == adStateOpen) rows.Close();
      progress.Close();
      throw;
    }
    progress.Close();
  });
}

std::shared_ptr<Recordset> cgdHorariosLinha::adoRsEscalas() {
  return Run("adoRsEscalas", [&] {
    ds_sql_ = SqlLines() << "SELECT   B.Cd_Cidade,"
                         << "B.Nm_Cidade"
                         << "FROM     TbEscalasHorarioLinha A"
                         << "INNER JOIN TbCidade B On B.Cd_Cidade = A.Cd_Cidade"
                         << "Where    A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "And A.Cd_Linha = " + KeyLiteral("Cd_Linha")
                         << "And A.Cd_HorarioLinha = " + KeyLiteral("Cd_HorarioLinha")
                         << "ORDER BY B.Qt_DistanciaEmKm";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdHorariosLinha::adoRsHorariosLinha(
    const std::string& Nm_CidadeOrigem, const std::string& Sg_UFOrigem, const std::string& Nm_CidadeDestino,
    const std::string& Sg_UFDestino, bool Ic_IncluirEscalasNaOrigem, bool Ic_IncluirEscalasNoDestino) {
  return Run("adoRsHorariosLinha", [&] {
    SqlLines sql;
    sql << "SELECT   Distinct"
        << "C.Nm_Cidade As Nm_CidadeOrigem,"
        << "C.Sg_UF As Sg_UFOrigem,"
        << "D.Nm_Cidade As Nm_CidadeDestino,"
        << "D.Sg_UF As Sg_UFDestino,"
        << "Case When A.Ic_TemEmbarques <> 0 And A.Ic_TemDesembarque = 0 Then A.Hr_Saida"
        << "When A.Ic_TemEmbarques = 0 And A.Ic_TemDesembarque <> 0 Then A.Hr_Chegada"
        << "When A.Ic_TemEmbarques <> 0 And A.Ic_TemDesembarque <> 0 Then A.Hr_Chegada"
        << "Else A.Hr_Saida"
        << "End As Hr_SaidaRodoviaria,"
        << "A.Hr_Saida As Hr_InicioViagem,"
        << "Case When A.Ic_TemEmbarques <> 0 Then 'SIM'"
        << "Else 'NÃO'"
        << "End Ds_TemEmbarque,"
        << "E.Nm_EmpresaOnibus,"
        << "F.Ds_TipoOnibus,"
        << "A.No_Plataforma,"
        << "A.Ic_ViagemNoDomingo,"
        << "A.Ic_ViagemNaSegunda,"
        << "A.Ic_ViagemNaTerca,"
        << "A.Ic_ViagemNaQuarta,"
        << "A.Ic_ViagemNaQuinta,"
        << "A.Ic_ViagemNaSexta,"
        << "A.Ic_ViagemNoSabado"
        << "FROM     TbHorariosLinha A"
        << "INNER JOIN TbLinha B On B.Cd_Linha = A.Cd_Linha"
        << "INNER JOIN TbCidade C On C.Cd_Cidade = B.Cd_CidadeOrigem"
        << "INNER JOIN TbCidade D On D.Cd_Cidade = B.Cd_CidadeDestino"
        << "INNER JOIN TbEmpresaOnibus E On E.Cd_EmpresaOnibus = A.Cd_EmpresaOnibus"
        << "INNER JOIN TbTipoOnibus F On F.Cd_TipoOnibus = A.Cd_TipoOnibus"
        << "LEFT  JOIN TbEscalasHorarioLinha G On G.Cd_EmpresaUsuariaSistema = A.Cd_EmpresaUsuariaSistema"
        << "And G.Cd_Linha = A.Cd_Linha"
        << "And G.Cd_HorarioLinha = A.Cd_HorarioLinha"
        << "LEFT  JOIN TbCidade H On H.Cd_Cidade = G.Cd_Cidade"
        // The search always serves operating company 1.
        << "WHERE    A.Cd_EmpresaUsuariaSistema = 1"
        << "And (A.Dt_Inicial Is Null Or CONVERT(date, GetDate()) >= A.Dt_Inicial)"
        << "And (A.Dt_Final Is Null Or CONVERT(date, GetDate()) <= A.Dt_Final)";
    std::string text = sql;
    text += SideFilter("D", Nm_CidadeDestino, Sg_UFDestino, Ic_IncluirEscalasNoDestino, "-- Cidade Destino");
    text += SideFilter("C", Nm_CidadeOrigem, Sg_UFOrigem, Ic_IncluirEscalasNaOrigem, "-- Cidade Origem");
    text += "ORDER BY Hr_SaidaRodoviaria\r";
    ds_sql_ = std::move(text);
    return OpenReport();
  });
}

}  // namespace vek
