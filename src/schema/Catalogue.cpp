#include "vek/schema/Catalogue.h"

#include <array>
#include <utility>

#include "vek/platform/Text.h"

namespace vek::schema {

namespace {

constexpr ColumnDef Integer(std::string_view name) { return {name, ColumnType::Int}; }
constexpr ColumnDef SmallInteger(std::string_view name) { return {name, ColumnType::SmallInt}; }
constexpr ColumnDef TinyInteger(std::string_view name) { return {name, ColumnType::TinyInt}; }
constexpr ColumnDef Flag(std::string_view name) { return {name, ColumnType::Bit}; }
constexpr ColumnDef Amount(std::string_view name) { return {name, ColumnType::Money}; }
constexpr ColumnDef Moment(std::string_view name) { return {name, ColumnType::DateTime}; }
constexpr ColumnDef Real(std::string_view name) { return {name, ColumnType::Float}; }
constexpr ColumnDef Text(std::string_view name, int32_t size) {
  return {name, ColumnType::VarChar, size};
}
constexpr ColumnDef FixedText(std::string_view name, int32_t size) {
  return {name, ColumnType::Char, size};
}
// A key column that the system numbers (what the entity's nomeCamposSequencial lists).
constexpr ColumnDef Numbered(std::string_view name) {
  return {name, ColumnType::Int, 0, false, true};
}

// The tenant, first key column of most tables.
constexpr ColumnDef Tenant() { return Integer("Cd_EmpresaUsuariaSistema"); }

ForeignKeyDef References(std::string_view table, std::vector<std::string_view> columns) {
  return {columns, table, columns};
}
ForeignKeyDef References(std::string_view table, std::vector<std::string_view> columns,
                         std::vector<std::string_view> parent_columns) {
  return {std::move(columns), table, std::move(parent_columns)};
}
IndexDef Index(std::vector<std::string_view> columns) { return {std::move(columns), false}; }
IndexDef UniqueIndex(std::vector<std::string_view> columns) { return {std::move(columns), true}; }
IndexDef PrefixIndex(std::string_view column, int32_t characters) { return {{column}, false, characters}; }

// Sizes of the texts that recur across tables.
constexpr int32_t kPersonName = 100;
constexpr int32_t kCityName = 60;
constexpr int32_t kPlate = 10;
constexpr int32_t kPostcode = 9;
constexpr int32_t kTicketCode = 40;
constexpr int32_t kDescription = 60;
constexpr int32_t kMicrosigaField = 20;

constexpr std::array<std::string_view, 31> kDayColumns = {
    "Qt_Dia01", "Qt_Dia02", "Qt_Dia03", "Qt_Dia04", "Qt_Dia05", "Qt_Dia06", "Qt_Dia07", "Qt_Dia08",
    "Qt_Dia09", "Qt_Dia10", "Qt_Dia11", "Qt_Dia12", "Qt_Dia13", "Qt_Dia14", "Qt_Dia15", "Qt_Dia16",
    "Qt_Dia17", "Qt_Dia18", "Qt_Dia19", "Qt_Dia20", "Qt_Dia21", "Qt_Dia22", "Qt_Dia23", "Qt_Dia24",
    "Qt_Dia25", "Qt_Dia26", "Qt_Dia27", "Qt_Dia28", "Qt_Dia29", "Qt_Dia30", "Qt_Dia31"};

// The monthly maps have one quantity column per day of the month.
std::vector<ColumnDef> MapColumns() {
  std::vector<ColumnDef> columns = {Text("Nm_EmpresaOnibus", kDescription),
                                    Text("Nm_Cidade", kCityName + 5), Integer("Cd_EmpresaOnibus"),
                                    Integer("Cd_Cidade")};
  for (std::string_view day : kDayColumns) columns.push_back(Integer(day));
  columns.push_back(Integer("Qt_Total"));
  return columns;
}

void AddRegistry(std::vector<TableDef>& t) {
  t.push_back({.name = "TbUF",
               .columns = {Numbered("Cd_UF"), Text("Nm_UF", 40), FixedText("Sg_UF", 2)},
               .primary_key = {"Cd_UF"},
               .indexes = {UniqueIndex({"Sg_UF"}), Index({"Nm_UF"})}});
  t.push_back({.name = "TbCidade",
               .columns = {Numbered("Cd_Cidade"), Text("Nm_Cidade", kCityName),
                           Text("Sg_Cidade", 5), Integer("Cd_UF"), FixedText("Sg_UF", 2),
                           Integer("Qt_DistanciaEmKm")},
               .primary_key = {"Cd_Cidade"},
               .foreign_keys = {References("TbUF", {"Cd_UF"})},
               .indexes = {Index({"Nm_Cidade"}), Index({"Cd_UF"}), Index({"Sg_UF"})}});
  t.push_back({.name = "TbBairro",
               .columns = {Numbered("Cd_Bairro"), Text("Nm_Bairro", kCityName),
                           Integer("Cd_Cidade")},
               .primary_key = {"Cd_Bairro"},
               .foreign_keys = {References("TbCidade", {"Cd_Cidade"})},
               .indexes = {Index({"Cd_Cidade"}), Index({"Nm_Bairro"})}});
  t.push_back({.name = "TbTipoLogradouro",
               .columns = {Numbered("Cd_TipoLogradouro"), Text("Nm_TipoLogradouro", 40),
                           Text("Sg_TipoLogradouro", 10)},
               .primary_key = {"Cd_TipoLogradouro"},
               .indexes = {Index({"Nm_TipoLogradouro"})}});
  t.push_back({.name = "TbLogradouro",
               .columns = {Numbered("Cd_Logradouro"), Text("Nm_Logradouro", kPersonName),
                           Integer("Cd_TipoLogradouro"), Integer("Cd_Cidade")},
               .primary_key = {"Cd_Logradouro"},
               .foreign_keys = {References("TbTipoLogradouro", {"Cd_TipoLogradouro"}),
                                References("TbCidade", {"Cd_Cidade"})},
               .indexes = {Index({"Cd_Cidade"}), Index({"Cd_TipoLogradouro"}),
                           Index({"Nm_Logradouro"})}});
  t.push_back({.name = "TbCEP_TbLogradouro",
               .columns = {Integer("Cd_Logradouro"), Text("Cd_EP", kPostcode)},
               .primary_key = {"Cd_Logradouro", "Cd_EP"},
               .foreign_keys = {References("TbLogradouro", {"Cd_Logradouro"})},
               .indexes = {Index({"Cd_EP"})}});
  t.push_back({.name = "TbTipoEndereco",
               .columns = {Numbered("Cd_TipoEndereco"), Text("Nm_TipoEndereco", 40)},
               .primary_key = {"Cd_TipoEndereco"}});
  t.push_back({.name = "TbTituloEPatente",
               .columns = {Numbered("Cd_TituloEPatente"), Text("Nm_TituloEPatente", kDescription),
                           Text("Sg_TituloEPatente", 15)},
               .primary_key = {"Cd_TituloEPatente"},
               .indexes = {Index({"Nm_TituloEPatente"})}});
  // A person's own records carry no constraint towards TbPessoa: deleting a
  // person is one statement that leaves them in place by design.
  t.push_back({.name = "TbPessoa",
               .columns = {Numbered("Cd_Pessoa"), Text("Nm_Pessoa", kPersonName),
                           TinyInteger("No_TipoPessoa")},
               .primary_key = {"Cd_Pessoa"},
               .indexes = {Index({"Nm_Pessoa"})}});
  t.push_back({.name = "TbPessoaFisica",
               .columns = {Integer("Cd_Pessoa"), Text("No_CPF", 14), Moment("Dt_Nascimento"),
                           Integer("Cd_TituloEPatente")},
               .primary_key = {"Cd_Pessoa"},
               .foreign_keys = {References("TbTituloEPatente", {"Cd_TituloEPatente"})},
               .indexes = {Index({"No_CPF"}), Index({"Cd_TituloEPatente"})}});
  t.push_back({.name = "TbPessoaJuridica",
               .columns = {Integer("Cd_Pessoa"), Text("No_CNPJ", 18),
                           Text("Ds_InscricaoEstadual", 20), Text("Nm_Fantasia", kPersonName)},
               .primary_key = {"Cd_Pessoa"},
               .indexes = {Index({"No_CNPJ"})}});
  t.push_back({.name = "TbEndereco",
               .columns = {Integer("Cd_TipoEndereco"), Integer("Cd_Pessoa"),
                           Integer("Cd_Logradouro"), Text("Cd_EP", kPostcode), Integer("No_Imovel"),
                           Text("Ds_Complemento", kDescription), Integer("Cd_Bairro")},
               .primary_key = {"Cd_TipoEndereco", "Cd_Pessoa"},
               .foreign_keys = {References("TbTipoEndereco", {"Cd_TipoEndereco"}),
                                References("TbLogradouro", {"Cd_Logradouro"}),
                                References("TbBairro", {"Cd_Bairro"})},
               .indexes = {Index({"Cd_Pessoa"}), Index({"Cd_Logradouro"}), Index({"Cd_Bairro"})}});
  t.push_back({.name = "TbTelefone",
               .columns = {Integer("Cd_Pessoa"), TinyInteger("No_TipoTelefone"),
                           Text("No_Telefone", 20)},
               .primary_key = {"Cd_Pessoa", "No_TipoTelefone"}});
  t.push_back({.name = "TbEMail",
               .columns = {Integer("Cd_Pessoa"), Text("Ds_EMail", kPersonName)},
               .primary_key = {"Cd_Pessoa"}});
  t.push_back({.name = "TbEmpresaUsuariaSistema",
               .columns = {Numbered("Cd_EmpresaUsuariaSistema"), Integer("Cd_Pessoa"),
                           Text("Nm_Terminal", kDescription)},
               .primary_key = {"Cd_EmpresaUsuariaSistema"},
               .indexes = {Index({"Cd_Pessoa"})}});
  t.push_back({.name = "TbUsuario",
               .columns = {Tenant(), Numbered("Cd_Usuario"), Text("Nm_Usuario", 30),
                           Text("Ds_CriptoSenha", 150), Integer("Cd_Pessoa")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_Usuario"},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Nm_Usuario"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_Pessoa"}),
                           Index({"Nm_Usuario"})}});
}

void AddBus(std::vector<TableDef>& t) {
  t.push_back({.name = "TbEmpresaOnibus",
               .columns = {Integer("Cd_EmpresaOnibus"), Integer("Cd_Pessoa"),
                           Text("Nm_EmpresaOnibus", kDescription), Text("Cd_ClienteIntegracao", 10),
                           Text("Cd_LojaIntegracao", 4)},
               .primary_key = {"Cd_EmpresaOnibus"},
               .indexes = {Index({"Cd_Pessoa"}), Index({"Nm_EmpresaOnibus"})}});
  t.push_back({.name = "TbVeiculoOnibus",
               .columns = {Text("Cd_Placa", kPlate), Integer("Cd_EmpresaOnibus"),
                           Integer("No_Frota")},
               .primary_key = {"Cd_Placa"},
               .foreign_keys = {References("TbEmpresaOnibus", {"Cd_EmpresaOnibus"})},
               .indexes = {Index({"Cd_EmpresaOnibus", "No_Frota"})}});
  t.push_back({.name = "TbTipoOnibus",
               .columns = {Numbered("Cd_TipoOnibus"), Text("Ds_TipoOnibus", kDescription)},
               .primary_key = {"Cd_TipoOnibus"}});
  t.push_back({.name = "TbLinha",
               .columns = {Numbered("Cd_Linha"), Integer("Cd_CidadeOrigem"),
                           Integer("Cd_CidadeDestino")},
               .primary_key = {"Cd_Linha"},
               .foreign_keys = {References("TbCidade", {"Cd_CidadeOrigem"}, {"Cd_Cidade"}),
                                References("TbCidade", {"Cd_CidadeDestino"}, {"Cd_Cidade"})},
               .indexes = {Index({"Cd_CidadeOrigem"}), Index({"Cd_CidadeDestino"})}});
  t.push_back({.name = "TbHorariosLinha",
               .columns = {Tenant(), Integer("Cd_Linha"), Numbered("Cd_HorarioLinha"),
                           Integer("Cd_EmpresaOnibus"), Integer("Cd_TipoOnibus"),
                           Moment("Hr_Saida"), Moment("Hr_Chegada"), Flag("Ic_TemEmbarques"),
                           Flag("Ic_TemDesembarque"), Integer("No_Plataforma"),
                           Flag("Ic_ViagemNoDomingo"), Flag("Ic_ViagemNaSegunda"),
                           Flag("Ic_ViagemNaTerca"), Flag("Ic_ViagemNaQuarta"),
                           Flag("Ic_ViagemNaQuinta"), Flag("Ic_ViagemNaSexta"),
                           Flag("Ic_ViagemNoSabado"), Moment("Dt_Inicial"), Moment("Dt_Final")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_Linha", "Cd_HorarioLinha"},
               .foreign_keys = {References("TbLinha", {"Cd_Linha"}),
                                References("TbEmpresaOnibus", {"Cd_EmpresaOnibus"}),
                                References("TbTipoOnibus", {"Cd_TipoOnibus"})},
               // Trips and the board join timetables on tenant and timetable alone.
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Cd_HorarioLinha"}),
                           Index({"Cd_Linha"}), Index({"Cd_EmpresaOnibus"}),
                           Index({"Cd_TipoOnibus"}), Index({"Hr_Saida"})}});
  t.push_back({.name = "TbEscalasHorarioLinha",
               .columns = {Tenant(), Integer("Cd_Linha"), Integer("Cd_HorarioLinha"),
                           Integer("Cd_Cidade")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_Linha", "Cd_HorarioLinha",
                               "Cd_Cidade"},
               .foreign_keys = {References("TbHorariosLinha", {"Cd_EmpresaUsuariaSistema",
                                                               "Cd_Linha", "Cd_HorarioLinha"}),
                                References("TbCidade", {"Cd_Cidade"})},
               .indexes = {Index({"Cd_Cidade"})}});
  // Trips and announcements are movement records: timetables and trips are
  // deleted without touching them, so they refer to their parents freely.
  t.push_back({.name = "TbViagemOnibus",
               .columns = {Tenant(), Numbered("Cd_ViagemOnibus"), Integer("Cd_Linha"),
                           Integer("Cd_HorarioLinha"), Moment("Hr_Previsto"),
                           Moment("Hr_ChegadaRodoviaria"), Moment("Hr_SaidaRodoviaria"),
                           Integer("No_Plataforma"), TinyInteger("No_Andamento"),
                           Integer("Qt_EmbarquesComPassagem"), Integer("Qt_EmbarquesSemPassagem")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_ViagemOnibus"},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Hr_Previsto"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_HorarioLinha", "Hr_Previsto"}),
                           Index({"Cd_EmpresaUsuariaSistema", "No_Plataforma", "No_Andamento"}),
                           Index({"Hr_Previsto"})}});
  t.push_back({.name = "TbAgendaSom",
               .columns = {Tenant(), Numbered("Cd_AgendaSom"), Integer("Cd_ViagemOnibus"),
                           Moment("Dt_Agendamento"), Flag("Ic_Feito")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_AgendaSom"},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Dt_Agendamento"}),
                           Index({"Cd_ViagemOnibus"})}});
  t.push_back({.name = "TempCidade",
               .columns = {Integer("Cd_Cidade"), Text("Nm_Cidade", kCityName),
                           Text("Sg_Cidade", 5), FixedText("Sg_UF", 2), Integer("Cd_UF"),
                           Integer("Qt_DistanciaEmKm"), Flag("Ic_ExisteArquivoSom")},
               .indexes = {Index({"Cd_Cidade"})}});
}

