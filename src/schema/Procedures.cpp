#include "vek/schema/Procedures.h"

#include <initializer_list>

#include "vek/db/Command.h"
#include "vek/platform/Text.h"
#include "vek/platform/Variant.h"

namespace vek::schema {
namespace {

// Ticket codes longer than this are the gates' codes followed by more digits.
constexpr int32_t kGateCodeLength = 13;

constexpr std::string_view kTicketNotFound = "Ticket de estacionamento não encontrado";
constexpr std::string_view kTicketWithoutCode = "Ticket sem código de acesso da Madis";
constexpr std::string_view kTicketNotAtGatesBefore = "Ticket ";  // then the code
constexpr std::string_view kTicketNotAtGatesAfter = " sem entrada registrada na Madis";
constexpr std::string_view kClientNotFound = "Cliente de estacionamento não encontrado";
constexpr std::string_view kClientUnknownToGates = "Cliente não cadastrado na Madis";
constexpr std::string_view kCardNotFound = "Cartão de estacionamento não encontrado";
constexpr std::string_view kCardClientUnknownToGates = "Cliente do cartão não cadastrado na Madis";
constexpr std::string_view kCardCodeNotNumeric = "Identificação do cartão não é numérica";
constexpr std::string_view kCardInactiveRemoved = "Cartão inativo retirado da Madis";
constexpr std::string_view kCardUnknownToGates = "Cartão não cadastrado na Madis";

// The inputs and the three outputs every procedure has, by position, as a
// server binds them.
class Call {
 public:
  explicit Call(Parameters& parameters) : parameters_(parameters) {
    Set(0, "");
    Warn("");
  }
  Variant Company() const { return parameters_.Item(0).Value(); }
  Variant Key() const { return parameters_.Item(1).Value(); }
  void Fail(int32_t code, std::string_view error) { Set(code, error); }
  void Warn(std::string_view warning) { parameters_.Item(4).Value(Variant(std::string(warning))); }

