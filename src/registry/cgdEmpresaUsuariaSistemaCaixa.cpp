// The operating company's reports of what its tills took: parking exits,
// restroom sales and cash assessments.
#include "vek/registry/cgdEmpresaUsuariaSistema.h"

#include "vek/db/Recordset.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

// The vehicle of a ticket, where its plate is known.
constexpr const char* kVehicleJoins[] = {
    "FROM     TbTicketEstacionamento",
    "         Left Join TbVeiculo On TbTicketEstacionamento.Cd_Placa = TbVeiculo.cd_placa",
    "         Left Join TbCor On TbVeiculo.Cd_Cor = TbCor.Cd_Cor",
    "         Left Join TbMarcaModelo On TbVeiculo.Cd_MarcaModelo = TbMarcaModelo.Cd_MarcaModelo"};

// One side of the per-tariff UNION: the select list after its first line.
constexpr const char* kTariffColumns[] = {"         A.Cd_Tarifa,", "         B.Ds_Tarifa,",
                                          "         Sum(A.Qt_Unidade) As Qt_Unidade,", "         A.Vl_Tarifa"};
constexpr const char* kTariffGroup[] = {"GROUP BY A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Vl_Tarifa"};

}  // namespace

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsSaidasCaixa(int32_t Cd_Caixa) {
  return Run("rsSaidasCaixa", [&] {
    SqlLines sql;
    sql << "SELECT   TbTicketEstacionamento.*,"
        << "         TbMarcaModelo.Ds_MarcaModelo,"
        << "         TbCor.Nm_Cor";
    for (const char* line : kVehicleJoins) sql << line;
    sql << "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
        << "         And TbTicketEstacionamento.No_Situacao = 2"
        << "         And TbTicketEstacionamento.Cd_Caixa = " + std::to_string(Cd_Caixa)
        << "ORDER BY TbTicketEstacionamento.Dt_Saida";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsSaidasPeriodo(Date Dt_Inicial, Date Dt_Final) {
  return Run("rsSaidasPeriodo", [&] {
    static constexpr const char* kColumns[] = {
        "Cd_TicketEstacionamento", "No_Situacao",       "Vl_Tarifa",
        "Qt_TempoPermanenciaMinutos", "Dt_Saida",       "Dt_Entrada",
        "Cd_EmpresaUsuariaSistema", "Cd_ClienteEstacionamento", "Cd_Caixa",
        "Ic_Mensalista",            "Cd_ClienteConvenio", "Qt_MinutosDisponivelParaMensalista",
        "Qt_MinutosPermanenciaoOutrosTickets", "Ds_Ticket"};
    const std::string format = CStr(Ob_cgpSistema()->Get("Ds_FormatoData"));
    SqlLines sql;
    sql << "SELECT   IsNull(TbTicketEstacionamento.Cd_Placa,'') As Cd_Placa,";
    for (const char* column : kColumns) sql << "         TbTicketEstacionamento." + std::string(column) + ",";
    sql << "         TbMarcaModelo.Ds_MarcaModelo,"
        << "         TbCor.Nm_Cor";
    for (const char* line : kVehicleJoins) sql << line;
    sql << "WHERE    TbTicketEstacionamento.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
        << "         And TbTicketEstacionamento.No_Situacao = 2"
        << "         And TbTicketEstacionamento.Dt_Saida Between '" + Format(Variant(Dt_Inicial), format) +
               " 00:00:00' And '" + Format(Variant(Dt_Final), format) + " 23:59:59'"
        << "ORDER BY TbTicketEstacionamento.Dt_Saida";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsSaidasCaixaAgrupadoPorTarifa(int32_t Cd_Caixa) {
  return Run("rsSaidasCaixaAgrupadoPorTarifa", [&] {
    const std::string company = KeyLiteral("Cd_EmpresaUsuariaSistema");
    const std::string till = std::to_string(Cd_Caixa);
    SqlLines sql;
    sql << "SELECT   'ESTACIONAMENTO' AS Ds_Tipo,";
    for (const char* line : kTariffColumns) sql << line;
    sql << "FROM     TbTicketEstacionamento_TbTarifa A"
        << "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
        << "                    And A.Cd_Tarifa = b.Cd_Tarifa"
        << "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = C.cd_empresausuariasistema"
        << "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento"
        << "WHERE    A.Cd_EmpresaUsuariaSistema = " + company
        << "         And C.Cd_Caixa = " + till;
    for (const char* line : kTariffGroup) sql << line;
    sql << "UNION"
        << "SELECT   'SANITARIO' AS Ds_Tipo,";
    for (const char* line : kTariffColumns) sql << line;
    sql << "FROM     TbTicketSanitario A"
        << "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
        << "                    And A.Cd_Tarifa = B.Cd_Tarifa"
        << "WHERE    A.Cd_EmpresaUsuariaSistema = " + company
        << "         And A.Cd_Caixa = " + till;
    for (const char* line : kTariffGroup) sql << line;
    sql << "ORDER BY A.Cd_Tarifa;";
    ds_sql_ = sql;
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsRecebimentoDeMensalistas(int32_t Cd_Caixa) {
  return Run("rsRecebimentoDeMensalistas", [&] {
    ds_sql_ = CashAssessmentsStatement(Cd_Caixa, "       And Ic_TotalizacaoDeCaixa = 0");
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsApuracaoReceitaCaixa(int32_t Cd_Caixa) {
  return Run("rsApuracaoReceitaCaixa", [&] {
    ds_sql_ = CashAssessmentsStatement(Cd_Caixa, "       And Ic_TotalizacaoDeCaixa = 1");
    return OpenReport();
  });
}

std::shared_ptr<Recordset> cgdEmpresaUsuariaSistema::rsRecebimentoSanitario(int32_t Cd_Caixa) {
  return Run("rsRecebimentoSanitario", [&] {
    ds_sql_ = SqlLines() << "SELECT A.*,"
                         << "       B.Ds_Tarifa"
                         << "FROM   TbTicketSanitario A"
                         << "       INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
                         << "                            And A.Cd_Tarifa = B.Cd_Tarifa"
                         << "WHERE    A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "         And A.Cd_Caixa = " + std::to_string(Cd_Caixa);
    return OpenReport();
  });
}

std::string cgdEmpresaUsuariaSistema::CashAssessmentsStatement(int32_t Cd_Caixa, const char* flag_line) {
  return SqlLines() << "SELECT TbApuracaoReceita.*,"
                    << "       TbPessoa.nm_pessoa"
                    << "From   TbApuracaoReceita"
                    << "       INNER JOIN TbPessoa On tbapuracaoreceita.cd_pessoa = TbPessoa.cd_pessoa"
                    << "WHERE  TbApuracaoReceita.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And TbApuracaoReceita.Cd_Caixa = " + std::to_string(Cd_Caixa) << flag_line;
}

}  // namespace vek
