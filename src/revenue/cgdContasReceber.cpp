#include "vek/revenue/cgdContasReceber.h"

#include <array>
#include <string_view>
#include <vector>

#include "vek/db/Connection.h"
#include "vek/db/Field.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"

namespace vek {
namespace {

// The title table's columns, in the order of the INSERT, with what fills them.
enum class Value { Quoted, Day, Cents, Number, Zero };
struct TitleColumn {
  std::string_view dbf;
  std::string_view source;  // the column of the export's SELECT
  Value value;
};
constexpr std::array<TitleColumn, 30> kTitleColumns = {{
    {"E1_FILIAL", "Ds_Filial", Value::Quoted},
    {"E1_PREFIXO", "Ds_Prefixo", Value::Quoted},
    {"E1_NUM", "No_ContaReceber", Value::Quoted},
    {"E1_PARCELA", "No_Parcela", Value::Quoted},
    {"E1_TIPO", "Ds_Tipo", Value::Quoted},
    {"E1_NATUREZ", "Ds_Natureza", Value::Quoted},
    {"E1_CCUSTO", "Ds_CCusto", Value::Quoted},
    {"E1_PORTADO", "Ds_Portador", Value::Quoted},
    {"E1_AGEDEP", "Ds_Agencia", Value::Quoted},
    {"E1_CLIENTE", "Cd_ClienteIntegracao", Value::Quoted},
    {"E1_LOJA", "Cd_LojaIntegracao", Value::Quoted},
    {"E1_EMISSAO", "Dt_Emissao", Value::Day},
    {"E1_VENCTO", "Dt_Vencimento", Value::Day},
    {"E1_VENCREA", "Dt_VencProrrogado", Value::Day},
    {"E1_VALOR", "Vl_ContaReceber", Value::Cents},
    {"E1_EMIS1", "Dt_Emissao", Value::Day},
    {"E1_HIST", "Ds_Historico", Value::Quoted},
    {"E1_SITUACA", "", Value::Zero},
    {"E1_SALDO", "Vl_ContaReceber", Value::Cents},  // the whole amount is open
    {"E1_VENCORI", "Dt_Vencimento", Value::Day},
    {"E1_CONTA", "Ds_Conta", Value::Quoted},
    {"E1_MOEDA", "No_Moeda", Value::Number},
    {"E1_STATUS", "Ds_Status", Value::Quoted},
    {"E1_ORIGEM", "Ds_Origem", Value::Quoted},
    {"E1_FLUXO", "Ds_Fluxo", Value::Quoted},
    {"E1_FILORIG", "Ds_FiloRig", Value::Quoted},
    {"E1_MULTNAT", "Ds_MultNat", Value::Quoted},
    {"E1_MSFIL", "Ds_MsFil", Value::Quoted},
    {"E1_MSEMP", "Ds_MsEmp", Value::Quoted},
    {"E1_RATNCC", "Ds_RatNCC", Value::Quoted},
}};

constexpr std::string_view kMissingDriver =
    "Para exportar para o formato DBF é necessário instalar o BDE, provavelmente esse arquivo não foi "
    "instalado. Retornou a seguinte mensagem:";

bool Missing(const Variant& value) { return value.IsNull() || value.IsEmpty(); }

// An amount as whole cents, rounded half to even as the old runtime's CLng.
int64_t Cents(Currency amount) {
  const int64_t raw = amount.Raw();
  int64_t cents = raw / 100;
  const int64_t rest = raw % 100;
  if (rest > 50 || (rest == 50 && cents % 2 != 0)) ++cents;
  if (rest < -50 || (rest == -50 && cents % 2 != 0)) --cents;
  return cents;
}

// The provider's failure to open the folder or the table, under the
// system's own words.
[[noreturn]] void RaiseMissingDriver(const VekError& error) {
  throw VekError(kBusinessError, std::string(), std::string(kMissingDriver) + " " + error.Description());
}

}  // namespace

void cgdContasReceber::CarregarMSFlexGridDeBusca(FlexGrid& Ob_MSFlexGrid, TextControl& ObQt_Registros,
                                                 const std::string& Ds_Condicao) {
  Run("CarregarMSFlexGridDeBusca", [&] {
    SqlLines sql;
    sql << "SELECT   A.No_ContaReceber,"
        << "         A.No_Parcela,"
        << "         B.Nm_Pessoa,"
        << "         A.Dt_Emissao,"
        << "         A.Dt_Vencimento,"
        << "         A.Dt_Pagamento,"
        << "         A.Vl_ContaReceber"
        << "FROM     TbContaReceber A"
        << "         Join TbPessoa B on A.Cd_Pessoa = B.Cd_Pessoa";
    AddFilter(sql, Ds_Condicao);
    sql << "ORDER BY B.Nm_Pessoa,"
        << "         A.Dt_Vencimento";
    ds_sql_ = sql;
    FillSearchGrid(Ob_MSFlexGrid, ObQt_Registros,
                   {{"No_ContaReceber", "###,###,##0"},
                    {"No_Parcela", "###,###,##0"},
                    {"Nm_Pessoa"},
                    {"Dt_Emissao", "dd/mm/yyyy"},
                    {"Dt_Vencimento", "dd/mm/yyyy"},
                    {"Dt_Pagamento", "dd/mm/yyyy"},
                    {"Vl_ContaReceber", "###,###,##0.00"}});
  });
}

std::shared_ptr<Recordset> cgdContasReceber::ConsultarContasDeFechamentoDiario(Date Dt_FechamentoDiario) {
  return Run("ConsultarContasDeFechamentoDiario", [&] {
    const std::string day = Format(Variant(Dt_FechamentoDiario), CStr(Ob_cgpSistema()->Get("Ds_FormatoData")));
    ds_sql_ = SqlLines() << "SELECT *"
                         << "FROM   TbContaReceber"
                         << "WHERE  Dt_Emissao = '" + day + "'"
                         << "       AND Ic_GeradoPeloSistema = 1";
    return OpenReport();
  });
}

void cgdContasReceber::ExportarDBF(Date Dt_Inicio, Date Dt_Fim, const std::string& Nm_ArquivoDestino,
                                   const std::string& Nm_Tabela) {
  Run("ExportarDBF", [&] {
    cgpSistema& session = *Ob_cgpSistema();
    const std::string date_format = CStr(session.Get("Ds_FormatoData"));
    ds_sql_ = SqlLines() << "SELECT B.Ds_Filial,"
                         << "       B.Ds_Prefixo,"
                         << "       A.No_ContaReceber,"
                         << "       A.No_Parcela,"
                         << "       B.Ds_Tipo,"
                         << "       B.Ds_Natureza,"
                         << "       B.Ds_CCusto,"
                         << "       B.Ds_Portador,"
                         << "       B.Ds_Agencia,"
                         << "       C.Cd_ClienteIntegracao,"
                         << "       C.Cd_LojaIntegracao,"
                         << "       A.Dt_Emissao,"
                         << "       A.Dt_Vencimento,"
                         << "       A.Dt_Vencimento + A.Qt_DiasProrrogacao as Dt_VencProrrogado,"
                         << "       A.Vl_ContaReceber,"
                         << "       A.Ds_Historico,"
                         << "       B.Ds_Conta,"
                         << "       B.No_Moeda,"
                         << "       B.Ds_Status,"
                         << "       B.Ds_Origem,"
                         << "       B.Ds_Fluxo,"
                         << "       B.Ds_FiloRig,"
                         << "       B.Ds_MultNat,"
                         << "       B.Ds_MsFil,"
                         << "       B.Ds_MsEmp,"
                         << "       B.Ds_RatNCC"
                         << "FROM   TbContaReceber A"
                         << "       Left Join TbParametrosMicrosiga B On A.Cd_EmpresaUsuariaSistema = "
                            "B.Cd_EmpresaUsuariaSistema"
                         << "       Left Join TbEmpresaOnibus C On A.Cd_Pessoa = C.Cd_EmpresaOnibus"
                         << "WHERE  A.Dt_Emissao between '" + Format(Variant(Dt_Inicio), date_format) +
                                "' and '" + Format(Variant(Dt_Fim), date_format) + "'";

    // Every title is written out before the table is touched, so a value
    // refused here leaves it as it was.
    std::string columns;
    for (const TitleColumn& column : kTitleColumns) {
      columns += (columns.empty() ? "" : ", ") + std::string(column.dbf);
    }
    std::vector<std::string> inserts;
    {
      Recordset receivables;
      OpenStatement(receivables);
      Fields& fields = receivables.Fields();
      for (; !receivables.Eof(); receivables.MoveNext()) {
        std::string values;
        for (const TitleColumn& column : kTitleColumns) {
          const Variant value = column.source.empty() ? Variant() : fields.Item(column.source).Value();
          std::string literal;
          switch (column.value) {
            case Value::Quoted: {
              const std::string text = Missing(value) ? std::string() : CStr(value);
              RequireNoApostrophe(column.source, text);
              literal = "'" + text + "'";
              break;
            }
            case Value::Day:
              literal = "'" + (Missing(value) ? std::string() : Format(Variant(CDate(value)), "dd/mm/yyyy")) + "'";
              break;
            case Value::Cents: literal = std::to_string(Cents(CCur(value))) + " / 100 "; break;
            case Value::Number: literal = Missing(value) ? "Null" : std::to_string(CLng(value)); break;
            case Value::Zero: literal = "'0'"; break;
          }
          values += (values.empty() ? "" : ", ") + literal;
        }
        inserts.push_back("INSERT Into " + Nm_Tabela + " (" + columns + ")" + "VALUES " + "(" + values + ")");
      }
      receivables.Close();
    }

    std::shared_ptr<Connection> dbf;
    try {
      dbf = OpenSideConnection(std::string("Driver={Microsoft Visual FoxPro Driver};") + "SourceType=DBF;" +
                               "SourceDB=" + Nm_ArquivoDestino + ";" + "Exclusive=No");
      ds_sql_ = "DELETE  FROM " + Nm_Tabela;
      dbf->Execute(ds_sql_);
    } catch (const VekError& error) {
      RaiseMissingDriver(error);
    }

    ProgressWindow& progress = session.Progress();
    // Closed on failure too: a window left on screen would hide the error.
    struct ProgressCloser {
      ProgressWindow& window;
      ~ProgressCloser() {
        try {
          window.Close();
        } catch (...) {
        }
      }
    } closer{progress};
    progress.Caption("Exportando as contas a receber para " + Nm_Tabela);
    progress.Label(std::string());
    progress.Percentage(0.0);
    progress.Show();
    for (size_t i = 0; i < inserts.size(); ++i) {
      ds_sql_ = inserts[i];
      dbf->Execute(ds_sql_);
      progress.Percentage(100.0 * static_cast<double>(i + 1) / static_cast<double>(inserts.size()));
    }
    dbf->Close();
  });
}

}  // namespace vek
