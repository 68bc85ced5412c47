#include "vek/revenue/cgdApuracaoReceita.h"

#include "vek/db/Recordset.h"
#include "vek/foundation/SqlLiterals.h"

namespace vek {

namespace {

// The assessment's columns as its INSERT names them, in the order of its values.
constexpr const char* kInsertColumns[] = {
    "CD_EMPRESAUSUARIASISTEMA,", "NO_APURACAORECEITA,", "CD_TIPORECEITA,",  "CD_PESSOA,",
    "DT_FATURAMENTO,",           "DT_MOVIMENTO,",       "DT_VENCIMENTO,",   "NO_CONTARECEBER,",
    "VL_APURACAORECEITA,",       "NO_PARCELA,",         "CD_CAIXA,",        "DT_INICIAL,",
    "DT_FINAL,",                 "IC_TOTALIZACAODECAIXA"};

}  // namespace

std::string cgdApuracaoReceita::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbApuracaoReceita A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       and A.No_ApuracaoReceita = " + KeyLiteral("No_ApuracaoReceita") + ";";
}

std::string cgdApuracaoReceita::DeleteFrom(const std::string& table) {
  return SqlLines() << "DELETE "
                    << "FROM   " + table
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       and No_ApuracaoReceita = " + KeyLiteral("No_ApuracaoReceita");
}

std::string cgdApuracaoReceita::DetailDeleteStatement() { return DeleteFrom("TbApuracaoReceita_TbTarifa"); }

std::string cgdApuracaoReceita::DeleteStatement() { return DeleteFrom("TbApuracaoReceita"); }

std::string cgdApuracaoReceita::UpdateStatement() {
  cgpApuracaoReceita& a = *Ob_cgp();
  const cgpSistema& session = *Ob_cgpSistema();
  auto date = [&](const char* column) { return DateSemHoraToSql(CDate(a.Get(column)), session); };
  auto whole = [&](const char* column) { return IntToSql(CLng(a.Get(column))); };
  return SqlLines() << "UPDATE TbApuracaoReceita Set "
                    << "       Cd_EmpresaUsuariaSistema = " + whole("Cd_EmpresaUsuariaSistema") + ","
                    << "       No_ApuracaoReceita = " + whole("No_ApuracaoReceita") + ","
                    << "       Cd_TipoReceita = " + whole("Cd_TipoReceita") + ","
                    << "       Cd_Pessoa = " + whole("Cd_Pessoa") + ","
                    << "       Dt_Faturamento = " + date("Dt_Faturamento") + ","
                    << "       Dt_Movimento = " + date("Dt_Movimento") + ","
                    << "       Dt_Vencimento = " + date("Dt_Vencimento") + ","
                    << "       No_ContaReceber = " + whole("No_ContaReceber") + ","
                    << "       Vl_ApuracaoReceita = " + MoneyToSql(CCur(a.Get("Vl_ApuracaoReceita")), 2) + ","
                    << "       No_Parcela = 1,"
                    << "       Cd_Caixa = " + whole("Cd_Caixa") + ","
                    << "       Dt_Final = " + date("Dt_Final") + ","
                    << "       Dt_Inicial = " + date("Dt_Inicial") + ","
                    << "       Ic_TotalizacaoDeCaixa = " + BitToSql(CBool(a.Get("Ic_TotalizacaoDeCaixa")))
                    << "WHERE  Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       and No_ApuracaoReceita = " + KeyLiteral("No_ApuracaoReceita");
}

std::string cgdApuracaoReceita::instrucaoInsert() {
  cgpApuracaoReceita& a = *Ob_cgp();
  const cgpSistema& session = *Ob_cgpSistema();
  auto date = [&](const char* column) { return DateSemHoraToSql(CDate(a.Get(column)), session); };
  auto whole = [&](const char* column) { return IntToSql(CLng(a.Get(column))); };
  const std::string values[] = {whole("Cd_EmpresaUsuariaSistema"),
                                whole("No_ApuracaoReceita"),
                                SmallIntToSql(CInt(a.Get("Cd_TipoReceita"))),
                                whole("Cd_Pessoa"),
                                date("Dt_Faturamento"),
                                date("Dt_Movimento"),
                                date("Dt_Vencimento"),
                                whole("No_ContaReceber"),
                                MoneyToSql(CCur(a.Get("Vl_ApuracaoReceita")), 2),
                                SmallIntToSql(1),
                                whole("Cd_Caixa"),
                                date("Dt_Inicial"),
                                date("Dt_Final"),
                                SmallIntToSql(CInt(a.Get("Ic_TotalizacaoDeCaixa")))};
  SqlLines sql;
  sql << "INSERT INTO TBAPURACAORECEITA (";
  for (const char* column : kInsertColumns) sql << column;
  sql << ")"
      << "Values (";
  std::string joined;
  for (const std::string& value : values) joined += (joined.empty() ? "" : ",") + value;
  sql << joined << ")";
  return sql;
}

std::shared_ptr<Recordset> cgdApuracaoReceita::ConsultarApuracoesPorDataEEmpresa() {
  return Run("ConsultarApuracoesPorDataEEmpresa", [&] {
    ds_sql_ = SqlLines() << "SELECT A.*"
                         << "FROM   TbApuracaoReceita A"
                         << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                         << "       AND A.Dt_Movimento = " +
                                DateSemHoraToSql(CDate(Ob_cgp()->Get("Dt_Movimento")), *Ob_cgpSistema())
                         << "       AND A.Cd_Pessoa = " + std::to_string(CLng(Ob_cgp()->Get("Cd_Pessoa")));
    return OpenReport();
  });
}

}  // namespace vek