 private:
  void Set(int32_t code, std::string_view error) {
    parameters_.Item(2).Value(Variant(code));
    parameters_.Item(3).Value(Variant(std::string(error)));
  }
  Parameters& parameters_;
};

QueryResult Run(Connection& db, const std::string& text, std::initializer_list<Variant> values) {
  const std::vector<Variant> parameters(values);
  return db.RunStatement(text, parameters);
}

bool IsTrueValue(const Variant& value) { return !value.IsNull() && !value.IsEmpty() && CLng(value) != 0; }

std::string TextOf(const Variant& value) { return value.IsNull() || value.IsEmpty() ? "" : CStr(value); }

// A card code the gates can hold: 1 to 9 digits.
bool IsGateNumber(std::string_view text) {
  if (text.empty() || text.size() > 9) return false;
  for (const char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

void LiberarTicketMadis(Connection& db, Parameters& parameters) {
  Call call(parameters);
  const QueryResult ticket = Run(db,
                                 "SELECT Ds_Ticket FROM TbTicketEstacionamento "
                                 "WHERE Cd_EmpresaUsuariaSistema = ? And Cd_TicketEstacionamento = ?",
                                 {call.Company(), call.Key()});
  if (ticket.rows.empty()) return call.Fail(1, kTicketNotFound);
  const std::string printed = TextOf(ticket.rows.front().front());
  if (Len(printed) <= kGateCodeLength) return call.Fail(2, kTicketWithoutCode);
  const Variant code(Left(printed, kGateCodeLength));
  Run(db, "DELETE FROM MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS WHERE CODIGOCARTAO = ?", {code});
  if (Run(db, "SELECT CODIGOCARTAO FROM MDESTACIONAMENTO.dbo.CARTOESAVULSOS WHERE CODIGOCARTAO = ?", {code})
          .rows.empty()) {
    call.Warn(std::string(kTicketNotAtGatesBefore) + CStr(code) + std::string(kTicketNotAtGatesAfter));
  }
}

void AtualizarClienteMadis(Connection& db, Parameters& parameters) {
  Call call(parameters);
  const QueryResult client = Run(db,
                                 "SELECT IsNull(P.Nm_Pessoa, '') As Nm_Pessoa "
                                 "FROM TbClienteEstacionamento C "
                                 "LEFT JOIN TbPessoa P ON P.Cd_Pessoa = C.Cd_ClienteEstacionamento "
                                 "WHERE C.Cd_EmpresaUsuariaSistema = ? And C.Cd_ClienteEstacionamento = ?",
                                 {call.Company(), call.Key()});
  if (client.rows.empty()) return call.Fail(1, kClientNotFound);
  const Variant& name = client.rows.front().front();
  const QueryResult updated = Run(db,
                                  "UPDATE MDESTACIONAMENTO.dbo.CLIENTE SET NOME = ? "
                                  "WHERE IDEMPRESACADASTRO = ? And IDCLIENTE = ?",
                                  {name, call.Company(), call.Key()});
  if (updated.records_affected == 0) {
    Run(db,
        "INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE (IDEMPRESACADASTRO, IDCLIENTE, NOME, VAGASEMUSO) "
        "VALUES (?, ?, ?, 0)",
        {call.Company(), call.Key(), name});
  }
}

void ExcluirClienteMadis(Connection& db, Parameters& parameters) {
  Call call(parameters);
  Run(db, "DELETE FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE IDEMPRESACADASTRO = ? And IDCLIENTE = ?",
      {call.Company(), call.Key()});
  if (Run(db, "DELETE FROM MDESTACIONAMENTO.dbo.CLIENTE WHERE IDEMPRESACADASTRO = ? And IDCLIENTE = ?",
          {call.Company(), call.Key()})
          .records_affected == 0) {
    call.Warn(kClientUnknownToGates);
  }
}

void AtualizarClienteCartaoMadis(Connection& db, Parameters& parameters) {
  Call call(parameters);
  const QueryResult card = Run(db,
                               "SELECT Cd_ClienteEstacionamento, Ds_IdentificacaoCartao, Nm_Portador, Ic_Ativo "
                               "FROM TbCartaoEstacionamento "
                               "WHERE Cd_EmpresaUsuariaSistema = ? And Cd_CartaoEstacionamento = ?",
                               {call.Company(), call.Key()});
  if (card.rows.empty()) return call.Fail(1, kCardNotFound);
  const Row& row = card.rows.front();
  const Variant& active = row[3];
  if (!active.IsNull() && !IsTrueValue(active)) {
    Run(db, "DELETE FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE IDEMPRESACARTAO = ? And IDCARTAO = ?",
        {call.Company(), call.Key()});
    return call.Warn(kCardInactiveRemoved);
  }
  if (Run(db,
          "SELECT IDCLIENTE FROM MDESTACIONAMENTO.dbo.CLIENTE WHERE IDEMPRESACADASTRO = ? And IDCLIENTE = ?",
          {call.Company(), row[0]})
          .rows.empty()) {
    return call.Fail(2, kCardClientUnknownToGates);
  }
  const std::string code = Trim(TextOf(row[1]));
  if (!IsGateNumber(code)) return call.Fail(3, kCardCodeNotNumeric);
  const Variant number(CLng(Variant(code)));
  const Variant holder(TextOf(row[2]));
  const QueryResult updated = Run(db,
                                  "UPDATE MDESTACIONAMENTO.dbo.CLIENTECARTAO "
                                  "SET IDEMPRESACADASTRO = ?, IDCLIENTE = ?, CODIGOCARTAO = ?, NOMEPROPRIETARIO = ? "
                                  "WHERE IDEMPRESACARTAO = ? And IDCARTAO = ?",
                                  {call.Company(), row[0], number, holder, call.Company(), call.Key()});
  if (updated.records_affected == 0) {
    Run(db,
        "INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO "
        "(IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, IDCARTAO, CODIGOCARTAO, NOMEPROPRIETARIO) "
        "VALUES (?, ?, ?, ?, ?, ?)",
        {call.Company(), row[0], call.Company(), call.Key(), number, holder});
  }
}

void ExcluirClienteCartaoMadis(Connection& db, Parameters& parameters) {
  Call call(parameters);
  if (Run(db, "DELETE FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE IDEMPRESACARTAO = ? And IDCARTAO = ?",
          {call.Company(), call.Key()})
          .records_affected == 0) {
    call.Warn(kCardUnknownToGates);
  }
}

// ---- the PostgreSQL functions ------------------------------------------------
// Their own tables are found through the search_path, as every statement of
// the terminal finds them; parameters are p_* so that they never shadow a
// column. The texts the caller sees are the constants above.

std::string Sql(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') quoted.push_back('\'');
    quoted.push_back(c);
  }
  return quoted + "'";
}

std::string PgFail(int32_t code, std::string_view error) {
  return "    no_retorno := " + std::to_string(code) + "; ds_erro := " + Sql(error) + "; RETURN;\n";
}

std::string PgWarn(std::string_view warning) { return "    ds_aviso := " + Sql(warning) + ";\n"; }

// The common form: the company and one key in, the three outputs out, and
// "done" in them before the body runs.
std::string PgFunction(std::string_view name, std::string_view key, std::string_view declarations,
                       const std::string& body) {
  return "CREATE OR REPLACE FUNCTION " + LCase(name) + "(\n  p_empresa integer, " + std::string(key) +
         " integer, OUT no_retorno integer, OUT ds_erro varchar, OUT ds_aviso varchar)\n"
         "LANGUAGE plpgsql AS $$\n" +
         (declarations.empty() ? std::string() : "DECLARE\n" + std::string(declarations)) +
         "BEGIN\n  no_retorno := 0; ds_erro := ''; ds_aviso := '';\n" + body + "END\n$$";
}

std::string PgLiberarTicketMadis() {
  return PgFunction("TicketEstacionamento_LiberarTicketMadis", "p_ticket", "  v_ticket text;\n  v_codigo text;\n",
                    "  SELECT ds_ticket INTO v_ticket FROM tbticketestacionamento\n"
                    "  WHERE cd_empresausuariasistema = p_empresa AND cd_ticketestacionamento = p_ticket;\n"
                    "  IF NOT FOUND THEN\n" + PgFail(1, kTicketNotFound) + "  END IF;\n"
                    "  IF length(COALESCE(v_ticket, '')) <= " + std::to_string(kGateCodeLength) + " THEN\n" +
                    PgFail(2, kTicketWithoutCode) + "  END IF;\n"
                    "  v_codigo := left(v_ticket, " + std::to_string(kGateCodeLength) + ");\n"
                    "  DELETE FROM mdestacionamento.cartoesavulsosbloqueados WHERE codigocartao = v_codigo;\n"
                    "  IF NOT EXISTS (SELECT 1 FROM mdestacionamento.cartoesavulsos WHERE codigocartao = v_codigo) THEN\n"
                    "    ds_aviso := " + Sql(kTicketNotAtGatesBefore) + " || v_codigo || " + Sql(kTicketNotAtGatesAfter) +
                    ";\n  END IF;\n");
}

std::string PgAtualizarClienteMadis() {
  return PgFunction("ClienteEstacionamento_AtualizarClienteMadis", "p_cliente", "  v_nome varchar;\n",
                    "  SELECT COALESCE(p.nm_pessoa, '') INTO v_nome\n"
                    "  FROM tbclienteestacionamento c LEFT JOIN tbpessoa p ON p.cd_pessoa = c.cd_clienteestacionamento\n"
                    "  WHERE c.cd_empresausuariasistema = p_empresa AND c.cd_clienteestacionamento = p_cliente;\n"
                    "  IF NOT FOUND THEN\n" + PgFail(1, kClientNotFound) + "  END IF;\n"
                    "  UPDATE mdestacionamento.cliente SET nome = v_nome\n"
                    "  WHERE idempresacadastro = p_empresa AND idcliente = p_cliente;\n"
                    "  IF NOT FOUND THEN\n"
                    "    INSERT INTO mdestacionamento.cliente (idempresacadastro, idcliente, nome, vagasemuso)\n"
                    "    VALUES (p_empresa, p_cliente, v_nome, 0);\n"
                    "  END IF;\n");
}

std::string PgExcluirClienteMadis() {
  return PgFunction("ClienteEstacionamento_ExcluirClienteMadis", "p_cliente", "",
                    "  DELETE FROM mdestacionamento.clientecartao WHERE idempresacadastro = p_empresa AND idcliente = p_cliente;\n"
                    "  DELETE FROM mdestacionamento.cliente WHERE idempresacadastro = p_empresa AND idcliente = p_cliente;\n"
                    "  IF NOT FOUND THEN\n" + PgWarn(kClientUnknownToGates) + "  END IF;\n");
}

std::string PgAtualizarClienteCartaoMadis() {
  return PgFunction(
      "CartaoEstacionamento_AtualizarClienteCartaoMadis", "p_cartao", "  v_cartao record;\n  v_codigo text;\n",
      "  SELECT cd_clienteestacionamento, ds_identificacaocartao, nm_portador, ic_ativo INTO v_cartao\n"
      "  FROM tbcartaoestacionamento\n"
      "  WHERE cd_empresausuariasistema = p_empresa AND cd_cartaoestacionamento = p_cartao;\n"
      "  IF NOT FOUND THEN\n" + PgFail(1, kCardNotFound) + "  END IF;\n"
      "  IF v_cartao.ic_ativo = 0 THEN\n"
      "    DELETE FROM mdestacionamento.clientecartao WHERE idempresacartao = p_empresa AND idcartao = p_cartao;\n" +
      PgWarn(kCardInactiveRemoved) + "    RETURN;\n  END IF;\n"
      "  IF NOT EXISTS (SELECT 1 FROM mdestacionamento.cliente\n"
      "                 WHERE idempresacadastro = p_empresa AND idcliente = v_cartao.cd_clienteestacionamento) THEN\n" +
      PgFail(2, kCardClientUnknownToGates) + "  END IF;\n"
      // Read under "C": the column's collation refuses regular expressions.
      "  v_codigo := btrim(COALESCE(v_cartao.ds_identificacaocartao, '')) COLLATE \"C\";\n"
      "  IF v_codigo !~ '^[0-9]{1,9}$' THEN\n" + PgFail(3, kCardCodeNotNumeric) + "  END IF;\n"
      "  UPDATE mdestacionamento.clientecartao\n"
      "  SET idempresacadastro = p_empresa, idcliente = v_cartao.cd_clienteestacionamento,\n"
      "      codigocartao = CAST(v_codigo AS integer), nomeproprietario = COALESCE(v_cartao.nm_portador, '')\n"
      "  WHERE idempresacartao = p_empresa AND idcartao = p_cartao;\n"
      "  IF NOT FOUND THEN\n"
      "    INSERT INTO mdestacionamento.clientecartao\n"
      "      (idempresacadastro, idcliente, idempresacartao, idcartao, codigocartao, nomeproprietario)\n"
      "    VALUES (p_empresa, v_cartao.cd_clienteestacionamento, p_empresa, p_cartao, CAST(v_codigo AS integer),\n"
      "            COALESCE(v_cartao.nm_portador, ''));\n"
      "  END IF;\n");
}

std::string PgExcluirClienteCartaoMadis() {
  return PgFunction("CartaoEstacionamento_ExcluirClienteCartaoMadis", "p_cartao", "",
                    "  DELETE FROM mdestacionamento.clientecartao WHERE idempresacartao = p_empresa AND idcartao = p_cartao;\n"
                    "  IF NOT FOUND THEN\n" + PgWarn(kCardUnknownToGates) + "  END IF;\n");
}

}  // namespace

const std::vector<ProcedureDef>& Procedures() {
  static const std::vector<ProcedureDef> procedures = {
      {"TicketEstacionamento_LiberarTicketMadis", LiberarTicketMadis, PgLiberarTicketMadis()},
      {"ClienteEstacionamento_AtualizarClienteMadis", AtualizarClienteMadis, PgAtualizarClienteMadis()},
      {"ClienteEstacionamento_ExcluirClienteMadis", ExcluirClienteMadis, PgExcluirClienteMadis()},
      {"CartaoEstacionamento_AtualizarClienteCartaoMadis", AtualizarClienteCartaoMadis,
       PgAtualizarClienteCartaoMadis()},
      {"CartaoEstacionamento_ExcluirClienteCartaoMadis", ExcluirClienteCartaoMadis, PgExcluirClienteCartaoMadis()},
  };
  return procedures;
}

void InstallProcedures(Connection& connection) {
  if (connection.State() != adStateOpen || connection.SqlDialect() != Dialect::SQLite) return;
  for (const ProcedureDef& procedure : Procedures()) {
    connection.RegisterProcedure(std::string(procedure.name), procedure.embedded);
  }
}

}  // namespace vek::schema
