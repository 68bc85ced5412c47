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
    call.Warn("Ticket " + CStr(code) + " sem entrada registrada na Madis");
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

// The PostgreSQL functions. Their own tables are found through the
// search_path, as every statement of the terminal finds them; the
// parameters are p_* so that they never shadow a column.
constexpr std::string_view kLiberarTicketMadis = R"(CREATE OR REPLACE FUNCTION ticketestacionamento_liberarticketmadis(
  p_empresa integer, p_ticket integer, OUT no_retorno integer, OUT ds_erro varchar, OUT ds_aviso varchar)
LANGUAGE plpgsql AS $$
DECLARE
  v_ticket text;
  v_codigo text;
BEGIN
  no_retorno := 0; ds_erro := ''; ds_aviso := '';
  SELECT ds_ticket INTO v_ticket FROM tbticketestacionamento
  WHERE cd_empresausuariasistema = p_empresa AND cd_ticketestacionamento = p_ticket;
  IF NOT FOUND THEN
    no_retorno := 1; ds_erro := 'Ticket de estacionamento não encontrado'; RETURN;
  END IF;
  IF length(COALESCE(v_ticket, '')) <= 13 THEN
    no_retorno := 2; ds_erro := 'Ticket sem código de acesso da Madis'; RETURN;
  END IF;
  v_codigo := left(v_ticket, 13);
  DELETE FROM mdestacionamento.cartoesavulsosbloqueados WHERE codigocartao = v_codigo;
  IF NOT EXISTS (SELECT 1 FROM mdestacionamento.cartoesavulsos WHERE codigocartao = v_codigo) THEN
    ds_aviso := 'Ticket ' || v_codigo || ' sem entrada registrada na Madis';
  END IF;
END
$$)";

constexpr std::string_view kAtualizarClienteMadis = R"(CREATE OR REPLACE FUNCTION clienteestacionamento_atualizarclientemadis(
  p_empresa integer, p_cliente integer, OUT no_retorno integer, OUT ds_erro varchar, OUT ds_aviso varchar)
LANGUAGE plpgsql AS $$
DECLARE
  v_nome varchar;
BEGIN
  no_retorno := 0; ds_erro := ''; ds_aviso := '';
  SELECT COALESCE(p.nm_pessoa, '') INTO v_nome
  FROM tbclienteestacionamento c LEFT JOIN tbpessoa p ON p.cd_pessoa = c.cd_clienteestacionamento
  WHERE c.cd_empresausuariasistema = p_empresa AND c.cd_clienteestacionamento = p_cliente;
  IF NOT FOUND THEN
    no_retorno := 1; ds_erro := 'Cliente de estacionamento não encontrado'; RETURN;
  END IF;
  UPDATE mdestacionamento.cliente SET nome = v_nome WHERE idempresacadastro = p_empresa AND idcliente = p_cliente;
  IF NOT FOUND THEN
    INSERT INTO mdestacionamento.cliente (idempresacadastro, idcliente, nome, vagasemuso)
    VALUES (p_empresa, p_cliente, v_nome, 0);
  END IF;
END
$$)";

constexpr std::string_view kExcluirClienteMadis = R"(CREATE OR REPLACE FUNCTION clienteestacionamento_excluirclientemadis(
  p_empresa integer, p_cliente integer, OUT no_retorno integer, OUT ds_erro varchar, OUT ds_aviso varchar)
LANGUAGE plpgsql AS $$
BEGIN
  no_retorno := 0; ds_erro := ''; ds_aviso := '';
  DELETE FROM mdestacionamento.clientecartao WHERE idempresacadastro = p_empresa AND idcliente = p_cliente;
  DELETE FROM mdestacionamento.cliente WHERE idempresacadastro = p_empresa AND idcliente = p_cliente;
  IF NOT FOUND THEN
    ds_aviso := 'Cliente não cadastrado na Madis';
  END IF;
END
$$)";

