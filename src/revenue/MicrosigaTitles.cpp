#include "vek/revenue/MicrosigaTitles.h"

#include <array>
#include <memory>
#include <string_view>

#include "vek/db/Connection.h"

namespace vek {
namespace {

struct TitleField {
  std::string_view name;
  std::string_view type;
};
constexpr std::array<TitleField, 30> kTitleFields = {{
    {"E1_FILIAL", "C(2)"},  {"E1_PREFIXO", "C(3)"}, {"E1_NUM", "C(10)"},     {"E1_PARCELA", "C(3)"},
    {"E1_TIPO", "C(3)"},    {"E1_NATUREZ", "C(10)"}, {"E1_CCUSTO", "C(9)"},  {"E1_PORTADO", "C(3)"},
    {"E1_AGEDEP", "C(5)"},  {"E1_CLIENTE", "C(10)"}, {"E1_LOJA", "C(4)"},    {"E1_EMISSAO", "D"},
    {"E1_VENCTO", "D"},     {"E1_VENCREA", "D"},     {"E1_VALOR", "N(17,2)"}, {"E1_EMIS1", "D"},
    {"E1_HIST", "C(40)"},   {"E1_SITUACA", "C(1)"},  {"E1_SALDO", "N(17,2)"}, {"E1_VENCORI", "D"},
    {"E1_CONTA", "C(10)"},  {"E1_MOEDA", "N(2,0)"},  {"E1_STATUS", "C(1)"},  {"E1_ORIGEM", "C(8)"},
    {"E1_FLUXO", "C(1)"},   {"E1_FILORIG", "C(2)"},  {"E1_MULTNAT", "C(1)"}, {"E1_MSFIL", "C(2)"},
    {"E1_MSEMP", "C(2)"},   {"E1_RATNCC", "C(1)"},
}};

}  // namespace

std::string MicrosigaTitleTableStatement(const std::string& Nm_Tabela) {
  std::string fields;
  for (const TitleField& field : kTitleFields) {
    fields += (fields.empty() ? "" : ", ") + std::string(field.name) + " " + std::string(field.type);
  }
  return "CREATE TABLE " + Nm_Tabela + " FREE (" + fields + ")";
}

void CreateMicrosigaTitleTable(const std::filesystem::path& folder, const std::string& Nm_Tabela) {
  auto connection = std::make_shared<Connection>();
  connection->Open("Driver={Microsoft Visual FoxPro Driver};SourceType=DBF;SourceDB=" + folder.string() +
                  ";Exclusive=No");
  connection->Execute(MicrosigaTitleTableStatement(Nm_Tabela));
  connection->Close();
}

}  // namespace vek
