#pragma once
// The lists of payment-term items. Both statements join the items to their
// terms: a filter qualifies the items' columns with "A." in CarregarMSFlexGrid
// (A.Cd_CondicaoPagamento = 3) and with "B." in CarregarMSFlexGridDeBusca,
// where the terms are A.

#include <string>

#include "vek/foundation/ListLoader.h"

namespace vek {

class cgdItensCondicaoPagamento : public ListCollection {
 public:
  // Clears the grid, sets its header "<|<Inicio|<Fim|<Faturamento|<Vencimento"
  // and adds one line per item, by start day: start, end, billing and due
  // days after the grid's empty first cell.
  void CarregarMSFlexGrid(FlexGrid& Ob_MSFlexGrid, const std::string& Ds_Condicao = "");
  // One line per item, by term and start day: the term's code
  // "###,###,##0", its type, then the item's start, end, billing and due
  // days, after the grid's empty first cell; the row count goes into
  // ObQt_Registros. A term without items is not listed.
  void CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                 const std::string& Ds_Condicao = "");
};

}  // namespace vek