void AddRevenue(std::vector<TableDef>& t) {
  t.push_back({.name = "TbTipoReceita",
               .columns = {Numbered("Cd_TipoReceita"), Text("Nm_TipoReceita", 40)},
               .primary_key = {"Cd_TipoReceita"},
               .indexes = {Index({"Nm_TipoReceita"})},
               .fixed_rows = {"1, 'EMBARQUE'", "2, 'ESTACIONAMENTO'", "3, 'SANITARIO'",
                              "4, 'MALEX'"},
               .fixed_row_columns = {"Cd_TipoReceita", "Nm_TipoReceita"}});
  t.push_back({.name = "TbTarifa",
               .columns = {Numbered("Cd_Tarifa"), Integer("Cd_EmpresaUsuariaSistema"),
                           Text("Ds_Tarifa", kDescription), Amount("Vl_Tarifa"),
                           Integer("Cd_TipoReceita")},
               .primary_key = {"Cd_Tarifa"},
               .foreign_keys = {References("TbTipoReceita", {"Cd_TipoReceita"})},
               .indexes = {Index({"Cd_TipoReceita"}), Index({"Cd_EmpresaUsuariaSistema"}),
                           Index({"Ds_Tarifa"})}});
  t.push_back({.name = "TbCaixa",
               .columns = {Tenant(), Numbered("Cd_Caixa"), Integer("Cd_Usuario"),
                           Moment("Dt_Abertura"), Integer("No_Sequencial"),
                           Moment("Dt_Fechamento"), TinyInteger("No_Situacao")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_Caixa"},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Cd_Usuario", "Dt_Abertura",
                                  "No_Sequencial"})}});
  t.push_back({.name = "TbApuracaoReceita",
               .columns = {Tenant(), Numbered("No_ApuracaoReceita"), Integer("Cd_TipoReceita"),
                           Integer("Cd_Pessoa"), Moment("Dt_Faturamento"), Moment("Dt_Movimento"),
                           Moment("Dt_Vencimento"), Integer("No_ContaReceber"),
                           Amount("Vl_ApuracaoReceita"), SmallInteger("No_Parcela"),
                           Integer("Cd_Caixa"), Moment("Dt_Inicial"), Moment("Dt_Final"),
                           Flag("Ic_TotalizacaoDeCaixa")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "No_ApuracaoReceita"},
               .foreign_keys = {References("TbTipoReceita", {"Cd_TipoReceita"})},
               .indexes = {Index({"Dt_Movimento", "Cd_Pessoa"}), Index({"Dt_Faturamento"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_Caixa"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_Pessoa", "Cd_TipoReceita",
                                  "Dt_Final"}),
                           Index({"Cd_TipoReceita"}), Index({"Cd_Pessoa"})}});
  t.push_back({.name = "TbApuracaoReceita_TbTarifa",
               .columns = {Tenant(), Integer("No_ApuracaoReceita"), Integer("Cd_Tarifa"),
                           SmallInteger("Qt_Tarifa"), Amount("Vl_Tarifa")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "No_ApuracaoReceita", "Cd_Tarifa"},
               .foreign_keys = {References("TbApuracaoReceita",
                                           {"Cd_EmpresaUsuariaSistema", "No_ApuracaoReceita"}),
                                References("TbTarifa", {"Cd_Tarifa"})},
               // The daily boarding count joins details on the number alone.
               .indexes = {Index({"No_ApuracaoReceita"}), Index({"Cd_Tarifa"})}});
  t.push_back({.name = "TempApuracaoReceita7",
               .columns = {Text("Ds_Tipo", 20), Integer("Cd_Codigo"),
                           Text("Ds_Descricao", kPersonName), Text("Ds_Observacao", 40),
                           Amount("Vl_Unitario"), Amount("Vl_Total")}});
  t.push_back({.name = "TbCondicaoPagamento",
               .columns = {Numbered("Cd_CondicaoPagamento"), Integer("Cd_TipoCondicaoPagamento"),
                           Text("Ds_CondicaoPagamento", kDescription)},
               .primary_key = {"Cd_CondicaoPagamento"}});
  t.push_back({.name = "TbItemCondicaoPagamento",
               .columns = {Integer("Cd_CondicaoPagamento"), Integer("No_InicioPeriodo"),
                           Integer("No_FinalPeriodo"), Integer("No_Faturamento"),
                           Integer("No_Vencimento")},
               .primary_key = {"Cd_CondicaoPagamento", "No_InicioPeriodo"},
               .foreign_keys = {References("TbCondicaoPagamento", {"Cd_CondicaoPagamento"})}});
  t.push_back({.name = "TbContaReceber",
               .columns = {Tenant(), Numbered("No_ContaReceber"), SmallInteger("No_Parcela"),
                           Integer("Cd_Pessoa"), Moment("Dt_Emissao"), Moment("Dt_Vencimento"),
                           Moment("Dt_Pagamento"), Amount("Vl_ContaReceber"),
                           Integer("Qt_DiasProrrogacao"), Text("Ds_Historico", 250),
                           Flag("Ic_GeradoPeloSistema")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "No_ContaReceber", "No_Parcela"},
               .indexes = {Index({"Dt_Emissao"}), Index({"Cd_Pessoa"})}});
  t.push_back({.name = "TbFechamentoDiario",
               .columns = {Tenant(), Moment("Dt_FechamentoDiario"), Amount("Vl_Deposito")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Dt_FechamentoDiario"},
               .indexes = {Index({"Dt_FechamentoDiario"})}});
  t.push_back({.name = "TbParametrosMicrosiga",
               .columns = {Tenant(), Text("Ds_Filial", kMicrosigaField),
                           Text("Ds_Prefixo", kMicrosigaField), Text("Ds_Tipo", kMicrosigaField),
                           Text("Ds_Natureza", kMicrosigaField), Text("Ds_CCusto", kMicrosigaField),
                           Text("Ds_Portador", kMicrosigaField), Text("Ds_Agencia", kMicrosigaField),
                           Text("Ds_Conta", kMicrosigaField), Integer("No_Moeda"),
                           Text("Ds_Status", kMicrosigaField), Text("Ds_Origem", kMicrosigaField),
                           Text("Ds_Fluxo", kMicrosigaField), Text("Ds_FiloRig", kMicrosigaField),
                           Text("Ds_MultNat", kMicrosigaField), Text("Ds_MsFil", kMicrosigaField),
                           Text("Ds_MsEmp", kMicrosigaField), Text("Ds_RatNCC", kMicrosigaField)},
               .primary_key = {"Cd_EmpresaUsuariaSistema"}});
  t.push_back({.name = "TbItemMapaMovimentoED",
               .columns = {Tenant(), Integer("Cd_EmpresaOnibus"), Moment("Dt_Movimento"),
                           Integer("Cd_Cidade"), Integer("Qt_Embarques"),
                           Integer("Qt_Desembarques")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_EmpresaOnibus", "Dt_Movimento",
                               "Cd_Cidade"},
               .indexes = {Index({"Dt_Movimento"}),
                           Index({"Cd_EmpresaOnibus", "Cd_Cidade", "Dt_Movimento"})}});
  t.push_back({.name = "TbItemRateioMovimentoED",
               .columns = {Tenant(), Integer("Cd_EmpresaOnibus"), Integer("Cd_Cidade"),
                           Integer("Qt_Embarques")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_EmpresaOnibus", "Cd_Cidade"},
               .indexes = {Index({"Cd_EmpresaOnibus"}), Index({"Cd_Cidade"})}});

  // The report file's tables; the feeds fill them row by row, one row per key.
  std::vector<ColumnDef> assessment_report = {Integer("Cd_Pessoa"),
                                              Text("Nm_Empresa", kPersonName),
                                              Text("Dt_Movimento", 10)};
  for (std::string_view name : {"Qt_Tarifa1", "Qt_Tarifa2", "Qt_Tarifa3", "Qt_Tarifa4",
                                "Qt_Tarifa5", "Qt_Tarifa6"}) {
    assessment_report.push_back(Integer(name));
  }
  for (std::string_view name : {"Vl_Tarifa1", "Vl_Tarifa2", "Vl_Tarifa3", "Vl_Tarifa4",
                                "Vl_Tarifa5", "Vl_Tarifa6"}) {
    assessment_report.push_back(Amount(name));
  }
  assessment_report.insert(assessment_report.end(),
                           {Integer("Qt_TarifaDia"), Amount("Vl_TarifaDia"),
                            Integer("Qt_AcumTarifaDia"), Amount("Vl_AcumTarifaDia")});
  for (std::string_view name : {"In_Tarifa1", "In_Tarifa2", "In_Tarifa3", "In_Tarifa4",
                                "In_Tarifa5", "In_Tarifa6"}) {
    assessment_report.push_back(Real(name));
  }
  t.push_back({.name = "cgrApuracaoReceita3",
               .columns = std::move(assessment_report),
               .primary_key = {"Cd_Pessoa", "Dt_Movimento"},
               .report_file = true});
  t.push_back({.name = "cgrMapaControleEmbarque1",
               .columns = MapColumns(),
               .primary_key = {"Cd_EmpresaOnibus", "Cd_Cidade"},
               .report_file = true});
  t.push_back({.name = "cgrMapaControleDesembarque1",
               .columns = MapColumns(),
               .primary_key = {"Cd_EmpresaOnibus", "Cd_Cidade"},
               .report_file = true});
}

void AddParking(std::vector<TableDef>& t) {
  t.push_back({.name = "TbCor",
               .columns = {Numbered("Cd_Cor"), Text("Nm_Cor", 30)},
               .primary_key = {"Cd_Cor"},
               .indexes = {Index({"Nm_Cor"})}});
  t.push_back({.name = "TbMarcaModelo",
               .columns = {Numbered("Cd_MarcaModelo"), Text("Ds_MarcaModelo", kDescription)},
               .primary_key = {"Cd_MarcaModelo"},
               .indexes = {Index({"Ds_MarcaModelo"})}});
  t.push_back({.name = "TbVeiculo",
               .columns = {Text("Cd_Placa", kPlate), Integer("No_Frota"),
                           Integer("Cd_EmpresaOnibus"), Integer("Cd_Cor"),
                           Integer("Cd_MarcaModelo")},
               .primary_key = {"Cd_Placa"},
               .foreign_keys = {References("TbEmpresaOnibus", {"Cd_EmpresaOnibus"}),
                                References("TbCor", {"Cd_Cor"}),
                                References("TbMarcaModelo", {"Cd_MarcaModelo"})},
               .indexes = {Index({"Cd_EmpresaOnibus"}), Index({"Cd_Cor"}),
                           Index({"Cd_MarcaModelo"})}});
  // A company's parking record of a plate stands even when TbVeiculo lacks it.
  t.push_back({.name = "TbVeiculoEstacionamento",
               .columns = {Text("Cd_Placa", kPlate), Tenant(),
                           Integer("Cd_ClienteEstacionamento")},
               .primary_key = {"Cd_Placa", "Cd_EmpresaUsuariaSistema"}});
  t.push_back({.name = "TbCategoriaClienteEstacionamento",
               .columns = {Tenant(), Numbered("Cd_CategoriaClienteEstacionamento"),
                           Text("Nm_CategoriaClienteEstacionamento", kDescription)},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_CategoriaClienteEstacionamento"}});
  t.push_back({.name = "TbCalendarioAcessoEstacionamento",
               .columns = {Tenant(), Numbered("Cd_CalendarioAcessoEstacionamento"),
                           Text("Nm_CalendarioAcessoEstacionamento", kDescription)},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_CalendarioAcessoEstacionamento"}});
  t.push_back({.name = "TbPrecoEstacionamentoMensalista",
               .columns = {Tenant(), Integer("Cd_Tarifa"), Integer("Qt_HorasPermanencia")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_Tarifa"},
               .foreign_keys = {References("TbTarifa", {"Cd_Tarifa"})},
               .indexes = {Index({"Cd_Tarifa"})}});
  t.push_back(
      {.name = "TbClienteEstacionamento",
       .columns = {Tenant(), Integer("Cd_ClienteEstacionamento"), Integer("Cd_Tarifa"),
                   Integer("Cd_CategoriaClienteEstacionamento"),
                   Integer("Cd_CalendarioAcessoEstacionamento")},
       .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_ClienteEstacionamento"},
       .foreign_keys = {References("TbTarifa", {"Cd_Tarifa"}),
                        References("TbCategoriaClienteEstacionamento",
                                   {"Cd_EmpresaUsuariaSistema", "Cd_CategoriaClienteEstacionamento"}),
                        References("TbCalendarioAcessoEstacionamento",
                                   {"Cd_EmpresaUsuariaSistema", "Cd_CalendarioAcessoEstacionamento"})},
       .indexes = {Index({"Cd_Tarifa"}),
                   Index({"Cd_EmpresaUsuariaSistema", "Cd_CategoriaClienteEstacionamento"}),
                   Index({"Cd_EmpresaUsuariaSistema", "Cd_CalendarioAcessoEstacionamento"})}});
  t.push_back({.name = "TbConvenioEstacionamento",
               .columns = {Tenant(), Integer("Cd_ClienteConvenio"), Integer("Qt_Vagas"),
                           Moment("Hr_Inicial"), Moment("Hr_Final"),
                           Moment("Hr_MaximoPermanencia")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_ClienteConvenio"}});
  t.push_back({.name = "TbCartaoEstacionamento",
               .columns = {Tenant(), Numbered("Cd_CartaoEstacionamento"),
                           Integer("Cd_ClienteEstacionamento"),
                           Text("Ds_IdentificacaoCartao", kTicketCode),
                           Text("Nm_Portador", kPersonName), TinyInteger("No_TipoVeiculo"),
                           Moment("Dt_InicioValidade"), Moment("Dt_FimValidade"),
                           Flag("Ic_Ativo"), Text("Nm_CartaoEstacionamentoo", kDescription)},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_CartaoEstacionamento"},
               .foreign_keys = {References("TbClienteEstacionamento",
                                           {"Cd_EmpresaUsuariaSistema", "Cd_ClienteEstacionamento"})},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Cd_ClienteEstacionamento"}),
                           Index({"Ds_IdentificacaoCartao"})}});
  // Bands may name a tariff that is gone: such a band is never chosen.
  t.push_back({.name = "TbPrecoEstacionamento",
               .columns = {Tenant(), Numbered("Cd_PrecoEstacionamento"),
                           Integer("Qt_TempoInicial"), Integer("Qt_TempoFinal"),
                           Integer("Cd_Tarifa")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_PrecoEstacionamento"},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Qt_TempoFinal"})}});
  // Tickets also come from the gates' log, with clients, cards and tills
  // this database may not hold; they refer to them without a constraint.
  t.push_back({.name = "TbTicketEstacionamento",
               .columns = {Text("Cd_Placa", kPlate), Numbered("Cd_TicketEstacionamento"),
                           TinyInteger("No_Situacao"), Amount("Vl_Tarifa"),
                           Integer("Qt_TempoPermanenciaMinutos"), Moment("Dt_Saida"),
                           Moment("Dt_Entrada"), Tenant(), Integer("Cd_ClienteEstacionamento"),
                           Integer("Cd_Caixa"), Flag("Ic_Mensalista"), Integer("Cd_ClienteConvenio"),
                           Text("Ds_Ticket", kTicketCode), Integer("Cd_CartaoEstacionamento"),
                           Flag("Ic_TicketRevalidado"),
                           Integer("Qt_MinutosDisponivelParaMensalista"),
                           Integer("Qt_MinutosPermanenciaoOutrosTickets")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_TicketEstacionamento"},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Cd_Placa", "No_Situacao"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Ds_Ticket"}),
                           Index({"Cd_CartaoEstacionamento", "No_Situacao", "Dt_Entrada"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_Caixa", "Dt_Saida"}),
                           Index({"Cd_EmpresaUsuariaSistema", "No_Situacao", "Dt_Saida"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_ClienteConvenio", "No_Situacao"}),
                           Index({"Cd_EmpresaUsuariaSistema", "Cd_ClienteEstacionamento",
                                  "No_Situacao"}),
                           Index({"Ds_Ticket"}),
                           // The yard finds a gate's loose card by the ticket's first 13 characters.
                           PrefixIndex("Ds_Ticket", 13)}});
  t.push_back({.name = "TbTicketEstacionamento_TbTarifa",
               .columns = {Tenant(), Numbered("Cd_Tarifa"), Integer("Cd_TicketEstacionamento"),
                           Integer("Qt_Unidade"), Amount("Vl_Tarifa")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_TicketEstacionamento", "Cd_Tarifa"},
               .foreign_keys = {References("TbTarifa", {"Cd_Tarifa"})},
               .indexes = {Index({"Cd_Tarifa"})}});
  t.push_back({.name = "TbTicketSanitario",
               .columns = {Tenant(), Numbered("Cd_TicketSanitario"), Moment("Dt_Entrada"),
                           Integer("Cd_Tarifa"), Amount("Vl_Tarifa"), Integer("Qt_Unidade"),
                           Integer("Cd_Caixa")},
               .primary_key = {"Cd_EmpresaUsuariaSistema", "Cd_TicketSanitario"},
               .foreign_keys = {References("TbTarifa", {"Cd_Tarifa"})},
               .indexes = {Index({"Cd_EmpresaUsuariaSistema", "Cd_Caixa"}), Index({"Cd_Tarifa"})}});
  t.push_back({.name = "TbParametrosMadis",
               .columns = {Tenant(), Integer("Qt_MinutosMaximoSaidaAposPagamento")},
               .primary_key = {"Cd_EmpresaUsuariaSistema"}});
}

void AddWork(std::vector<TableDef>& t) {
  t.push_back({.name = "TbSequenciadores",
               .columns = {Text("Nm_Atributo", kDescription), Integer("No_Sequencial")},
               .primary_key = {"Nm_Atributo"}});
}

// The access-control system's own database, as far as the terminal uses it.
void AddAccessControl(std::vector<TableDef>& t) {
  constexpr std::string_view kDb = "MDESTACIONAMENTO";
  t.push_back({.database = kDb,
               .name = "EVENTO",
               .columns = {Integer("IDEVENTO"), Text("DESCRICAO", kDescription)},
               .primary_key = {"IDEVENTO"},
               .fixed_rows = {"1, 'ENTRADA'", "2, 'SAIDA'"},
               .fixed_row_columns = {"IDEVENTO", "DESCRICAO"}});
  t.push_back({.database = kDb,
               .name = "CLIENTE",
               .columns = {Integer("IDEMPRESACADASTRO"), Integer("IDCLIENTE"),
                           Text("NOME", kPersonName), Integer("VAGASEMUSO")},
               .primary_key = {"IDEMPRESACADASTRO", "IDCLIENTE"}});
  t.push_back({.database = kDb,
               .name = "CLIENTECARTAO",
               .columns = {Integer("IDEMPRESACADASTRO"), Integer("IDCLIENTE"),
                           Integer("IDEMPRESACARTAO"), Integer("IDCARTAO"), Integer("CODIGOCARTAO"),
                           Text("NOMEPROPRIETARIO", kPersonName)},
               .primary_key = {"IDEMPRESACARTAO", "IDCARTAO"},
               .indexes = {Index({"IDEMPRESACADASTRO", "IDCLIENTE"})}});
  t.push_back({.database = kDb,
               .name = "LOGPERMANENCIAMENSALISTA",
               .columns = {Integer("IDLOGPERMANENCIA"), Integer("IDEMPRESA"),
                           Integer("IDEMPRESACARTAO"), Integer("IDCARTAO"), Integer("EVENTO"),
                           Moment("DATAHORAPASSAGEM"), Flag("REALTIME"),
                           Integer("Cd_TicketEstacionamento")},
               .primary_key = {"IDEMPRESA", "IDLOGPERMANENCIA"},
               .indexes = {Index({"IDEMPRESACARTAO", "IDCARTAO", "DATAHORAPASSAGEM"}),
                           Index({"Cd_TicketEstacionamento"}), Index({"IDLOGPERMANENCIA"})}});
  t.push_back({.database = kDb,
               .name = "CARTOESAVULSOS",
               .columns = {Text("CODIGOCARTAO", 13), Moment("DATAHORAENTRADA")},
               .primary_key = {"CODIGOCARTAO"},
               .indexes = {Index({"DATAHORAENTRADA"})}});
  t.push_back({.database = kDb,
               .name = "LOGCARTOESAVULSOS",
               .columns = {Text("CODIGOCARTAO", 13), Integer("EVENTO"), Moment("DATAHORAPASSAGEM")},
               .indexes = {Index({"CODIGOCARTAO", "EVENTO"})}});
  t.push_back({.database = kDb,
               .name = "CARTOESAVULSOSBLOQUEADOS",
               .columns = {Text("CODIGOCARTAO", 13)},
               .primary_key = {"CODIGOCARTAO"}});
}

std::vector<TableDef> BuildTables() {
  std::vector<TableDef> tables;
  AddRegistry(tables);
  AddBus(tables);
  AddRevenue(tables);
  AddParking(tables);
  AddWork(tables);
  AddAccessControl(tables);
  // Key columns never hold Null, on every engine.
  for (TableDef& table : tables) {
    for (std::string_view key : table.primary_key) {
      for (ColumnDef& column : table.columns) {
        if (EqualsIgnoreCase(column.name, key)) column.nullable = false;
      }
    }
  }
  return tables;
}

}  // namespace

bool TableDef::HasIdentity() const {
  if (primary_key.size() != 1) return false;
  const ColumnDef* key = FindColumn(primary_key.front());
  return key != nullptr && key->numbered;
}

const ColumnDef* TableDef::FindColumn(std::string_view column) const {
  for (const ColumnDef& candidate : columns) {
    if (EqualsIgnoreCase(candidate.name, column)) return &candidate;
  }
  return nullptr;
}

const std::vector<TableDef>& Tables() {
  static const std::vector<TableDef> tables = BuildTables();
  return tables;
}

const TableDef* FindTable(std::string_view name) {
  for (const TableDef& table : Tables()) {
    if (EqualsIgnoreCase(table.name, name)) return &table;
  }
  return nullptr;
}

}  // namespace vek::schema
