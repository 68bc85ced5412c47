#pragma once
// The announcement schedule (TbAgendaSom, key Cd_EmpresaUsuariaSistema,
// Cd_AgendaSom; Cd_AgendaSom numbered through TbSequenciadores): one
// announcement of a trip, due at Dt_Agendamento, Ic_Feito 0 until played.
// Incluir's empty record set compares the code alone.

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdAgendaSom : public cgdRecord<cgpAgendaSom> {
 public:
  cgdAgendaSom() : cgdRecord("TbAgendaSom") {}

 protected:
  std::string DeleteStatement() override;
  std::string SelectStatement() override;
  std::string EmptySelectStatement() override;
};

}  // namespace vek
