#include "vek/foundation/Sequences.h"

#include "vek/db/Command.h"
#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"

namespace vek {
namespace {

std::shared_ptr<Recordset> RunWithName(const std::shared_ptr<Connection>& connection,
                                       const std::string& text, std::string_view attribute) {
  Command command;
  command.ActiveConnection(connection);
  command.CommandText(text);
  command.Parameters().Append(
      command.CreateParameter("Nm_Atributo", adVarChar, adParamInput, 50, std::string(attribute)));
  return command.Execute();
}

}  // namespace

int32_t NextSequenceValue(cgpSistema& session, std::string_view attribute) {
  return Trap("cgdSequenciadores", "NextSequenceValue", [&] {
    if (attribute.empty()) RaiseError(kErrorNoKey, "cgdSequenciadores", "NextSequenceValue");
    const std::shared_ptr<Connection> connection = session.Ob_Conexao();
    // The increment and the read are one statement: no other workstation can
    // come between them.
    const std::string increment =
        "UPDATE TbSequenciadores SET No_Sequencial = IsNull(No_Sequencial, 0) + 1 "
        "WHERE Nm_Atributo = ? RETURNING No_Sequencial";
    for (int attempt = 0; attempt < 3; ++attempt) {
      auto rows = RunWithName(connection, increment, attribute);
      if (rows->State() == adStateOpen && rows->RecordCount() > 0) {
        return CLng(rows->Fields().Item(0).Value());
      }
      try {
        RunWithName(connection, "INSERT INTO TbSequenciadores (Nm_Atributo, No_Sequencial) VALUES (?, 1)",
                    attribute);
        return int32_t{1};
      } catch (const VekError& error) {
        // Another workstation made the row first: take the next number from it.
        if (error.Number() != adErrConstraint) throw;
      }
    }
    RaiseError(kErrorRecordNotFound, "cgdSequenciadores", "NextSequenceValue");
  });
}

}  // namespace vek