constexpr std::string_view kAtualizarClienteCartaoMadis = R"(CREATE OR REPLACE FUNCTION cartaoestacionamento_atualizarclientecartaomadis(
  p_empresa integer, p_cartao integer, OUT no_retorno integer, OUT ds_erro varchar, OUT ds_aviso varchar)
LANGUAGE plpgsql AS $$
DECLARE
  v_cartao record;
  v_codigo text;
BEGIN
  no_retorno := 0; ds_erro := ''; ds_aviso := '';
  SELECT cd_clienteestacionamento, ds_identificacaocartao, nm_portador, ic_ativo INTO v_cartao
  FROM tbcartaoestacionamento
  WHERE cd_empresausuariasistema = p_empresa AND cd_cartaoestacionamento = p_cartao;
  IF NOT FOUND THEN
    no_retorno := 1; ds_erro := 'Cartão de estacionamento não encontrado'; RETURN;
  END IF;
  IF v_cartao.ic_ativo = 0 THEN
    DELETE FROM mdestacionamento.clientecartao WHERE idempresacartao = p_empresa AND idcartao = p_cartao;
    ds_aviso := 'Cartão inativo retirado da Madis'; RETURN;
  END IF;
  IF NOT EXISTS (SELECT 1 FROM mdestacionamento.cliente
                 WHERE idempresacadastro = p_empresa AND idcliente = v_cartao.cd_clienteestacionamento) THEN
    no_retorno := 2; ds_erro := 'Cliente do cartão não cadastrado na Madis'; RETURN;
  END IF;
  v_codigo := btrim(COALESCE(v_cartao.ds_identificacaocartao, '')) COLLATE "C";
  IF v_codigo !~ '^[0-9]{1,9}$' THEN
    no_retorno := 3; ds_erro := 'Identificação do cartão não é numérica'; RETURN;
  END IF;
  UPDATE mdestacionamento.clientecartao
  SET idempresacadastro = p_empresa, idcliente = v_cartao.cd_clienteestacionamento,
      codigocartao = CAST(v_codigo AS integer), nomeproprietario = COALESCE(v_cartao.nm_portador, '')
  WHERE idempresacartao = p_empresa AND idcartao = p_cartao;
  IF NOT FOUND THEN
    INSERT INTO mdestacionamento.clientecartao
      (idempresacadastro, idcliente, idempresacartao, idcartao, codigocartao, nomeproprietario)
    VALUES (p_empresa, v_cartao.cd_clienteestacionamento, p_empresa, p_cartao, CAST(v_codigo AS integer),
            COALESCE(v_cartao.nm_portador, ''));
  END IF;
END
$$)";

constexpr std::string_view kExcluirClienteCartaoMadis = R"(CREATE OR REPLACE FUNCTION cartaoestacionamento_excluirclientecartaomadis(
  p_empresa integer, p_cartao integer, OUT no_retorno integer, OUT ds_erro varchar, OUT ds_aviso varchar)
LANGUAGE plpgsql AS $$
BEGIN
  no_retorno := 0; ds_erro := ''; ds_aviso := '';
  DELETE FROM mdestacionamento.clientecartao WHERE idempresacartao = p_empresa AND idcartao = p_cartao;
  IF NOT FOUND THEN
    ds_aviso := 'Cartão não cadastrado na Madis';
  END IF;
END
$$)";

}  // namespace

const std::vector<ProcedureDef>& Procedures() {
  static const std::vector<ProcedureDef> procedures = {
      {"TicketEstacionamento_LiberarTicketMadis", LiberarTicketMadis, kLiberarTicketMadis},
      {"ClienteEstacionamento_AtualizarClienteMadis", AtualizarClienteMadis, kAtualizarClienteMadis},
      {"ClienteEstacionamento_ExcluirClienteMadis", ExcluirClienteMadis, kExcluirClienteMadis},
      {"CartaoEstacionamento_AtualizarClienteCartaoMadis", AtualizarClienteCartaoMadis,
       kAtualizarClienteCartaoMadis},
      {"CartaoEstacionamento_ExcluirClienteCartaoMadis", ExcluirClienteCartaoMadis, kExcluirClienteCartaoMadis},
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
