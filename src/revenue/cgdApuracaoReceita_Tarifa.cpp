#include "vek/revenue/cgdApuracaoReceita_Tarifa.h"

#include "vek/foundation/SqlLiterals.h"

namespace vek {

std::string cgdApuracaoReceita_Tarifa::SelectStatement() {
  return SqlLines() << "SELECT A.*"
                    << "FROM   TbApuracaoReceita_TbTarifa A"
                    << "WHERE  A.Cd_EmpresaUsuariaSistema = " + KeyLiteral("Cd_EmpresaUsuariaSistema")
                    << "       and A.No_ApuracaoReceita = " + KeyLiteral("No_ApuracaoReceita")
                    << "       and A.Cd_Tarifa = " + KeyLiteral("Cd_Tarifa") + ";";
}

std::string cgdApuracaoReceita_Tarifa::instrucaoInsert() {
  cgpApuracaoReceita_Tarifa& line = *Ob_cgp();
  return SqlLines() << "INSERT INTO TBAPURACAORECEITA_TBTARIFA ("
                    << "CD_EMPRESAUSUARIASISTEMA,"
                    << "NO_APURACAORECEITA,"
                    << "CD_TARIFA,"
                    << "QT_TARIFA,"
                    << "VL_TARIFA"
                    << ")"
                    << "Values ("
                    << IntToSql(CLng(line.Get("Cd_EmpresaUsuariaSistema"))) + "," +
                           IntToSql(CLng(line.Get("No_ApuracaoReceita"))) + "," +
                           SmallIntToSql(CInt(line.Get("Cd_Tarifa"))) + "," +
                           SmallIntToSql(CInt(line.Get("Qt_Tarifa"))) + "," +
                           MoneyToSql(CCur(line.Get("Vl_Tarifa")), 3)
                    << ")";
}

}  // namespace vek
