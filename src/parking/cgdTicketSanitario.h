#pragma once
// Restroom turnstile sales (TbTicketSanitario, key company and
// Cd_TicketSanitario, numbered), read by the till reports. The insert is a
// statement of its own that writes "Getdate()" for Dt_Entrada: the sale time
// is always the database server's, whatever Ob_cgp holds.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTicketSanitario : public cgdRecord<cgpTicketSanitario> {
 public:
  cgdTicketSanitario() : cgdRecord("TbTicketSanitario") {}

 protected:
  std::string SelectStatement() override { return SelectByKey(true); }
  std::string InsertStatement() override;
};

}  // namespace vek
