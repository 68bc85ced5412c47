#pragma once
// Revenue types (TbTipoReceita, key Cd_TipoReceita, numbered by the
// database). Every terminal holds 1 EMBARQUE, 2 ESTACIONAMENTO, 3 SANITARIO
// and 4 MALEX. Its look-ups close the WHERE line with ";", as the tariffs' do.

#include <string>

#include "vek/foundation/RecordManager.h"
#include "vek/foundation/cgpVek.h"

namespace vek {

class cgdTipoReceita : public cgdRecord<cgpTipoReceita> {
 public:
  cgdTipoReceita() : cgdRecord("TbTipoReceita") {}

 protected:
  std::string SelectStatement() override {
    return SqlLines() << "SELECT A.*"
                      << "FROM   TbTipoReceita A"
                      << "WHERE  A.Cd_TipoReceita = " + KeyLiteral("Cd_TipoReceita") + ";";
  }
  std::string EmptySelectStatement() override {
    return SqlLines() << "SELECT A.*"
                      << "FROM   TbTipoReceita A"
                      << "WHERE  A.Cd_TipoReceita = 0;";
  }
};

}  // namespace vek
