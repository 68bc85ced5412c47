#include "vek/parking/cgdClienteEstacionament.h"

#include "vek/db/Recordset.h"

namespace vek {

std::string cgdClienteEstacionament::ConsultarStatement() {
  return SqlLines() << "SELECT TbClienteEstacionamento.*,"
                    << "       IsNull(MDESTACIONAMENTO.DBO.CLIENTE.VAGASEMUSO,0) As Qt_VagasEmUso"
                    << "FROM   TbClienteEstacionamento"
                    << "       LEFT JOIN MDESTACIONAMENTO.DBO.CLIENTE ON MDESTACIONAMENTO.DBO.CLIENTE.IDEMPRESACADASTRO = "
                       "TbClienteEstacionamento.Cd_EmpresaUsuariaSistema"
                    << "                 And MDESTACIONAMENTO.DBO.CLIENTE.IDCLIENTE = "
                       "TbClienteEstacionamento.Cd_ClienteEstacionamento"
                    << "WHERE  TbClienteEstacionamento.Cd_EmpresaUsuariaSistema = " +
                           KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And TbClienteEstacionamento.Cd_ClienteEstacionamento = " +
                           KeyLiteral("Cd_ClienteEstacionamento");
}

uint8_t cgdClienteEstacionament::VagasUtilizadas() {
  return Run("VagasUtilizadas", [&] {
    ds_sql_ = SqlLines() << "SELECT Count(*) As Qt_TotalVagasUtilizadas"
                         << "From   TbTicketEstacionamento"
                         << "WHERE  TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " +
                                KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "       And TbTicketEstacionamento.Cd_ClienteEstacionamento = " +
                                KeyLiteral("Cd_ClienteEstacionamento")
                         << "       And TbTicketEstacionamento.No_situacao = 1"
                         << "       And TbTicketEstacionamento.Ic_Mensalista <> 0";
    return CByte(FirstValue());
  });
}

void cgdClienteEstacionament::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                        const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.Cd_ClienteEstacionamento,"
        << "         B.Nm_Pessoa"
        << "FROM     TbClienteEstacionamento A"
        << "         Join TbPessoa B on A.Cd_ClienteEstacionamento = B.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Nm_Pessoa"
        << ";";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros, {{"Cd_ClienteEstacionamento", "###,###,##0"}, {"Nm_Pessoa"}});
  });
}

void cgdClienteEstacionament::AtualizarClienteMadis(std::string& Ds_Aviso) {
  Run("AtualizarClienteMadis", [&] {
    RunAccessControlProcedure("ClienteEstacionamento_AtualizarClienteMadis", "Cd_ClienteEstacionamento", Ds_Aviso);
  });
}

void cgdClienteEstacionament::ExcluirClienteMadis(std::string& Ds_Aviso) {
  Run("ExcluirClienteMadis", [&] {
    RunAccessControlProcedure("ClienteEstacionamento_ExcluirClienteMadis", "Cd_ClienteEstacionamento", Ds_Aviso);
  });
}

std::shared_ptr<Recordset> cgdClienteEstacionament::EntradasMadisRs(int32_t Cd_CartaoEstacionamento) {
  return Run("EntradasMadisRs", [&] {
    ds_sql_ = SqlLines()
              << "SELECT   TOP 30"
              << "         MDESTACIONAMENTO.DBO.EVENTO.DESCRICAO,"
              << "         MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.DATAHORAPASSAGEM,"
              << "         MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.IDCARTAO,"
              << "         MDESTACIONAMENTO.DBO.CLIENTECARTAO.NOMEPROPRIETARIO,"
              << "         MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.REALTIME,"
              << "         MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.IDCARTAO"
              << "FROM     MDESTACIONAMENTO.DBO.CLIENTECARTAO"
              << "         INNER JOIN MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA ON "
                 "MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.IDEMPRESACARTAO = "
                 "MDESTACIONAMENTO.DBO.CLIENTECARTAO.IDEMPRESACARTAO"
              << "                    And MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.IDCARTAO = "
                 "MDESTACIONAMENTO.DBO.CLIENTECARTAO.IDCARTAO"
              << "         INNER JOIN MDESTACIONAMENTO.DBO.EVENTO ON MDESTACIONAMENTO.DBO.EVENTO.IDEVENTO = "
                 "MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.EVENTO"
              << "WHERE    MDESTACIONAMENTO.DBO.CLIENTECARTAO.IDCLIENTE = " + KeyLiteral("Cd_ClienteEstacionamento")
              << "         And MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.IDCARTAO = " +
                     std::to_string(Cd_CartaoEstacionamento)
              << "ORDER BY MDESTACIONAMENTO.DBO.LOGPERMANENCIAMENSALISTA.DATAHORAPASSAGEM DESC";
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdClienteEstacionament::CartaoEstacionamentoRs() {
  return Run("CartaoEstacionamentoRs", [&] {
    ds_sql_ = SqlLines() << "SELECT   Cd_CartaoEstacionamento,"
                         << "         Ds_IdentificacaoCartao,"
                         << "         Nm_Portador,"
                         << "         Case When No_TipoVeiculo = 0 Then 'VEICULO'"
                         << "              When No_TipoVeiculo = 1 Then 'MOTO'"
                         << "              When No_TipoVeiculo = 1 Then 'VEICULO E MOTO'"
                         << "              Else ''"
                         << "         End As Ds_TipoVeiculo,"
                         << "         Dt_InicioValidade,"
                         << "         Dt_FimValidade,"
                         << "         Ic_Ativo"
                         << "FROM     TbCartaoEstacionamento"
                         << "WHERE    TbCartaoEstacionamento.Cd_EmpresaUsuariaSistema = " +
                                KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "         And TbCartaoEstacionamento.Cd_ClienteEstacionamento = " +
                                KeyLiteral("Cd_ClienteEstacionamento")
                         << "ORDER BY Cd_CartaoEstacionamento";
    return OpenReport();
  });
}

Date cgdClienteEstacionament::ObterDataFinalUltimaMensalidadeEstacionamento() {
  return Run("ObterDataFinalUltimaMensalidadeEstacionamento", [&] {
    ds_sql_ = SqlLines() << "SELECT   TOP 1"
                         << "         Dt_Final"
                         << "FROM     TbApuracaoReceita"
                         << "WHERE    TbApuracaoReceita.Cd_EmpresaUsuariaSistema = " +
                                KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "         And TbApuracaoReceita.Cd_TipoReceita = 2"
                         << "         And TbApuracaoReceita.Cd_Pessoa = " + KeyLiteral("Cd_ClienteEstacionamento")
                         << "         And TbApuracaoReceita.Cd_Caixa Is Not Null"
                         << "ORDER BY TbApuracaoReceita.Dt_Final Desc";
    const Variant last = FirstValue();
    return last.IsEmpty() || last.IsNull() ? Date() : CDate(last);
  });
}

}  // namespace vek
