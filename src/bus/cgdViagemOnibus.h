#pragma once
// The trips of a day (TbViagemOnibus, key Cd_EmpresaUsuariaSistema,
// Cd_ViagemOnibus; Cd_ViagemOnibus numbered through TbSequenciadores): one
// day's instance of a timetable, expected at the terminal at Hr_Previsto,
// with its platform, progress state (No_Andamento, the caller's values) and
// boarding counts.
//
// Consultar takes the first look-up that applies, and loads the first row
// found:
//   1. Cd_ViagemOnibus given: by key;
//   2. No_Plataforma given: the trip at that platform in state No_Andamento
//      that arrived last;
//   3. Cd_HorarioLinha and Hr_Previsto given: by line, timetable and that
//      exact expected time (how a day's trips are looked up before they are
//      created, so none is created twice);
//   4. Cd_HorarioLinha alone: a trip of the timetable expected from 11 hours
//      before to 12 hours after now on the session's clock (whichever the
//      database returns first).
// With none of them it raises 0x80040201. Alterar finds its row by key, else
// by line, timetable and the calendar day of Hr_Previsto, else by the window
// of look-up 4. Excluir deletes by key, or, without one, every trip of the
// company expected at Hr_Previsto.

#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class FlexGrid;
class TextControl;

class cgdViagemOnibus : public cgdRecord<cgpViagemOnibus> {
 public:
  cgdViagemOnibus() : cgdRecord("TbViagemOnibus") {}

  // One line per trip that the filter selects, by expected time then
  // platform: code, origin, destination and Hr_Previsto as
  // "dd/mm/yyyy hh:Nn:Ss", after the grid's empty first cell; the row count
  // goes into ObQt_Registros.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
  // Deletes the announcements of this trip, of whatever operating company.
  void ApagarAgendaSom();

 protected:
  bool KeyMissing() override;
  bool LookupKeyMissing() override;
  bool UpdateKeyMissing() override;
  std::string DeleteStatement() override;
  std::string SelectStatement() override;
  std::string ConsultarStatement() override;
  std::string EmptySelectStatement() override;

 private:
  bool Has(std::string_view column);
  std::string ByKey();
  std::string AroundNow();
  std::string ExpectedTime(std::string_view format);
};

}  // namespace vek
