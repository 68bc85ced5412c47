#pragma once
// Access calendars of monthly clients (TbCalendarioAcessoEstacionamento, key
// company and Cd_CalendarioAcessoEstacionamento, numbered). The class name
// is one letter short of its table, as it always was. The pick list's
// caption, "Carregando os calendários", is this library's own.

#include "vek/foundation/cgpVek.h"
#include "vek/parking/NamedParkingRecord.h"

namespace vek {

class cgdCalendarioAcessoEstacionament : public NamedParkingRecord<cgpCalendarioAcessoEstacionament> {
 public:
  cgdCalendarioAcessoEstacionament()
      : NamedParkingRecord("TbCalendarioAcessoEstacionamento", "Cd_CalendarioAcessoEstacionamento",
                           "Nm_CalendarioAcessoEstacionamento", "Carregando os calendários") {}
};

}  // namespace vek
