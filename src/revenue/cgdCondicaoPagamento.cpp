#include "vek/revenue/cgdCondicaoPagamento.h"

#include "vek/foundation/MessageCatalogue.h"

namespace vek {

void cgdCondicaoPagamento::Excluir() {
  Run("Excluir", [&] {
    if (KeyMissing()) {
      RecordObject().RestaurarDefault();
      RaiseError(kErrorNoKey, RuntimeTypeName(*this), "Excluir");
    }
    // The items go first: they refer to the term.
    ds_sql_ = (SqlLines() << "DELETE "
                          << "FROM   TbItemCondicaoPagamento").Text() +
              KeyClauses(true, false);
    ExecuteStatement();
    ds_sql_ = DeleteStatement();
    ExecuteStatement();
  });
}

}  // namespace vek
