// The operating company's members that work on the car park as a whole:
// the yard list, the gates' unprocessed monthly passages and the
// housekeeping of old entries.
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

#include "vek/db/Recordset.h"

namespace vek {

namespace {

// The joins of the monthly cards to their clients and passages, shared by
// the yard list and the housekeeping.
constexpr const char* kCardPassageJoins[] = {
    "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO As Cartao ON Cartao.IDEMPRESACADASTRO = "
    "cliente.IDEMPRESACADASTRO",
    "                   And Cartao.IDCLIENTE = Cliente.IDCLIENTE",
    "         INNER JOIN MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA As LogPermanencia ON "
    "LogPermanencia.IDEMPRESACARTAO = Cartao.IDEMPRESACARTAO",
    "                   And LogPermanencia.IDCARTAO = Cartao.IDCARTAO"};

// A card is inside when its latest passage is an entry.
constexpr const char* kLatestPassageIsEntry[] = {
    "         And IsNull((SELECT   TOP 1",
    "                              EVENTO",
    "                     FROM     MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA ",
    "                     WHERE    IDEMPRESACARTAO = Cartao.IDEMPRESACARTAO",
    "                              And IDCARTAO = Cartao.IDCARTAO",
    "                     ORDER BY DATAHORAPASSAGEM DESC),'0') = 1"};

}  // namespace

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsVeiculoNoPatio() {
  return Run("rsVeiculoNoPatio", [&] {
    if (KeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "rsVeiculoNoPatio");
    const bool gates = ExisteBancoDeDados("MDESTACIONAMENTO");
    const std::string company = KeyLiteral("Cd_EmpresaUsuariaSistema");
    SqlLines sql;
    sql << "SELECT   Case When TbTicketEstacionamento.Ds_Ticket IS NULL Then "
        << "                   'PLACA.:' +"
        << "                   IsNull(TbTicketEstacionamento.Cd_Placa,'') + ',' +"
        << "                   IsNull(TbMarcaModelo.Ds_MarcaModelo,'') "
        << "             Else 'TICKET:' + IsNull(TbTicketEstacionamento.Ds_Ticket,'') "
        << "         End As Ds_Ticket,"
        << "         TbTicketEstacionamento.Dt_Entrada,"
        << "         TbTicketEstacionamento.Ic_Mensalista"
        << "FROM     TbTicketEstacionamento"
        << "         Left Join TbVeiculo On TbTicketEstacionamento.Cd_Placa = TbVeiculo.cd_placa"
        << "         Left Join TbCor On TbVeiculo.Cd_Cor = TbCor.Cd_Cor"
        << "         Left Join TbMarcaModelo On TbVeiculo.Cd_MarcaModelo = TbMarcaModelo.Cd_MarcaModelo"
        << "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " + company
        << "         And TbTicketEstacionamento.No_situacao = 1"
        << "         And TbTicketEstacionamento.Cd_Placa IS NOT NULL";
    if (gates) {
      sql << "UNION ALL"
          << "SELECT   'TICKET:' + MDESTACIONAMENTO.dbo.CARTOESAVULSOS.CODIGOCARTAO + '***' As Ds_Ticket,"
          << "         MDESTACIONAMENTO.dbo.CARTOESAVULSOS.DATAHORAENTRADA As Dt_Entrada,"
          << "         0 As Ic_Mensalista"
          << "FROM     MDESTACIONAMENTO.dbo.CARTOESAVULSOS"
          << "         LEFT JOIN TbTicketEstacionamento ON Substring(TbTicketEstacionamento.Ds_Ticket,1,13) = "
             "MDESTACIONAMENTO.dbo.CARTOESAVULSOS.CODIGOCARTAO"
          << "WHERE    TbTicketEstacionamento.Ds_Ticket IS NULL"
          << "UNION ALL"
          << "SELECT   Substring('CARTAO:' + Convert(Varchar,Cartao.CODIGOCARTAO) + '-' + Cliente.NOME,1,28) As "
             "Ds_Ticket,"
          << "         Max(LogPermanencia.DATAHORAPASSAGEM),"
          << "      1   As Ic_Mensalista"
          << "FROM     MDESTACIONAMENTO.dbo.CLIENTE As Cliente";
      for (const char* line : kCardPassageJoins) sql << line;
      sql << "WHERE    LogPermanencia.IDEMPRESACARTAO = " + company
          << "         And LogPermanencia.EVENTO = 1"
          << "         And IsNull(Cliente.VAGASEMUSO,0) > 0";
      for (const char* line : kLatestPassageIsEntry) sql << line;
      sql << "GROUP BY Convert(Varchar,Cartao.CODIGOCARTAO),"
          << "         Cliente.NOME";
    }
    sql << "ORDER BY 2";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsEntradaMensalistaMadisNaoProcessada() {
  return Run("rsEntradaMensalistaMadisNaoProcessada", [&] {
    ds_sql_ = SqlLines() << "SELECT   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.*,"
                         << "         MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCLIENTE"
                         << "FROM     MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA"
                         << "         INNER JOIN MDESTACIONAMENTO.dbo.CLIENTECARTAO ON "
                            "MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDEMPRESACARTAO = "
                            "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDEMPRESACARTAO"
                         << "                    And MDESTACIONAMENTO.dbo.CLIENTECARTAO.IDCARTAO = "
                            "MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDCARTAO"
                         << "WHERE    Cd_TicketEstacionamento IS NULL"
                         << "ORDER BY MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA.IDLOGPERMANENCIA";
    return OpenReport();
  });
}

void cgdEmpresaUsuariaSistema::ApagarEntradasAntigasDoEstacionamento() {
  Run("ApagarEntradasAntigasDoEstacionamento", [&] {
    try {
      ds_sql_ = SqlLines() << "DELETE"
                           << "FROM     MDESTACIONAMENTO.dbo.CARTOESAVULSOS"
                           << "WHERE    DATEDIFF(day,MDESTACIONAMENTO.dbo.CARTOESAVULSOS.DATAHORAENTRADA, GetDate()) > 90";
      ExecuteStatement();

      SqlLines log;
      log << "DELETE   MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA"
          << "FROM     MDESTACIONAMENTO.dbo.CLIENTE As Cliente";
      for (const char* line : kCardPassageJoins) log << line;
      log << "WHERE    LogPermanencia.IDEMPRESACARTAO = 1"
          << "         And LogPermanencia.EVENTO = 1"
          << "         And IsNull(Cliente.VAGASEMUSO,0) > 0";
      for (const char* line : kLatestPassageIsEntry) log << line;
      ds_sql_ = log;
      ExecuteStatement();

      ds_sql_ = SqlLines() << "UPDATE   TbTicketEstacionamento"
                           << "SET      No_Situacao = 2"
                           << "WHERE    Cd_EmpresaUsuariaSistema = 1"
                           << "         And No_Situacao = 1"
                           << "        And Dt_Saida IS NOT NULL";
      ExecuteStatement();

      ds_sql_ = SqlLines() << "DELETE   TbTicketEstacionamento"
                           << "FROM     TbTicketEstacionamento"
                           << "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " +
                                  KeyLiteral("Cd_EmpresaUsuariaSistema")
                           << "         And TbTicketEstacionamento.No_situacao = 1"
                           << "         And DATEDIFF(day,TbTicketEstacionamento.Dt_Entrada, GetDate()) > 90";
      ExecuteStatement();
    } catch (const VekError&) {
      throw VekError(kBusinessError, std::string(), "Erro na exclusão das entradas antigas do estacionamento");
    }
  });
}

}  // namespace vek
