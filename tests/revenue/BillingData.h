#pragma once
// Rows that the billing tests start from, written with the test's own
// statements (outside the recorded ones): payers, bus companies with their
// ERP codes, the ERP's parameters of a company, receivables and closings.

#include <cstdint>
#include <string>

#include "support/TerminalDatabase.h"

namespace vek::testing {

inline std::string Sql(const std::string& text) { return "'" + text + "'"; }

inline void AddPayer(TerminalDatabase& db, int32_t person, const std::string& name) {
  db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa, No_TipoPessoa) VALUES (" + std::to_string(person) + ", " +
           Sql(name) + ", 2)");
}

// A bus company is its own person, with its customer and store codes in the ERP.
inline void AddBusCompany(TerminalDatabase& db, int32_t person, const std::string& name, const std::string& client,
                          const std::string& store) {
  AddPayer(db, person, name);
  db.Query("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Nm_EmpresaOnibus, Cd_ClienteIntegracao, "
           "Cd_LojaIntegracao) VALUES (" +
           std::to_string(person) + ", " + Sql(name) + ", " + Sql(client) + ", " + Sql(store) + ")");
}

// `issued`, `due` and `paid` are SQL ('2026-03-02' or NULL); `amount` too.
inline void AddReceivable(TerminalDatabase& db, int32_t company, int32_t number, int32_t instalment, int32_t payer,
                          const std::string& issued, const std::string& due, const std::string& amount,
                          int32_t grace_days = 0, const std::string& history = "", int32_t generated = 1,
                          const std::string& paid = "NULL") {
  db.Query("INSERT INTO TbContaReceber (Cd_EmpresaUsuariaSistema, No_ContaReceber, No_Parcela, Cd_Pessoa, "
           "Dt_Emissao, Dt_Vencimento, Dt_Pagamento, Vl_ContaReceber, Qt_DiasProrrogacao, Ds_Historico, "
           "Ic_GeradoPeloSistema) VALUES (" +
           std::to_string(company) + ", " + std::to_string(number) + ", " + std::to_string(instalment) + ", " +
           std::to_string(payer) + ", " + issued + ", " + due + ", " + paid + ", " + amount + ", " +
           std::to_string(grace_days) + ", " + Sql(history) + ", " + std::to_string(generated) + ")");
}

inline void AddMicrosigaParameters(TerminalDatabase& db, int32_t company, int32_t currency = 1) {
  db.Query("INSERT INTO TbParametrosMicrosiga (Cd_EmpresaUsuariaSistema, Ds_Filial, Ds_Prefixo, Ds_Tipo, "
           "Ds_Natureza, Ds_CCusto, Ds_Portador, Ds_Agencia, Ds_Conta, No_Moeda, Ds_Status, Ds_Origem, Ds_Fluxo, "
           "Ds_FiloRig, Ds_MultNat, Ds_MsFil, Ds_MsEmp, Ds_RatNCC) VALUES (" +
           std::to_string(company) +
           ", '01', 'ROD', 'NF', '1101', '300100', '341', '0123', '45678-9', " + std::to_string(currency) +
           ", 'A', 'FINA040', 'S', '01', '2', '01', '01', '2')");
}

inline void AddClosing(TerminalDatabase& db, int32_t company, const std::string& day, const std::string& deposit) {
  db.Query("INSERT INTO TbFechamentoDiario (Cd_EmpresaUsuariaSistema, Dt_FechamentoDiario, Vl_Deposito) VALUES (" +
           std::to_string(company) + ", " + Sql(day) + ", " + deposit + ")");
}

inline int32_t RowCount(TerminalDatabase& db, const std::string& from_where) {
  return CLng(db.Query("SELECT Count(*) FROM " + from_where)->Fields().Item(0).Value());
}

}  // namespace vek::testing
