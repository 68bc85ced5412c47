#pragma once
// The intermediate stops of a timetable (TbEscalasHorarioLinha, key
// Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, Cd_Cidade; nothing is
// numbered). Their order is not stored: stops are listed by the city's
// distance, nearest first.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class FlexGrid;

class cgdEscalasHorarioLinha : public cgdRecord<cgpEscalasHorarioLinha> {
 public:
  cgdEscalasHorarioLinha() : cgdRecord("TbEscalasHorarioLinha") {}

  // Clears the grid, lays it out ("<|<Codigo|<Cidade|Distancia", columns 1
  // to 3 at 600, 2700 and 800 twips) and adds one line per stop that the
  // filter selects (the caller gives the timetable's key), by distance then
  // name: an empty first cell, the city's code, "name / UF" and the distance
  // as "###,##0". Raises the database's error for a bad filter, with
  // " -> cgdEscalasHorarioLinha.CarregarMSFlexGrid, ".
  void CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, const std::string& Ds_Condicao = "");

 protected:
  std::string DeleteStatement() override;
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;

 private:
  std::string KeyLines(bool zero_keys);
};

}  // namespace vek
