#pragma once
// The apportionment of the bus companies' boardings over cities
// (TbItemRateioMovimentoED): its grid and a company's lines.

#include <cstdint>
#include <memory>
#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class FlexGrid;
class Recordset;
class TextControl;

class cgdItensRateioMovimentoED : public ListCollection {
 public:
  // Clears the grid, sets its header "<|Cod|<Nome Cidade|>Embarques" and adds
  // one line per apportionment line that the filter selects (SQL without
  // WHERE; the line table is A, the city B), by city name: an empty first
  // cell, Cd_Cidade, "Nm_Cidade/Sg_UF" and Qt_Embarques. Ob_TextTotal gets
  // the sum of the lines' Qt_Embarques as "###,###,##0" once the lines are
  // in ("0" for none). Raises what fails with
  // " -> cgdItensRateioMovimentoED.CarregarMSFlexGrid, " added.
  void CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, TextControl& Ob_TextTotal, const std::string& Ds_Condicao = "");
  // Every apportionment line of the bus company, of whatever operating
  // company, fewest boardings first; a report record set (detached).
  std::shared_ptr<Recordset> ConsultarRateioPorEmpresa(int32_t Cd_EmpresaOnibus);
};

}  // namespace vek
