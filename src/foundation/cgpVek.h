#pragma once
// The property classes of the records: each takes its properties from its
// table in the schema catalogue, plus the extra properties the system names.

#include "vek/foundation/cgp.h"

namespace vek {

#define VEK_RECORD_PROPERTIES(Class, Table, ...) \
  class Class : public cgp {                     \
   public:                                       \
    Class() : cgp(TableProperties(Table, {__VA_ARGS__})) {} \
  };

VEK_RECORD_PROPERTIES(cgpSequenciadores, "TbSequenciadores")

// People and addresses.
VEK_RECORD_PROPERTIES(cgpUF, "TbUF")
VEK_RECORD_PROPERTIES(cgpCidade, "TbCidade")
VEK_RECORD_PROPERTIES(cgpBairro, "TbBairro")
VEK_RECORD_PROPERTIES(cgpTipoLogradouro, "TbTipoLogradouro")
VEK_RECORD_PROPERTIES(cgpLogradouro, "TbLogradouro")
VEK_RECORD_PROPERTIES(cgpCEP_Logradouro, "TbCEP_TbLogradouro")
VEK_RECORD_PROPERTIES(cgpTipoEndereco, "TbTipoEndereco")
VEK_RECORD_PROPERTIES(cgpTituloEPatente, "TbTituloEPatente")
VEK_RECORD_PROPERTIES(cgpPessoa, "TbPessoa")
VEK_RECORD_PROPERTIES(cgpPessoaFisica, "TbPessoaFisica")
VEK_RECORD_PROPERTIES(cgpPessoaJuridica, "TbPessoaJuridica")
VEK_RECORD_PROPERTIES(cgpEndereco, "TbEndereco")
VEK_RECORD_PROPERTIES(cgpTelefone, "TbTelefone")
VEK_RECORD_PROPERTIES(cgpEMail, "TbEMail")

// The operating company and its users. The company's access-control
// parameter is read with it and may be missing: it holds Null then.
VEK_RECORD_PROPERTIES(cgpEmpresaUsuariaSistema, "TbEmpresaUsuariaSistema",
                      {"Qt_MinutosMaximoSaidaAposPagamento", PropertyType::Variant})
VEK_RECORD_PROPERTIES(cgpUsuario, "TbUsuario")

// Bus operations: companies, their buses and bus types, lines, timetables
// with their stops, trips and the announcement schedule.
VEK_RECORD_PROPERTIES(cgpEmpresaOnibus, "TbEmpresaOnibus")
VEK_RECORD_PROPERTIES(cgpVeiculoOnibus, "TbVeiculoOnibus")
VEK_RECORD_PROPERTIES(cgpTipoOnibus, "TbTipoOnibus")
VEK_RECORD_PROPERTIES(cgpLinha, "TbLinha")
VEK_RECORD_PROPERTIES(cgpHorariosLinha, "TbHorariosLinha")
VEK_RECORD_PROPERTIES(cgpEscalasHorarioLinha, "TbEscalasHorarioLinha")
VEK_RECORD_PROPERTIES(cgpViagemOnibus, "TbViagemOnibus")
VEK_RECORD_PROPERTIES(cgpAgendaSom, "TbAgendaSom")

// Tariffs.
VEK_RECORD_PROPERTIES(cgpTipoReceita, "TbTipoReceita")
VEK_RECORD_PROPERTIES(cgpTarifa, "TbTarifa")

// Tills. Ic_ConsultarPorAbertura chooses how Consultar finds the till: false
// (the default) by company and Cd_Caixa, true by company, Cd_Usuario,
// Dt_Abertura and No_Sequencial.
VEK_RECORD_PROPERTIES(cgpCaixa, "TbCaixa", {"Ic_ConsultarPorAbertura", PropertyType::Boolean})
// Revenue assessments: the header of a payer's day and its tariff lines.
VEK_RECORD_PROPERTIES(cgpApuracaoReceita, "TbApuracaoReceita")
VEK_RECORD_PROPERTIES(cgpApuracaoReceita_Tarifa, "TbApuracaoReceita_TbTarifa")
// The boarding and alighting map and the apportionment.
VEK_RECORD_PROPERTIES(cgpItemMapaMovimentoED, "TbItemMapaMovimentoED")
VEK_RECORD_PROPERTIES(cgpItemRateioMovimentoED, "TbItemRateioMovimentoED")
// Billing: payment terms and their items, receivables, the daily closing and
// the ERP's parameters of each operating company.
VEK_RECORD_PROPERTIES(cgpCondicaoPagamento, "TbCondicaoPagamento")
VEK_RECORD_PROPERTIES(cgpItemCondicaoPagamento, "TbItemCondicaoPagamento")
VEK_RECORD_PROPERTIES(cgpContaReceber, "TbContaReceber")
VEK_RECORD_PROPERTIES(cgpFechamentoDiario, "TbFechamentoDiario")
VEK_RECORD_PROPERTIES(cgpParametrosMicrosiga, "TbParametrosMicrosiga")

// Vehicles. A company's parking vehicle is read together with the vehicle.
VEK_RECORD_PROPERTIES(cgpCor, "TbCor")
VEK_RECORD_PROPERTIES(cgpMarcaModelo, "TbMarcaModelo")
VEK_RECORD_PROPERTIES(cgpVeiculo, "TbVeiculo")
VEK_RECORD_PROPERTIES(cgpVeiculoEstacionamento, "TbVeiculoEstacionamento",
                      {"No_Frota", PropertyType::Long}, {"Cd_EmpresaOnibus", PropertyType::Long},
                      {"Cd_Cor", PropertyType::Long}, {"Cd_MarcaModelo", PropertyType::Long})

// The car park: price bands, tickets and their charge lines, monthly clients
// (read with the vacancies the gates count in use), agreements, cards,
// categories, calendars and the access-control settings; restroom tickets.
VEK_RECORD_PROPERTIES(cgpPrecoEstacionamento, "TbPrecoEstacionamento")
VEK_RECORD_PROPERTIES(cgpTicketEstacionamento, "TbTicketEstacionamento")
VEK_RECORD_PROPERTIES(cgpTicketEstacionamento_Tarifa, "TbTicketEstacionamento_TbTarifa")
VEK_RECORD_PROPERTIES(cgpClienteEstacionament, "TbClienteEstacionamento", {"Qt_VagasEmUso", PropertyType::Long})
VEK_RECORD_PROPERTIES(cgpConvenioEstacionamento, "TbConvenioEstacionamento")
VEK_RECORD_PROPERTIES(cgpCartaoEstacionamento, "TbCartaoEstacionamento")
VEK_RECORD_PROPERTIES(cgpCategoriaClienteEstacionament, "TbCategoriaClienteEstacionamento")
VEK_RECORD_PROPERTIES(cgpCalendarioAcessoEstacionament, "TbCalendarioAcessoEstacionamento")
VEK_RECORD_PROPERTIES(cgpParametrosMadis, "TbParametrosMadis")
VEK_RECORD_PROPERTIES(cgpTicketSanitario, "TbTicketSanitario")

#undef VEK_RECORD_PROPERTIES

}  // namespace vek
