#pragma once
// The charge lines of a parking ticket (TbTicketEstacionamento_TbTarifa,
// key company, Cd_TicketEstacionamento and Cd_Tarifa, the last one named as
// its numbered column): one line per tariff charged, with the units and the
// unit value. The row is read with "And" between the key lines and no ";",
// and inserted by a statement of its own naming the five columns.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTicketEstacionamento_Tarifa : public cgdRecord<cgpTicketEstacionamento_Tarifa> {
 public:
  cgdTicketEstacionamento_Tarifa() : cgdRecord("TbTicketEstacionamento_TbTarifa") {}

 protected:
  std::string SelectStatement() override { return SelectByKey(false); }
  std::string InsertStatement() override;
};

}  // namespace vek
