#pragma once
// The operating company, the tenant of the terminal
// (TbEmpresaUsuariaSistema, key Cd_EmpresaUsuariaSistema, numbered by the
// database). It also hosts the terminal-wide queries that belong to no one
// record kind.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class ComboBox;

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

 protected:
  std::string ConsultarStatement() override;
};

}  // namespace vek
