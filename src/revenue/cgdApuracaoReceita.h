#pragma once
// A revenue assessment (TbApuracaoReceita, key company and
// No_ApuracaoReceita, numbered through the numbering table): what one payer
// owes the terminal for one movement day, with its tariff lines in
// TbApuracaoReceita_TbTarifa. Deleting it deletes its lines first; it is
// updated and inserted by statements of its own, which always write
// No_Parcela 1 whatever the property object holds. The literals of the
// revenue type and the till-total flag differ between the UPDATE (integer,
// bit) and the INSERT (small integers), as the ledger has always written them.

#include <memory>
#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdApuracaoReceita : public cgdRecord<cgpApuracaoReceita> {
 public:
  cgdApuracaoReceita() : cgdRecord("TbApuracaoReceita") {}

  // The payer's assessments of the day (Dt_Movimento and Cd_Pessoa of
  // Ob_cgp) for the company: whether it was already assessed. An open,
  // detached, read-only record set.
  std::shared_ptr<Recordset> ConsultarApuracoesPorDataEEmpresa();

 protected:
  std::string SelectStatement() override;
  std::string DeleteStatement() override;
  std::string DetailDeleteStatement() override;
  std::string UpdateStatement() override;
  std::string InsertStatement() override { return instrucaoInsert(); }

 private:
  std::string DeleteFrom(const std::string& table);
  std::string instrucaoInsert();
};

}  // namespace vek
