#pragma once
// Timetables (TbHorariosLinha, key Cd_EmpresaUsuariaSistema, Cd_Linha,
// Cd_HorarioLinha; Cd_HorarioLinha numbered through TbSequenciadores): one
// scheduled trip of a bus company on a line, with its weekdays, validity,
// platform and whether passengers board and/or alight here.
//
// The terminal time of a timetable is Hr_Saida when passengers only board
// here (the trip starts here), else Hr_Chegada (it ends or passes here).

#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;
class Recordset;

class cgdHorariosLinha : public cgdRecord<cgpHorariosLinha> {
 public:
  cgdHorariosLinha() : cgdRecord("TbHorariosLinha") {}

  // Deletes the timetable's stops, then the timetable (a failure of the first
  // statement stops before the second); the trips made from it stay.
  // A key part of 0 resets Ob_cgp and raises 0x80040201.
  void Excluir();
  // The trips of this timetable (tenant and Cd_HorarioLinha; the line is not
  // compared) expected from today's midnight on, by the session's clock:
  // today's trips already gone included. A report record set.
  std::shared_ptr<Recordset> ConsultarViagensFuturasDoHorarioLinha();
  // The timetables that the filter selects (the caller gives tenant and
  // line), by departure time, under the caption "Horarios da Linha": each
  // entry is the terminal time and the bus type joined by " - ", with
  // Cd_HorarioLinha as item data; "--ESCOLHA-->" first when more than one
  // row came back. A timetable with neither flag set adds no entry, yet its
  // code overwrites the item data of the entry added last, as the terminal's
  // forms have always had it.
  void CarregarComboBox(ComboBox& Ob_ComboBox, const std::string& Ds_Condicao = "");
  // The stops of this timetable (Cd_Cidade, Nm_Cidade), nearest first.
  std::shared_ptr<Recordset> adoRsEscalas();
  // The passengers' search: the timetables of operating company 1 valid
  // today by the database's date, whose destination (and, when asked, one of
  // its stops) contains Nm_CidadeDestino in state Sg_UFDestino, and whose
  // origin (or a stop) likewise matches the origin; an empty city leaves its
  // side open and a state without a city is ignored. One row per timetable,
  // by terminal time. Apostrophes in the names and states are doubled, so
  // "Santa Bárbara d'Oeste" is found as it is written.
  std::shared_ptr<Recordset> adoRsHorariosLinha(const std::string& Nm_CidadeOrigem, const std::string& Sg_UFOrigem,
                                                const std::string& Nm_CidadeDestino,
                                                const std::string& Sg_UFDestino, bool Ic_IncluirEscalasNaOrigem,
                                                bool Ic_IncluirEscalasNoDestino);

 protected:
  std::string DeleteStatement() override;
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;

 private:
  std::string KeyLines(bool zero_keys);
};

}  // namespace vek
