#pragma once
// Categories of monthly client (TbCategoriaClienteEstacionamento, key
// company and Cd_CategoriaClienteEstacionamento, numbered). The class name
// is one letter short of its table, as it always was. The pick list's
// caption, "Carregando as categorias", is this library's own.

#include "vek/foundation/cgpVek.h"
#include "vek/parking/NamedParkingRecord.h"

namespace vek {

class cgdCategoriaClienteEstacionament : public NamedParkingRecord<cgpCategoriaClienteEstacionament> {
 public:
  cgdCategoriaClienteEstacionament()
      : NamedParkingRecord("TbCategoriaClienteEstacionamento", "Cd_CategoriaClienteEstacionamento",
                           "Nm_CategoriaClienteEstacionamento", "Carregando as categorias") {}
};

}  // namespace vek
