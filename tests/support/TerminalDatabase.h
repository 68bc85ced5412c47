#pragma once
// A session on a fresh terminal database in memory, with a fixed clock, and
// the statements it runs recorded as they are sent.

#include <memory>
#include <string>
#include <vector>

#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/VekError.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/Clock.h"
#include "vek/schema/CreateDatabase.h"

namespace vek::testing {

struct TerminalDatabase {
  TerminalDatabase() : session(std::make_shared<cgpSistema>()),
                       clock(std::make_shared<FixedClock>(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0))) {
    session->Let("Ds_CaminhoDB", Variant(":memory:"));
    session->Let("Ds_FormatoData", Variant("yyyy-mm-dd"));
    session->SetClock(clock);
    connection = session->AbrirConexao();
    schema::CreateDatabase(*connection);
    connection->OnStatement([this](const std::string& text) { statements.push_back(text); });
  }

  // Runs a statement of the test's own, outside the recorded ones.
  std::shared_ptr<Recordset> Query(const std::string& text) {
    auto rows = connection->Execute(text);
    statements.pop_back();
    return rows;
  }

  std::shared_ptr<cgpSistema> session;
  std::shared_ptr<FixedClock> clock;
  std::shared_ptr<Connection> connection;
  std::vector<std::string> statements;
};

}  // namespace vek::testing
