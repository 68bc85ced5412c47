#pragma once
// Every record kind of the library behind one untyped face, for the checks
// that walk them all. A record kind added to src/ must be added here: the
// injection sweep fails while a record class of src/ is missing.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vek/vek.h"

namespace vek::testing {

class AnyRecordKind {
 public:
  virtual ~AnyRecordKind() = default;
  virtual RecordManager& Manager() = 0;
  // The typed Consultar of the kind.
  virtual void Consultar(bool restore) = 0;
};

template <class Manager_>
class RecordKindOf final : public AnyRecordKind {
 public:
  RecordManager& Manager() override { return manager_; }
  void Consultar(bool restore) override { manager_.Consultar(restore); }

 private:
  Manager_ manager_;
};

struct RegisteredKind {
  std::string name;
  std::function<std::unique_ptr<AnyRecordKind>()> make;
};

#define VEK_RECORD_KIND(Class) \
  RegisteredKind { #Class, [] { return std::unique_ptr<AnyRecordKind>(std::make_unique<RecordKindOf<Class>>()); } }

inline const std::vector<RegisteredKind>& RecordKinds() {
  static const std::vector<RegisteredKind> kinds = {
      // registry/
      VEK_RECORD_KIND(cgdBairro), VEK_RECORD_KIND(cgdCEP_Logradouro), VEK_RECORD_KIND(cgdCidade),
      VEK_RECORD_KIND(cgdEMail), VEK_RECORD_KIND(cgdEmpresaUsuariaSistema), VEK_RECORD_KIND(cgdEndereco),
      VEK_RECORD_KIND(cgdLogradouro), VEK_RECORD_KIND(cgdPessoa), VEK_RECORD_KIND(cgdPessoaFisica),
      VEK_RECORD_KIND(cgdPessoaJuridica), VEK_RECORD_KIND(cgdTelefone), VEK_RECORD_KIND(cgdTipoEndereco),
      VEK_RECORD_KIND(cgdTipoLogradouro), VEK_RECORD_KIND(cgdTituloEPatente), VEK_RECORD_KIND(cgdUF),
      VEK_RECORD_KIND(cgdUsuario),
      // bus/
      VEK_RECORD_KIND(cgdAgendaSom), VEK_RECORD_KIND(cgdEmpresaOnibus), VEK_RECORD_KIND(cgdEscalasHorarioLinha),
      VEK_RECORD_KIND(cgdHorariosLinha), VEK_RECORD_KIND(cgdLinha), VEK_RECORD_KIND(cgdTipoOnibus),
      VEK_RECORD_KIND(cgdVeiculoOnibus), VEK_RECORD_KIND(cgdViagemOnibus),
      // revenue/
      VEK_RECORD_KIND(cgdApuracaoReceita), VEK_RECORD_KIND(cgdApuracaoReceita_Tarifa), VEK_RECORD_KIND(cgdCaixa),
      VEK_RECORD_KIND(cgdCondicaoPagamento), VEK_RECORD_KIND(cgdContaReceber), VEK_RECORD_KIND(cgdFechamentoDiario),
      VEK_RECORD_KIND(cgdItemCondicaoPagamento), VEK_RECORD_KIND(cgdItemMapaMovimentoED),
      VEK_RECORD_KIND(cgdItemRateioMovimentoED), VEK_RECORD_KIND(cgdParametrosMicrosiga), VEK_RECORD_KIND(cgdTarifa),
      VEK_RECORD_KIND(cgdTipoReceita),
      // parking/
      VEK_RECORD_KIND(cgdCalendarioAcessoEstacionament), VEK_RECORD_KIND(cgdCartaoEstacionamento),
      VEK_RECORD_KIND(cgdCategoriaClienteEstacionament), VEK_RECORD_KIND(cgdClienteEstacionament),
      VEK_RECORD_KIND(cgdConvenioEstacionamento), VEK_RECORD_KIND(cgdCor), VEK_RECORD_KIND(cgdMarcaModelo),
      VEK_RECORD_KIND(cgdParametrosMadis), VEK_RECORD_KIND(cgdPrecoEstacionamento),
      VEK_RECORD_KIND(cgdTicketEstacionamento), VEK_RECORD_KIND(cgdTicketEstacionamento_Tarifa),
      VEK_RECORD_KIND(cgdTicketSanitario), VEK_RECORD_KIND(cgdVeiculo), VEK_RECORD_KIND(cgdVeiculoEstacionamento),
      // foundation/
      VEK_RECORD_KIND(cgdSequenciadores),
  };
  return kinds;
}

#undef VEK_RECORD_KIND

}  // namespace vek::testing
