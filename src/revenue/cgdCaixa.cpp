#include "vek/revenue/cgdCaixa.h"

#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

bool ByOpening(cgpCaixa& till) { return CBool(till.Get("Ic_ConsultarPorAbertura")); }

}  // namespace

bool cgdCaixa::LookupKeyMissing() {
  if (!ByOpening(*Ob_cgp())) return KeyMissing();
  return CLng(Ob_cgp()->Get("Cd_EmpresaUsuariaSistema")) == 0;
}

std::string cgdCaixa::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbCaixa A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And A.Cd_Caixa = " + KeyLiteral("Cd_Caixa") + ";";
}

std::string cgdCaixa::ConsultarStatement() {
  if (!ByOpening(*Ob_cgp())) return SelectStatement();
  const std::string opening =
      Format(Ob_cgp()->Get("Dt_Abertura"), CStr(Ob_cgpSistema()->Get("Ds_FormatoData")));
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbCaixa A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       And A.Cd_Usuario = " + KeyLiteral("Cd_Usuario")
                    << "       And A.Dt_Abertura = '" + opening + "'"
                    << "       And A.No_Sequencial = " + KeyLiteral("No_Sequencial");
}

std::string cgdCaixa::EmptySelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbCaixa A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = 0"
                    << "       And A.Cd_Caixa = 0;";
}

std::shared_ptr<cgpCaixa> cgdCaixa::Consultar(bool Ic_RestaurarDefaulSeNaoEcontrarRegistro) {
  return cgdRecord::Consultar(Ic_RestaurarDefaulSeNaoEcontrarRegistro);
}

void cgdCaixa::PreparaDadosParaRelatorioApuracaoReceita7() {
  Run("PreparaDadosParaRelatorioApuracaoReceita7", [&] {
    if (KeyMissing()) RaiseError(kErrorNoKey, RuntimeTypeName(*this), "PreparaDadosParaRelatorioApuracaoReceita7");
    const std::string company = KeyLiteral("Cd_EmpresaUsuariaSistema");
    const std::string till = KeyLiteral("Cd_Caixa");

    ds_sql_ = SqlLines() << "DELETE FROM TempApuracaoReceita7";
    ExecuteStatement();

    ds_sql_ = SqlLines() << "INSERT INTO TempApuracaoReceita7"
                         << "SELECT   'ESTACIONAMENTO' AS Ds_Tipo,"
                         << "         A.Cd_Tarifa,"
                         << "         B.Ds_Tarifa,"
                         << "         'QTDE:' + CONVERT(Varchar,Sum(A.Qt_Unidade)) As Ds_Observacao,"
                         << "         A.Vl_Tarifa,"
                         << "         Sum(Round(A.Qt_Unidade * A.Vl_Tarifa,2)) As Vl_Total"
                         << "FROM     TbTicketEstacionamento_TbTarifa A"
                         << "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
                         << "                    And A.Cd_Tarifa = b.Cd_Tarifa"
                         << "         INNER JOIN TbTicketEstacionamento C On A.cd_empresausuariasistema = "
                            "C.cd_empresausuariasistema"
                         << "                    And A.Cd_TicketEstacionamento = C.Cd_TicketEstacionamento"
                         << "WHERE    A.Cd_EmpresaUsuariaSistema = " + company
                         << "         And C.Cd_Caixa = " + till
                         << "GROUP BY A.Cd_Tarifa,"
                         << "         B.Ds_Tarifa,"
                         << "         A.Vl_Tarifa";
    ExecuteStatement();

    ds_sql_ = SqlLines() << "INSERT INTO TempApuracaoReceita7"
                         << "SELECT   'SANITARIO' AS Ds_Tipo,"
                         << "         A.Cd_Tarifa,"
                         << "         B.Ds_Tarifa,"
                         << "         'QTDE:' + Convert(Varchar,Sum(A.Qt_Unidade)) As Ds_Observacao,"
                         << "         A.Vl_Tarifa,"
                         << "         Sum(Round(A.Qt_Unidade * A.Vl_Tarifa,2)) As Vl_Total"
                         << "FROM     TbTicketSanitario A"
                         << "         INNER JOIN TbTarifa B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema"
                         << "                    And A.Cd_Tarifa = B.Cd_Tarifa"
                         << "WHERE    A.Cd_EmpresaUsuariaSistema = " + company
                         << "         And A.Cd_Caixa = " + till
                         << "GROUP BY A.Cd_Tarifa,"
                         << "         B.Ds_Tarifa,"
                         << "         A.Vl_Tarifa";
    ExecuteStatement();

    // Monthly-client payments (flag 0), then the till's own totalling (1).
    for (const auto& [kind, flag] : {std::pair{"MENSALISTA", "0"}, std::pair{"RECIBO CAIXA", "1"}}) {
      ds_sql_ = SqlLines() << "INSERT INTO TempApuracaoReceita7"
                           << "SELECT   '" + std::string(kind) + "' AS Ds_Tipo,"
                           << "         TbApuracaoReceita.No_ApuracaoReceita,"
                           << "         TbPessoa.nm_pessoa,"
                           << "         CONVERT(Varchar,TbApuracaoReceita.Dt_Inicial,103) As Ds_Observacao,"
                           << "         TbApuracaoReceita.Vl_ApuracaoReceita,"
                           << "         TbApuracaoReceita.Vl_ApuracaoReceita As Vl_Total"
                           << "From     TbApuracaoReceita"
                           << "         INNER JOIN TbPessoa On tbapuracaoreceita.cd_pessoa = TbPessoa.cd_pessoa"
                           << "WHERE    TbApuracaoReceita.Cd_EmpresaUsuariaSistema = " + company
                           << "         And TbApuracaoReceita.Cd_Caixa = " + till
                           << "         And Ic_TotalizacaoDeCaixa = " + std::string(flag);
      ExecuteStatement();
    }
  });
}

}  // namespace vek
